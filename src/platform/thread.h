// Starting a thread. What a thread does, and how it is asked to end, is its owner's business.
#pragma once

#include <cstdint>

namespace kavrel {

using ThreadEntry = void (*)(void* argument);

// One started thread. The owner must know that the thread is done (by an event of its own) before
// it closes the handle.
class Thread {
  public:
    Thread() = default;
    ~Thread() { Close(); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // Runs entry(argument) on a new thread. `name` is shown by debuggers of debug builds.
    // Returns 0, or the platform's error number when no thread could be made.
    // REQUIRES: not started, or closed since.
    std::uint32_t Start(ThreadEntry entry, void* argument, const char* name);

    // Lets the thread run its last instructions, which takes no time, and gives the handle back.
    void Close();

    bool IsStarted() const { return handle_ != nullptr; }

  private:
    void* handle_ = nullptr;
};

}  // namespace kavrel
