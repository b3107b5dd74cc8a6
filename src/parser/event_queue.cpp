#include "parser/event_queue.h"

#include <array>
#include <utility>

namespace kavrel {

void EventQueue::Put(EventCode code, Ref<Record> object) {
    queue_.Push({.code = code, .object = std::move(object)});
    itemQueued_->Signal();
}

std::optional<QueuedEvent> EventQueue::Take() {
    const std::array<Event*, 2> events = {stop_.get(), itemQueued_.get()};
    for (;;) {
        constexpr std::size_t kStop = 0;
        if (WaitAny(events, kWaitForever) == kStop) return std::nullopt;
        itemQueued_->Reset();
        std::optional<QueuedEvent> event = queue_.Pop();
        if (!event) continue;
        // More may wait that were signalled before the reset; a look too many does no harm.
        itemQueued_->Signal();
        return event;
    }
}

}  // namespace kavrel
