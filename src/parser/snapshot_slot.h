// SnapshotSlot: the latest snapshot of one kind, and the query that waits for the next one.
//
// Thread safety: every member may be called from any thread. One query at a time may wait.
// The slot has a lock of its own, under which references are copied; the library lock, which
// guards the counts, is taken inside it and never the other way round.
#pragma once

#include <cstdint>
#include <utility>

#include "base/record.h"
#include "platform/event.h"
#include "platform/lock.h"

namespace kavrel {

template <typename T>
class SnapshotSlot {
  public:
    // Replaces the snapshot and wakes the query that waits. While one waits for a higher level, the
    // snapshot is dropped. Returns what is out of use: the one replaced, or dropped, or null.
    Ref<T> Publish(Ref<T> snapshot, std::int32_t level = 0) {
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

    // With a time below 1, the latest snapshot, however old; else the next one of at least
    // `wantedLevel`. Null when there is none (yet), or none in time.
    Ref<T> Query(std::int32_t timeoutMs, std::int32_t wantedLevel = 0) {
        if (timeoutMs < 1) return Latest();
        const Ref<Event> next = MakeRef<Event>();
        SetWaiting(next, wantedLevel);
        const bool isServed = next->Wait(static_cast<std::uint32_t>(timeoutMs));
        Ref<T> result = isServed ? Latest() : nullptr;
        SetWaiting(nullptr, 0);
        return result;
    }

  private:
    Ref<T> Latest() {
        const LockScope scope(lock_);
        return snapshot_;
    }

    void SetWaiting(Ref<Event> event, std::int32_t wantedLevel) {
        const LockScope scope(lock_);
        waiting_ = std::move(event);
        wantedLevel_ = wantedLevel;
    }

    Lock lock_;
    Ref<T> snapshot_ KAVREL_GUARDED_BY(lock_);
    Ref<Event> waiting_ KAVREL_GUARDED_BY(lock_);
    std::int32_t wantedLevel_ KAVREL_GUARDED_BY(lock_) = 0;
};

}  // namespace kavrel
