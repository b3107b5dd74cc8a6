// Queries that wait and queues that are waited for, while another thread feeds.
#include <atomic>
#include <chrono>
#include <thread>

#include "parser/com_status_tracker.h"
#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

using QueryTest = ReceiverTest;

TEST_F(QueryTest, WaitsForTheNext) {
    constexpr std::int32_t kLongMs = 60000;
    parser_->SetNoEvents(true);
    const std::string twoDimensional = Line("GPRMC,120000,A,4730,N,00843,E,32,45,010626,,") +
                                       Line("GPGSA,A,3,02,05,,,,,,,,,,,1.9,1.1,1.6") +
                                       Line("GPGSV,1,1,02,02,61,103,44,05,23,288,38");
    const std::string threeDimensional =
        Line("GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,");
    std::atomic<bool> hasAltitude{false};
    std::atomic<bool> isEnough{false};
    std::thread feeder([&] {
        while (!isEnough) {
            parser_->Parse(twoDimensional + Line("GPGGA,120000,,,,,0,,,,,,,,"));
            if (hasAltitude) parser_->Parse(threeDimensional);
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(parser_->GetMovement(kLongMs));
        EXPECT_TRUE(parser_->GetQuality(kLongMs));
        EXPECT_EQ(parser_->GetSatellites(kLongMs)->Count(), 2);
        EXPECT_EQ(parser_->GetGpsFix(kLongMs, 2)->FixType(), 2);
    }
    // Fixes without altitude are dropped while one with it is waited for.
    EXPECT_FALSE(parser_->GetGpsFix(20, 3));
    hasAltitude = true;
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(parser_->GetGpsFix(kLongMs, 3)->FixType(), 3);
    isEnough = true;
    feeder.join();
}

TEST_F(QueryTest, QueueServesAnotherThread) {
    constexpr int kCount = 500;
    parser_->SetQueuedDelivery(true);
    std::thread taker([&] {
        for (int i = 0; i < kCount; ++i) {
            const auto event = parser_->TakeQueuedEvent();
            EXPECT_EQ(static_cast<NmeaSentence&>(*event->object).Field(1), std::to_string(i));
        }
    });
    for (int i = 0; i < kCount; ++i)
        Feed("PKVRL," + std::to_string(i));
    taker.join();
}

TEST(ComStatusTracker, FixesExpire) {
    ComStatusTracker tracker;
    EXPECT_FALSE(tracker.ExpireFix(0));
    // The tick count wraps meanwhile.
    constexpr std::uint32_t kStart = 0xFFFFF000;
    EXPECT_TRUE(tracker.NoteFix(true, kStart));
    EXPECT_FALSE(tracker.NoteFix(true, kStart + 10));
    EXPECT_FALSE(tracker.ExpireFix(kStart + 9));  // looked at the clock before the fix was made
    EXPECT_FALSE(tracker.ExpireFix(kStart + 10 + 4999));
    EXPECT_TRUE(tracker.values().hasValidFix);
    EXPECT_TRUE(tracker.ExpireFix(kStart + 10 + 5000));
    EXPECT_FALSE(tracker.values().hasValidFix);
    EXPECT_FALSE(tracker.ExpireFix(kStart + 20000));
    EXPECT_TRUE(tracker.NoteFix(true, 0));  // a tick of 0 is a tick
    EXPECT_TRUE(tracker.NoteFix(false, 1000));
    EXPECT_FALSE(tracker.ExpireFix(4999));
    EXPECT_TRUE(tracker.ExpireFix(5000)) << "lost meanwhile or not";
    EXPECT_TRUE(tracker.NoteFix(true, 0));
    tracker.ForgetSource();
    EXPECT_FALSE(tracker.ExpireFix(5000));
}

}  // namespace
}  // namespace kavrel
