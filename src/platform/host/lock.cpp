#include "platform/lock.h"

#include <mutex>
#include <new>

namespace kavrel {
namespace {

std::recursive_mutex& MutexIn(unsigned char* storage) {
    return *std::launder(reinterpret_cast<std::recursive_mutex*>(storage));
}

}  // namespace

Lock::Lock() {
    static_assert(sizeof(std::recursive_mutex) <= sizeof(storage_));
    static_assert(alignof(std::recursive_mutex) <= alignof(Lock));
    new (storage_) std::recursive_mutex;
}

Lock::~Lock() {
    using Mutex = std::recursive_mutex;
    MutexIn(storage_).~Mutex();
}

void Lock::Acquire() {
    MutexIn(storage_).lock();
}

void Lock::Release() {
    MutexIn(storage_).unlock();
}

}  // namespace kavrel
