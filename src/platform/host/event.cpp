#include "platform/event.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace kavrel {
namespace {

// One condition for all events keeps waiting on several simple; tests do not mind the herd.
std::mutex mutex;
std::condition_variable anyChanged;

struct State {
    bool isSignalled = false;
};

bool& IsSignalled(void* handle) {
    return static_cast<State*>(handle)->isSignalled;
}

}  // namespace

Event::Event(EventTag tag) : handle_(new State), tag_(tag) {}

Event::~Event() {
    delete static_cast<State*>(handle_);
}

void Event::Signal() {
    const std::lock_guard lock(mutex);
    IsSignalled(handle_) = true;
    anyChanged.notify_all();
}

void Event::Reset() {
    const std::lock_guard lock(mutex);
    IsSignalled(handle_) = false;
}

bool Event::Wait(std::uint32_t timeoutMs) {
    Event* const self = this;
    return WaitAny({&self, 1}, timeoutMs).has_value();
}

std::optional<std::size_t> WaitAny(std::span<Event* const> events, std::uint32_t timeoutMs) {
    std::optional<std::size_t> signalled;
    const auto find = [&] {
        for (std::size_t i = 0; i < events.size(); ++i) {
            if (!IsSignalled(events[i]->handle_)) continue;
            signalled = i;
            return true;
        }
        return false;
    };

    std::unique_lock lock(mutex);
    if (timeoutMs == kWaitForever) {
        anyChanged.wait(lock, find);
    } else {
        anyChanged.wait_for(lock, std::chrono::milliseconds(timeoutMs), find);
    }
    return signalled;
}

}  // namespace kavrel
