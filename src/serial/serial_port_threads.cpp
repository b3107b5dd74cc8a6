// What the worker threads of a SerialPort do. None of them takes the port's own lock: Close holds
// it while it waits for them.
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "serial/serial_port.h"

namespace kavrel {
namespace {

// The most that one read asks for.
constexpr std::size_t kReadSize = 256;

// What a read fails with that claims more than was asked for.
constexpr CommResult kTooManyBytes = {.isDone = false, .error = 14};

struct InputLine {
    std::uint32_t bit;  // of GetModemStatus
    LineChange on;
    LineChange off;
};

// In the order of reporting.
constexpr std::array<InputLine, 4> kInputLines = {{
    {kModemCtsOn, LineChange::CtsOn, LineChange::CtsOff},
    {kModemDsrOn, LineChange::DsrOn, LineChange::DsrOff},
    {kModemRingOn, LineChange::RingOn, LineChange::RingOff},
    {kModemRlsdOn, LineChange::RlsdOn, LineChange::RlsdOff},
}};

// The first line that differs. Only that one becomes remembered: if others changed, too, the next
// event of the platform tells of them.
LineChange TakeFirstChange(std::uint32_t& remembered, std::uint32_t now) {
    for (const InputLine& line : kInputLines) {
        if (((remembered ^ now) & line.bit) == 0) continue;
        remembered ^= line.bit;
        return (now & line.bit) != 0 ? line.on : line.off;
    }
    return LineChange::None;
}

}  // namespace

void SerialPort::ThreadBody(WorkerThread& thread, Record* /*argument*/) {
    if (thread.serialNumber() == readerThread_->serialNumber()) {
        ReadLoop();
        readerStop_->Reset();
    } else if (thread.serialNumber() == writerThread_->serialNumber()) {
        WriteLoop();
        writerStop_->Reset();
    } else if (thread.serialNumber() == lineThread_->serialNumber()) {
        WatchLoop();
        lineStop_->Reset();
    }
}

void SerialPort::ReadLoop() {
    std::array<std::uint8_t, kReadSize> buffer;
    while (!readerStop_->Wait(0)) {
        std::size_t count = 0;
        const CommResult result = device_->Read(buffer, count);
        if (!result || count > buffer.size()) {
            Fail(result ? kTooManyBytes : result, Message::PortReadFailed, *readerStop_);
            return;
        }
        if (count == 0) continue;
        const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(count);
        if (readQueue_.Push(MakeRef<ByteBlock>(std::vector<std::uint8_t>(buffer.begin(), end))))
            dataReceived_->Signal();
    }
}

void SerialPort::WriteLoop() {
    const std::array<Event*, 2> events = {writerStop_.get(), writeQueued_.get()};
    for (;;) {
        constexpr std::size_t kStop = 0;
        const std::size_t woken = WaitAny(events, kWaitForever).value_or(kStop);
        events[woken]->Reset();
        if (woken == kStop) return;

        const Ref<ByteBlock> block = writeQueue_.Pop();
        if (!block) continue;
        std::size_t count = 0;
        if (const CommResult result = device_->Write(block->bytes(), count); !result) {
            // The reader's message: hosts know this one for both.
            Fail(result, Message::PortReadFailed, *writerStop_);
            return;
        }
        if (writeDoneQueue_.Push(MakeRef<PortEvent>(static_cast<std::uint32_t>(count))))
            writeDone_->Signal();
    }
}

void SerialPort::WatchLoop() {
    for (const InputLine& line : kInputLines) {
        if (const CommResult result = UpdateLines(line.bit); !result)
            KeepFailure(result, Message::DsrFailed);
    }
    std::uint32_t remembered = lines_;
    (void)device_->SetMask(kCommLineEvents);
    for (;;) {
        std::uint32_t events = 0;
        if (const CommResult result = device_->WaitEvent(events); !result) {
            Fail(result, Message::WaitCommEventFailed, *lineStop_);
            return;
        }
        if (lineStop_->Wait(0)) return;
        if (!lineQueue_.IsAccepting()) continue;
        // Lines that cannot be read now count as unchanged.
        (void)UpdateLines(kModemCtsOn | kModemDsrOn | kModemRingOn | kModemRlsdOn);
        const LineChange change = TakeFirstChange(remembered, lines_);
        if (lineQueue_.Push(MakeRef<PortEvent>(static_cast<std::uint32_t>(change))))
            lineChanged_->Signal();
    }
}

// Keeps the thread idle after a failure, until the port is closed.
void SerialPort::Fail(CommResult result, Message message, Event& stop) {
    KeepFailure(result, message);
    if (!isClosing_) errorSignal_->Signal();
    stop.Wait(kWaitForever);
}

void SerialPort::KeepFailure(CommResult result, Message message) {
    const LibraryLockScope scope;
    failure_ = {.code = result.error, .message = message};
}

}  // namespace kavrel
