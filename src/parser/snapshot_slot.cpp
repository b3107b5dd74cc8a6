#include "parser/snapshot_slot.h"

#include <utility>

namespace kavrel {

Ref<Record> SnapshotRecordSlot::Publish(Ref<Record> snapshot, std::int32_t level) {
    Ref<Event> waiting;
    {
        const LockScope scope(lock_);
        if (waiting_ && level < wantedLevel_) return snapshot;
        std::swap(snapshot_, snapshot);
        waiting = waiting_;
    }
    if (waiting) waiting->Signal();
    return snapshot;
}

Ref<Record> SnapshotRecordSlot::QueryRecord(std::int32_t timeoutMs, std::int32_t wantedLevel) {
    if (timeoutMs < 1) return Latest();
    const Ref<Event> next = MakeRef<Event>();
    SetWaiting(next, wantedLevel);
    const bool isServed = next->Wait(static_cast<std::uint32_t>(timeoutMs));
    Ref<Record> result = isServed ? Latest() : nullptr;
    SetWaiting(nullptr, 0);
    return result;
}

Ref<Record> SnapshotRecordSlot::Latest() {
    const LockScope scope(lock_);
    return snapshot_;
}

void SnapshotRecordSlot::SetWaiting(Ref<Event> event, std::int32_t wantedLevel) {
    const LockScope scope(lock_);
    waiting_ = std::move(event);
    wantedLevel_ = wantedLevel;
}

}  // namespace kavrel
