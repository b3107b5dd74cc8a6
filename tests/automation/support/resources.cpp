#include "automation/support/resources.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h.
#include <tlhelp32.h>

#include <ostream>

namespace kavrel::tests {

namespace {

// One by one: Wine's GetProcessHandleCount knows only 0, and its server crashes when it is asked
// for all handles of the system while there is a process that has none. Handles are multiples of
// four, and the lowest free one is given out, so there are no wide gaps between them.
size_t CountHandles() {
    constexpr ULONG_PTR kStep = 4;
    constexpr ULONG_PTR kWidestGap = 32 * kStep;
    size_t count = 0;
    ULONG_PTR last = 0;
    for (ULONG_PTR handle = kStep; handle <= last + kWidestGap; handle += kStep) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) == FALSE) continue;
        ++count;
        last = handle;
    }
    EXPECT_NE(0U, count);
    return count;
}

size_t CountThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    size_t count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
    }
    CloseHandle(snapshot);
    return count;
}

void CountHeap(HANDLE heap, Resources& resources) {
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
        ++resources.heapBlocks;
        resources.heapBytes += entry.cbData;
    }
    HeapUnlock(heap);
}

}  // namespace

Resources Resources::Now() {
    Resources now;
    now.handles = CountHandles();
    now.threads = CountThreads();
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    EXPECT_GE(64U, count);
    for (DWORD i = 0; i < count && i < 64; ++i)
        CountHeap(heaps[i], now);
    return now;
}

void PrintTo(const Resources& resources, std::ostream* out) {
    *out << resources.handles << " handles, " << resources.threads << " threads, "
         << resources.heapBlocks << " heap blocks of " << resources.heapBytes << " bytes";
}

}  // namespace kavrel::tests
