// The events that sentences raise and the objects that they bring, beyond what the table
// tests/data/automation/results.txt says of each member.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

const wchar_t* const kGgaText = L"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
const wchar_t* const kLostText = L"$GPGGA,123520,,,,,0,,,,,,,,";
const wchar_t* const kRmcText = L"$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W";
const wchar_t* const kGllText = L"$GPGLL,4807.038,N,01131.000,E,123520,A";
const wchar_t* const kVtgText = L"$GPVTG,084.4,T,087.5,M,010,N,018.5,K";
const wchar_t* const kGsaText = L"$GPGSA,A,3,01,,,,,,,,,,,,2.5,1.3,2.1";
const wchar_t* const kGsvText = L"$GPGSV,1,1,02,01,40,083,46,02,17,308,41";

class ResultTest : public AutomationTest {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        parser_ = CreateParser();
        ASSERT_TRUE(parser_);
        listener_.emplace(parser_.Get());
    }
    void TearDown() override {
        listener_.reset();
        parser_.Reset();
        AutomationTest::TearDown();
    }

    // The events of a sentence, by their names and one value of each of their objects, so that
    // mixed up ones show.
    std::string Feed(const std::wstring& sentence) {
        (*listener_)->Clear();
        ExpectSteps(parser_.Get(), {{L"Parse", {sentence + L"\r\n"}, ""}});
        std::string text;
        for (const RecordedEvent& event : (*listener_)->events())
            text += Summary(event) + ' ';
        return text;
    }

    ComPtr<IDispatch> ObjectOf(DISPID id, const wchar_t* sentence) {
        Feed(sentence);
        for (const RecordedEvent& event : (*listener_)->events()) {
            if (event.id == id) return event.arguments[0].object();
        }
        return nullptr;
    }

    ComPtr<IDispatch> parser_;

  private:
    static std::string Summary(const RecordedEvent& event) {
        struct Row {
            const char* name;
            const wchar_t* member;  // of the first object
            bool hasSentence;       // as a second object
        };
        static constexpr Row kRows[] = {
            {"Generic", L"Command", false},  {"GGA", L"HDOP", true},
            {"GLL", L"Valid", true},         {"RMC", L"Heading", true},
            {"Satellites", L"Count", false}, {"Fix", L"FixType", false},
            {"Movement", L"Heading", false}, {"Quality", L"PDOP", false},
            {"Status", L"ValidFix", false},
        };
        const Row& row = kRows[event.id - 1];
        if (event.arguments.size() != (row.hasSentence ? 2U : 1U)) return "wrong number of objects";
        std::string text = row.name;
        text += ':' + Outcome(Get(event.arguments[0].object(), row.member));
        if (row.hasSentence) text += ':' + Outcome(Get(event.arguments[1].object(), L"Command"));
        return text;
    }

    std::optional<Listener> listener_;
};

TEST_F(ResultTest, EachSentenceRaisesItsEvents) {
    EXPECT_EQ("RMC:R8 84.4:BSTR 'RMC' Status:BOOL 1 Fix:I4 2 Movement:R8 84.4 Generic:BSTR 'RMC' ",
              Feed(kRmcText));
    EXPECT_EQ("GGA:R8 0.9:BSTR 'GGA' Fix:I4 3 Generic:BSTR 'GGA' ", Feed(kGgaText));
    EXPECT_EQ("GLL:BOOL 1:BSTR 'GLL' Fix:I4 3 Generic:BSTR 'GLL' ", Feed(kGllText));
    EXPECT_EQ("Movement:R8 84.4 Generic:BSTR 'VTG' ", Feed(kVtgText));
    EXPECT_EQ("Satellites:I2 2 Generic:BSTR 'GSV' ", Feed(kGsvText));
    EXPECT_EQ("Quality:R8 2.5 Satellites:I2 2 Generic:BSTR 'GSA' ", Feed(kGsaText));
    EXPECT_EQ("Generic:BSTR 'TXT' ", Feed(L"$GPTXT,1"));
    EXPECT_EQ("GGA:R8 0:BSTR 'GGA' Status:BOOL 0 Fix:I4 0 Generic:BSTR 'GGA' ", Feed(kLostText));
}

// The types of EventInterval are no dispids.
TEST_F(ResultTest, EventsAreSwitchedOffByType) {
    Feed(kRmcText);
    const auto setAll = [this](int intervalMs) {
        for (const int type : {5, 6, 7, 8})
            ExpectSteps(parser_.Get(), {{L"EventInterval", {intervalMs, type}, ""}});
    };
    const struct {
        int type;
        const wchar_t* sentence;
        const char* events;
    } cases[] = {
        {5, kGgaText, "GGA:R8 0.9:BSTR 'GGA' Generic:BSTR 'GGA' "},
        {6, kGsvText, "Generic:BSTR 'GSV' "},
        {7, kVtgText, "Generic:BSTR 'VTG' "},
        {8, kGsaText, "Generic:BSTR 'GSA' "},
    };
    for (const auto& off : cases) {
        setAll(0);
        ExpectSteps(parser_.Get(), {{L"EventInterval", {-1, off.type}, ""}});
        for (const auto& test : cases) {
            const bool isAsOff = test.events == Feed(test.sentence);
            EXPECT_EQ(off.type == test.type, isAsOff) << off.type << " " << test.type;
        }
    }
}

// The time of a sentence without one: the caller's variant stays as it is.
TEST_F(ResultTest, NoTimeLeavesTheVariantAlone) {
    ComPtr<IGpsFix> fix;
    ASSERT_EQ(S_OK, ObjectOf(kOnGpsFix, kLostText).As(&fix));
    Var result = L"as before";
    EXPECT_EQ(S_OK, fix->get_UTC(result.get()));
    EXPECT_EQ("BSTR 'as before'", Describe(result));
    EXPECT_EQ(E_POINTER, fix->get_UTC(nullptr));
    EXPECT_EQ(E_POINTER, fix->get_Position(nullptr));
}

TEST_F(ResultTest, AFailingMemberHasWrittenItsResult) {
    ComPtr<IMovement> movement;
    ASSERT_EQ(S_OK, ObjectOf(kOnMovement, kVtgText).As(&movement));
    Var result = 5;
    EXPECT_EQ(static_cast<HRESULT>(0x80042713), movement->get_Speed(*Var(7).get(), result.get()));
    EXPECT_EQ("R8 0", Describe(result));
    ComPtr<ISatellites> satellites;
    ASSERT_EQ(S_OK, ObjectOf(kOnSatellites, kGsvText).As(&satellites));
    EXPECT_EQ(static_cast<HRESULT>(0x80042714), satellites->get_Item(*Var(9).get(), result.get()));
    EXPECT_EQ("DISPATCH null", Describe(result));
    EXPECT_TRUE(TakeErrorObject().value().interfaceId == IID_ISatellites);
}

TEST_F(ResultTest, SatellitesOneByOne) {
    const ComPtr<IDispatch> satellites =
        ObjectOf(kOnSatellites, L"$GPGSV,1,1,03,11,,,,12,,,,13,,,");
    const CallResult call =
        InvokeById(satellites.Get(), DISPID_NEWENUM, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
    ASSERT_EQ(VT_UNKNOWN, call.value.type());
    ComPtr<IEnumVARIANT> items;
    ASSERT_EQ(S_OK, V_UNKNOWN(call.value.get())->QueryInterface(IID_PPV_ARGS(&items)));

    const auto next = [](const ComPtr<IEnumVARIANT>& from) {
        Var item;
        const HRESULT status = from->Next(1, item.get(), nullptr);
        return status == S_OK ? Outcome(Get(item.object(), L"ID")) : std::to_string(status);
    };
    EXPECT_EQ("I2 11", next(items));
    ComPtr<IEnumVARIANT> clone;
    ASSERT_EQ(S_OK, items->Clone(&clone));
    EXPECT_EQ(S_OK, items->Skip(1));
    EXPECT_EQ("I2 13", next(items));
    EXPECT_EQ("1", next(items));
    EXPECT_EQ("I2 12", next(clone));
    EXPECT_EQ(S_FALSE, clone->Skip(2));
    EXPECT_EQ("1", next(clone));
    EXPECT_EQ(S_OK, items->Reset());
    EXPECT_EQ(S_OK, items->Skip(3));
    EXPECT_EQ(S_OK, items->Reset());
    Var all[4];
    VARIANT raw[4];
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, items->Next(4, raw, &fetched));
    ASSERT_EQ(3U, fetched);
    for (ULONG i = 0; i < fetched; ++i)
        *all[i].get() = raw[i];
    EXPECT_EQ("I2 13", Outcome(Get(all[2].object(), L"ID")));
    EXPECT_EQ(E_POINTER, items->Next(2, raw, nullptr));
    EXPECT_EQ(E_POINTER, items->Next(1, nullptr, &fetched));
    EXPECT_EQ(E_POINTER, items->Clone(nullptr));
}

// Every member of every class, late-bound, by the type information and compiled.
TEST_F(ResultTest, ThreeWaysGiveTheSame) {
    struct Case {
        const char* interfaceName;
        const IID& interfaceId;
        DISPID event;
        const wchar_t* sentence;
    };
    const Case cases[] = {
        {"INmeaGGA", IID_INmeaGGA, kGga, kGgaText},
        {"INmeaGLL", IID_INmeaGLL, kGll, kGllText},
        {"INmeaRMC", IID_INmeaRMC, kRmc, kRmcText},
        {"ISatellites", IID_ISatellites, kOnSatellites, kGsvText},
        {"IGpsFix", IID_IGpsFix, kOnGpsFix, kGgaText},
        {"IMovement", IID_IMovement, kOnMovement, kVtgText},
        {"IQuality", IID_IQuality, kOnQuality, kGsaText},
        {"IComStatus", IID_IComStatus, kOnComStatus, kLostText},
    };
    for (const Case& test : cases) {
        const ComPtr<IDispatch> object = ObjectOf(test.event, test.sentence);
        ASSERT_TRUE(object) << test.interfaceName;
        const auto& members = InterfaceNamed(test.interfaceName).members;
        ASSERT_FALSE(members.empty()) << test.interfaceName;
        for (const MemberDescription& member : members) {
            if (member.name == "_NewEnum") continue;  // returns no variant
            SCOPED_TRACE(test.interfaceName + ("." + member.name));
            const auto kind = static_cast<WORD>(member.kind);
            for (const Var& value : Vars{Var::Missing(), 0, 1, 2, 7, L"2", 1.5, true}) {
                Arguments arguments;
                if (member.parameters.size() == 2) arguments.values = {value};
                const CallResult late = InvokeById(object.Get(), member.id, kind, arguments);
                EXPECT_EQ(Outcome(InvokeByTypeInfo(object.Get(), member.id, kind, arguments)),
                          Outcome(late));
                const CallResult early =
                    CallVtable(object.Get(), test.interfaceId, member, arguments.values);
                EXPECT_EQ(early.failure, late.failure);
                EXPECT_EQ(Describe(early.value), Describe(late.value));
            }
        }
    }
}

}  // namespace

}  // namespace kavrel::tests
