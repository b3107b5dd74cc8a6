#include "platform/event.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

namespace kavrel {
namespace {

TEST(Event, StaysSignalledUntilReset) {
    const Ref<Event> event = MakeRef<Event>();
    EXPECT_FALSE(event->Wait(0));
    EXPECT_FALSE(event->Wait(5));
    event->Signal();
    event->Signal();
    EXPECT_TRUE(event->Wait(0));
    EXPECT_TRUE(event->Wait(kWaitForever));
    event->Reset();
    event->Reset();
    EXPECT_FALSE(event->Wait(0));
}

TEST(Event, WakesEveryWaiter) {
    const Ref<Event> event = MakeRef<Event>();
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i) {
        waiters.emplace_back([event] { EXPECT_TRUE(event->Wait(kWaitForever)); });
    }
    event->Signal();
    for (std::thread& waiter : waiters)
        waiter.join();
}

// Two threads hand a number back and forth; what is written before Signal is seen after Wait.
TEST(Event, OrdersWhatThreadsWrite) {
    constexpr int kRounds = 300;
    const Ref<Event> ping = MakeRef<Event>();
    const Ref<Event> pong = MakeRef<Event>();
    int number = 0;
    std::thread other([&] {
        for (int i = 0; i < kRounds; ++i) {
            ping->Wait(kWaitForever);
            ping->Reset();
            ++number;
            pong->Signal();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        ++number;
        ping->Signal();
        pong->Wait(kWaitForever);
        pong->Reset();
    }
    other.join();
    EXPECT_EQ(number, 2 * kRounds);
}

class WaitAnyTest : public testing::Test {
  protected:
    WaitAnyTest() {
        for (std::size_t i = 0; i < refs_.size(); ++i) {
            refs_[i] = MakeRef<Event>();
            events_[i] = refs_[i].get();
        }
    }

    std::array<Ref<Event>, kMaxWaitEvents> refs_;
    std::array<Event*, kMaxWaitEvents> events_;
};

TEST_F(WaitAnyTest, ReturnsTheFirstSignalledAndResetsNothing) {
    EXPECT_EQ(WaitAny(events_, 0), std::nullopt);
    EXPECT_EQ(WaitAny(events_, 5), std::nullopt);
    std::thread other([this] { events_[63]->Signal(); });
    EXPECT_EQ(WaitAny(events_, kWaitForever), 63u);
    other.join();
    EXPECT_EQ(WaitAny(std::span(events_).first(63), 0), std::nullopt);
    events_[7]->Signal();
    EXPECT_EQ(WaitAny(events_, kWaitForever), 7u);
    EXPECT_EQ(WaitAny(events_, 0), 7u);
    events_[7]->Reset();
    EXPECT_EQ(WaitAny(events_, 0), 63u);
    EXPECT_TRUE(events_[63]->Wait(0));
}

}  // namespace
}  // namespace kavrel
