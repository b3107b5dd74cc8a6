// The parser with an enabled port: where what it reads goes, whatever its client does meanwhile.
#include <gmock/gmock.h>

#include <thread>

#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

constexpr const char* kGga = "GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,";

class PortTest : public ReceiverTest {
  protected:
    PortTest() { parser_->SetComPort(3); }

    void Enable(bool isOn = true) {
        parser_->SetPortEnabled(isOn);
        EXPECT_EQ(parser_->error().text(), "");
    }
    // Leaves messages of port and rate, of valid NMEA and of the sentence.
    void HearWithoutHandling(std::string_view body) {
        port_.Feed(Line(body));
        while (machine_.messages().Waiting() < 3)
            std::this_thread::yield();
    }
};

TEST_F(PortTest, ServesQueriesOnTheReaderThread) {
    parser_->SetNoEvents(true);
    Enable();
    std::thread receiver([this] {
        port_.WaitForCalls(CommCall::Read, 1);
        port_.Feed(Line(kGga));
    });
    const Ref<GpsFix> fix = parser_->GetGpsFix(60000, 3);
    receiver.join();
    ASSERT_TRUE(fix);
    EXPECT_EQ(fix->FixType(), 3);
    EXPECT_EQ(machine_.messages().Waiting(), 0U);
}

TEST_F(PortTest, MayRaiseEventsOnTheReaderThread) {
    parser_->SetDirectDelivery(true);
    parser_->SetChecksumMandatory(true);
    Enable();
    port_.Feed("$PKVRL,1\r\n" + Line(kGga));
    while (!parser_->GetComStatus()->ValidFix())
        std::this_thread::yield();
    Enable(false);
    EXPECT_EQ(log_.Take(), "Status- Status- GGA+ Status+ Fix3@120000 Generic:GGA");
    EXPECT_EQ(machine_.messages().Waiting(), 0U);
}

TEST_F(PortTest, WritesUnchangedBytes) {
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<std::uint8_t>(i));
    Enable();
    parser_->WriteData(MakeRef<ByteBlock>(bytes));
    EXPECT_FALSE(parser_->error().IsSet());
    port_.WaitForCalls(CommCall::Write, 1);
    Enable(false);
    EXPECT_EQ(port_.written(), std::string(bytes.begin(), bytes.end()));
    EXPECT_EQ(port_.CallCount(CommCall::GetModemStatus), 0) << "nobody wants to know the lines";
}

TEST_F(PortTest, DropsWhatIsOnItsWayOnceItsClientIsGone) {
    Enable();
    HearWithoutHandling("PKVRL,1");
    parser_->ShutDown();
    parser_.Reset();
    machine_.messages().HandleAll();
    EXPECT_EQ(log_.Take(), "");
}

// What is on its way when the client begins to ask instead: it counts, unless the reader thread
// dispatches meanwhile.
TEST_F(PortTest, RaisesNothingOnceTheClientAsksInstead) {
    for (const bool isEnabledAgain : {true, false}) {
        parser_->SetNoEvents(false);
        Enable();
        HearWithoutHandling(kGga);
        Enable(false);
        parser_->SetNoEvents(true);
        Enable(isEnabledAgain);
        machine_.messages().HandleAll();
        EXPECT_EQ(log_.Take(), "");
        EXPECT_NE(static_cast<bool>(parser_->GetGpsFix(0, 0)), isEnabledAgain);
        Enable(false);
    }
}

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
        HearWithoutHandling("PKVRL,1");
        machine_.messages().HandleAll();
        EXPECT_EQ(log_.Take(), isReleasing ? "Status-" : "Status- Status- Generic:VRL");
        EXPECT_FALSE(port_.isOpen());
    }
}

TEST_F(PortTest, DoesWithoutAWindow) {
    machine_.RefuseWindows(0);
    parser_ = MakeRef<NmeaParser>(machine_);
    EXPECT_EQ(parser_->error().code(), kErrorWindow);
    EXPECT_EQ(parser_->error().text(), "Could not create window");
    parser_->SetEventSink(log_.Sink());
    EXPECT_EQ(Feed("PKVRL,1"), "Generic:VRL");
    parser_->SetComPort(3);
    Enable();
    port_.Feed(Line("PKVRL,2"));
    while (!parser_->GetComStatus()->ValidNmea())
        std::this_thread::yield();
    parser_->ShutDown();
    EXPECT_EQ(log_.Take(), "");
}

TEST_F(PortTest, DropsWhatTheMessageQueueDoesNotTake) {
    machine_.messages().SetLimit(2);
    Enable();
    for (int i = 0; i < 100; ++i)
        port_.Feed(Line("PKVRL," + std::to_string(i)));
    while (machine_.messages().Waiting() < 2 || !parser_->GetComStatus()->ValidNmea())
        std::this_thread::yield();
    Enable(false);
    machine_.messages().HandleAll();
    EXPECT_EQ(log_.Take(), "Status- Status-");
    EXPECT_TRUE(parser_.IsOnly()) << "what was refused is gone";
    machine_.messages().SetLimit(1000);
    Enable();
    port_.Feed(Line("PKVRL,last"));
    EXPECT_EQ(HandleUntil("VRL"), "Status- Status- Generic:VRL");
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
