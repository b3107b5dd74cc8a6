// LockedQueue: first in, first out, for items that one thread hands to another.
#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "base/library_lock.h"

namespace kavrel {

// Items are moved in and out, so that no reference is copied or dropped under the library lock.
// Thread safety: every member may be called from any thread that does not hold the library lock.
// Invariants: `newest_` is the last node of the chain that `oldest_` owns, or null as that is.
template <typename Item>
class LockedQueue {
  public:
    LockedQueue() = default;
    ~LockedQueue() { Clear(); }
    LockedQueue(const LockedQueue&) = delete;
    LockedQueue& operator=(const LockedQueue&) = delete;

    // False, and the item is gone, while the queue does not accept items.
    bool Push(Item item) {
        auto node = std::make_unique<Node>(Node{std::move(item), nullptr});
        const LibraryLockScope lock;  // released before a refused node is dropped
        if (!isAccepting_) return false;
        std::unique_ptr<Node>& end = newest_ != nullptr ? newest_->next : oldest_;
        newest_ = node.get();
        end = std::move(node);
        return true;
    }

    // The oldest item, or nothing.
    std::optional<Item> Pop() {
        std::unique_ptr<Node> node = Unlink();
        if (node == nullptr) return std::nullopt;
        return std::move(node->item);
    }

    void Clear() { Drop(Detach()); }

    // A queue accepts items from the start. Refusing them also empties it.
    void SetAccepting(bool accept) {
        std::unique_ptr<Node> refused;
        {
            const LibraryLockScope lock;
            isAccepting_ = accept;
            if (!accept) refused = DetachLocked();
        }
        Drop(std::move(refused));
    }
    bool IsAccepting() const {
        const LibraryLockScope lock;
        return isAccepting_;
    }

  private:
    struct Node {
        Item item;
        std::unique_ptr<Node> next;
    };

    std::unique_ptr<Node> Unlink() {
        const LibraryLockScope lock;
        std::unique_ptr<Node> node = std::move(oldest_);
        if (node == nullptr) return nullptr;
        oldest_ = std::move(node->next);
        if (oldest_ == nullptr) newest_ = nullptr;
        return node;
    }

    std::unique_ptr<Node> DetachLocked() KAVREL_REQUIRES(libraryLock) {
        newest_ = nullptr;
        return std::move(oldest_);
    }
    std::unique_ptr<Node> Detach() {
        const LibraryLockScope lock;
        return DetachLocked();
    }

    // One by one: a long chain that dropped itself would be as deep on the stack.
    static void Drop(std::unique_ptr<Node> chain) {
        while (chain != nullptr)
            chain = std::move(chain->next);
    }

    std::unique_ptr<Node> oldest_ KAVREL_GUARDED_BY(libraryLock);
    Node* newest_ KAVREL_GUARDED_BY(libraryLock) = nullptr;
    bool isAccepting_ KAVREL_GUARDED_BY(libraryLock) = true;
};

}  // namespace kavrel
