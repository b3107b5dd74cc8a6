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
    ++referenceCount_;
}

void Record::ReleaseReference() {
    bool isLast;
    {
        const LibraryLockScope lock;
        isLast = referenceCount_ == 1;
        if (!isLast) --referenceCount_;
    }
    if (!isLast) return;

    // Nobody else holds a reference, so nobody can add one meanwhile, except the hook itself.
    OnFinalRelease();
    {
        const LibraryLockScope lock;
        isLast = --referenceCount_ == 0;
    }
    if (isLast) delete this;
}

}  // namespace kavrel
