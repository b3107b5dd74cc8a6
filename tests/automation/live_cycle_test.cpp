// Enabling and disabling again and again leaves nothing behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "automation/support/live_test.h"
#include "automation/support/resources.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

// Each is as long as a read of a silent port at the most: data come until the port is closed.
constexpr int kRounds = sizeof(void*) == 8 ? 1000 : 250;

class LiveCycleTest : public LiveTest {
  protected:
    // Counts before and after, with a round before each for what first uses leave.
    template <typename Round>
    void ExpectNoGrowth(const char* what, int rounds, Round round) {
        for (int i = 0; i < 3; ++i)
            round();
        (void)Resources::Now();
        const Resources before = Settled();
        for (int i = 0; i < rounds; ++i)
            round();
        const Resources after = Settled();
        std::printf("%s: %d rounds, %zu handles, %zu threads, %zu heap blocks of %zu bytes\n", what,
                    rounds, after.handles, after.threads, after.heapBlocks, after.heapBytes);
        EXPECT_EQ(before, after);
    }

  private:
    // A thread that has done its work may take a moment to be gone.
    static Resources Settled() {
        Resources last = Resources::Now();
        for (int i = 0; i < 50; ++i) {
            DispatchFor(20);
            const Resources now = Resources::Now();
            if (now == last && i > 2) break;
            last = now;
        }
        return last;
    }
};

TEST_F(LiveCycleTest, EnablingAndDisabling) {
    TestPort port;
    const Listener listener(parser());
    int count = 0;
    listener->SetReaction([&](const RecordedEvent& event) {
        if (event.id == kGeneric) ++count;
        listener->Clear();
        return S_OK;
    });
    port.StartStream(kGgaLine + kRmcLine, 1);
    ExpectNoGrowth("enable and disable", kRounds, [&] {
        Enable(port);
        count = 0;
        EXPECT_TRUE(DispatchUntil([&] { return count > 0; }));
        Disable();
        DispatchAll();
    });
}

TEST_F(LiveCycleTest, MakingAndReleasingParsers) {
    TestPort port;
    port.StartStream(kGgaLine + kRmcLine, 1);
    ExpectNoGrowth("make, enable and release", kRounds / 5, [&] {
        const ComPtr<IDispatch> other = CreateParser();
        const Listener listener(other.Get());
        EnablePort(other.Get(), port);
        EXPECT_TRUE(DispatchUntil([&] { return !listener->texts().empty(); }));
    });
}

TEST_F(LiveCycleTest, FailingToEnable) {
    ExpectNoGrowth("failing to enable", kRounds, [&] { EXPECT_NE("", TryEnable(parser(), 10)); });
}

}  // namespace

}  // namespace kavrel::tests
