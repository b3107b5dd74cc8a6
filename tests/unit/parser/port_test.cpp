// The parser with an enabled port: what it reads, where that goes, and what may go wrong.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "platform/host/scripted_machine.h"
#include "unit/parser/receiver_test.h"

namespace kavrel {
namespace {

constexpr std::int32_t kPort = 3;

class PortTest : public testing::Test {
  protected:
    PortTest() {
        parser_->SetEventSink(EventLog::SinkTo(log_));
        parser_->SetComPort(kPort);
    }
    void TearDown() override {
        if (parser_) parser_->ShutDown();
        parser_.Reset();
        EXPECT_EQ(Record::LiveCount(), liveBefore_);
    }

    void Enable(bool isOn = true) {
        parser_->SetPortEnabled(isOn);
        EXPECT_EQ(parser_->error().text(), "");
    }
    void ExpectError(ErrorCode code, std::string_view text) {
        EXPECT_EQ(parser_->error().code(), code);
        EXPECT_EQ(parser_->error().text(), text);
    }
    void FeedLine(std::string_view body) { machine_.Port(kPort).Feed(Line(body)); }

    // Handles messages until the log holds an event of that description, and returns all of it.
    std::string HandleUntil(std::string_view last) {
        std::string text;
        for (int i = 0; i < 5000; ++i) {
            machine_.messages().HandleAll();
            const std::string more = log_.Take();
            text += (text.empty() || more.empty() ? "" : " ") + more;
            if (text.find(last) != std::string::npos) return text;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return text + " (gave up)";
    }

    std::int32_t liveBefore_ = Record::LiveCount();
    ScriptedMachine machine_;
    ScriptedCommDevice& port_ = machine_.Port(kPort);
    EventLog log_;
    Ref<NmeaParser> parser_ = MakeRef<NmeaParser>(machine_);
};

TEST_F(PortTest, HandsEventsOverToTheClientsThread) {
    Enable();
    FeedLine("GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,");
    FeedLine("PKVRL,1");
    // The first two tell of port and rate, and of valid NMEA.
    EXPECT_EQ(HandleUntil("VRL"),
              "Status- Status- GGA+ Status+ Fix3@120000 Generic:GGA Generic:VRL");
}

TEST_F(PortTest, TellsPortAndRateAndValidNmea) {
    parser_->SetBaudRate(38400);
    Enable();
    EXPECT_EQ(HandleUntil("Status"), "Status-");
    Ref<ComStatus> status = parser_->GetComStatus();
    EXPECT_EQ(status->ComPort(), kPort);
    EXPECT_EQ(status->BaudRate(), 38400);
    EXPECT_FALSE(status->ValidNmea());
    EXPECT_EQ(port_.state().BaudRate, 38400U);

    FeedLine("PKVRL,1");
    HandleUntil("Status");
    EXPECT_TRUE(parser_->GetComStatus()->ValidNmea());

    parser_->SetBaudRate(9600);
    HandleUntil("Status");
    EXPECT_EQ(parser_->GetComStatus()->BaudRate(), 9600);
    EXPECT_EQ(port_.state().BaudRate, 9600U);

    Enable(false);
    Enable();
    EXPECT_FALSE(parser_->GetComStatus()->ValidNmea());
}

TEST_F(PortTest, ServesQueriesOnTheReaderThread) {
    parser_->SetNoEvents(true);
    Enable();
    std::thread receiver([this] {
        port_.WaitForCalls(CommCall::Read, 1);
        FeedLine("GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,");
    });
    const Ref<GpsFix> fix = parser_->GetGpsFix(5000, 3);
    receiver.join();
    ASSERT_TRUE(fix);
    EXPECT_EQ(fix->FixType(), 3);
    EXPECT_EQ(machine_.messages().Waiting(), 0U);
}

TEST_F(PortTest, FreezesSettingsWhileEnabled) {
    Enable();
    Enable();
    EXPECT_EQ(port_.CallCount(CommCall::Open), 1);
    constexpr std::string_view kText = "Port must not be enabled!";
    parser_->Parse("$");
    ExpectError(kErrorWrongState, kText);
    parser_->SetComPort(4);
    ExpectError(kErrorWrongState, kText);
    parser_->SetNoEvents(true);
    ExpectError(kErrorWrongState, kText);
    Enable(false);
    Enable(false);
    EXPECT_FALSE(port_.isOpen());
    parser_->Parse("$");
    EXPECT_FALSE(parser_->error().IsSet());
    Enable();
    EXPECT_TRUE(port_.isOpen());  // the old port
}

TEST_F(PortTest, ReportsThePortsErrorsAndStaysDisabled) {
    const auto expectFailure = [this](ErrorCode code, std::string_view text) {
        parser_->SetPortEnabled(true);
        ExpectError(code, text);
        parser_->WriteData(nullptr);
        ExpectError(kErrorWrongState, "Port must be enabled!");
    };
    parser_->SetComPort(7);
    expectFailure(kErrorComPort, "Comm port does not exist");
    parser_->SetComPort(kPort);
    {
        const Ref<NmeaParser> other = MakeRef<NmeaParser>(machine_);
        other->SetComPort(kPort);
        other->SetPortEnabled(true);
        expectFailure(kErrorComPort, "Comm port in use!");
        other->ShutDown();
    }
    port_.FailCall(CommCall::SetState, 1, 31);
    expectFailure(kErrorComPort, "Could not set DCB");
    parser_->SetComPort(kSharedReceiverOnly);
    expectFailure(0x154, "Ravelin not installed! Cannot create object RavelinApi::Simple");
    parser_->SetComPort(kPort);
    Enable();
}

TEST_F(PortTest, RefusesWhatDetectionDecides) {
    for (const PortChoice choice : {PortChoice{kSearchForPort, 4800}, PortChoice{kPort, 0}}) {
        parser_->SetComPort(choice.comPort);
        parser_->SetBaudRate(choice.baudRate);
        Enable();
        parser_->SetBaudRate(9600);
        ExpectError(kErrorWrongState, "Autodetect mode not allowed");
        parser_->WriteData(nullptr);
        ExpectError(kErrorWrongState, "Autodetect mode not allowed");
        Enable(false);
    }
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
}

TEST_F(PortTest, TellsOnceOfAPortThatFails) {
    Enable();
    FeedLine("GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,");
    HandleUntil("GGA");
    EXPECT_TRUE(parser_->GetComStatus()->ValidFix());
    const int reads = port_.CallCount(CommCall::Read);
    port_.FailCall(CommCall::Read, 1, 21);
    EXPECT_EQ(HandleUntil("Status"), "Status-");
    const Ref<ComStatus> status = parser_->GetComStatus();
    EXPECT_FALSE(status->ValidNmea());
    EXPECT_FALSE(status->ValidFix());
    EXPECT_LE(port_.CallCount(CommCall::Read), reads + 2);

    Enable(false);
    Enable();
    FeedLine("PKVRL,1");
    HandleUntil("VRL");
    EXPECT_TRUE(parser_->GetComStatus()->ValidNmea());
}

TEST_F(PortTest, DropsWhatIsOnItsWayOnceItsClientIsGone) {
    Enable();
    FeedLine("PKVRL,1");
    while (machine_.messages().Waiting() < 3)
        std::this_thread::yield();
    parser_->ShutDown();
    parser_.Reset();
    EXPECT_EQ(Record::LiveCount(), liveBefore_);
    machine_.messages().HandleAll();
    EXPECT_EQ(log_.Take(), "");
}

TEST_F(PortTest, DropsWhatIsOnItsWayOnceTheClientAsksInstead) {
    Enable();
    FeedLine("GPGGA,120000,4730,N,00843,E,1,08,1.1,432.5,M,47.9,M,,");
    while (machine_.messages().Waiting() < 3)
        std::this_thread::yield();
    Enable(false);
    parser_->SetNoEvents(true);
    machine_.messages().HandleAll();
    EXPECT_EQ(log_.Take(), "");
    EXPECT_FALSE(parser_->GetGpsFix(0, 0));
}

// What a client may do inside an event: end it all, or only the reading.
TEST_F(PortTest, MayBeDisabledOrReleasedByAnEvent) {
    struct Client {
        Ref<NmeaParser>& parser;
        bool isReleasing;
        int count = 0;
    };
    for (const bool isReleasing : {false, true}) {
        Client client{parser_, isReleasing};
        EventSink sink;
        sink.context = &client;
        sink.callbacks.fill([](void* context, ParserEvent, Record&) {
            auto& self = *static_cast<Client*>(context);
            ++self.count;
            self.parser->SetPortEnabled(false);
            if (!self.isReleasing) return;
            self.parser->SetEventSink({});
            self.parser->ShutDown();
            self.parser.Reset();
        });
        parser_->SetEventSink(sink);
        Enable();
        FeedLine("PKVRL,1");
        while (machine_.messages().Waiting() < 3)
            std::this_thread::yield();
        machine_.messages().HandleAll();
        EXPECT_EQ(client.count, isReleasing ? 1 : 3);
        EXPECT_FALSE(port_.isOpen());
    }
}

TEST_F(PortTest, DoesWithoutAWindow) {
    ScriptedMachine windowless;
    windowless.RefuseWindows(0);
    windowless.Port(kPort);
    parser_ = MakeRef<NmeaParser>(windowless);
    ExpectError(kErrorWindow, "Could not create window");
    parser_->SetEventSink(EventLog::SinkTo(log_));
    parser_->Parse(Line("PKVRL,1"));
    EXPECT_EQ(log_.Take(), "Generic:VRL");
    parser_->SetComPort(kPort);
    Enable();
    windowless.Port(kPort).Feed(Line("PKVRL,2"));
    while (!parser_->GetComStatus()->ValidNmea())
        std::this_thread::yield();
    parser_->ShutDown();
    EXPECT_EQ(log_.Take(), "");
    parser_.Reset();
}

TEST_F(PortTest, DropsWhatTheMessageQueueDoesNotTake) {
    machine_.messages().SetLimit(2);
    Enable();
    for (int i = 0; i < 100; ++i)
        FeedLine("PKVRL," + std::to_string(i));
    while (machine_.messages().Waiting() < 2 || !parser_->GetComStatus()->ValidNmea())
        std::this_thread::yield();
    Enable(false);
    machine_.messages().HandleAll();
    const std::string first = log_.Take();
    EXPECT_EQ(first, "Status- Status-");
    machine_.messages().SetLimit(1000);
    Enable();
    FeedLine("PKVRL,last");
    HandleUntil("VRL");
}

TEST_F(PortTest, LosesNothingAtFullSpeed) {
    constexpr int kCount = 20000;
    struct Counter {
        int next = 0;
        std::thread::id thread = std::this_thread::get_id();
    } counter;
    EventSink sink;
    sink.context = &counter;
    sink.callbacks[static_cast<std::size_t>(ParserEvent::Generic)] = [](void* context, ParserEvent,
                                                                        Record& object) {
        auto& self = *static_cast<Counter*>(context);
        EXPECT_EQ(static_cast<NmeaSentence&>(object).Field(1), std::to_string(self.next++));
        EXPECT_EQ(std::this_thread::get_id(), self.thread);
    };
    parser_->SetEventSink(sink);
    Enable();
    std::thread receiver([this] {
        std::string text;
        for (int i = 0; i < kCount; ++i)
            text += Line("PKVRL," + std::to_string(i));
        port_.Feed(text);
    });
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (counter.next < kCount && std::chrono::steady_clock::now() < giveUp)
        machine_.messages().HandleAll();
    receiver.join();
    EXPECT_EQ(counter.next, kCount);
}

}  // namespace
}  // namespace kavrel
