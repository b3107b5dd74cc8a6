// PortReader: the parser's own thread, which reads sentences from the enabled port.
//
// Thread safety: Enable, Disable and Stop belong to the client's thread, and wait for the reader.
// Invariant: while it is not enabled, the thread waits and touches nothing of its owner's.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "base/byte_block.h"
#include "base/record.h"
#include "nmea/nmea_sentence.h"
#include "parser/port_choice.h"
#include "parser/port_source.h"
#include "serial/worker_thread.h"

namespace kavrel {

class PortReader final : private ThreadOwner {
  public:
    // Is told what happens, on the reader thread.
    class Listener {
      public:
        virtual void OnSentence(Ref<NmeaSentence> sentence) = 0;

        // All sentences that were there have been delivered.
        virtual void OnDataRead() = 0;

        // The source reads from another port, or at another rate.
        virtual void OnSettingsChanged(const PortChoice& current) = 0;

        // The source has delivered its first sentence.
        virtual void OnValidNmea(const PortChoice& current) = 0;

        // The source has failed or ended.
        virtual void OnSourceEnded() = 0;

      protected:
        ~Listener() = default;
    };

    PortReader(Machine& machine, Listener& listener, std::uint32_t tryMs = PortSource::kTryMs)
        : listener_(listener), source_(machine, tryMs) {}
    ~PortReader() { Stop(); }
    PortReader(const PortReader&) = delete;
    PortReader& operator=(const PortReader&) = delete;

    // False when memory was short at its making: then it must not be used.
    bool IsComplete() const;

    void SetChecksumMandatory(bool isMandatory) { source_.SetChecksumMandatory(isMandatory); }

    // Begins to read. False, with the error, when the thread cannot be had, the port not be opened,
    // or the shared receiver, where it alone is wanted, not be started. REQUIRES: not enabled.
    bool Enable(const PortChoice& choice, ErrorSlot& error);

    // The source is closed when this returns, and nothing more is told. REQUIRES: enabled.
    void Disable();

    // Ends the thread, enabled or not.
    void Stop();

    // Of the enabled fixed port; nothing for another source. With the port's error.
    void SetBaudRate(std::uint32_t baudRate, ErrorSlot& error) {
        source_.SetBaudRate(baudRate, error);
    }
    void Write(Ref<ByteBlock> bytes, ErrorSlot& error) { source_.Write(std::move(bytes), error); }

  private:
    void ThreadBody(WorkerThread& thread, Record* argument) override;

    // Reads until disabled or stopped.
    enum class End { Disabled, Stopped };
    End Read();
    void Heed(PortSource::Signal signal);
    void DeliverSentences();

    // Lets the reader act on an event, and waits until it has.
    void Ask(Event& request);

    bool IsAskedToLeave() const { return isAskedToLeave_.load(std::memory_order_relaxed); }

    Listener& listener_;
    PortSource source_;
    Ref<WorkerThread> thread_ = TryMakeRef<WorkerThread>("parser reader");
    Ref<Event> threadStop_ = TryMakeRef<Event>();
    Ref<Event> start_ = TryMakeRef<Event>();
    Ref<Event> disable_ = TryMakeRef<Event>();
    Ref<Event> acknowledge_ = TryMakeRef<Event>();

    // Data may come faster than they are read, so a delivery looks here between two sentences.
    std::atomic<bool> isAskedToLeave_{false};

    // Written by one side while the other waits.
    PortChoice choice_;
    ErrorSlot beginError_;
};

}  // namespace kavrel
