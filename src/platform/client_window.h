// ClientWindow: the way back to the thread that made it, by a hidden window and its messages.
#pragma once

#include <cstdint>

#include "base/library_lock.h"
#include "base/record.h"

namespace kavrel {

// One operation that is handed over to another thread. It owns what it needs, so it can be run
// whatever became of the window it came through.
struct HandOver {
    // `run` receives the hand-over itself. Null: nothing to do.
    void (*run)(HandOver& handOver) = nullptr;
    Ref<Record> target;
    std::uint32_t selector = 0;
    Ref<Record> argument;
};

// Takes the hand-over of a key out of the table in which it waits; an empty one if the key is
// unknown. Called on the window's thread, with the library lock held: it moves references only.
using TakeHandOver = HandOver (*)(void* context, std::uint32_t key);

// A window lives as long as its object. A key that is on its way then arrives nowhere.
// Thread safety: destroyed on the thread that made it where possible; any other thread may.
class ClientWindow {
  public:
    virtual ~ClientWindow() = default;

    // Sends a key. Keys arrive in the order of posting, when the window's thread next looks for
    // messages. False when the platform refused. Called by any thread with the library lock held;
    // does not block.
    virtual bool Post(std::uint32_t key) KAVREL_REQUIRES(libraryLock) = 0;
};

}  // namespace kavrel
