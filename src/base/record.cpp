#include "base/record.h"

#include <atomic>

#include "base/library_lock.h"

namespace kavrel {
namespace {

constinit std::atomic<std::uint32_t> nextSerialNumber{1};
constinit std::atomic<std::int32_t> liveCount{0};

}  // namespace

Record::Record() : serialNumber_(nextSerialNumber.fetch_add(1, std::memory_order_relaxed)) {
    liveCount.fetch_add(1, std::memory_order_relaxed);
}

Record::~Record() {
    liveCount.fetch_sub(1, std::memory_order_relaxed);
}

std::int32_t Record::LiveCount() {
    return liveCount.load(std::memory_order_relaxed);
}

void Record::AddReference() {
    const LibraryLockScope lock;
    referenceCount_.fetch_add(1, std::memory_order_relaxed);
}

// Drops a reference that is not the last.
bool Record::DropSharedReference() {
    if (HasOneReference()) return false;
    const LibraryLockScope lock;
    if (HasOneReference()) return false;
    referenceCount_.fetch_sub(1, std::memory_order_release);
    return true;
}

void Record::ReleaseReference() {
    if (DropSharedReference()) return;
    OnFinalRelease();
    if (DropSharedReference()) return;  // the hook has passed the record on
    delete this;
}

}  // namespace kavrel
