// The blocking queries of a parser without events.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

const wchar_t* const kRmcText =
    L"$GPRMC,123519,A,4807.038,N,01131.000,E,10,084.4,230394,003.1,W\r\n";
const wchar_t* const kGgaText =
    L"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,\r\n";
const wchar_t* const kLostText = L"$GPGGA,123519,,,,,0,,,,,,,,\r\n";
const wchar_t* const kGsaText = L"$GPGSA,A,3,01,,,,,,,,,,,,2.5,1.3,2.1\r\n";
const wchar_t* const kGsvText = L"$GPGSV,1,1,02,01,40,083,46,02,17,308,41\r\n";

constexpr int kLongMs = 60000;  // never waited for in full

class QueryTest : public AutomationTest {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        parser_ = CreateParser();
        ASSERT_TRUE(parser_);
        ASSERT_EQ("", Outcome(Put(parser(), L"NoEvents", true)));
    }
    void TearDown() override {
        parser_.Reset();
        AutomationTest::TearDown();
    }

    IDispatch* parser() { return parser_.Get(); }
    void Parse(const std::wstring& text) {
        EXPECT_EQ("", Outcome(Call(parser(), L"Parse", {text})));
    }

  private:
    ComPtr<IDispatch> parser_;
};

TEST_F(QueryTest, NothingIsANullObject) {
    ExpectSteps(parser(), {{L"GetGpsFix", {0, 0}, "DISPATCH null"},
                           {L"GetGpsFix", {}, "DISPATCH null"},
                           {L"GetGpsFix", {-1, 3}, "DISPATCH null"},
                           {L"GetSatellites", {-5}, "DISPATCH null"},
                           {L"GetMovement", {L"0"}, "DISPATCH null"},
                           {L"GetQuality", {}, "DISPATCH null"},
                           {L"GetGpsFix", {1, 0}, "DISPATCH null"},
                           {L"GetSatellites", {1}, "DISPATCH null"},
                           {L"GetMovement", {1}, "DISPATCH null"},
                           {L"GetQuality", {1}, "DISPATCH null"},
                           {L"GetComStatus", {}, "DISPATCH object"}});
}

TEST_F(QueryTest, LatestAtOnce) {
    Parse(kRmcText);
    ExpectSteps(Call(parser(), L"GetGpsFix", {0, 3}).value.object(),
                {{L"FixType", {}, "I4 2"}, {L"Position", {}, "DISPATCH object"}});
    Parse(kGgaText);
    const Var fix = Call(parser(), L"GetGpsFix", {0, 0}).value;
    ExpectSteps(fix.object(), {{L"FixType", {}, "I4 3"}, {L"UTC", {}, "DATE 34416.5"}});
    Parse(kLostText);
    ExpectSteps(Call(parser(), L"GetGpsFix", {-1, 0}).value.object(),
                {{L"FixType", {}, "I4 0"}, {L"Position", {}, "DISPATCH null"}});
    ExpectSteps(fix.object(), {{L"FixType", {}, "I4 3"}});

    ExpectSteps(Call(parser(), L"GetMovement", {0}).value.object(), {{L"Speed", {0}, "R8 10"}});
    Parse(std::wstring(kGsvText) + kGsaText);
    ExpectSteps(Call(parser(), L"GetQuality", {0}).value.object(), {{L"VDOP", {}, "R8 2.1"}});
    const Var satellites = Call(parser(), L"GetSatellites", {-5}).value;
    ExpectSteps(satellites.object(), {{L"Count", {}, "I2 2"}});
    ExpectSteps(Get(satellites.object(), L"Item", {1}).value.object(),
                {{L"UsedForFix", {}, "BOOL 1"}});
    ExpectSteps(Call(parser(), L"GetComStatus").value.object(), {{L"ValidFix", {}, "BOOL 0"}});
}

TEST_F(QueryTest, TimeOutIsNoError) {
    Parse(kGgaText);
    ExpectSteps(parser(), {{L"GetGpsFix", {20, 0}, "DISPATCH null"},
                           {L"GetMovement", {20}, "DISPATCH null"},
                           {L"GetGpsFix", {0, 0}, "DISPATCH object"}});
}

TEST_F(QueryTest, EventsExcludeQueries) {
    EXPECT_EQ("", Outcome(Put(parser(), L"NoEvents", false)));
    const std::string refused = "80042716 NoEvents must be set! (NmeaParser Class)";
    ExpectSteps(parser(), {{L"GetGpsFix", {kLongMs, 3}, refused},
                           {L"GetSatellites", {kLongMs}, refused},
                           {L"GetMovement", {kLongMs}, refused},
                           {L"GetQuality", {0}, refused},
                           {L"GetComStatus", {}, "DISPATCH object"}});
    const Listener listener(parser());
    Parse(kGgaText);
    EXPECT_LT(1U, listener->events().size());
    EXPECT_EQ("", Outcome(Put(parser(), L"NoEvents", true)));
    listener->Clear();
    Parse(kGgaText);
    EXPECT_TRUE(listener->events().empty());
    EXPECT_EQ("DISPATCH object", Outcome(Call(parser(), L"GetGpsFix", {0, 0})));
}

TEST_F(QueryTest, AllEventsGenericDecodesNothing) {
    EXPECT_EQ("", Outcome(Put(parser(), L"AllEventsGeneric", true)));
    Parse(kGgaText);
    EXPECT_EQ("DISPATCH null", Outcome(Call(parser(), L"GetGpsFix", {0, 0})));
}

// Feeds from a second thread, as the thread that reads a port does, until told to stop.
class Feeder {
  public:
    Feeder(IDispatch* parser, const std::wstring& text)
        : thread_([this, parser, text] {
              CoInitializeEx(nullptr, COINIT_MULTITHREADED);
              while (!isEnough_) {
                  Call(parser, L"Parse", {text});
                  Sleep(1);
              }
              CoUninitialize();
          }) {}
    ~Feeder() {
        isEnough_ = true;
        thread_.join();
    }

  private:
    std::atomic<bool> isEnough_{false};
    std::thread thread_;
};

TEST_F(QueryTest, WaitsForTheNext) {
    const Feeder feeder(parser(), std::wstring(kRmcText) + kGsvText + kGsaText);
    for (int i = 0; i < 5; ++i) {
        ExpectSteps(Call(parser(), L"GetMovement", {kLongMs}).value.object(),
                    {{L"Heading", {}, "R8 84.4"}});
        ExpectSteps(Call(parser(), L"GetQuality", {kLongMs}).value.object(),
                    {{L"HDOP", {}, "R8 1.3"}});
        ExpectSteps(Call(parser(), L"GetSatellites", {kLongMs}).value.object(),
                    {{L"Count", {}, "I2 2"}});
        ExpectSteps(Call(parser(), L"GetGpsFix", {kLongMs, 2}).value.object(),
                    {{L"FixType", {}, "I4 2"}});
    }
    // Only fixes without altitude arrive.
    EXPECT_EQ("DISPATCH null", Outcome(Call(parser(), L"GetGpsFix", {50, 3})));
}

TEST_F(QueryTest, WaitsForTheWantedType) {
    const Feeder feeder(parser(), std::wstring(kLostText) + kRmcText + kGgaText);
    for (int i = 0; i < 5; ++i) {
        ExpectSteps(Call(parser(), L"GetGpsFix", {kLongMs, L"3"}).value.object(),
                    {{L"FixType", {}, "I4 3"}});
    }
}

}  // namespace

}  // namespace kavrel::tests
