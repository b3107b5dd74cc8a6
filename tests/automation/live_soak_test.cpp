// An hour with a receiver, as fast as it goes, and how long a sentence takes to become an event.
//     automation_live_soak [--seconds=N] [--samples=N]
// N seconds of a ten times a second receiver of four constellations; N latencies of each kind.
// Short unless told; run with --seconds=3600 by hand, by tools/run_with_ports.py.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "automation/support/live_test.h"
#include "automation/support/resources.h"
#include "receiver.h"

namespace kavrel::tests {

namespace {

int Argument(std::string_view name, int otherwise) {
    for (int i = 1; i < __argc; ++i) {
        const std::string_view argument = __argv[i];
        if (argument.starts_with(name)) return std::atoi(argument.substr(name.size()).data());
    }
    return otherwise;
}

// What the receiver says, a second at a time.
class Traffic {
  public:
    Traffic() : receiver_({.rateHz = kRateHz, .constellations = 4, .hasSignalIds = true}) {}

    std::string NextSecond() {
        std::string text;
        for (int i = 0; i < kRateHz; ++i)
            text += receiver_.NextEpoch();
        return text;
    }

  private:
    static constexpr int kRateHz = 10;
    simulator::Receiver receiver_;
};

using LiveSoakTest = LiveTest;

// Feeds on a thread of its own, never further ahead of the client than some seconds of traffic, so
// that what is on its way stays small.
TEST_F(LiveSoakTest, NothingIsLostAndNothingGrows) {
    const int seconds = Argument("--seconds=", 60);
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

    Traffic traffic;
    std::atomic<long> fed = 0;
    const auto feed = [&](int count) {
        std::atomic<bool> isDone = false;
        std::thread feeder([&] {
            for (int i = 0; i < count; ++i) {
                while (fed - sentences > kMostAhead)
                    Sleep(1);
                const std::string text = traffic.NextSecond();
                port.Feed(text);
                fed += std::count(text.begin(), text.end(), '\n');
            }
            isDone = true;
        });
        EXPECT_TRUE(DispatchUntil([&] { return isDone && fed == sentences; }, 1000 * (60 + count)));
        feeder.join();
    };
    // Long enough for what grows at first: the sky changes, and with it what is remembered.
    feed(5);
    (void)Resources::Now();
    const Resources before = Resources::Now();
    const double ms = MillisecondsOf([&] { feed(seconds); });
    DispatchFor(500);
    const Resources after = Resources::Now();
    std::printf("%d s of traffic in %.1f s: %ld sentences, %ld fixes, %ld satellite pictures\n",
                seconds, ms / 1000, sentences.load(), fixes, pictures);
    std::printf("before: %s\nafter:  %s\n", testing::PrintToString(before).c_str(),
                testing::PrintToString(after).c_str());
    EXPECT_EQ(fed, sentences);
    EXPECT_LT(10L * seconds, fixes);
    EXPECT_LT(seconds, pictures);
    EXPECT_EQ(before.handles, after.handles);
    EXPECT_EQ(before.threads, after.threads);
    // The last sentences kept are not the same ones.
    EXPECT_NEAR(static_cast<double>(before.heapBlocks), static_cast<double>(after.heapBlocks), 100);
    EXPECT_NEAR(static_cast<double>(before.heapBytes), static_cast<double>(after.heapBytes), 20000);
}

std::uint64_t NowHere() {
    LARGE_INTEGER frequency;
    LARGE_INTEGER now;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    return static_cast<std::uint64_t>(now.QuadPart) *
           (1000000000U / static_cast<std::uint64_t>(frequency.QuadPart));
}

// How far the server's clock is ahead of this one; as exact as half of the quickest answer.
std::int64_t ServerAhead() {
    std::uint64_t quickest = ~std::uint64_t{0};
    std::int64_t ahead = 0;
    for (int i = 0; i < 50; ++i) {
        const std::uint64_t asked = NowHere();
        const std::uint64_t there = TestPort::Time();
        const std::uint64_t took = NowHere() - asked;
        if (took >= quickest) continue;
        quickest = took;
        ahead = static_cast<std::int64_t>(there - asked - took / 2);
    }
    return ahead;
}

// A read of the port ends when 256 bytes have come, or 200 ms after it began: a lone sentence waits
// for the end of the read, one in the midst of others does not.
TEST_F(LiveSoakTest, Latency) {
    const int samples = Argument("--samples=", 20);
    const struct {
        const char* what;
        std::string text;
    } kCases[] = {{"a lone sentence", kGgaLine},
                  {"a full second of traffic", Traffic().NextSecond()}};
    TestPort port;
    const Listener listener(parser());
    std::uint64_t arrived = 0;
    long count = 0;
    listener->SetReaction([&](const RecordedEvent& event) {
        if (event.id == kGeneric && count++ == 0) arrived = NowHere();
        listener->Clear();
        return S_OK;
    });
    Enable(port);
    const std::int64_t ahead = ServerAhead();
    for (const auto& test : kCases) {
        const long lines = std::count(test.text.begin(), test.text.end(), '\n');
        std::vector<double> latencies;
        for (int i = 0; i < samples; ++i) {
            count = 0;
            std::uint64_t written = 0;
            std::thread feeder([&] { written = port.Feed(test.text); });
            EXPECT_TRUE(DispatchUntil([&] { return count == lines; }));
            feeder.join();
            latencies.push_back(
                static_cast<double>(static_cast<std::int64_t>(arrived - written) + ahead) / 1e6);
            // Not always at the same point of a read.
            DispatchFor(i * 37 % 200);
        }
        std::sort(latencies.begin(), latencies.end());
        std::printf("%s: from its first byte to its first event median %.2f ms, worst %.2f ms\n",
                    test.what, latencies[latencies.size() / 2], latencies.back());
        EXPECT_GT(2000, latencies.back());
    }
}

}  // namespace

}  // namespace kavrel::tests
