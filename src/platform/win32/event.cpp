#include "platform/event.h"

#include <windows.h>

#include <array>

#include "platform/win32/device.h"

namespace kavrel {

Event::Event(EventTag tag) : handle_(CreateEventW(nullptr, TRUE, FALSE, nullptr)), tag_(tag) {}

Event::~Event() {
    if (handle_ != nullptr) CloseHandle(handle_);
}

void Event::Signal() {
    SignalEvent(handle_);
}

void Event::Reset() {
    ResetEventSignal(handle_);
}

bool Event::Wait(std::uint32_t timeoutMs) {
    return WaitForSingleObject(handle_, timeoutMs) == WAIT_OBJECT_0;
}

std::optional<std::size_t> WaitAny(std::span<Event* const> events, std::uint32_t timeoutMs) {
    static_assert(kMaxWaitEvents == MAXIMUM_WAIT_OBJECTS);
    std::array<HANDLE, kMaxWaitEvents> handles;
    for (std::size_t i = 0; i < events.size(); ++i)
        handles[i] = events[i]->handle_;

    const DWORD result =
        WaitForMultipleObjects(static_cast<DWORD>(events.size()), handles.data(), FALSE, timeoutMs);
    if (result - WAIT_OBJECT_0 >= events.size()) return std::nullopt;
    return result - WAIT_OBJECT_0;
}

}  // namespace kavrel
