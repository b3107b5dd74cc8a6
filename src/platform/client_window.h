// ClientWindow: the way back to the thread that made it, by a hidden window and its messages.
#pragma once

#include <cstdint>

namespace kavrel {

// Receives a posted key on the thread that made the window. It may destroy the window.
using ClientWindowHandler = void (*)(void* context, std::uint32_t key);

// A window lives as long as its object. A key that is on its way then arrives nowhere.
class ClientWindow {
  public:
    virtual ~ClientWindow() = default;

    // Sends a key. Keys arrive in the order of posting, when the thread next looks for messages.
    // False when the platform refused. Any thread.
    virtual bool Post(std::uint32_t key) = 0;
};

}  // namespace kavrel
