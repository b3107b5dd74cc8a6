// A mutual-exclusion lock for objects that serialise their own members (a Position).
//
// Recursive: the thread that holds it may acquire it again, and releases it as often.
#pragma once

#include "base/thread_annotations.h"

namespace kavrel {

class KAVREL_CAPABILITY("lock") Lock {
  public:
    Lock();
    ~Lock();
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void Acquire() KAVREL_ACQUIRE();
    void Release() KAVREL_RELEASE();

  private:
    // Holds the platform's own lock object, without making its header everybody's.
    alignas(8) unsigned char storage_[40];
};

// Holds a lock for a scope.
class KAVREL_SCOPED_CAPABILITY LockScope {
  public:
    explicit LockScope(Lock& lock) KAVREL_ACQUIRE(lock) : lock_(lock) { lock_.Acquire(); }
    ~LockScope() KAVREL_RELEASE() { lock_.Release(); }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;

  private:
    Lock& lock_;
};

}  // namespace kavrel
