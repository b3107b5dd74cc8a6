// The blocking queries while the port is read: how long they wait, and what for.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "automation/support/import_hook.h"
#include "automation/support/live_test.h"

namespace kavrel::tests {

namespace {

constexpr int kLongMs = 60000;  // never waited for in full

class LiveQueryTest : public LiveTest {
  protected:
    void SetUp() override {
        LiveTest::SetUp();
        ExpectSteps(parser(), {{L"=NoEvents", {true}, ""}});
        Enable(port_);
    }

    TestPort port_;
    const std::string allLines_ = kGgaLine + Line("GPVTG,046.80,T,045.50,M,30.05,N,55.65,K") +
                                  Line("GPGSV,1,1,02,31,24,197,31,06,68,308,42") +
                                  Line("GPGSA,A,3,31,,,,,,,,,,,,1.90,1.10,1.60");
};

struct QueryCase {
    const wchar_t* name;
    const wchar_t* member;  // of the result, to tell it by
    std::string outcome;
};
const QueryCase kQueries[] = {{L"GetGpsFix", L"FixType", "I4 3"},
                              {L"GetSatellites", L"Count", "I2 2"},
                              {L"GetMovement", L"Heading", "R8 46.8"},
                              {L"GetQuality", L"PDOP", "R8 1.9"}};

TEST_F(LiveQueryTest, FourKindsAtOnceAndTheLatestHoweverOld) {
    port_.StartStream(allLines_, 5);
    std::vector<std::thread> threads;
    for (const QueryCase& query : kQueries) {
        threads.emplace_back([&] {
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            for (int round = 0; round < 100; ++round) {
                ExpectSteps(Call(parser(), query.name, {kLongMs}).value.object(),
                            {{query.member, {}, query.outcome}});
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    port_.StopStream();
    Disable();
    for (const QueryCase& query : kQueries) {
        ExpectSteps(Call(parser(), query.name, {0}).value.object(),
                    {{query.member, {}, query.outcome}});
        // But only a new one ends a wait. The tick count moves in steps of 16 ms.
        const double ms = MillisecondsOf([&] {
            ExpectSteps(parser(), {{query.name, {300}, "DISPATCH null"}});
        });
        EXPECT_LE(280, ms);
        EXPECT_GT(2300, ms);
    }
}

DWORD aheadMs = 0;

DWORD WINAPI LaterTickCount() {
    return GetTickCount() + aheadMs;
}

// The valid fix lasts as long as fixes come: five seconds after the last, other data end it.
TEST_F(LiveQueryTest, AnOldFixIsNoLongerValid) {
    const ImportHook clock("GetTickCount", LaterTickCount);
    port_.Feed(kGgaLine);
    WaitForStatus(At(port_, "4800 nmea fix"));
    for (const DWORD passedMs : {3000, 5100}) {
        aheadMs = passedMs;
        port_.Feed(NumberedLine(1));
        DispatchFor(250);
        WaitForStatus(At(port_, passedMs < 5000 ? "4800 nmea fix" : "4800 nmea"));
    }
}

}  // namespace

}  // namespace kavrel::tests
