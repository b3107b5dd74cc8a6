// EventQueue: events that a client takes when it likes, instead of being called.
#pragma once

#include <cstdint>
#include <optional>

#include "base/locked_queue.h"
#include "base/record.h"
#include "platform/event.h"

namespace kavrel {

// The library's own event type codes. GGA, GLL and RMC are never queued.
enum class EventCode : std::int32_t {
    Generic = 1,
    GpsFix = 5,
    Satellites = 6,
    Movement = 7,
    Quality = 8,
    ComStatus = 9,
};

struct QueuedEvent {
    EventCode code;
    Ref<Record> object;
};

// Thread safety: every member may be called from any thread; one thread takes.
class EventQueue {
  public:
    void Put(EventCode code, Ref<Record> object);

    // Waits for an event and takes the oldest. Nothing when the queue was stopped, though events
    // may still wait.
    std::optional<QueuedEvent> Take();

    // Ends the wait of the taker, and every later one.
    void Stop() { stop_->Signal(); }

  private:
    LockedQueue<QueuedEvent> queue_;
    Ref<Event> itemQueued_ = MakeRef<Event>();
    Ref<Event> stop_ = MakeRef<Event>();
};

}  // namespace kavrel
