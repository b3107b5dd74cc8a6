// Opening and closing a SerialPort, and putting its settings into force.
#include <array>

#include "serial/bluetooth_tweak.h"
#include "serial/serial_port.h"

namespace kavrel {
namespace {

// Error numbers of the platform that have a message of their own.
constexpr std::uint32_t kFileNotFound = 2;
constexpr std::uint32_t kAccessDenied = 5;

// "COM", a sign, ten digits, ":" and the terminator.
using DeviceName = std::array<char16_t, 16>;

DeviceName NameOf(std::int32_t portNumber) {
    std::array<char16_t, 10> digits;
    std::size_t count = 0;
    const auto wide = static_cast<std::int64_t>(portNumber);
    auto rest = static_cast<std::uint64_t>(wide < 0 ? -wide : wide);
    do {
        digits[count++] = static_cast<char16_t>(u'0' + rest % 10);
        rest /= 10;
    } while (rest != 0);

    DeviceName name{u'C', u'O', u'M'};
    std::size_t at = 3;
    if (portNumber < 0) name[at++] = u'-';
    while (count != 0)
        name[at++] = digits[--count];
    name[at] = u':';
    return name;
}

}  // namespace

void SerialPort::Open() {
    const LockScope scope(lock_);
    error().Clear();
    if (IsOpen()) return;

    Tweak(true);
    OpenDevice();
    if (IsOpen()) Configure();
    if (IsOpen() && !error().IsSet()) StartThreads();
    if (IsOpen() && error().IsSet()) Shut();
    Tweak(false);
}

void SerialPort::Tweak(bool beforeOpen) {
    BluetoothAutoConnectTweak(registry_, portNumber_, beforeOpen, skipsTweak_, isBrowserOff_);
}

void SerialPort::OpenDevice() {
    const CommResult result = device_->Open(NameOf(portNumber_).data());
    if (result) {
        isOpen_.store(true, std::memory_order_release);
    } else if (result.error == 0) {
        error().Set(kErrorComPort, Message::PortNotOpened);
    } else if (result.error == kFileNotFound) {
        error().Set(kErrorComPort, Message::PortDoesNotExist);
    } else if (result.error == kAccessDenied) {
        error().Set(kErrorComPort, Message::PortInUse);
    } else {
        error().Set(result.error, Message::PortNotOpened);
    }
}

void SerialPort::Configure() {
    ApplyControlBlock();
    if (!error().IsSet()) ApplyTimeouts();
    if (!error().IsSet()) ApplyDtr(settings_.dtr);
    if (!error().IsSet()) ApplyPurge(true, true);
    if (!error().IsSet() && isInfrared_) ApplyInfrared(true);
}

// A block that cannot be read is written all the same: drivers that lack the one may have the
// other.
void SerialPort::ApplyControlBlock() {
    if (!IsOpen()) return;
    CommState state;
    (void)device_->GetState(state);
    WriteControlBlock(settings_, state);
    if (!device_->SetState(state)) error().Set(kErrorComPort, Message::DcbNotSet);
}

void SerialPort::ApplyTimeouts() {
    if (!IsOpen()) return;
    CommTimeouts timeouts;
    (void)device_->GetTimeouts(timeouts);
    WriteTimeouts(timeoutMode_, writeTimeoutMs_, timeouts);
    if (!device_->SetTimeouts(timeouts)) error().Set(kErrorComPort, Message::UnexpectedPortError);
}

void SerialPort::Purge(bool input, bool output) {
    const LockScope scope(lock_);
    error().Clear();
    ApplyPurge(input, output);
}

void SerialPort::ApplyPurge(bool input, bool output) {
    if (!IsOpen()) return;
    if (input) readQueue_.Clear();
    if (output) writeQueue_.Clear();
    (void)device_->Purge((input ? kPurgeTxClear : 0) | (output ? kPurgeRxClear : 0));
}

void SerialPort::StartThreads() {
    {
        const LibraryLockScope scope;
        failure_ = {};
    }
    const struct {
        WorkerThread& thread;
        Event& stop;
        bool isWanted;
    } workers[] = {
        {*readerThread_, *readerStop_, true},
        {*writerThread_, *writerStop_, true},
        {*lineThread_, *lineStop_, lineQueue_.IsAccepting()},
    };
    for (const auto& worker : workers) {
        if (!worker.isWanted) continue;
        // A request that no thread was there to hear would end the new one.
        worker.stop.Reset();
        worker.thread.Start(*this, nullptr);
        if (!worker.thread.error().IsSet()) continue;
        error().CopyFrom(&worker.thread.error());
        return;
    }
}

void SerialPort::Close() {
    const LockScope scope(lock_);
    Shut();
    error().Clear();
}

// Keeps the error that made Open give up.
void SerialPort::Shut() {
    isClosing_.store(true);
    if (IsOpen()) {
        for (Event* stop : {readerStop_.get(), writerStop_.get(), lineStop_.get()})
            stop->Signal();
        device_->Close();
        isOpen_.store(false, std::memory_order_release);
        for (WorkerThread* thread : {readerThread_.get(), writerThread_.get(), lineThread_.get()})
            if (thread->IsRunning()) thread->Stop();
    }
    for (Event* event : {dataReceived_.get(), writeQueued_.get(), writeDone_.get(),
                         errorSignal_.get(), lineChanged_.get()})
        event->Reset();
    readQueue_.Clear();
    writeQueue_.Clear();
    writeDoneQueue_.Clear();
    lineQueue_.Clear();
    {
        const LibraryLockScope scope;
        failure_ = {};
    }
    isClosing_.store(false);
}

}  // namespace kavrel
