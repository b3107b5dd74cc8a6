#include "serial/serial_port.h"

#include <utility>

namespace kavrel {
namespace {

Ref<Event> TaggedEvent(const Record& owner, PortSignal signal) {
    return MakeRef<Event>(
        EventTag{.ownerId = owner.serialNumber(), .index = static_cast<std::uint32_t>(signal)});
}

}  // namespace

SerialPort::SerialPort(std::unique_ptr<CommDevice> device, RegistryStore& registry)
    : device_(std::move(device)),
      registry_(registry),
      dataReceived_(TaggedEvent(*this, PortSignal::DataReceived)),
      writeDone_(TaggedEvent(*this, PortSignal::WriteDone)),
      errorSignal_(TaggedEvent(*this, PortSignal::Error)),
      lineChanged_(TaggedEvent(*this, PortSignal::LineChanged)) {}

bool SerialPort::SetPort(std::int32_t number) {
    const LockScope scope(lock_);
    error().Clear();
    if (IsOpen()) {
        error().Set(kErrorComPort, Message::PortIsOpened);
        return false;
    }
    portNumber_ = number;
    return true;
}

std::int32_t SerialPort::Port() const {
    const LockScope scope(lock_);
    return portNumber_;
}

void SerialPort::SetNumber(std::uint32_t LineSettings::*field, std::uint32_t value) {
    const LockScope scope(lock_);
    error().Clear();
    settings_.*field = value;
    ApplyControlBlock();
}

std::uint32_t SerialPort::Number(std::uint32_t LineSettings::*field) const {
    const LockScope scope(lock_);
    return settings_.*field;
}

void SerialPort::SetBaudRate(std::uint32_t baudRate) {
    SetNumber(&LineSettings::baudRate, baudRate);
}

void SerialPort::SetParity(std::uint32_t parity) {
    SetNumber(&LineSettings::parity, parity);
}

void SerialPort::SetStopBits(std::uint32_t stopBits) {
    SetNumber(&LineSettings::stopBits, stopBits);
}

void SerialPort::SetByteSize(std::uint32_t byteSize) {
    SetNumber(&LineSettings::byteSize, byteSize);
}

void SerialPort::SetHandshake(std::uint32_t handshake) {
    SetNumber(&LineSettings::handshake, handshake);
}

std::uint32_t SerialPort::BaudRate() const {
    return Number(&LineSettings::baudRate);
}

std::uint32_t SerialPort::Parity() const {
    return Number(&LineSettings::parity);
}

std::uint32_t SerialPort::StopBits() const {
    return Number(&LineSettings::stopBits);
}

std::uint32_t SerialPort::ByteSize() const {
    return Number(&LineSettings::byteSize);
}

std::uint32_t SerialPort::Handshake() const {
    return Number(&LineSettings::handshake);
}

void SerialPort::SetTimeoutMode(TimeoutMode mode) {
    const LockScope scope(lock_);
    error().Clear();
    timeoutMode_ = mode;
}

void SerialPort::SetWriteTimeout(std::uint32_t ms) {
    const LockScope scope(lock_);
    error().Clear();
    writeTimeoutMs_ = ms;
    ApplyTimeouts();
}

void SerialPort::SetQueueReceived(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    readQueue_.SetAccepting(isOn);
}

void SerialPort::SetReportWrites(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    writeDoneQueue_.SetAccepting(isOn);
}

void SerialPort::SetWatchLines(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    lineQueue_.SetAccepting(isOn);
}

void SerialPort::SetSkipBluetoothTweak(bool isSkipped) {
    const LockScope scope(lock_);
    error().Clear();
    skipsTweak_ = isSkipped;
}

void SerialPort::SetBluetoothBrowserOff(bool isOff) {
    const LockScope scope(lock_);
    error().Clear();
    isBrowserOff_ = isOff;
}

void SerialPort::SetRts(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    if ((settings_.handshake & kHandshakeRtsCts) != 0) {
        error().Set(kErrorComPort, Message::RtsIsHandshake);
        return;
    }
    if (IsOpen()) Escape(isOn ? CommFunction::SetRts : CommFunction::ClrRts, Message::RtsFailed);
    settings_.rts = isOn;
}

void SerialPort::SetDtr(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    ApplyDtr(isOn);
}

void SerialPort::ApplyDtr(bool isOn) {
    if ((settings_.handshake & kHandshakeDtrDsr) != 0) {
        error().Set(kErrorComPort, Message::DtrIsHandshake);
        return;
    }
    if (IsOpen()) Escape(isOn ? CommFunction::SetDtr : CommFunction::ClrDtr, Message::DtrFailed);
    settings_.dtr = isOn;
}

bool SerialPort::Dtr() const {
    const LockScope scope(lock_);
    return settings_.dtr;
}

bool SerialPort::ReadDsr() {
    return ReadLine(kModemDsrOn);
}

bool SerialPort::ReadCts() {
    return ReadLine(kModemCtsOn);
}

bool SerialPort::ReadRing() {
    return ReadLine(kModemRingOn);
}

bool SerialPort::ReadRlsd() {
    return ReadLine(kModemRlsdOn);
}

bool SerialPort::ReadLine(std::uint32_t line) {
    const LockScope scope(lock_);
    error().Clear();
    if (IsOpen()) {
        if (const CommResult result = UpdateLines(line); !result)
            error().Set(result.error, Message::DsrFailed);
    }
    return (lines_.load(std::memory_order_relaxed) & line) != 0;
}

CommResult SerialPort::UpdateLines(std::uint32_t lines) {
    std::uint32_t status = 0;
    const CommResult result = device_->GetModemStatus(status);
    if (!result) return result;
    std::uint32_t known = lines_.load(std::memory_order_relaxed);
    while (!lines_.compare_exchange_weak(known, (known & ~lines) | (status & lines),
                                         std::memory_order_relaxed)) {
    }
    return result;
}

void SerialPort::SetBreak(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    if (!IsOpen()) {
        error().Set(kErrorComPort, Message::PortIsOpened);
        return;
    }
    Escape(isOn ? CommFunction::SetBreak : CommFunction::ClrBreak, Message::BreakFailed);
}

void SerialPort::SetInfrared(bool isOn) {
    const LockScope scope(lock_);
    error().Clear();
    ApplyInfrared(isOn);
}

void SerialPort::ApplyInfrared(bool isOn) {
    isInfrared_ = isOn;
    if (IsOpen()) Escape(isOn ? CommFunction::SetIr : CommFunction::ClrIr, Message::InfraredFailed);
}

void SerialPort::Escape(CommFunction function, Message failure) {
    if (const CommResult result = device_->Escape(function); !result)
        error().Set(result.error, failure);
}

void SerialPort::Write(Ref<ByteBlock> block) {
    {
        const LockScope scope(lock_);
        error().Clear();
    }
    writeQueue_.Push(std::move(block));
    writeQueued_->Signal();
}

void SerialPort::CopyFailure(ErrorSlot& to) const {
    Failure failure;
    {
        const LibraryLockScope scope;
        failure = failure_;
    }
    to.Set(failure.code, failure.message);
}

}  // namespace kavrel
