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

void Thread::Close() {
    if (handle_ == nullptr) return;
    CloseHandle(handle_);
    handle_ = nullptr;
}

}  // namespace kavrel
