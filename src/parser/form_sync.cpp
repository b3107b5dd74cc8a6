#include "parser/form_sync.h"

#include <utility>

namespace kavrel {

FormSync::FormSync(Machine& machine, ErrorSlot& error)
    : window_(machine.MakeClientWindow(&FormSync::Take, this, error)) {
    if (!HasWindow()) error.Set(kErrorWindow, Message::WindowMissing);
}

FormSync::~FormSync() {
    window_.reset();
    std::unique_ptr<Pending> pending;
    {
        const LibraryLockScope lock;
        pending = std::move(oldest_);
    }
    // One after the other: a chain of any length must not be a recursion of that depth.
    while (pending != nullptr)
        pending = std::move(pending->next);
}

void FormSync::Run(HandOver& handOver) {
    auto& target = static_cast<HandOverTarget&>(*handOver.target);
    target.OnHandOver(handOver.selector, std::move(handOver.argument));
}

void FormSync::Post(Ref<HandOverTarget> target, std::uint32_t selector, Ref<Record> argument) {
    if (!HasWindow()) return;
    auto pending = std::make_unique<Pending>();
    pending->handOver = {&FormSync::Run, std::move(target), selector, std::move(argument)};

    std::unique_ptr<Pending> refused;
    const LibraryLockScope lock;
    const std::uint32_t key = ++lastKey_;
    pending->key = key;
    std::unique_ptr<Pending>& end = newest_ != nullptr ? newest_->next : oldest_;
    newest_ = pending.get();
    end = std::move(pending);
    // Posted under the lock, so that messages are in the order of the table.
    if (!window_->Post(key)) refused = Unlink(key);
}

HandOver FormSync::Take(void* context, std::uint32_t key) {
    auto& self = *static_cast<FormSync*>(context);
    const std::unique_ptr<Pending> pending = self.Unlink(key);
    return pending != nullptr ? std::move(pending->handOver) : HandOver{};
}

std::unique_ptr<FormSync::Pending> FormSync::Unlink(std::uint32_t key) {
    Pending* before = nullptr;
    std::unique_ptr<Pending>* link = &oldest_;
    while (*link != nullptr && (*link)->key != key) {
        before = link->get();
        link = &before->next;
    }
    std::unique_ptr<Pending> found = std::move(*link);
    if (found == nullptr) return nullptr;
    *link = std::move(found->next);
    if (newest_ == found.get()) newest_ = before;
    return found;
}

}  // namespace kavrel
