// The result objects that events bring: their values, errors and independence.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/result_test.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

const std::string kInvalidWithoutSource = "80042713 Invalid parameter!";
const std::string kIndexWithoutSource = "80042714 Index out of bounds";

using ResultObjectTest = ResultTest;

TEST_F(ResultObjectTest, Gga) {
    const ComPtr<IDispatch> gga = ObjectOf(kGga, kGgaText);
    ExpectSteps(gga.Get(), {{L"Valid", {}, "BOOL 1"},
                            {L"UTC", {}, "DATE 0.524525"},
                            {L"SatellitesInView", {}, "I2 8"},
                            {L"HDOP", {}, "R8 0.9"},
                            {L"Position", {}, "DISPATCH object"}});
    const Var position = Get(gga.Get(), L"Position").value;
    ExpectSteps(position.object(), {{L"Latitude", {}, "R8 48.1173"},
                                    {L"LongitudeString", {0}, "BSTR '11 31'0.00 E'"},
                                    {L"Altitude", {0}, "R8 545.4"},
                                    {L"Altitude", {1}, "R8 592.3"},
                                    {L"Datum", {}, "I2 1"}});
    const ComPtr<IDispatch> invalid = ObjectOf(kGga, L"$GPGGA,,,,,,0,,,,,,,,");
    ExpectSteps(invalid.Get(), {{L"Valid", {}, "BOOL 0"}, {L"SatellitesInView", {}, "I2 0"}});
}

TEST_F(ResultObjectTest, Gll) {
    ExpectSteps(ObjectOf(kGll, kGllText).Get(), {{L"Valid", {}, "BOOL 1"},
                                                 {L"UTC", {}, "DATE 0.524537"},
                                                 {L"Position", {}, "DISPATCH object"}});
    ExpectSteps(ObjectOf(kGll, L"$GPGLL,4807.038,N,01131.000,E,123520").Get(),
                {{L"Valid", {}, "BOOL 0"}, {L"UTC", {}, ""}});
}

TEST_F(ResultObjectTest, Rmc) {
    const ComPtr<IDispatch> rmc = ObjectOf(kRmc, kRmcText);
    ExpectSteps(rmc.Get(), {{L"Valid", {}, "BOOL 1"},
                            {L"GroundSpeed", {}, "R8 10"},
                            {L"GroundSpeed", {1}, "R8 5.14443"},
                            {L"GroundSpeed", {L"2"}, "R8 18.52"},
                            {L"GroundSpeed", {3}, "R8 11.5078"},
                            {L"GroundSpeed", {7}, "R8 10"},
                            {L"Heading", {}, "R8 84.4"},
                            {L"MagneticVariation", {}, "R8 -3.1"}});
    EXPECT_DOUBLE_EQ(5.1444341959472, Number(rmc.Get(), L"GroundSpeed", {1}));
    EXPECT_DOUBLE_EQ(18.5199631054099, Number(rmc.Get(), L"GroundSpeed", {2}));
    EXPECT_DOUBLE_EQ(11.507771555, Number(rmc.Get(), L"GroundSpeed", {3}));
    const Var utc = Get(rmc.Get(), L"UTC").value;
    ASSERT_EQ(VT_DATE, utc.type());
    EXPECT_NEAR(34416 + 45319.0 / 86400, V_DATE(utc.get()), 1e-9);  // 23 March 1994, 12:35:19

    // What a client does to a position is its own business.
    const Var position = Get(rmc.Get(), L"Position").value;
    EXPECT_EQ("", Outcome(Put(position.object(), L"Datum", 3)));
    const Var again = Get(rmc.Get(), L"Position").value;
    EXPECT_EQ("I2 1", Outcome(Get(again.object(), L"Datum")));
}

TEST_F(ResultObjectTest, Movement) {
    for (const wchar_t* text : {kRmcText, kVtgText}) {
        const ComPtr<IDispatch> movement = ObjectOf(kOnMovement, text);
        EXPECT_DOUBLE_EQ(11.507771555, Number(movement.Get(), L"Speed", {3}));
        ExpectSteps(movement.Get(), {{L"Heading", {}, "R8 84.4"},
                                     {L"MagneticVariation", {}, "R8 -3.1"},
                                     {L"Speed", {0}, "R8 10"},
                                     {L"Speed", {L"2"}, "R8 18.52"},
                                     {L"Speed", {7}, kInvalidWithoutSource},
                                     {L"Heading", {}, "R8 84.4"},
                                     {L"Speed", {-1}, kInvalidWithoutSource},
                                     {L"Speed", {1}, "R8 5.14443"}});
        ComPtr<IMovement> dual;
        ASSERT_EQ(S_OK, movement.As(&dual));
        Var result = 5;
        EXPECT_EQ(static_cast<HRESULT>(0x80042713), dual->get_Speed(*Var(7).get(), result.get()));
        EXPECT_EQ("R8 0", Describe(result));
        TakeErrorObject();
    }
}

TEST_F(ResultObjectTest, Quality) {
    ExpectSteps(ObjectOf(kOnQuality, kGsaText).Get(),
                {{L"PDOP", {}, "R8 2.5"}, {L"HDOP", {}, "R8 1.3"}, {L"VDOP", {}, "R8 2.1"}});
    ExpectSteps(ObjectOf(kOnQuality, L"$GPGSA,A,1").Get(), {{L"PDOP", {}, "R8 0"}});
}

TEST_F(ResultObjectTest, ComStatus) {
    const ComPtr<IDispatch> status = ObjectOf(kOnComStatus, kGgaText);
    const std::vector<Step> good = {{L"ValidFix", {}, "BOOL 1"},
                                    {L"ValidNmea", {}, "BOOL 0"},
                                    {L"ComPort", {}, "I2 0"},
                                    {L"BaudRate", {}, "I4 0"}};
    ExpectSteps(status.Get(), good);
    EventsOf(L"$GPGGA,123520,,,,,0,,,,,,,,");
    ExpectSteps(status.Get(), good);  // a snapshot
    const Var now = Call(parser(), L"GetComStatus").value;
    EXPECT_EQ("BOOL 0", Outcome(Get(now.object(), L"ValidFix")));
}

TEST_F(ResultObjectTest, Fix) {
    ExpectSteps(ObjectOf(kOnGpsFix, kGllText).Get(),
                {{L"FixType", {}, "I4 2"}, {L"UTC", {}, "DATE 0.524537"}});
    ExpectSteps(ObjectOf(kOnGpsFix, L"$GPGGA,123519,,,,,0,,,,,,,,").Get(),
                {{L"FixType", {}, "I4 0"}, {L"Position", {}, "DISPATCH null"}, {L"UTC", {}, ""}});
    ExpectSteps(ObjectOf(kOnGpsFix, kRmcText).Get(), {{L"UTC", {}, "DATE 34416.5"}});

    const ComPtr<IDispatch> fix = ObjectOf(kOnGpsFix, kGgaText);
    // With the date of the sentence before.
    ExpectSteps(fix.Get(), {{L"FixType", {}, "I4 3"}, {L"UTC", {}, "DATE 34416.5"}});
    const Var one = Get(fix.Get(), L"Position").value;
    const Var other = Get(fix.Get(), L"Position").value;
    ASSERT_NE(nullptr, one.object());
    EXPECT_NE(one.object(), other.object());
    EXPECT_EQ("", Outcome(Call(one.object(), L"Move", {1000000, 0, 1})));
    const Var third = Get(fix.Get(), L"Position").value;
    EXPECT_EQ("R8 48.1173", Outcome(Get(other.object(), L"Latitude")));
    EXPECT_EQ("R8 48.1173", Outcome(Get(third.object(), L"Latitude")));
    EXPECT_LT(57.0, Number(one.object(), L"Latitude"));

    // RMC takes over the altitudes of the last GGA.
    const Var moved = Get(ObjectOf(kOnGpsFix, kRmcText).Get(), L"Position").value;
    ExpectSteps(moved.object(), {{L"Altitude", {0}, "R8 545.4"}, {L"Altitude", {1}, "R8 592.3"}});
}

// The time of a sentence without one: the caller's variant stays as it is.
TEST_F(ResultObjectTest, NoTimeLeavesTheVariantAlone) {
    ComPtr<IGpsFix> fix;
    ASSERT_EQ(S_OK, ObjectOf(kOnGpsFix, L"$GPGGA,123519,,,,,0,,,,,,,,").As(&fix));
    Var result = L"as before";
    EXPECT_EQ(S_OK, fix->get_UTC(result.get()));
    EXPECT_EQ("BSTR 'as before'", Describe(result));
    EXPECT_EQ(E_POINTER, fix->get_UTC(nullptr));
    EXPECT_EQ(E_POINTER, fix->get_Position(nullptr));
}

TEST_F(ResultObjectTest, SatellitesByIndex) {
    EventsOf(kGsvText);
    const ComPtr<IDispatch> satellites = ObjectOf(kOnSatellites, kGsaText);
    const auto byDefault = [&](const Var& index) {
        return Outcome(InvokeById(satellites.Get(), DISPID_VALUE,
                                  DISPATCH_METHOD | DISPATCH_PROPERTYGET, {{index}, {}}));
    };
    EXPECT_EQ("DISPATCH object", byDefault(1));
    EXPECT_EQ("DISPATCH object", byDefault(L"2"));
    EXPECT_EQ("DISPATCH object", byDefault(1.7));
    for (const Var& index : {Var(0), Var(3), Var(-1), Var(L"text"), Var::Missing(), Var(65537)})
        EXPECT_EQ(kIndexWithoutSource, byDefault(index));
    ExpectSteps(satellites.Get(), {{L"Item", {0}, kIndexWithoutSource},
                                   {L"Count", {}, "I2 2"},
                                   {L"=Count", {3}, "80020003"}});
    const Var first = Get(satellites.Get(), L"Item", {1}).value;
    const Var second = Get(satellites.Get(), L"Item", {L"2"}).value;
    ExpectSteps(first.object(), {{L"ID", {}, "I2 1"},
                                 {L"Elevation", {}, "I2 40"},
                                 {L"Azimuth", {}, "I2 83"},
                                 {L"SNR", {}, "I2 46"},
                                 {L"UsedForFix", {}, "BOOL 1"}});
    ExpectSteps(second.object(), {{L"ID", {}, "I2 2"}, {L"UsedForFix", {}, "BOOL 0"}});

    ComPtr<ISatellites> dual;
    ASSERT_EQ(S_OK, satellites.As(&dual));
    Var result = 5;
    EXPECT_EQ(static_cast<HRESULT>(0x80042714), dual->get_Item(*Var(9).get(), result.get()));
    EXPECT_EQ("DISPATCH null", Describe(result));
    const std::optional<ErrorReport> error = TakeErrorObject();
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->interfaceId == IID_ISatellites);
}

TEST_F(ResultObjectTest, SatellitesOneByOne) {
    const ComPtr<IDispatch> satellites =
        ObjectOf(kOnSatellites, L"$GPGSV,1,1,03,11,,,,12,,,,13,,,");
    const CallResult call =
        InvokeById(satellites.Get(), DISPID_NEWENUM, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
    ASSERT_EQ(VT_UNKNOWN, call.value.type());
    ComPtr<IEnumVARIANT> items;
    ASSERT_EQ(S_OK, V_UNKNOWN(call.value.get())->QueryInterface(IID_PPV_ARGS(&items)));

    const auto next = [](IEnumVARIANT* from) {
        Var item;
        const HRESULT status = from->Next(1, item.get(), nullptr);
        return status == S_OK ? Outcome(Get(item.object(), L"ID")) : std::to_string(status);
    };
    EXPECT_EQ("I2 11", next(items.Get()));
    ComPtr<IEnumVARIANT> clone;
    ASSERT_EQ(S_OK, items->Clone(&clone));
    EXPECT_EQ(S_OK, items->Skip(1));
    EXPECT_EQ("I2 13", next(items.Get()));
    EXPECT_EQ("1", next(items.Get()));
    EXPECT_EQ("I2 12", next(clone.Get()));
    EXPECT_EQ(S_FALSE, clone->Skip(2));
    EXPECT_EQ("1", next(clone.Get()));
    EXPECT_EQ(S_OK, items->Reset());
    VARIANT all[4];
    ULONG fetched = 0;
    EXPECT_EQ(S_FALSE, items->Next(4, all, &fetched));
    ASSERT_EQ(3U, fetched);
    EXPECT_EQ("I2 13", Outcome(Get(V_DISPATCH(&all[2]), L"ID")));
    for (ULONG i = 0; i < fetched; ++i)
        VariantClear(&all[i]);
    EXPECT_EQ(E_POINTER, items->Next(2, all, nullptr));
    EXPECT_EQ(E_POINTER, items->Next(1, nullptr, &fetched));
    EXPECT_EQ(E_POINTER, items->Clone(nullptr));
}

// What clients keep outlives the parser and does not change any more.
TEST_F(ResultObjectTest, ResultsAreSnapshots) {
    const ComPtr<IDispatch> satellites = ObjectOf(kOnSatellites, kGsvText);
    const Var first = Get(satellites.Get(), L"Item", {1}).value;
    const ComPtr<IDispatch> changed = ObjectOf(kOnSatellites, kGsaText);
    ExpectSteps(first.object(), {{L"UsedForFix", {}, "BOOL 0"}});
    ExpectSteps(Get(changed.Get(), L"Item", {1}).value.object(), {{L"UsedForFix", {}, "BOOL 1"}});
    recorder().Clear();
    StopListening();
    ExpectSteps(satellites.Get(), {{L"Count", {}, "I2 2"}});
}

TEST_F(ResultObjectTest, PositionsAreOnTheReceiversDatum) {
    EXPECT_EQ("", Outcome(Put(parser(), L"GpsDatum", 5)));
    for (const auto& [id, text] : {std::pair{kGga, kGgaText}, std::pair{kGll, kGllText},
                                   std::pair{kRmc, kRmcText}, std::pair{kOnGpsFix, kGgaText}}) {
        const Var position = Get(ObjectOf(id, text).Get(), L"Position").value;
        EXPECT_EQ("I2 5", Outcome(Get(position.object(), L"Datum")));
    }
}

// Every member of every class, late-bound, by the type information and compiled.
TEST_F(ResultObjectTest, ThreeWaysGiveTheSame) {
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
        {"IComStatus", IID_IComStatus, kOnComStatus, L"$GPGGA,123520,,,,,0,,,,,,,,"},
    };
    for (const Case& test : cases) {
        const ComPtr<IDispatch> object = ObjectOf(test.event, test.sentence);
        ASSERT_TRUE(object) << test.interfaceName;
        const auto& members = InterfaceNamed(test.interfaceName).members;
        ASSERT_FALSE(members.empty()) << test.interfaceName;
        for (const MemberDescription& member : members) {
            if (member.name == "_NewEnum") continue;  // returns no variant
            const bool hasArgument = member.parameters.size() == 2;
            for (const Var& value : Vars{Var::Missing(), 0, 1, 2, 7, L"2", 1.5, true}) {
                const Vars arguments = hasArgument ? Vars{value} : Vars();
                const auto kind = static_cast<WORD>(member.kind);
                const CallResult late = InvokeById(object.Get(), member.id, kind, {arguments, {}});
                const CallResult described =
                    InvokeByTypeInfo(object.Get(), member.id, kind, {arguments, {}});
                const CallResult early =
                    CallVtable(object.Get(), test.interfaceId, member, arguments);
                const std::string what = test.interfaceName + ("." + member.name);
                EXPECT_EQ(Outcome(described), Outcome(late)) << what;
                EXPECT_EQ(early.failure, late.failure) << what;
                EXPECT_EQ(Describe(early.value), Describe(late.value)) << what;
            }
        }
    }
}

}  // namespace

}  // namespace kavrel::tests
