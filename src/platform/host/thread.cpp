#include "platform/thread.h"

#include <pthread.h>

namespace kavrel {
namespace {

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

std::uint32_t Thread::Start(ThreadEntry entry, void* argument, const char* name) {
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
