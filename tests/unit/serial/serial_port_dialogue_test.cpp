// What a serial port answers, what it asks of its device, and what its worker threads report: the
// dialogues of tests/data/serial/port_dialogues.txt, each with a port of its own.
#include <chrono>
#include <map>
#include <sstream>
#include <thread>

#include "platform/host/thread_failure.h"
#include "unit/comm_call.h"
#include "unit/dialogue.h"
#include "unit/serial/port_fixture.h"

namespace kavrel {
namespace {

// What a read or a write may still take, and time for a busy machine; what must not happen is a
// wait for something that never comes.
constexpr auto kCloseLimit = std::chrono::seconds(10);

constexpr std::u16string_view kBluetooth = u"SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008";
constexpr std::u16string_view kBrowser = u"BtBrowserEnabled";

class PortDialogue : public PortTest, public testing::WithParamInterface<TableGroup> {
  protected:
    PortDialogue() {
        port_->SetPort(3);
        port_->SetWatchLines(false);  // the watch asks the device for things of its own
        AddSettings();
        AddUses();
        AddOtherSide();
        AddBluetooth();
    }

    Dialogue<SerialPort> dialogue_{[this]() -> SerialPort& { return *port_; }};

  private:
    void AddSettings() {
        dialogue_.Add("SetPort", &SerialPort::SetPort);
        dialogue_.Add("Port", &SerialPort::Port);
        dialogue_.Add("SetBaudRate", &SerialPort::SetBaudRate);
        dialogue_.Add("BaudRate", &SerialPort::BaudRate);
        dialogue_.Add("SetParity", &SerialPort::SetParity);
        dialogue_.Add("Parity", &SerialPort::Parity);
        dialogue_.Add("SetStopBits", &SerialPort::SetStopBits);
        dialogue_.Add("StopBits", &SerialPort::StopBits);
        dialogue_.Add("SetByteSize", &SerialPort::SetByteSize);
        dialogue_.Add("ByteSize", &SerialPort::ByteSize);
        dialogue_.Add("SetHandshake", &SerialPort::SetHandshake);
        dialogue_.Add("Handshake", &SerialPort::Handshake);
        dialogue_.Add("SetTimeoutMode", [this](int mode) {
            port_->SetTimeoutMode(static_cast<TimeoutMode>(mode));
            return Error();
        });
        dialogue_.Add("SetWriteTimeout", &SerialPort::SetWriteTimeout);
        dialogue_.Add("SetQueueReceived", &SerialPort::SetQueueReceived);
        dialogue_.Add("SetReportWrites", &SerialPort::SetReportWrites);
        dialogue_.Add("SetWatchLines", &SerialPort::SetWatchLines);
        dialogue_.Add("SetRts", &SerialPort::SetRts);
        dialogue_.Add("SetDtr", &SerialPort::SetDtr);
        dialogue_.Add("Dtr", &SerialPort::Dtr);
        dialogue_.Add("SetBreak", &SerialPort::SetBreak);
        dialogue_.Add("SetInfrared", &SerialPort::SetInfrared);
        dialogue_.Add("SetSkipBluetoothTweak", &SerialPort::SetSkipBluetoothTweak);
        dialogue_.Add("SetBluetoothBrowserOff", &SerialPort::SetBluetoothBrowserOff);
    }

    void AddUses() {
        dialogue_.Add("Open", &SerialPort::Open);
        dialogue_.Add("IsOpen", &SerialPort::IsOpen);
        dialogue_.Add("Close", [this] { Close(); });
        dialogue_.Add("ReadCts", &SerialPort::ReadCts);
        dialogue_.Add("ReadDsr", &SerialPort::ReadDsr);
        dialogue_.Add("ReadRing", &SerialPort::ReadRing);
        dialogue_.Add("ReadRlsd", &SerialPort::ReadRlsd);
        dialogue_.Add("Purge", &SerialPort::Purge);
        dialogue_.Add("Write", [this](const std::string& text) {
            port_->Write(BlockOf(text));
            return Error();
        });
        dialogue_.Add("Take", [this] { return TextOf(port_->TakeReceived()); });
        dialogue_.Add("Receive", [this](std::size_t count) { return Receive(count); });
        dialogue_.Add("WriteReports", [this](int count) { return WriteReports(count); });
        dialogue_.Add("LineEvent", [this] {
            Await("line");
            const Ref<PortEvent> event = port_->TakeLineEvent();
            return event ? std::to_string(event->value()) : "(none)";
        });
        dialogue_.Add("Failure", [this] { return Failure(); });
        dialogue_.Add("Await", [this](const std::string& signal) { Await(signal); });
        dialogue_.Add("Signals", [this] { return Signals(); });
    }

    void AddOtherSide() {
        dialogue_.Add("Feed", [this](const std::string& text) { device_.Feed(text); });
        dialogue_.Add("Lines", [this](std::uint32_t lines) { device_.SetLines(lines); });
        dialogue_.Add("HoldWrites", [this](bool isHeld) { device_.HoldWrites(isHeld); });
        dialogue_.Add("Overstate", [this](std::size_t count) { device_.OverstateNextRead(count); });
        dialogue_.Add("EndWaitsWithSuccess", [this] { device_.EndWaitsWithSuccess(); });
        dialogue_.Add("Fail", [this](const std::string& call, int nth, std::uint32_t error) {
            device_.FailCall(CommCallOf(call), nth, error);
        });
        dialogue_.Add("FailThread",
                      [](int nth, std::uint32_t error) { FailThreadStart(nth, error); });
        dialogue_.Add("WaitFor", [this](const std::string& call, int count) {
            device_.WaitForCalls(CommCallOf(call), count);
        });
        dialogue_.Add("WaitForMore", [this](const std::string& call, int count) {
            device_.WaitForCalls(CommCallOf(call), device_.CallCount(CommCallOf(call)) + count);
        });
        dialogue_.Add("AwaitWritten", [this](const std::string& text) {
            while (device_.written() != text)
                std::this_thread::yield();
        });
        dialogue_.Add("Written", [this] { return device_.written(); });
        dialogue_.Add("Calls", [this] { return Joined(device_.TakeLog(), ", "); });
        dialogue_.Add("State", [this] { return State(); });
        dialogue_.Add("Timeouts", [this] { return Timeouts(); });
    }

    void AddBluetooth() {
        dialogue_.Add("ForgetBrowser", [this] {
            registry_.AddValue(kBluetooth, kBrowser, kRegistryInteger, {7, 0, 0, 0});
        });
        dialogue_.Add("FailBrowser",
                      [this](int nth) { registry_.Fail(RegistryCall::SetValue, 5, nth - 1); });
        dialogue_.Add("Browser", [this] {
            const auto value = registry_.FindValue(kBluetooth, kBrowser);
            return value ? std::to_string(value->data.at(0)) : "(none)";
        });
        dialogue_.Add("HasStack", [this] { return registry_.HasKey(u"SOFTWARE"); });
    }

    // Waits for a signal and resets it.
    void Await(const std::string& signal) {
        ASSERT_TRUE(events_.at(signal)->Wait(kPatienceMs)) << signal;
        events_.at(signal)->Reset();
    }

    std::string Signals() const {
        std::string signals;
        for (const auto& [name, event] : events_)
            if (event->Wait(0)) signals += name + " ";
        return signals;
    }

    // In time, and with nothing left of what was before.
    void Close() {
        const auto start = std::chrono::steady_clock::now();
        port_->Close();
        EXPECT_LT(std::chrono::steady_clock::now() - start, kCloseLimit);
        EXPECT_FALSE(port_->IsOpen() || device_.isOpen());
        EXPECT_EQ(Error() + Failure() + Signals(), "");
        EXPECT_FALSE(port_->TakeReceived());
        EXPECT_FALSE(port_->TakeWriteDone());
        EXPECT_FALSE(port_->TakeLineEvent());
        EXPECT_EQ(Record::LiveCount(), recordsWhenNew_);
    }

    std::string State() const {
        const CommState state = device_.state();
        std::ostringstream text;
        text << state.BaudRate << ' ' << +state.ByteSize << ' ' << +state.Parity << ' '
             << +state.StopBits << " cts " << state.fOutxCtsFlow << " rts " << +state.fRtsControl
             << " dtr " << +state.fDtrControl;
        return text.str();
    }

    std::string Timeouts() const {
        const CommTimeouts timeouts = device_.timeouts();
        std::ostringstream text;
        text << timeouts.ReadIntervalTimeout << ' ' << timeouts.ReadTotalTimeoutMultiplier << ' '
             << timeouts.ReadTotalTimeoutConstant << ' ' << timeouts.WriteTotalTimeoutMultiplier
             << ' ' << timeouts.WriteTotalTimeoutConstant;
        return text.str();
    }

    const std::map<std::string, Ref<Event>> events_ = {{"data", port_->DataReceivedEvent()},
                                                       {"written", port_->WriteDoneEvent()},
                                                       {"failure", port_->ErrorEvent()},
                                                       {"line", port_->LineChangedEvent()}};
    const std::int32_t recordsWhenNew_ = Record::LiveCount();
};

TEST_P(PortDialogue, Holds) {
    dialogue_.Hold(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, PortDialogue,
                         testing::ValuesIn(ReadGroups("serial/port_dialogues.txt")), NameOfGroup);

}  // namespace
}  // namespace kavrel
