#include "platform/thread.h"

#include <windows.h>

#include <new>

namespace kavrel {
namespace {

struct Beginning {
    ThreadEntry entry;
    void* argument;
};

DWORD WINAPI Begin(void* parameter) {
    const Beginning beginning = *static_cast<Beginning*>(parameter);
    delete static_cast<Beginning*>(parameter);
    beginning.entry(beginning.argument);
    return 0;
}

}  // namespace

std::uint32_t Thread::Start(ThreadEntry entry, void* argument, const char* /*name*/) {
    auto* const beginning = new (std::nothrow) Beginning{entry, argument};
    if (beginning == nullptr) return ERROR_NOT_ENOUGH_MEMORY;

    DWORD id = 0;
    handle_ = CreateThread(nullptr, 0, Begin, beginning, 0, &id);
    if (handle_ != nullptr) return 0;

    const std::uint32_t error = GetLastError();
    delete beginning;
    return error;
}

// A thread that has said that it is done still runs the last of the DLL's instructions, and the
// client may be about to unload the DLL. The limit is for a client that stops it while it holds the
// loader's lock, without which no thread ends.
void Thread::Close() {
    constexpr DWORD kEndLimitMs = 500;
    if (handle_ == nullptr) return;
    WaitForSingleObject(handle_, kEndLimitMs);
    CloseHandle(handle_);
    handle_ = nullptr;
}

}  // namespace kavrel
