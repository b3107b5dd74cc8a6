#include "platform/lock.h"

#include <windows.h>

namespace kavrel {
namespace {

CRITICAL_SECTION* SectionIn(unsigned char* storage) {
    return reinterpret_cast<CRITICAL_SECTION*>(storage);
}

}  // namespace

Lock::Lock() {
    static_assert(sizeof(CRITICAL_SECTION) <= sizeof(storage_));
    static_assert(alignof(CRITICAL_SECTION) <= alignof(Lock));
    InitializeCriticalSection(SectionIn(storage_));
}

Lock::~Lock() {
    DeleteCriticalSection(SectionIn(storage_));
}

void Lock::Acquire() {
    EnterCriticalSection(SectionIn(storage_));
}

void Lock::Release() {
    LeaveCriticalSection(SectionIn(storage_));
}

}  // namespace kavrel
