// Late binding: every member answers alike through Invoke, through the type information's own
// Invoke and through the vtable, and Invoke treats faulty calls as the platform does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <map>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/every_class.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace kavrel::tests {

namespace {

constexpr IDispatch* kNullObject = nullptr;

bool IsPut(const MemberDescription& member) {
    return (member.kind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
}

size_t InCount(const MemberDescription& member) {
    return static_cast<size_t>(std::ranges::count_if(
        member.parameters, [](const std::string& text) { return text.starts_with("[in"); }));
}

// A result besides the one that late binding hands on, or one that is no variant.
bool HasOtherResults(const MemberDescription& member) {
    return std::ranges::any_of(member.parameters, [](const std::string& text) {
        return text.starts_with("[out] ") || text.find("IUnknown**") != text.npos;
    });
}

Arguments ArgumentsOf(const MemberDescription& member, const Var& value) {
    Arguments arguments{Vars(InCount(member), value), {}};
    if (IsPut(member)) arguments.names = {DISPID_PROPERTYPUT};
    return arguments;
}

// Values that mean something else to each conversion, and arguments left out. None opens a port:
// that is not a matter of late binding.
std::vector<Arguments> SampleArguments(const MemberDescription& member) {
    if (InCount(member) == 0) return {Arguments()};
    Vars values = {0,    1,   2,      L"no number", 28,          29,  -1,
                   L"3", L"", L"RMC", L"PGRME",     kNullObject, 3.7, true};
    if (member.name == "PortEnabled") values = {0, false, L"0"};
    std::vector<Arguments> samples;
    for (const Var& value : values)
        samples.push_back(ArgumentsOf(member, value));
    for (size_t given = 0; given < InCount(member) && !IsPut(member); ++given)
        samples.push_back({Vars(given, Var::Missing()), {}});
    return samples;
}

// The same outcome, as far as both tell it. Members write their result even when they fail, but not
// when they refuse an argument that is no object.
void ExpectSame(const CallResult& expected, const CallResult& actual) {
    EXPECT_EQ(expected.failure, actual.failure);
    if (expected.failure != E_NOINTERFACE) {
        EXPECT_EQ(Describe(expected.value), Describe(actual.value));
    }
    ASSERT_EQ(expected.error.has_value(), actual.error.has_value());
    if (!expected.error.has_value()) return;
    EXPECT_EQ(expected.error->description, actual.error->description);
    EXPECT_EQ(expected.error->source, actual.error->source);
}

class MemberTest : public AutomationTest, public testing::WithParamInterface<ObjectMaker> {
  protected:
    const TypeDescription& Type() { return InterfaceNamed(GetParam().interfaceName); }
    const std::vector<MemberDescription>& Members() { return Type().members; }

    // A call, and what can be seen of it afterwards, on an object of its own.
    template <typename Call>
    std::vector<CallResult> CallAndLook(const Call& call) {
        const ComPtr<IDispatch> object = GetParam().make();
        std::vector<CallResult> results{call(object.Get())};
        for (const wchar_t* look : {L"Sentence", L"LatitudeRads", L"Zone", L"E2", L"Datum"})
            results.push_back(Get(object.Get(), look));
        return results;
    }
};

INSTANTIATE_TEST_SUITE_P(All, MemberTest,
                         testing::ValuesIn(EveryClass().begin(), EveryClass().end()),
                         [](const auto& test) { return std::string(test.param.interfaceName); });

TEST_P(MemberTest, NamesGiveTheDispidsOfTheTypeLibrary) {
    const ComPtr<IDispatch> object = GetParam().make();
    ASSERT_FALSE(Members().empty());
    for (const MemberDescription& member : Members()) {
        const std::wstring name(member.name.begin(), member.name.end());
        std::wstring upper = name;
        std::wstring lower = name;
        std::ranges::transform(name, upper.begin(), std::towupper);
        std::ranges::transform(name, lower.begin(), std::towlower);
        for (const std::wstring& known : {name, upper, lower})
            EXPECT_EQ(member.id, IdOf(object.Get(), known.c_str())) << Narrow(known);
        for (const std::wstring& unknown : {name + L"x", name.substr(0, name.size() - 1)})
            EXPECT_EQ(DISPID_UNKNOWN, IdOf(object.Get(), unknown.c_str())) << Narrow(unknown);
    }
}

TEST_P(MemberTest, ThreeWaysGiveTheSame) {
    for (const MemberDescription& member : Members()) {
        if (HasOtherResults(member)) continue;
        const auto kind = static_cast<WORD>(member.kind);
        for (const Arguments& arguments : SampleArguments(member)) {
            SCOPED_TRACE(member.name + testing::PrintToString(arguments.values));
            const auto late = CallAndLook(
                [&](IDispatch* object) { return InvokeById(object, member.id, kind, arguments); });
            const auto described = CallAndLook([&](IDispatch* object) {
                return InvokeByTypeInfo(object, member.id, kind, arguments);
            });
            const auto early = CallAndLook([&](IDispatch* object) {
                return CallVtable(object, Type(), member, arguments.values);
            });
            ASSERT_EQ(S_OK, early[0].status);
            if (early[0].error.has_value()) {
                EXPECT_TRUE(early[0].error->interfaceId == Type().id);
            }
            for (size_t i = 0; i < late.size(); ++i) {
                ExpectSame(early[i], late[i]);
                ExpectSame(described[i], late[i]);
            }
        }
    }
}

// Nor is anything written to the other places.
TEST_P(MemberTest, NullIsNoPlaceForAResult) {
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        SCOPED_TRACE(member.name);
        for (size_t i = InCount(member); i < member.parameters.size(); ++i) {
            Var untouched;
            Vars arguments(member.parameters.size(), Var::To(untouched));
            arguments[i] = Var::Of(VT_BYREF | VT_VARIANT);
            EXPECT_EQ(E_POINTER, CallVtable(object.Get(), Type(), member, arguments).failure);
            EXPECT_EQ(VT_EMPTY, untouched.type());
        }
    }
}

TEST_P(MemberTest, ObjectKeepsTheModule) {
    const ComPtr<IDispatch> object = GetParam().make();
    EXPECT_EQ(S_FALSE, CanUnloadNow());
}

TEST_P(MemberTest, ErrorsAreOfItsInterface) {
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(S_OK, GetParam().make().As(&support));
    EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(Type().id));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IDispatch));
}

TEST_P(MemberTest, CountsOfArgumentsAreChecked) {
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        SCOPED_TRACE(member.name);
        const auto kind = static_cast<WORD>(member.kind);
        const Arguments tooMany{Vars(InCount(member) + 1), {}};
        EXPECT_EQ(DISP_E_BADPARAMCOUNT, InvokeById(object.Get(), member.id, kind, tooMany).status);
        if (!IsPut(member)) continue;
        EXPECT_EQ(DISP_E_BADPARAMCOUNT, InvokeById(object.Get(), member.id, kind, {}).status);
    }
}

// Hosts that cannot know whether a name is a method or a property ask for both.
TEST_P(MemberTest, KindsOfCallAreChecked) {
    std::map<DISPID, int> kinds;
    for (const MemberDescription& member : Members())
        kinds[member.id] |= member.kind;
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        SCOPED_TRACE(member.name);
        const Arguments arguments = ArgumentsOf(member, Var(0));
        const auto call = [&](int kind) {
            return InvokeById(object.Get(), member.id, static_cast<WORD>(kind), arguments);
        };
        for (const WORD kind : {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT,
                                DISPATCH_PROPERTYPUTREF}) {
            if ((kinds[member.id] & kind) != 0) continue;
            EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(kind).status) << kind;
        }
        if (IsPut(member)) continue;
        ExpectSame(call(member.kind), call(DISPATCH_METHOD | DISPATCH_PROPERTYGET));
    }
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, InvokeById(object.Get(), 4711, DISPATCH_METHOD, {}).status);
}

class InvokeTest : public ParserTest {
  protected:
    // Looks a member up with the names of its arguments, or some of them.
    HRESULT FindIds(std::vector<const wchar_t*> names, DISPID* ids) {
        return parser_->GetIDsOfNames(IID_NULL, const_cast<LPOLESTR*>(names.data()),
                                      static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT, ids);
    }
    CallResult EventInterval(const Arguments& arguments) {
        return InvokeById(parser_.Get(), 15, DISPATCH_METHOD, arguments);
    }
};

TEST_F(InvokeTest, FaultyCallsAreRefused) {
    DISPPARAMS none = {};
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              parser_->Invoke(1, IID_IUnknown, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                              nullptr, nullptr));
    EXPECT_EQ(E_POINTER, parser_->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, nullptr,
                                         nullptr, nullptr, nullptr));
    DISPID id = 0;
    EXPECT_EQ(E_POINTER, FindIds({L"Parse"}, nullptr));
    EXPECT_EQ(E_POINTER, parser_->GetIDsOfNames(IID_NULL, nullptr, 1, LOCALE_USER_DEFAULT, &id));
    EXPECT_EQ(DISP_E_UNKNOWNNAME, FindIds({L"Nothing"}, &id));
    EXPECT_EQ(DISPID_UNKNOWN, id);
}

TEST_F(InvokeTest, ArgumentsMayBeNamed) {
    DISPID ids[3] = {};
    EXPECT_EQ(DISP_E_UNKNOWNNAME, FindIds({L"EventInterval", L"Nonsense"}, ids));
    EXPECT_THAT(ids, ElementsAre(15, DISPID_UNKNOWN, 0));
    ASSERT_EQ(S_OK, FindIds({L"eventinterval", L"EVENTTYPE", L"Interval"}, ids));
    EXPECT_THAT(ids, ElementsAre(15, 1, 0));

    // EventInterval EventType:=5, Interval:=9 is right, and wrong with the names exchanged.
    EXPECT_EQ(S_OK, EventInterval({{5, 9}, {1, 0}}).status);
    EXPECT_EQ("80042713 Unknown event type! (NmeaParser Class)",
              Outcome(EventInterval({{5, 9}, {0, 1}})));
    EXPECT_EQ(S_OK, EventInterval({{100, 5}, {1}}).status) << "the first by place";
}

// Calls that no compiler makes. Handed to the platform they crashed it.
TEST_F(InvokeTest, OddArgumentNumbersAreRefused) {
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, EventInterval({{5, 100}, {1, 1}}).status) << "twice";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, EventInterval({{100, 5}, {0}}).status) << "by place, too";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, EventInterval({{5}, {2}}).status) << "beyond the last";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, EventInterval({{5}, {-1}}).status);
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, EventInterval({{5}, {DISPID_PROPERTYPUT}}).status) << "no put";

    const ComPtr<IDispatch> grid = CreateDirectly(CLSID_CustomGrid);
    EXPECT_EQ(DISP_E_BADPARAMCOUNT,
              InvokeById(grid.Get(), IdOf(grid.Get(), L"CustomDatum"),
                         DISPATCH_METHOD | DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT,
                         {{Var::Missing()}, {DISPID_PROPERTYPUT}})
                  .status);
}

// Simple hosts leave the name of a put's value away.
TEST_F(InvokeTest, PutValueNeedNotBeNamed) {
    constexpr DISPID kGpsDatum = 3;
    EXPECT_EQ(S_OK, InvokeById(parser_.Get(), kGpsDatum, DISPATCH_PROPERTYPUT, {{3}, {}}).status);
    EXPECT_EQ(DISP_E_EXCEPTION,
              InvokeById(parser_.Get(), kGpsDatum, DISPATCH_PROPERTYPUT, {{29}, {}}).status);
}

// By convention nobody initialises the result before the call.
TEST_F(InvokeTest, ResultIsOverwrittenNotFreed) {
    const ComPtr<EventRecorder> object = EventRecorder::Make();
    const Var held(object.Get());
    VARIANT result = *held.get();
    DISPPARAMS none = {};
    ASSERT_EQ(S_OK, MakeSentence(L"$GPXXX,a")
                        ->Invoke(1, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none,
                                 &result, nullptr, nullptr));
    EXPECT_EQ(2U, object->references());
    EXPECT_EQ("BSTR '$GPXXX,a'", Describe(result));
    VariantClear(&result);
    // One that nobody wants is, as the end of the test tells.
    EXPECT_EQ(S_OK,
              parser_->Invoke(IdOf(parser_.Get(), L"GetComStatus"), IID_NULL, LOCALE_USER_DEFAULT,
                              DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
}

}  // namespace

}  // namespace kavrel::tests
