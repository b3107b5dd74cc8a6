#include "platform/win32/module_lock.h"

#include <atomic>

namespace kavrel {
namespace {

constinit std::atomic<long> lockCount{0};

}  // namespace

void LockModule() {
    lockCount.fetch_add(1, std::memory_order_relaxed);
}

void UnlockModule() {
    lockCount.fetch_sub(1, std::memory_order_release);
}

bool IsModuleLocked() {
    return lockCount.load(std::memory_order_acquire) != 0;
}

}  // namespace kavrel
