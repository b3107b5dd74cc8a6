// The parser with an enabled port, beside its dialogues: a client that ends it inside an event, and
// a receiver that is quick.
#include <gmock/gmock.h>

#include <thread>

#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

class PortTest : public ReceiverTest {
  protected:
    void Enable() {
        parser_->SetComPort(3);
        parser_->SetPortEnabled(true);
        EXPECT_EQ(parser_->error().text(), "");
    }
};

// What a client may do inside an event: end it all, or only the reading.
TEST_F(PortTest, MayBeDisabledOrReleasedByAnEvent) {
    for (const bool isReleasing : {false, true}) {
        log_.act = [&](ParserEvent, Record&) {
            parser_->SetPortEnabled(false);
            if (!isReleasing) return;
            parser_->SetEventSink({});
            parser_->ShutDown();
            parser_.Reset();
        };
        Enable();
        port_.Feed(Line("PKVRL,1"));
        // Of port and rate, of valid NMEA and of the sentence.
        EXPECT_TRUE(Await([this] { return machine_.messages().Waiting() == 3; }));
        machine_.messages().HandleAll();
        EXPECT_EQ(log_.Take(), isReleasing ? "Status-" : "Status- Status- Generic:VRL");
        EXPECT_FALSE(port_.isOpen());
    }
}

TEST_F(PortTest, LosesNothingAtFullSpeed) {
    constexpr int kCount = 20000;
    int next = 0;
    log_.act = [&, client = std::this_thread::get_id()](ParserEvent event, Record& object) {
        EXPECT_EQ(std::this_thread::get_id(), client);
        if (event == ParserEvent::Generic) {
            EXPECT_EQ(static_cast<NmeaSentence&>(object).Field(1), std::to_string(next++));
        }
    };
    Enable();
    std::thread receiver([this] {
        std::string text;
        for (int i = 0; i < kCount; ++i)
            text += Line("PKVRL," + std::to_string(i));
        port_.Feed(text + Line("PKEND," + std::to_string(kCount)));
    });
    EXPECT_THAT(HandleUntil("Generic:END"), testing::EndsWith("Generic:END"));
    receiver.join();
    EXPECT_EQ(next, kCount + 1);
}

}  // namespace
}  // namespace kavrel
