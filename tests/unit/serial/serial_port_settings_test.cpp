// A serial port's settings, its opening, and what each failing platform call comes to.
#include <gmock/gmock.h>

#include "platform/host/thread_failure.h"
#include "unit/serial/port_fixture.h"

namespace kavrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(PortTest, NamesTheDeviceByItsNumber) {
    const std::pair<std::int32_t, const char*> kCases[] = {
        {0, "Open COM0:"},
        {12, "Open COM12:"},
        {-1, "Open COM-1:"},
        {2147483647, "Open COM2147483647:"},
        {-2147483647 - 1, "Open COM-2147483648:"}};
    for (const auto& [number, call] : kCases) {
        EXPECT_TRUE(port_->SetPort(number));
        EXPECT_EQ(port_->Port(), number);
        port_->Open();
        EXPECT_THAT(device_.TakeLog(), testing::Contains(call));
        port_->Close();
    }
}

// The calls of Open in their order; one that fails and matters is the last.
TEST_F(PortTest, OpenReportsWhatFails) {
    const std::vector<std::string> calls = {"Open COM3:",  "GetState", "SetState", "GetTimeouts",
                                            "SetTimeouts", "Escape 5", "Purge 12", "Escape 10"};
    const struct {
        CommCall call;
        int nth;
        std::uint32_t platformError;
        std::size_t made;
        const char* expected;
    } kCases[] = {
        {CommCall::Open, 1, 0, 1, "10007 Could not open comm port!"},
        {CommCall::Open, 1, 2, 1, "10007 Comm port does not exist"},
        {CommCall::Open, 1, 5, 1, "10007 Comm port in use!"},
        {CommCall::Open, 1, 433, 1, "433 Could not open comm port!"},
        {CommCall::SetState, 1, 87, 3, "10007 Could not set DCB"},
        {CommCall::SetTimeouts, 1, 87, 5, "10007 Unexpected com port error."},
        {CommCall::Escape, 1, 50, 6, "50 Error setting DTR"},
        {CommCall::Escape, 2, 87, 8, "87 Error setting IR"},
        {CommCall::GetState, 1, 87, 8, ""},
        {CommCall::GetTimeouts, 1, 87, 8, ""},
        {CommCall::Purge, 1, 87, 8, ""},
    };
    port_->SetInfrared(true);
    for (const auto& [call, nth, platformError, made, expected] : kCases) {
        SCOPED_TRACE(testing::Message()
                     << "call " << static_cast<int>(call) << " fails with " << platformError);
        (void)device_.TakeLog();
        device_.FailCall(call, nth, platformError);
        port_->SetPort(3);
        port_->SetWatchLines(false);
        port_->Open();
        EXPECT_EQ(Error(), expected);
        const bool isFine = std::string_view(expected).empty();
        EXPECT_EQ(port_->IsOpen(), isFine);
        EXPECT_EQ(device_.isOpen(), isFine);
        std::vector<std::string> log(calls.begin(), calls.begin() + static_cast<long>(made));
        if (!isFine && made > 1) log.emplace_back("Close");
        EXPECT_EQ(device_.TakeLog(), log);
        port_->Close();
        EXPECT_EQ(Error(), "");

        // The next one has nothing of it left, and one more does nothing.
        (void)device_.TakeLog();
        port_->Open();
        port_->Open();
        EXPECT_EQ(Error(), "");
        EXPECT_EQ(device_.TakeLog(), calls);
        device_.Feed("x");
        EXPECT_EQ(Receive(1), "x");
        port_->Close();
    }
}

// The tweak writes one thing before and another after; a write that fails leaves the other's to be
// seen.
TEST_F(PortTest, TweaksBluetoothBeforeAndAfterOpening) {
    constexpr std::u16string_view kSettings = u"SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008";
    const auto browser = [&] {
        return registry_.FindValue(kSettings, u"BtBrowserEnabled").value().data.at(0);
    };
    registry_.AddKey(kSettings);
    port_->SetPort(8);
    port_->Open();
    EXPECT_FALSE(registry_.FindValue(kSettings, u"BtBrowserEnabled"));
    port_->Close();

    port_->SetSkipBluetoothTweak(false);
    port_->SetBluetoothBrowserOff(true);
    registry_.Fail(RegistryCall::SetValue, 5, 1);
    port_->Open();
    EXPECT_EQ(Error(), "");
    EXPECT_EQ(browser(), 0);
    port_->Close();
    port_->Open();
    EXPECT_EQ(browser(), 1);
    port_->Close();

    for (const int skipped : {1, 0}) {
        registry_.Fail(RegistryCall::SetValue, 5, skipped);
        device_.FailCall(CommCall::Open, 1, 2);
        port_->Open();
        EXPECT_EQ(Error(), "10007 Comm port does not exist");
        EXPECT_EQ(browser(), skipped == 1 ? 0 : 1);
    }
}

TEST_F(PortTest, OpenReportsAThreadThatDoesNotStart) {
    for (int nth = 1; nth <= 3; ++nth) {
        FailThreadStart(nth, 1450);
        port_->Open();
        EXPECT_EQ(Error(), "1450 Could not create thread");
        EXPECT_FALSE(port_->IsOpen());
        EXPECT_FALSE(device_.isOpen());
    }
    OpenWatching();
    device_.SetLines(kModemCtsOn);
    Await(port_->LineChangedEvent());  // the line watch did not take an earlier stop for its own
}

TEST_F(PortTest, PortNumberIsFrozenWhileOpen) {
    OpenQuietly();
    EXPECT_FALSE(port_->SetPort(4));
    EXPECT_EQ(Error(), "10007 Cannot set port is opened.");
    EXPECT_EQ(port_->Port(), 3);
    port_->Close();
    EXPECT_TRUE(port_->SetPort(4));
    EXPECT_EQ(port_->Port(), 4);
}

TEST_F(PortTest, LineSettingsAreKeptWhileClosedAndAppliedWhileOpen) {
    port_->SetBaudRate(4800);
    port_->SetParity(2);
    port_->SetStopBits(1);
    port_->SetByteSize(7);
    port_->SetWriteTimeout(30);
    EXPECT_THAT(device_.TakeLog(), IsEmpty());
    OpenQuietly(TimeoutMode::Fill);
    CommState expected{.BaudRate = 4800,
                       .fParity = true,
                       .fDtrControl = 1,
                       .fRtsControl = 1,
                       .ByteSize = 7,
                       .Parity = 2,
                       .StopBits = 1};
    EXPECT_EQ(device_.state(), expected);
    EXPECT_EQ(device_.timeouts(), (CommTimeouts{0, 0, 200, 1, 30}));
    EXPECT_EQ(port_->BaudRate(), 4800u);
    EXPECT_EQ(port_->Parity(), 2u);
    EXPECT_EQ(port_->StopBits(), 1u);
    EXPECT_EQ(port_->ByteSize(), 7u);

    port_->SetBaudRate(expected.BaudRate = 57600);
    EXPECT_EQ(device_.state(), expected);
    port_->SetParity(expected.Parity = 1);
    EXPECT_EQ(device_.state(), expected);
    port_->SetStopBits(expected.StopBits = 2);
    EXPECT_EQ(device_.state(), expected);
    port_->SetByteSize(expected.ByteSize = 8);
    EXPECT_EQ(device_.state(), expected);
    port_->SetHandshake(kHandshakeRtsCts);
    expected.fOutxCtsFlow = true;
    expected.fRtsControl = 2;
    EXPECT_EQ(device_.state(), expected);
    EXPECT_EQ(port_->Handshake(), kHandshakeRtsCts);

    port_->SetWriteTimeout(40);
    EXPECT_EQ(device_.timeouts(), (CommTimeouts{0, 0, 200, 1, 40}));
    port_->SetTimeoutMode(TimeoutMode::FirstByte);  // for the next opening
    EXPECT_EQ(device_.timeouts(), (CommTimeouts{0, 0, 200, 1, 40}));
    EXPECT_EQ(Error(), "");
}

TEST_F(PortTest, SettingsReportWhatFailsAndAreKept) {
    OpenQuietly();
    device_.FailCall(CommCall::SetState, 1, 87);
    port_->SetBaudRate(123);
    EXPECT_EQ(Error(), "10007 Could not set DCB");
    EXPECT_EQ(port_->BaudRate(), 123u);
    device_.FailCall(CommCall::SetTimeouts, 1, 87);
    port_->SetWriteTimeout(1);
    EXPECT_EQ(Error(), "10007 Unexpected com port error.");
    port_->SetTimeoutMode(TimeoutMode::Fill);
    EXPECT_EQ(Error(), "");
}

TEST_F(PortTest, OutputLines) {
    using Operation = void (*)(SerialPort&, bool);
    const struct {
        Operation operation;
        const char* on;
        const char* off;
        const char* failure;
    } kCases[] = {
        {[](SerialPort& port, bool isOn) { port.SetRts(isOn); }, "Escape 3", "Escape 4",
         "31 Error setting RTS"},
        {[](SerialPort& port, bool isOn) { port.SetDtr(isOn); }, "Escape 5", "Escape 6",
         "31 Error setting DTR"},
        {[](SerialPort& port, bool isOn) { port.SetBreak(isOn); }, "Escape 8", "Escape 9",
         "31 Error setting Break"},
        {[](SerialPort& port, bool isOn) { port.SetInfrared(isOn); }, "Escape 10", "Escape 11",
         "31 Error setting IR"},
    };
    OpenQuietly();
    for (const auto& [operation, on, off, failure] : kCases) {
        (void)device_.TakeLog();
        operation(*port_, true);
        operation(*port_, false);
        EXPECT_THAT(device_.TakeLog(), ElementsAre(on, off));
        EXPECT_EQ(Error(), "");
        device_.FailCall(CommCall::Escape, 1, 31);
        operation(*port_, true);
        EXPECT_EQ(Error(), failure);
    }
}

TEST_F(PortTest, LevelsAreKeptForTheNextOpening) {
    port_->SetRts(false);
    port_->SetDtr(false);
    EXPECT_FALSE(port_->Dtr());
    EXPECT_THAT(device_.TakeLog(), IsEmpty());
    OpenQuietly();
    EXPECT_EQ(device_.state().fRtsControl, 0);
    EXPECT_EQ(device_.state().fDtrControl, 0);
    EXPECT_THAT(device_.TakeLog(), testing::Contains("Escape 6"));

    // A level that the device refused is wanted all the same.
    device_.FailCall(CommCall::Escape, 1, 31);
    port_->SetDtr(true);
    EXPECT_TRUE(port_->Dtr());
}

TEST_F(PortTest, HandshakeLinesCannotBeSet) {
    port_->SetHandshake(kHandshakeRtsCts | kHandshakeDtrDsr);
    port_->SetRts(false);
    EXPECT_EQ(Error(), "10007 Cannot set RTS when RTS handshake is selected");
    port_->SetDtr(false);
    EXPECT_EQ(Error(), "10007 Cannot set DTR when DTR handshake is selected");
    EXPECT_TRUE(port_->Dtr());
    port_->SetHandshake(0);
    OpenQuietly();
    EXPECT_EQ(device_.state().fRtsControl, 1);
    EXPECT_EQ(device_.state().fDtrControl, 1);
}

// Opening sets DTR, which the handshake refuses.
TEST_F(PortTest, DtrHandshakeIsOnlyForAnOpenPort) {
    port_->SetHandshake(kHandshakeDtrDsr);
    port_->Open();
    EXPECT_EQ(Error(), "10007 Cannot set DTR when DTR handshake is selected");
    EXPECT_FALSE(port_->IsOpen());
    port_->SetHandshake(0);
    OpenQuietly();
    port_->SetHandshake(kHandshakeDtrDsr);
    EXPECT_EQ(Error(), "");
    EXPECT_EQ(device_.state().fDtrControl, 2);
}

TEST_F(PortTest, BreakNeedsAnOpenPort) {
    port_->SetBreak(true);
    EXPECT_EQ(Error(), "10007 Cannot set port is opened.");
    EXPECT_THAT(device_.TakeLog(), IsEmpty());
}

TEST_F(PortTest, InputLines) {
    const std::pair<bool (SerialPort::*)(), std::uint32_t> kCases[] = {
        {&SerialPort::ReadCts, kModemCtsOn},
        {&SerialPort::ReadDsr, kModemDsrOn},
        {&SerialPort::ReadRing, kModemRingOn},
        {&SerialPort::ReadRlsd, kModemRlsdOn}};
    for (const auto& [read, bit] : kCases) {
        device_.SetLines(bit);
        EXPECT_FALSE((*port_.*read)());  // closed: nothing seen yet
        OpenQuietly();
        for (const auto& other : kCases)
            EXPECT_EQ((*port_.*other.first)(), other.second == bit);

        device_.SetLines(0);
        device_.FailCall(CommCall::GetModemStatus, 1, 31);
        EXPECT_TRUE((*port_.*read)());  // as last seen
        EXPECT_EQ(Error(), "31 Error reading DSR");
        port_->Close();
        EXPECT_TRUE((*port_.*read)());
        EXPECT_EQ(Error(), "");

        OpenQuietly();
        EXPECT_FALSE((*port_.*read)());
        port_->Close();
    }
}

TEST_F(PortTest, PurgeCrossesItsFlags) {
    const struct {
        bool input;
        bool output;
        const char* call;
        const char* received;
        std::string_view written;
    } kCases[] = {
        {true, false, "Purge 4", "(none)", "123"},
        {false, true, "Purge 8", "in", "13"},
        {true, true, "Purge 12", "(none)", "13"},
        {false, false, "Purge 0", "in", "123"},
    };
    for (const auto& [input, output, call, received, written] : kCases) {
        SCOPED_TRACE(call);
        OpenQuietly();
        device_.Feed("in");
        Await(port_->DataReceivedEvent());
        // One block is being sent, the other waits in the queue.
        device_.HoldWrites(true);
        const int writes = device_.CallCount(CommCall::Write);
        const std::size_t before = device_.written().size();
        port_->Write(BlockOf("1"));
        device_.WaitForCalls(CommCall::Write, writes + 1);
        port_->Write(BlockOf("2"));
        (void)device_.TakeLog();

        port_->Purge(input, output);
        EXPECT_THAT(device_.TakeLog(), ElementsAre(call));
        EXPECT_EQ(TextOf(port_->TakeReceived()), received);
        device_.HoldWrites(false);
        EXPECT_EQ(WriteReports(written.size() - 1).size(), written.size() - 1);
        port_->Write(BlockOf("3"));
        EXPECT_EQ(WriteReports(1).size(), 1u);
        port_->Close();
        EXPECT_EQ(device_.written().substr(before), written);
    }
    (void)device_.TakeLog();
    port_->Purge(true, true);  // closed: nothing
    EXPECT_THAT(device_.TakeLog(), IsEmpty());
}

TEST_F(PortTest, EventsTellWhoseAndWhichTheyAre) {
    const Ref<Event> kEvents[] = {port_->DataReceivedEvent(), port_->WriteDoneEvent(),
                                  port_->ErrorEvent(), port_->LineChangedEvent()};
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(kEvents[i]->tag(), (EventTag{port_->serialNumber(), i + 1}));
        EXPECT_FALSE(kEvents[i]->Wait(0));
    }
}

}  // namespace
}  // namespace kavrel
