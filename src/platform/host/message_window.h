// MessageWindow: a ClientWindow whose messages a test lets through when it likes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/client_window.h"

namespace kavrel {

// The queue of messages of one thread, which outlives its windows.
// Thread safety: every member may be called from any thread.
class MessageQueue {
  public:
    std::unique_ptr<ClientWindow> MakeWindow(TakeHandOver take, void* context);

    // Handles one message on the calling thread; false when none waits.
    bool HandleOne();

    // Handles messages until none waits.
    void HandleAll() {
        while (HandleOne()) {
        }
    }

    std::size_t Waiting();

    // From now on windows refuse to post when so many messages wait.
    void SetLimit(std::size_t limit) { limit_ = limit; }

  private:
    class Window;

    struct Message {
        std::uint32_t window;
        std::uint32_t key;
    };

    std::vector<Message> messages_ KAVREL_GUARDED_BY(libraryLock);
    std::vector<Window*> windows_ KAVREL_GUARDED_BY(libraryLock);
    std::uint32_t lastWindow_ KAVREL_GUARDED_BY(libraryLock) = 0;
    std::size_t limit_ = SIZE_MAX;
};

}  // namespace kavrel
