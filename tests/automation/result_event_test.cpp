// Which events a sentence raises, in which order and how often.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/result_test.h"
#include "automation/support/steps.h"

namespace kavrel::tests {

namespace {

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

class ResultEventTest : public ResultTest {
  protected:
    std::string Feed(const std::wstring& sentence) {
        std::string text;
        for (const RecordedEvent& event : EventsOf(sentence))
            text += (text.empty() ? "" : " ") + Summary(event);
        return text;
    }
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

}  // namespace

}  // namespace kavrel::tests
