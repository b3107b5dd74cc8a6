#include "platform/event.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

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

TEST(Event, WaitAnyReturnsTheFirstSignalledAndResetsNothing) {
    std::array<Ref<Event>, kMaxWaitEvents> refs;
    std::array<Event*, kMaxWaitEvents> events;
    for (std::size_t i = 0; i < refs.size(); ++i) {
        refs[i] = MakeRef<Event>();
        events[i] = refs[i].get();
    }
    EXPECT_EQ(WaitAny(events, 0), std::nullopt);
    EXPECT_EQ(WaitAny(events, 5), std::nullopt);
    std::thread other([&] { events[63]->Signal(); });
    EXPECT_EQ(WaitAny(events, kWaitForever), 63u);
    other.join();
    EXPECT_EQ(WaitAny(std::span(events).first(63), 0), std::nullopt);
    events[7]->Signal();
    EXPECT_EQ(WaitAny(events, kWaitForever), 7u);
    events[7]->Reset();
    EXPECT_EQ(WaitAny(events, 0), 63u);
    EXPECT_TRUE(events[63]->Wait(0));
}

}  // namespace
}  // namespace kavrel
