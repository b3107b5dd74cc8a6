// SerialPort: one serial port of the machine with its settings, and the worker threads that read
// it, write to it and watch its input lines.
//
// A port hands over raw bytes in the order read, and knows nothing of what they mean.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/byte_block.h"
#include "base/library_lock.h"
#include "base/record.h"
#include "platform/comm_device.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "platform/registry_store.h"
#include "serial/block_queue.h"
#include "serial/line_settings.h"
#include "serial/port_event.h"
#include "serial/worker_thread.h"

namespace kavrel {

// What the events of a port mean: the index in their tags, beside the port's serial number.
enum class PortSignal : std::uint32_t {
    DataReceived = 1,
    WriteDone = 2,
    Error = 3,
    LineChanged = 4,
};

// Errors: an operation clears error() and, when it fails, sets it. Errors of the port itself have
// code 10007; platform calls that fail with a number of their own pass it on.
//
// error() is what the last operation came to and never what a worker thread met: that is kept
// apart, because the threads fail while operations run, until the port is closed; ErrorEvent() is
// signalled and CopyFailure() gets it.
//
// Thread safety: every member may be called from any thread that does not hold the library lock.
// Operations and getters take turns, by a lock of the port's own, under which Close waits for the
// worker threads; those said to be for the consumer do not. error() may be read while no other
// thread runs an operation.
//
// Invariants: the worker threads run only while the port is open. Closed by the last release.
class SerialPort final : public Record, private ThreadOwner {
  public:
    // REQUIRES: `registry` outlives the port.
    SerialPort(std::unique_ptr<CommDevice> device, RegistryStore& registry);

    // The N of "COMN:". Errors: "Cannot set port is opened.", and the number stays.
    bool SetPort(std::int32_t number);
    std::int32_t Port() const;

    // What the control block says. Open, the change is made at once. Errors: "Could not set DCB".
    void SetBaudRate(std::uint32_t baudRate);
    void SetParity(std::uint32_t parity);
    void SetStopBits(std::uint32_t stopBits);
    void SetByteSize(std::uint32_t byteSize);
    void SetHandshake(std::uint32_t handshake);
    std::uint32_t BaudRate() const;
    std::uint32_t Parity() const;
    std::uint32_t StopBits() const;
    std::uint32_t ByteSize() const;
    std::uint32_t Handshake() const;

    // Takes effect when the port is next opened. A new port has TimeoutMode::FirstByte.
    void SetTimeoutMode(TimeoutMode mode);

    // Milliseconds beyond 1 ms per byte, 0 in a new port. Open, the change is made at once.
    // Errors: "Unexpected com port error.".
    void SetWriteTimeout(std::uint32_t ms);

    // On in a new port. Switching one off also empties its queue.
    void SetQueueReceived(bool isOn);  // received blocks are queued
    void SetReportWrites(bool isOn);   // completed writes are queued
    void SetWatchLines(bool isOn);     // line changes are watched (from the next Open) and queued

    // The Bluetooth stack's automatic connection on port 8, see bluetooth_tweak.h. A new port skips
    // the tweak.
    void SetSkipBluetoothTweak(bool isSkipped);
    void SetBluetoothBrowserOff(bool isOff);

    // Output lines. Closed, only the level is kept, for the next Open. Errors: refused, with the
    // level kept as it was, while the line is a handshake line; "Error setting RTS" or "... DTR".
    void SetRts(bool isOn);
    void SetDtr(bool isOn);
    bool Dtr() const;

    // Input lines as they are now; closed, or when that cannot be told, as they were last seen.
    // Errors: "Error reading DSR", whichever line it is.
    bool ReadDsr();
    bool ReadCts();
    bool ReadRing();
    bool ReadRlsd();

    // Errors: "Cannot set port is opened." when it is closed (the text is meant to be this one);
    // "Error setting Break".
    void SetBreak(bool isOn);

    // Errors: "Error setting IR".
    void SetInfrared(bool isOn);

    // Does nothing while closed. `input` empties the queue of received blocks and the platform's
    // buffer of bytes to send, `output` the queue of blocks to send and the platform's buffer of
    // received bytes: hosts depend on this crossing.
    void Purge(bool input, bool output);

    // Opens the port with its settings and starts the threads; does nothing when it is open. A port
    // whose DTR is a handshake line cannot be opened so: opening sets the line, which is refused.
    // Errors: "Comm port does not exist", "Comm port in use!", "Could not open comm port!", what
    // the settings fail with, "Could not create thread". The port is closed then.
    void Open();

    // Ends what the threads wait for, waits for their end, and forgets what is queued. Never leaves
    // an error. Takes as long as a read may take (200 ms), or a write that was begun.
    void Close();

    bool IsOpen() const { return isOpen_.load(std::memory_order_acquire); }

    // Queues a block to be sent. The writer sends one block per wake: one that comes before it
    // wakes for the last waits for the next Write.
    void Write(Ref<ByteBlock> block);

    // For the consumer: takes the oldest of what waits, or null. Received blocks have 1 to 256
    // bytes.
    Ref<ByteBlock> TakeReceived() { return readQueue_.Pop(); }
    Ref<PortEvent> TakeWriteDone() { return writeDoneQueue_.Pop(); }
    Ref<PortEvent> TakeLineEvent() { return lineQueue_.Pop(); }

    // For the consumer: what a worker thread failed with since the port was opened, or no error.
    // The thread is idle until the port is closed.
    void CopyFailure(ErrorSlot& to) const;

    // For the consumer's wait: tagged with this port's serial number and a PortSignal. Whoever
    // waits resets them; Close does, too.
    Ref<Event> DataReceivedEvent() const { return dataReceived_; }
    Ref<Event> WriteDoneEvent() const { return writeDone_; }
    Ref<Event> ErrorEvent() const { return errorSignal_; }
    Ref<Event> LineChangedEvent() const { return lineChanged_; }

  private:
    struct Failure {
        ErrorCode code = kNoError;
        Message message = Message::UnknownError;
    };

    void ThreadBody(WorkerThread& thread, Record* argument) override;
    void OnFinalRelease() override { Close(); }

    void SetNumber(std::uint32_t LineSettings::*field, std::uint32_t value);
    std::uint32_t Number(std::uint32_t LineSettings::*field) const;
    bool ReadLine(std::uint32_t line);

    void OpenDevice() KAVREL_REQUIRES(lock_);
    void Configure() KAVREL_REQUIRES(lock_);
    void ApplyControlBlock() KAVREL_REQUIRES(lock_);
    void ApplyTimeouts() KAVREL_REQUIRES(lock_);
    void ApplyDtr(bool isOn) KAVREL_REQUIRES(lock_);
    void ApplyInfrared(bool isOn) KAVREL_REQUIRES(lock_);
    void ApplyPurge(bool input, bool output) KAVREL_REQUIRES(lock_);
    void StartThreads() KAVREL_REQUIRES(lock_);
    void Shut() KAVREL_REQUIRES(lock_);
    void Tweak(bool beforeOpen) KAVREL_REQUIRES(lock_);
    void Escape(CommFunction function, Message failure) KAVREL_REQUIRES(lock_);
    CommResult UpdateLines(std::uint32_t lines);

    // On the worker threads.
    void ReadLoop();
    void WriteLoop();
    void WatchLoop();
    void Fail(CommResult result, Message message, Event& stop);
    void KeepFailure(CommResult result, Message message);

    const std::unique_ptr<CommDevice> device_;
    RegistryStore& registry_;
    std::atomic<bool> isOpen_{false};

    // The library lock is taken inside this one and never the other way round.
    mutable Lock lock_;
    LineSettings settings_ KAVREL_GUARDED_BY(lock_);
    std::int32_t portNumber_ KAVREL_GUARDED_BY(lock_) = 0;
    bool isInfrared_ KAVREL_GUARDED_BY(lock_) = false;
    TimeoutMode timeoutMode_ KAVREL_GUARDED_BY(lock_) = TimeoutMode::FirstByte;
    std::uint32_t writeTimeoutMs_ KAVREL_GUARDED_BY(lock_) = 0;
    bool skipsTweak_ KAVREL_GUARDED_BY(lock_) = true;
    bool isBrowserOff_ KAVREL_GUARDED_BY(lock_) = false;

    // The input lines as last seen, bits of GetModemStatus.
    std::atomic<std::uint32_t> lines_{0};

    Ref<WorkerThread> readerThread_ = MakeRef<WorkerThread>("port reader");
    Ref<WorkerThread> writerThread_ = MakeRef<WorkerThread>("port writer");
    Ref<WorkerThread> lineThread_ = MakeRef<WorkerThread>("line watch");
    Ref<Event> readerStop_ = MakeRef<Event>();
    Ref<Event> writerStop_ = MakeRef<Event>();
    Ref<Event> lineStop_ = MakeRef<Event>();
    std::atomic<bool> isClosing_{false};

    Ref<Event> dataReceived_;
    Ref<Event> writeQueued_ = MakeRef<Event>();
    Ref<Event> writeDone_;
    Ref<Event> errorSignal_;
    Ref<Event> lineChanged_;
    Failure failure_ KAVREL_GUARDED_BY(libraryLock);
    BlockQueue<ByteBlock> readQueue_;
    BlockQueue<ByteBlock> writeQueue_;
    BlockQueue<PortEvent> writeDoneQueue_;
    BlockQueue<PortEvent> lineQueue_;
};

}  // namespace kavrel
