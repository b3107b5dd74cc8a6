#include "base/library_lock.h"

#include <windows.h>

namespace kavrel {
namespace {

constinit CRITICAL_SECTION section{};
constinit bool isCreated = false;

#ifndef NDEBUG
constinit DWORD holder = 0;
#endif

}  // namespace

constinit LibraryLock libraryLock;

void LibraryLock::Create() {
    if (isCreated) return;
    InitializeCriticalSection(&section);
    isCreated = true;
}

void LibraryLock::Destroy() {
    if (!isCreated) return;
    DeleteCriticalSection(&section);
    isCreated = false;
}

void LibraryLock::Acquire() {
    EnterCriticalSection(&section);
#ifndef NDEBUG
    holder = GetCurrentThreadId();
#endif
}

void LibraryLock::Release() {
#ifndef NDEBUG
    holder = 0;
#endif
    LeaveCriticalSection(&section);
}

bool LibraryLock::IsHeldByThisThread() const {
#ifndef NDEBUG
    return holder == GetCurrentThreadId();
#else
    return false;
#endif
}

}  // namespace kavrel
