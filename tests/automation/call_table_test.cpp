// What clients see of each class, late-bound, by the tables in tests/data/automation: calls by
// name, one after the other, and what each shall give.
//
// A row is "object | member | arguments | outcome", whose end may be left away. "[Rule]" begins a
// test, which starts without objects.
//   object     a name; or "new" for an object of a class (Position); or "event" for the object that
//              the event of that name (OnGpsFix) brings last when its arguments are parsed, which
//              are sentences without line ends, behind the parser if it is not to be a new one
//   member     as in Step: "=Name" puts a value, "&Name" puts an object by reference
//   arguments  apart by blanks: 5, 5.0, "text" or the name of an object or of a constant below
//   outcome    as in Step; "-> name" gives the resulting object a name, and a number may be
//              followed by "+-" and its tolerance
// Anywhere, \r\n is a line end and \0 the character 0.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "automation/support/every_class.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"
#include "table.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

std::wstring WideFromUtf8(const std::string& text) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), size);
    wide.resize(static_cast<size_t>(length));
    return wide;
}

std::string Unescaped(std::string text) {
    for (const auto& [written, meant] :
         {std::pair<std::string, std::string>{"\\r\\n", "\r\n"}, {"\\0", std::string(1, '\0')}}) {
        for (size_t at; (at = text.find(written)) != std::string::npos;)
            text.replace(at, written.size(), meant);
    }
    return text;
}

// Cut at blanks outside of quotes; a quote stays in front of a text.
std::vector<std::string> Words(const std::string& text) {
    std::vector<std::string> words;
    for (size_t at = 0; (at = text.find_first_not_of(' ', at)) != std::string::npos;) {
        const bool isText = text[at] == '"';
        const size_t end = std::min(text.find(isText ? '"' : ' ', at + 1), text.size());
        words.push_back(text.substr(at, end - at));
        at = isText ? end + 1 : end;
    }
    return words;
}

const std::map<std::string, Var>& Constants() {
    static const std::map<std::string, Var> constants = {
        {"Nothing", static_cast<IDispatch*>(nullptr)},
        {"Null", Var::Of(VT_NULL)},
        {"NullText", Var::Of(VT_BSTR)},
        {"Empty", Var()},
        {"Missing", Var::Missing()},
        {"true", true},
        {"false", false},
        {"nan", std::nan("")},
        {"inf", HUGE_VAL},
        {"-inf", -HUGE_VAL},
    };
    return constants;
}

// From the parser that is the first argument, or from a new one.
ComPtr<IDispatch> ObjectOfEvent(const std::string& event, const Vars& arguments) {
    static constexpr const char* kEvents[] = {"Generic",    "GGA",          "GLL",
                                              "RMC",        "OnSatellites", "OnGpsFix",
                                              "OnMovement", "OnQuality",    "OnComStatus"};
    const auto id = std::find(std::begin(kEvents), std::end(kEvents), event) - kEvents + 1;
    ComPtr<IDispatch> parser = arguments.at(0).object();
    if (!parser) parser = CreateParser();
    return LastObjectOf(parser.Get(), static_cast<DISPID>(id), arguments.back().text() + L"\r\n");
}

class CallTest : public AutomationTest, public testing::WithParamInterface<TableGroup> {
  protected:
    void TearDown() override {
        objects_.clear();
        AutomationTest::TearDown();
    }

    void Run(TableRow row) {
        ASSERT_GE(4U, row.fields.size());
        row.fields.resize(4);
        const CallResult call = Make(row);
        const std::string wanted = Unescaped(row.fields[3]);
        if (wanted.starts_with("-> ")) {
            EXPECT_EQ("DISPATCH object", Outcome(call));
            objects_[wanted.substr(3)] = call.value.object();
        } else if (const size_t sign = wanted.find("+-"); sign != std::string::npos) {
            const size_t blank = wanted.find(' ');
            EXPECT_EQ(wanted.substr(0, blank), Outcome(call).substr(0, blank));
            EXPECT_NEAR(std::stod(wanted.substr(blank)), V_R8(call.value.get()),
                        std::stod(wanted.substr(sign + 2)));
        } else {
            EXPECT_EQ(wanted, Outcome(call));
        }
    }

  private:
    CallResult Make(const TableRow& row) {
        const std::string& object = row.fields[0];
        const std::string& member = row.fields[1];
        Vars arguments;
        for (const std::string& word : Words(row.fields[2]))
            arguments.push_back(Argument(word));
        CallResult made;
        if (object == "new") {
            made.value = CreateByName(L"KavrelCE." + WideFromUtf8(member)).Get();
        } else if (object == "event") {
            made.value = ObjectOfEvent(member, arguments).Get();
        } else if (objects_[object]) {
            made = RunStep(objects_[object].Get(), WideFromUtf8(member).c_str(), arguments);
        } else {
            ADD_FAILURE() << "there is no object " << object;
        }
        return made;
    }

    Var Argument(const std::string& word) {
        if (word[0] == '"') return WideFromUtf8(Unescaped(word.substr(1)));
        if (objects_.contains(word)) return objects_[word].Get();
        if (Constants().contains(word)) return Constants().at(word);
        if (word.find_first_of(".e") != std::string::npos) return std::stod(word);
        return std::stoi(word);
    }

    std::map<std::string, ComPtr<IDispatch>> objects_;
};

TEST_P(CallTest, GivesWhatTheTableSays) {
    ASSERT_FALSE(GetParam().rows.empty());
    for (const TableRow& row : GetParam().rows) {
        SCOPED_TRACE(row.where);
        Run(row);
    }
}

INSTANTIATE_TEST_SUITE_P(Sentence, CallTest,
                         testing::ValuesIn(ReadGroups("automation/sentence.txt")), NameOfGroup);
INSTANTIATE_TEST_SUITE_P(Results, CallTest, testing::ValuesIn(ReadGroups("automation/results.txt")),
                         NameOfGroup);
INSTANTIATE_TEST_SUITE_P(Errors, CallTest, testing::ValuesIn(ReadGroups("automation/errors.txt")),
                         NameOfGroup);
INSTANTIATE_TEST_SUITE_P(Position, CallTest,
                         testing::ValuesIn(ReadGroups("automation/position.txt")), NameOfGroup);
INSTANTIATE_TEST_SUITE_P(CustomObjects, CallTest,
                         testing::ValuesIn(ReadGroups("automation/custom_objects.txt")),
                         NameOfGroup);

}  // namespace

}  // namespace kavrel::tests
