#include "base/library_lock.h"

#include <atomic>
#include <mutex>
#include <thread>

namespace kavrel {
namespace {

std::mutex mutex;
std::atomic<std::thread::id> holder;

}  // namespace

constinit LibraryLock libraryLock;

void LibraryLock::Create() {}

void LibraryLock::Destroy() {}

void LibraryLock::Acquire() {
    mutex.lock();
    holder = std::this_thread::get_id();
}

void LibraryLock::Release() {
    holder = std::thread::id();
    mutex.unlock();
}

bool LibraryLock::IsHeldByThisThread() const {
    return holder == std::this_thread::get_id();
}

}  // namespace kavrel
