// The one lock of the whole library.
//
// It guards reference counts, queues, snapshots, waiting-query events and event intervals, and is
// held only to exchange references: never during an event callback, a wait, or a platform call
// that can block. It is not recursive: code that holds it must not copy or drop a Ref.
//
// Declared here because records need it; the platform defines its functions.
#pragma once

#include "base/thread_annotations.h"

namespace kavrel {

class KAVREL_CAPABILITY("library lock") LibraryLock {
  public:
    // Creates the lock. Called once before first use (process attach); further calls do nothing.
    void Create();

    // Gives the lock back. Called once after last use (process detach).
    void Destroy();

    void Acquire() KAVREL_ACQUIRE();
    void Release() KAVREL_RELEASE();

    // True when the calling thread holds the lock. Known in debug builds only; a release build
    // answers false, so use it only to assert that the lock is NOT held.
    bool IsHeldByThisThread() const;
};

extern LibraryLock libraryLock;

// Holds the library lock for a scope.
class KAVREL_SCOPED_CAPABILITY LibraryLockScope {
  public:
    LibraryLockScope() KAVREL_ACQUIRE(libraryLock) { libraryLock.Acquire(); }
    ~LibraryLockScope() KAVREL_RELEASE() { libraryLock.Release(); }
    LibraryLockScope(const LibraryLockScope&) = delete;
    LibraryLockScope& operator=(const LibraryLockScope&) = delete;
};

}  // namespace kavrel
