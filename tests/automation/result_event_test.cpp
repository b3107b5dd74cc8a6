// What the events bring: which of them a sentence raises, in which order, and the result objects.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

const wchar_t* const kGgaText = L"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
const wchar_t* const kRmcText = L"$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W";
const wchar_t* const kGllText = L"$GPGLL,4807.038,N,01131.000,E,123520,A";
const wchar_t* const kVtgText = L"$GPVTG,084.4,T,087.5,M,010,N,018.5,K";
const wchar_t* const kGsaText = L"$GPGSA,A,3,01,,,,,,,,,,,,2.5,1.3,2.1";
const wchar_t* const kGsvText = L"$GPGSV,1,1,02,01,40,083,46,02,17,308,41";

const std::string kInvalidWithoutSource = "80042713 Invalid parameter!";
const std::string kIndexWithoutSource = "80042714 Index out of bounds";

// An event by its name and one value of each of its objects, so that mixed up ones show.
std::string Summary(const RecordedEvent& event) {
    struct Row {
        const char* name;
        const wchar_t* members[2];  // of the first and the second object
    };
    const Row rows[] = {
        {"Generic", {L"Command"}},       {"GGA", {L"HDOP", L"Command"}},
        {"GLL", {L"Valid", L"Command"}}, {"RMC", {L"Heading", L"Command"}},
        {"Satellites", {L"Count"}},      {"Fix", {L"FixType"}},
        {"Movement", {L"Heading"}},      {"Quality", {L"PDOP"}},
        {"Status", {L"ValidFix"}},
    };
    if (event.id < 1 || event.id > 9) return "unknown";
    const Row& row = rows[event.id - 1];
    std::string text = row.name;
    const size_t count = row.members[1] == nullptr ? 1 : 2;
    if (event.arguments.size() != count) return text + " with a wrong number of objects";
    for (size_t i = 0; i < count; ++i) {
        IDispatch* const object = event.arguments[i].object();
        const Var value = object != nullptr ? Get(object, row.members[i]).value : Var();
        text += ':' + (value.type() == VT_BSTR ? Narrow(value.text()) : Describe(value));
    }
    return text;
}

class ResultEventTest : public AutomationTest {
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

    IDispatch* parser() { return parser_.Get(); }
    EventRecorder& recorder() { return **listener_; }
    void StopListening() { listener_.reset(); }
    void StartListening() { listener_.emplace(parser_.Get()); }

    // The events that a sentence raises.
    std::vector<RecordedEvent> EventsOf(const std::wstring& sentence) {
        recorder().Clear();
        EXPECT_EQ("", Outcome(Call(parser(), L"Parse", {sentence + L"\r\n"})));
        return recorder().events();
    }
    std::string Feed(const std::wstring& sentence) {
        std::string text;
        for (const RecordedEvent& event : EventsOf(sentence))
            text += (text.empty() ? "" : " ") + Summary(event);
        return text;
    }
    // The first object of the event of that kind.
    ComPtr<IDispatch> ObjectOf(DISPID id, const std::wstring& sentence) {
        for (const RecordedEvent& event : EventsOf(sentence)) {
            if (event.id == id) return event.arguments[0].object();
        }
        ADD_FAILURE() << "no such event";
        return nullptr;
    }

  private:
    ComPtr<IDispatch> parser_;
    std::optional<Listener> listener_;
};

TEST_F(ResultEventTest, EachSentenceRaisesItsOwn) {
    EXPECT_EQ("RMC:R8 84.4:RMC Status:BOOL 1 Fix:I4 2 Movement:R8 84.4 Generic:RMC",
              Feed(kRmcText));
    EXPECT_EQ("GGA:R8 0.9:GGA Fix:I4 3 Generic:GGA", Feed(kGgaText));
    EXPECT_EQ("GLL:BOOL 1:GLL Fix:I4 3 Generic:GLL", Feed(kGllText));
    EXPECT_EQ("Movement:R8 84.4 Generic:VTG", Feed(kVtgText));
    EXPECT_EQ("Quality:R8 2.5 Generic:GSA", Feed(kGsaText));
    EXPECT_EQ("Satellites:I2 2 Generic:GSV", Feed(kGsvText));
    EXPECT_EQ("Generic:TXT", Feed(L"$GPTXT,1"));
    EXPECT_EQ("GGA:R8 0:GGA Status:BOOL 0 Fix:I4 0 Generic:GGA",
              Feed(L"$GPGGA,123520,,,,,0,,,,,,,,"));
}

TEST_F(ResultEventTest, PicturesAreWhole) {
    EXPECT_EQ("Generic:GSV", Feed(L"$GPGSV,2,1,05,01,,,,02,,,,03,,,,04,,,"));
    EXPECT_EQ("Satellites:I2 5 Generic:GSV", Feed(L"$GPGSV,2,2,05,05,,,"));
    EXPECT_EQ("Quality:R8 2.5 Satellites:I2 5 Generic:GSA", Feed(kGsaText));
}

TEST_F(ResultEventTest, OnlyGenericWhenAskedFor) {
    EXPECT_EQ("", Outcome(Put(parser(), L"AllEventsGeneric", true)));
    EXPECT_EQ("Generic:RMC", Feed(kRmcText));
    EXPECT_EQ("Generic:GSV", Feed(kGsvText));
    EXPECT_EQ("", Outcome(Put(parser(), L"AllEventsGeneric", false)));
    EXPECT_EQ("GGA:R8 0.9:GGA Status:BOOL 1 Fix:I4 3 Generic:GGA", Feed(kGgaText));
}

TEST_F(ResultEventTest, NobodyListens) {
    StopListening();
    for (const wchar_t* text : {kRmcText, kGgaText, kGsvText, kGsaText})
        EXPECT_EQ("", Outcome(Call(parser(), L"Parse", {std::wstring(text) + L"\r\n"})));
    StartListening();
    EXPECT_EQ("GLL:BOOL 1:GLL Status:BOOL 1 Fix:I4 2 Generic:GLL", Feed(kGllText));
}

std::wstring GgaAt(const std::wstring& time) {
    return L"$GPGGA," + time + L",4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
}
std::wstring RmcAt(const std::wstring& time, const std::wstring& date) {
    return L"$GPRMC," + time + L",A,4807.038,N,01131.000,E,10,084.4," + date + L",003.1,W";
}

// One "x" for each sentence that raised the event, one "." for each that did not.
class IntervalTest : public ResultEventTest {
  protected:
    std::string Pattern(DISPID id, const std::vector<std::wstring>& sentences) {
        std::string pattern;
        for (const std::wstring& sentence : sentences) {
            bool isRaised = false;
            for (const RecordedEvent& event : EventsOf(sentence))
                isRaised = isRaised || event.id == id;
            pattern += isRaised ? 'x' : '.';
        }
        return pattern;
    }
    void SetInterval(int intervalMs, int type) {
        EXPECT_EQ("", Outcome(Call(parser(), L"EventInterval", {intervalMs, type})));
    }
};

TEST_F(IntervalTest, FixesOncePerSecond) {
    struct Case {
        int intervalMs;
        const char* pattern;
    };
    const Case cases[] = {{0, "xxxxxxxxxxxx"},    {5000, "x....x....x."}, {500, "xxxxxxxxxxxx"},
                          {999, "xxxxxxxxxxxx"},  {1500, "xxxxxxxxxxxx"}, {2000, "x.x.x.x.x.x."},
                          {2999, "x.x.x.x.x.x."}, {-7, "............"}};
    int hour = 9;
    for (const Case& test : cases) {
        SCOPED_TRACE(test.intervalMs);
        SetInterval(0, 5);
        const std::wstring start = std::to_wstring(++hour) + L"00";
        Feed(GgaAt(start + L"00"));
        SetInterval(test.intervalMs, 5);
        std::vector<std::wstring> sentences;
        for (int second = 10; second < 22; ++second)
            sentences.push_back(GgaAt(start + std::to_wstring(second)));
        EXPECT_EQ(test.pattern, Pattern(kOnGpsFix, sentences));
    }
}

TEST_F(IntervalTest, Midnight) {
    SetInterval(60000, 5);
    EXPECT_EQ("x.x.", Pattern(kOnGpsFix, {GgaAt(L"235958"), GgaAt(L"235959"), GgaAt(L"000000"),
                                          GgaAt(L"000001")}));
    // With a date, midnight is a second like any other.
    EXPECT_EQ("x..x",
              Pattern(kOnGpsFix, {RmcAt(L"235959", L"311225"), RmcAt(L"000000", L"010126"),
                                  RmcAt(L"000058", L"010126"), RmcAt(L"000059", L"010126")}));
}

TEST_F(IntervalTest, TypesAreNotDispids) {
    SetInterval(-1, 6);
    EXPECT_EQ("Generic:GSV", Feed(kGsvText));
    SetInterval(-1, 7);
    EXPECT_EQ("RMC:R8 84.4:RMC Status:BOOL 1 Fix:I4 2 Generic:RMC", Feed(kRmcText));
    EXPECT_EQ("Generic:VTG", Feed(kVtgText));
    SetInterval(-1, 8);
    EXPECT_EQ("Generic:GSA", Feed(kGsaText));
    SetInterval(-1, 5);
    EXPECT_EQ("GGA:R8 0.9:GGA Generic:GGA", Feed(kGgaText));
    for (const int type : {5, 6, 7, 8})
        SetInterval(0, type);
    // What came meanwhile was not looked at.
    EXPECT_EQ("Quality:R8 2.5 Generic:GSA", Feed(kGsaText));
    EXPECT_EQ("Satellites:I2 2 Generic:GSV", Feed(kGsvText));
    EXPECT_EQ("Movement:R8 84.4 Generic:VTG", Feed(kVtgText));
}

// The clock is that of the fixes, also while they raise nothing.
TEST_F(IntervalTest, OtherEventsGoByTheFixes) {
    SetInterval(10000, 8);
    SetInterval(-1, 5);
    EXPECT_EQ(".x....x",
              Pattern(kOnQuality, {GgaAt(L"120000"), kGsaText, kGsaText, GgaAt(L"120009"), kGsaText,
                                   GgaAt(L"120010"), kGsaText}));
}

TEST_F(ResultEventTest, Gga) {
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

TEST_F(ResultEventTest, Gll) {
    ExpectSteps(ObjectOf(kGll, kGllText).Get(), {{L"Valid", {}, "BOOL 1"},
                                                 {L"UTC", {}, "DATE 0.524537"},
                                                 {L"Position", {}, "DISPATCH object"}});
    ExpectSteps(ObjectOf(kGll, L"$GPGLL,4807.038,N,01131.000,E,123520").Get(),
                {{L"Valid", {}, "BOOL 0"}, {L"UTC", {}, ""}});
}

TEST_F(ResultEventTest, Rmc) {
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

TEST_F(ResultEventTest, Movement) {
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

TEST_F(ResultEventTest, Quality) {
    ExpectSteps(ObjectOf(kOnQuality, kGsaText).Get(),
                {{L"PDOP", {}, "R8 2.5"}, {L"HDOP", {}, "R8 1.3"}, {L"VDOP", {}, "R8 2.1"}});
    ExpectSteps(ObjectOf(kOnQuality, L"$GPGSA,A,1").Get(), {{L"PDOP", {}, "R8 0"}});
}

TEST_F(ResultEventTest, ComStatus) {
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

TEST_F(ResultEventTest, Fix) {
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
TEST_F(ResultEventTest, NoTimeLeavesTheVariantAlone) {
    ComPtr<IGpsFix> fix;
    ASSERT_EQ(S_OK, ObjectOf(kOnGpsFix, L"$GPGGA,123519,,,,,0,,,,,,,,").As(&fix));
    Var result = L"as before";
    EXPECT_EQ(S_OK, fix->get_UTC(result.get()));
    EXPECT_EQ("BSTR 'as before'", Describe(result));
    EXPECT_EQ(E_POINTER, fix->get_UTC(nullptr));
    EXPECT_EQ(E_POINTER, fix->get_Position(nullptr));
}

TEST_F(ResultEventTest, SatellitesByIndex) {
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

TEST_F(ResultEventTest, SatellitesOneByOne) {
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
TEST_F(ResultEventTest, ResultsAreSnapshots) {
    const ComPtr<IDispatch> satellites = ObjectOf(kOnSatellites, kGsvText);
    const Var first = Get(satellites.Get(), L"Item", {1}).value;
    const ComPtr<IDispatch> changed = ObjectOf(kOnSatellites, kGsaText);
    ExpectSteps(first.object(), {{L"UsedForFix", {}, "BOOL 0"}});
    ExpectSteps(Get(changed.Get(), L"Item", {1}).value.object(), {{L"UsedForFix", {}, "BOOL 1"}});
    recorder().Clear();
    StopListening();
    ExpectSteps(satellites.Get(), {{L"Count", {}, "I2 2"}});
}

TEST_F(ResultEventTest, PositionsAreOnTheReceiversDatum) {
    EXPECT_EQ("", Outcome(Put(parser(), L"GpsDatum", 5)));
    for (const auto& [id, text] : {std::pair{kGga, kGgaText}, std::pair{kGll, kGllText},
                                   std::pair{kRmc, kRmcText}, std::pair{kOnGpsFix, kGgaText}}) {
        const Var position = Get(ObjectOf(id, text).Get(), L"Position").value;
        EXPECT_EQ("I2 5", Outcome(Get(position.object(), L"Datum")));
    }
}

}  // namespace

}  // namespace kavrel::tests
