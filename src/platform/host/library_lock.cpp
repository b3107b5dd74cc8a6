#include "base/library_lock.h"

#include <atomic>
#include <mutex>
#include <thread>

namespace kavrel {
namespace {

std::mutex mutex;

// Kept in every build, unlike the product's: tests ask for it. A thread only ever needs to see what
// it wrote itself, so no order is asked for.
std::atomic<std::thread::id> holder;

}  // namespace

constinit LibraryLock libraryLock;

void LibraryLock::Create() {}

void LibraryLock::Destroy() {}

void LibraryLock::Acquire() {
    mutex.lock();
    holder.store(std::this_thread::get_id(), std::memory_order_relaxed);
}

void LibraryLock::Release() {
    holder.store(std::thread::id(), std::memory_order_relaxed);
    mutex.unlock();
}

bool LibraryLock::IsHeldByThisThread() const {
    return holder.load(std::memory_order_relaxed) == std::this_thread::get_id();
}

}  // namespace kavrel
