#include "automation/support/resources.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h.
#include <tlhelp32.h>

#include <ostream>
#include <vector>

namespace kavrel::tests {

namespace {

// What the system tells about every handle of every process. Wine's GetProcessHandleCount knows
// only 0.
struct HandleEntry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT creator;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};
struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};
constexpr int kExtendedHandleInformation = 64;
constexpr LONG kTooShort = static_cast<LONG>(0xC0000004);

size_t CountHandles() {
    using Query = LONG WINAPI(int, void*, ULONG, ULONG*);
    static auto* const query = reinterpret_cast<Query*>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<char> memory(1 << 16);
    LONG status = 0;
    while ((status = query(kExtendedHandleInformation, memory.data(),
                           static_cast<ULONG>(memory.size()), nullptr)) == kTooShort) {
        memory.resize(memory.size() * 2);
    }
    EXPECT_EQ(0, status) << "the system does not tell its handles";
    if (status != 0) return 0;
    const auto* table = reinterpret_cast<const HandleTable*>(memory.data());
    size_t count = 0;
    for (ULONG_PTR i = 0; i < table->count; ++i) {
        if (table->entries[i].process == GetCurrentProcessId()) ++count;
    }
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
