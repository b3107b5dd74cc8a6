// BlockQueue: what a worker thread hands on, records of one kind in the order of pushing.
#pragma once

#include <utility>

#include "base/locked_queue.h"
#include "base/record.h"

namespace kavrel {

// Thread safety: every member may be called from any thread that does not hold the library lock.
template <typename Block>
class BlockQueue {
  public:
    // False, and the block is dropped, while the queue does not accept blocks: then nobody need be
    // told of it.
    bool Push(Ref<Block> block) { return queue_.Push(std::move(block)); }

    // The oldest block, or null.
    Ref<Block> Pop() { return queue_.Pop().value_or(nullptr); }

    void Clear() { queue_.Clear(); }

    // A queue accepts blocks from the start. Refusing them also empties it.
    void SetAccepting(bool accept) { queue_.SetAccepting(accept); }
    bool IsAccepting() const { return queue_.IsAccepting(); }

  private:
    LockedQueue<Ref<Block>> queue_;
};

}  // namespace kavrel
