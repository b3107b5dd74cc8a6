// The blocking queries while the port is read: how long they wait, and what for.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "automation/support/live_test.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr int kLongMs = 60000;  // never waited for in full

const std::string kVtgLine = Line("GPVTG,046.80,T,045.50,M,30.05,N,55.65,K");
const std::string kGsvLine = Line("GPGSV,1,1,02,31,24,197,31,06,68,308,42");
const std::string kGsaLine = Line("GPGSA,A,3,31,,,,,,,,,,,,1.90,1.10,1.60");
const std::string kAllLines = kGgaLine + kVtgLine + kGsvLine + kGsaLine;

class LiveQueryTest : public LiveTest {
  protected:
    void SetUp() override {
        LiveTest::SetUp();
        ExpectSteps(parser(), {{L"=NoEvents", {true}, ""}});
        Enable(port_);
    }

    TestPort port_;
};

struct QueryCase {
    const wchar_t* name;
    bool hasType;
    const wchar_t* member;  // of the result, to tell it by
    std::string outcome;

    CallResult Ask(IDispatch* parser, int timeoutMs, int type = 0) const {
        Vars arguments = {timeoutMs};
        if (hasType) arguments.emplace_back(type);
        return Call(parser, name, arguments);
    }
};
const QueryCase kQueries[] = {{L"GetGpsFix", true, L"FixType", "I4 3"},
                              {L"GetSatellites", false, L"Count", "I2 2"},
                              {L"GetMovement", false, L"Heading", "R8 46.8"},
                              {L"GetQuality", false, L"PDOP", "R8 1.9"}};

TEST_F(LiveQueryTest, TimeOutsGiveNothing) {
    for (const QueryCase& query : kQueries) {
        // The tick count moves in steps of 16 ms.
        for (const int timeoutMs : {1, 300}) {
            std::string outcome;
            const double ms =
                MillisecondsOf([&] { outcome = Outcome(query.Ask(parser(), timeoutMs, 0)); });
            EXPECT_EQ("DISPATCH null", outcome);
            EXPECT_LE(timeoutMs - 20, ms);
            EXPECT_GT(timeoutMs + 2000, ms);
        }
        for (const int timeoutMs : {0, -1, -5, -2147483647}) {
            EXPECT_EQ("DISPATCH null", Outcome(query.Ask(parser(), timeoutMs, 3)));
        }
    }
}

TEST_F(LiveQueryTest, LatestAtOnceHoweverOld) {
    port_.Feed(kAllLines);
    for (const QueryCase& query : kQueries) {
        // The port is read in the background.
        Var result;
        EXPECT_TRUE(DispatchUntil([&] {
            result = query.Ask(parser(), 0, 0).value;
            return result.object() != nullptr;
        }));
        ExpectSteps(result.object(), {{query.member, {}, query.outcome}});
        EXPECT_EQ("DISPATCH object", Outcome(query.Ask(parser(), -5, 3)));
        // But only a new one ends a wait.
        EXPECT_EQ("DISPATCH null", Outcome(query.Ask(parser(), 50, 0)));
    }
}

TEST_F(LiveQueryTest, TheNextOneEndsTheWait) {
    port_.StartStream(kAllLines, 100);
    for (const QueryCase& query : kQueries) {
        const double ms = MillisecondsOf([&] {
            ExpectSteps(query.Ask(parser(), kLongMs, 0).value.object(),
                        {{query.member, {}, query.outcome}});
        });
        EXPECT_GT(5000, ms);
    }
}

TEST_F(LiveQueryTest, OnlyTheWantedTypeEndsTheWait) {
    port_.StartStream(kRmcLine, 50);
    std::string outcome;
    const double ms = MillisecondsOf([&] {
        outcome = Outcome(Call(parser(), L"GetGpsFix", {2000, 3}));
    });
    EXPECT_EQ("DISPATCH null", outcome);
    EXPECT_LE(1980, ms);
    EXPECT_GT(4000, ms);
    std::printf("GetGpsFix(2000, 3) with fixes of type 2 only: %.1f ms\n", ms);
    ExpectSteps(Call(parser(), L"GetGpsFix", {kLongMs, 2}).value.object(),
                {{L"FixType", {}, "I4 2"}});
    port_.StartStream(kRmcLine + kGgaLine, 50);
    ExpectSteps(Call(parser(), L"GetGpsFix", {kLongMs, 3}).value.object(),
                {{L"FixType", {}, "I4 3"}});
}

TEST_F(LiveQueryTest, FourKindsAtOnce) {
    port_.StartStream(kAllLines, 5);
    std::array<int, 4> right{};
    std::vector<std::thread> threads;
    for (size_t i = 0; i < right.size(); ++i) {
        threads.emplace_back([&, i] {
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            for (int round = 0; round < 100; ++round) {
                const Var result = kQueries[i].Ask(parser(), kLongMs, 3).value;
                if (Outcome(Get(result.object(), kQueries[i].member)) == kQueries[i].outcome)
                    ++right[i];
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ((std::array<int, 4>{100, 100, 100, 100}), right);
}

TEST_F(LiveQueryTest, RefusedWithEvents) {
    Disable();
    ExpectSteps(parser(), {{L"=NoEvents", {false}, ""}});
    Enable(port_);
    for (const QueryCase& query : kQueries) {
        for (const int timeoutMs : {0, kLongMs}) {
            EXPECT_EQ("80042716 NoEvents must be set! (NmeaParser Class)",
                      Outcome(query.Ask(parser(), timeoutMs, 0)));
        }
    }
    EXPECT_EQ(std::to_string(port_.number()) + "@4800", Status());
}

TEST_F(LiveQueryTest, GenericEventsOnlyMeansNoFixEver) {
    ExpectSteps(parser(), {{L"=AllEventsGeneric", {true}, ""}});
    port_.StartStream(kAllLines, 10);
    EXPECT_TRUE(WaitForStatus(std::to_string(port_.number()) + "@4800 nmea"));
    EXPECT_EQ("DISPATCH null", Outcome(Call(parser(), L"GetGpsFix", {300, 0})));
}

// The valid fix lasts as long as fixes come: five seconds after the last, other data end it.
TEST_F(LiveQueryTest, AnOldFixIsNoLongerValid) {
    const std::string at = std::to_string(port_.number()) + "@4800 nmea";
    port_.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(at + " fix"));
    port_.StartStream(NumberedLine(1), 100);
    const double ms = MillisecondsOf([&] { EXPECT_TRUE(WaitForStatus(at)); });
    EXPECT_LE(4800, ms);
    EXPECT_GT(8000, ms);
    port_.StopStream();
    port_.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(at + " fix"));
    port_.Feed(Line("GPGGA,120000,,,,,0,,,,,,,,"));
    EXPECT_TRUE(WaitForStatus(at));
}

}  // namespace

}  // namespace kavrel::tests
