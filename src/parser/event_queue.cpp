#include "parser/event_queue.h"

#include <array>
#include <utility>

namespace kavrel {

EventQueue::~EventQueue() {
    while (Unlink() != nullptr) {
    }
}

void EventQueue::Put(EventCode code, Ref<Record> object) {
    auto node = std::make_unique<Node>(Node{{.code = code, .object = std::move(object)}, nullptr});
    {
        const LibraryLockScope lock;
        std::unique_ptr<Node>& end = newest_ != nullptr ? newest_->next : oldest_;
        newest_ = node.get();
        end = std::move(node);
    }
    itemQueued_->Signal();
}

std::optional<QueuedEvent> EventQueue::Take() {
    const std::array<Event*, 2> events = {stop_.get(), itemQueued_.get()};
    for (;;) {
        constexpr std::size_t kStop = 0;
        if (WaitAny(events, kWaitForever) == kStop) return std::nullopt;
        itemQueued_->Reset();
        const std::unique_ptr<Node> node = Unlink();
        if (node == nullptr) continue;
        // More may wait that were signalled before the reset; a look too many does no harm.
        itemQueued_->Signal();
        return std::move(node->event);
    }
}

std::unique_ptr<EventQueue::Node> EventQueue::Unlink() {
    const LibraryLockScope lock;
    std::unique_ptr<Node> node = std::move(oldest_);
    if (node == nullptr) return nullptr;
    oldest_ = std::move(node->next);
    if (oldest_ == nullptr) newest_ = nullptr;
    return node;
}

}  // namespace kavrel
