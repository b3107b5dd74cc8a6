// Hours with a receiver, as fast as it goes: nothing is lost, and nothing is left behind.
//     KAVREL_SOAK=N automation_live_soak
// N (1 unless told) times 20 seconds of a receiver of four constellations at ten fixes a second,
// and N times 20 rounds of what begins and ends. For long runs by hand, by tools/run_with_ports.py.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "automation/support/live_test.h"
#include "automation/support/resources.h"
#include "receiver.h"

namespace kavrel::tests {

namespace {

int Rounds() {
    const char* const factor = std::getenv("KAVREL_SOAK");
    return 20 * (factor != nullptr ? std::atoi(factor) : 1);
}

// A thread that has done its work may take a moment to be gone.
Resources Settled() {
    Resources last;
    for (int i = 0; i < 50; ++i) {
        DispatchFor(20);
        const Resources now = Resources::Now();
        if (now == last && i > 2) break;
        last = now;
    }
    return last;
}

class LiveSoakTest : public LiveTest {
  protected:
    // Counts before and after, with rounds before each for what first uses leave.
    template <typename Round>
    void ExpectNoGrowth(Round round) {
        for (int i = 0; i < 3; ++i)
            round();
        const Resources before = Settled();
        for (int i = 0; i < Rounds(); ++i)
            round();
        EXPECT_EQ(before, Settled());
    }
};

// A parser is made, reads, is disabled, reads again, and is released while it does.
TEST_F(LiveSoakTest, MakingEnablingAndReleasingLeavesNothing) {
    TestPort port;
    port.StartStream(kGgaLine + kRmcLine, 1);
    ExpectNoGrowth([&] {
        parser_ = CreateParser();
        for (const bool isLast : {false, true}) {
            const Listener listener(parser());
            Enable(port);
            EXPECT_TRUE(DispatchUntil([&] { return !listener->texts().empty(); }));
            if (isLast) continue;
            EXPECT_GT(2000, MillisecondsOf([&] { Disable(); }));
        }
        parser_.Reset();
    });
}

TEST_F(LiveSoakTest, FailingToEnableLeavesNothing) {
    ExpectNoGrowth([&] { EXPECT_NE("", TryEnable(parser(), 10)); });
}

// Feeds on a thread of its own, never further ahead of the client than some seconds of traffic, so
// that what is on its way stays small.
TEST_F(LiveSoakTest, NothingIsLostAndNothingGrowsUnderTraffic) {
    constexpr int kRateHz = 10;
    constexpr long kMostAhead = 2000;
    TestPort port;
    const Listener listener(parser());
    std::atomic<long> sentences = 0;
    long fixes = 0;
    long pictures = 0;
    listener->SetReaction([&](const RecordedEvent& event) {
        sentences += event.id == kGeneric;
        fixes += event.id == kOnGpsFix;
        pictures += event.id == kOnSatellites;
        listener->Clear();
        return S_OK;
    });
    Enable(port);

    simulator::Receiver receiver({.rateHz = kRateHz, .constellations = 4, .hasSignalIds = true});
    std::atomic<long> fed = 0;
    const auto feed = [&](int seconds) {
        std::atomic<bool> isDone = false;
        std::thread feeder([&] {
            for (int i = 0; i < seconds; ++i) {
                while (fed - sentences > kMostAhead)
                    Sleep(1);
                std::string text;
                for (int epoch = 0; epoch < kRateHz; ++epoch)
                    text += receiver.NextEpoch();
                port.Feed(text);
                fed += std::count(text.begin(), text.end(), '\n');
            }
            isDone = true;
        });
        EXPECT_TRUE(
            DispatchUntil([&] { return isDone && fed == sentences; }, 1000 * (60 + seconds)));
        feeder.join();
    };
    // Long enough for what grows at first: the sky changes, and with it what is remembered.
    feed(5);
    const Resources before = Settled();
    feed(Rounds());
    const Resources after = Settled();
    std::printf("%ld sentences; before: %s, after: %s\n", sentences.load(),
                testing::PrintToString(before).c_str(), testing::PrintToString(after).c_str());
    EXPECT_EQ(fed, sentences);
    EXPECT_LT(10L * Rounds(), fixes);
    EXPECT_LT(Rounds(), pictures);
    EXPECT_EQ(before.handles, after.handles);
    EXPECT_EQ(before.threads, after.threads);
    // The last sentences kept are not the same ones.
    EXPECT_NEAR(static_cast<double>(before.heapBlocks), static_cast<double>(after.heapBlocks), 100);
    EXPECT_NEAR(static_cast<double>(before.heapBytes), static_cast<double>(after.heapBytes), 20000);
}

}  // namespace

}  // namespace kavrel::tests
