// SnapshotSlot: the latest snapshot of one kind, and the query that waits for the next one.
//
// Thread safety: every member may be called from any thread. One query at a time may wait.
// The slot has a lock of its own, under which references are copied; the library lock, which
// guards the counts, is taken inside it and never the other way round.
#pragma once

#include <cstdint>

#include "base/record.h"
#include "platform/event.h"
#include "platform/lock.h"

namespace kavrel {

// The part of a slot that is the same for every type of snapshot.
class SnapshotRecordSlot {
  public:
    // Replaces the snapshot and wakes the query that waits. While one waits for a higher level, the
    // snapshot is dropped. Returns what is out of use: the one replaced, or dropped, or null.
    // REQUIRES: the snapshot is of the slot's type.
    Ref<Record> Publish(Ref<Record> snapshot, std::int32_t level = 0);

  protected:
    Ref<Record> QueryRecord(std::int32_t timeoutMs, std::int32_t wantedLevel);

  private:
    Ref<Record> Latest();
    void SetWaiting(Ref<Event> event, std::int32_t wantedLevel);

    Lock lock_;
    Ref<Record> snapshot_ KAVREL_GUARDED_BY(lock_);
    Ref<Event> waiting_ KAVREL_GUARDED_BY(lock_);
    std::int32_t wantedLevel_ KAVREL_GUARDED_BY(lock_) = 0;
};

template <typename T>
class SnapshotSlot : public SnapshotRecordSlot {
  public:
    // With a time below 1, the latest snapshot, however old; else the next one of at least
    // `wantedLevel`. Null when there is none (yet), or none in time.
    Ref<T> Query(std::int32_t timeoutMs, std::int32_t wantedLevel = 0) {
        return Ref<T>::Adopt(static_cast<T*>(QueryRecord(timeoutMs, wantedLevel).Detach()));
    }
};

}  // namespace kavrel
