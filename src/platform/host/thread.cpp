#include "platform/thread.h"

#include <pthread.h>

#include <atomic>

#include "platform/host/thread_failure.h"

namespace kavrel {
namespace {

std::atomic<int> startsUntilFailure;
std::atomic<std::uint32_t> startError;

struct Beginning {
    ThreadEntry entry;
    void* argument;
};

void* Begin(void* parameter) {
    const Beginning beginning = *static_cast<Beginning*>(parameter);
    delete static_cast<Beginning*>(parameter);
    beginning.entry(beginning.argument);
    return nullptr;
}

}  // namespace

void FailThreadStart(int nth, std::uint32_t error) {
    startError = error;
    startsUntilFailure = nth;
}

std::uint32_t Thread::Start(ThreadEntry entry, void* argument, const char* name) {
    // Stays at or below 0 once a failure was had, or was never asked for.
    if (startsUntilFailure > 0 && --startsUntilFailure == 0) return startError;

    pthread_t thread{};
    auto* const beginning = new Beginning{entry, argument};
    const int result = pthread_create(&thread, nullptr, Begin, beginning);
    if (result != 0) {
        delete beginning;
        return static_cast<std::uint32_t>(result);
    }
    pthread_setname_np(thread, name);
    pthread_detach(thread);
    handle_ = this;  // a detached thread needs no handle; this only says "started"
    return 0;
}

void Thread::Close() {
    handle_ = nullptr;
}

}  // namespace kavrel
