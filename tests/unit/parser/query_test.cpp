#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "parser/com_status_tracker.h"
#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

class QueryTest : public ReceiverTest {
  protected:
    QueryTest() { parser_->SetNoEvents(true); }
};

TEST_F(QueryTest, GivesTheLatestAtOnce) {
    EXPECT_FALSE(parser_->GetGpsFix(0, 0));
    EXPECT_FALSE(parser_->GetSatellites(-5));
    EXPECT_EQ(FeedGga("120000"), "");
    Feed("GPGSA,A,3,02,05,,,,,,,,,,,1.9,1.1,1.6");
    Feed("GPGSV,1,1,02,02,61,103,44,05,23,288,38");
    Feed("GPVTG,045.2,T,043.9,M,32.4,N,60.0,K");
    EXPECT_EQ(parser_->GetGpsFix(0, 99)->FixType(), 3);
    EXPECT_TRUE(parser_->GetGpsFix(-1, 0) == parser_->GetGpsFix(0, 0));
    EXPECT_EQ(parser_->GetQuality(0)->Hdop(), 1.1);
    EXPECT_TRUE(parser_->GetSatellites(0)->Item(1)->UsedForFix());
    EXPECT_EQ(parser_->GetMovement(0)->Speed(0), 32.4);
    FeedGga("120001", '0');
    EXPECT_EQ(parser_->GetGpsFix(0, 0)->FixType(), 0);
}

TEST_F(QueryTest, NeedsNoEvents) {
    parser_->SetNoEvents(false);
    const auto expectError = [this](bool isNull) {
        EXPECT_TRUE(isNull);
        EXPECT_EQ(parser_->error().code(), kErrorWrongState);
        EXPECT_EQ(parser_->error().text(), "NoEvents must be set!");
        EXPECT_TRUE(parser_->GetComStatus());
        EXPECT_FALSE(parser_->error().IsSet());
    };
    expectError(!parser_->GetGpsFix(0, 0));
    expectError(!parser_->GetSatellites(1000));
    expectError(!parser_->GetMovement(0));
    expectError(!parser_->GetQuality(0));
}

TEST_F(QueryTest, TimesOutWithNothing) {
    FeedGga("120000");
    EXPECT_FALSE(parser_->GetGpsFix(5, 0));
    EXPECT_FALSE(parser_->GetMovement(1));
    EXPECT_FALSE(parser_->error().IsSet());
    EXPECT_TRUE(parser_->GetGpsFix(0, 0));
}

// Feeds until told to stop, as the thread that reads the port does.
class Feeder {
  public:
    Feeder(NmeaParser& parser, std::string text)
        : thread_([this, &parser, text = std::move(text)] {
              while (!isEnough_) {
                  parser.Parse(text);
                  std::this_thread::sleep_for(std::chrono::microseconds(200));
              }
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
    constexpr std::int32_t kLongMs = 60000;
    const Feeder feeder(*parser_, Line("GPRMC,120000,A,4730,N,00843,E,32,45,010626,,") +
                                      Line("GPGSA,A,3,02,05,,,,,,,,,,,1.9,1.1,1.6") +
                                      Line("GPGSV,1,1,02,02,61,103,44,05,23,288,38"));
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(parser_->GetMovement(kLongMs));
        ASSERT_TRUE(parser_->GetQuality(kLongMs));
        ASSERT_EQ(parser_->GetSatellites(kLongMs)->Count(), 2);
        ASSERT_EQ(parser_->GetGpsFix(kLongMs, 2)->FixType(), 2);
    }
    // Only fixes without altitude arrive: they are dropped while one with it is waited for.
    EXPECT_FALSE(parser_->GetGpsFix(20, 3));
}

TEST_F(QueryTest, WaitsForTheWantedType) {
    const Feeder feeder(*parser_,
                        Line("GPRMC,120000,A,4730,N,00843,E,32,45,010626,,") +
                            Line("GPGGA,120000,,,,,0,,,,,,,,") +
                            Line("GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,"));
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(parser_->GetGpsFix(60000, 3)->FixType(), 3);
}

TEST_F(ReceiverTest, QueueKeepsEventsInOrder) {
    EXPECT_FALSE(parser_->TakeQueuedEvent().has_value());
    // Without handlers, too; GGA, GLL and RMC are called.
    parser_->SetEventSink(EventLog::SinkTo(log_, {ParserEvent::GpsFix, ParserEvent::Generic}));
    parser_->SetQueuedDelivery(true);
    EXPECT_EQ(FeedRmc("120000", "010626"), "RMC+");
    std::vector<int> codes;
    for (int i = 0; i < 4; ++i)
        codes.push_back(static_cast<int>(parser_->TakeQueuedEvent()->code));
    EXPECT_EQ(codes, (std::vector<int>{9, 5, 7, 1}));

    EXPECT_EQ(Feed("PKVRL,1"), "");
    EXPECT_EQ(Feed("GPGSV,1,1,02,02,61,103,44,05,23,288,38"), "");
    const auto first = parser_->TakeQueuedEvent();
    EXPECT_EQ(static_cast<NmeaSentence&>(*first->object).Text(), Sentence("PKVRL,1"));
    EXPECT_EQ(parser_->TakeQueuedEvent()->code, EventCode::Satellites);
    parser_->StopQueue();
    EXPECT_FALSE(parser_->TakeQueuedEvent().has_value());

    parser_->SetQueuedDelivery(false);
    EXPECT_EQ(Feed("GPVTG,045.2,T,043.9,M,32.4,N,60.0,K"), "Movement:32");
}

TEST_F(ReceiverTest, QueueServesAnotherThread) {
    constexpr int kCount = 500;
    parser_->SetEventSink({});
    parser_->SetQueuedDelivery(true);
    std::vector<std::string> taken;
    std::thread taker([&] {
        while (const auto event = parser_->TakeQueuedEvent()) {
            taken.emplace_back(static_cast<NmeaSentence&>(*event->object).Field(1));
            if (static_cast<int>(taken.size()) == kCount) break;
        }
    });
    for (int i = 0; i < kCount; ++i)
        Feed("PKVRL," + std::to_string(i));
    taker.join();
    ASSERT_EQ(taken.size(), static_cast<std::size_t>(kCount));
    for (int i = 0; i < kCount; ++i)
        EXPECT_EQ(taken[static_cast<std::size_t>(i)], std::to_string(i));
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
    EXPECT_TRUE(tracker.ExpireFix(5000));
}

}  // namespace
}  // namespace kavrel
