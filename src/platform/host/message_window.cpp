#include "platform/host/message_window.h"

#include <algorithm>
#include <memory>

namespace kavrel {

class MessageQueue::Window final : public ClientWindow {
  public:
    Window(MessageQueue& ofQueue, TakeHandOver toTake, void* withContext)
        : queue(ofQueue), take(toTake), context(withContext) {
        const LibraryLockScope lock;
        number = ++queue.lastWindow_;
        queue.windows_.push_back(this);
    }
    ~Window() override {
        const LibraryLockScope lock;
        std::erase(queue.windows_, this);
    }

    // Called with the library lock held.
    bool Post(std::uint32_t key) override KAVREL_REQUIRES(libraryLock) {
        if (queue.messages_.size() >= queue.limit_) return false;
        queue.messages_.push_back({number, key});
        return true;
    }

    MessageQueue& queue;
    const TakeHandOver take;
    void* const context;
    std::uint32_t number = 0;
};

std::unique_ptr<ClientWindow> MessageQueue::MakeWindow(TakeHandOver take, void* context) {
    return std::make_unique<Window>(*this, take, context);
}

std::size_t MessageQueue::Waiting() {
    const LibraryLockScope lock;
    return messages_.size();
}

bool MessageQueue::HandleOne() {
    HandOver handOver;
    {
        const LibraryLockScope lock;
        if (messages_.empty()) return false;
        const Message message = messages_.front();
        messages_.erase(messages_.begin());
        const auto window = std::ranges::find(windows_, message.window, &Window::number);
        if (window != windows_.end()) handOver = (*window)->take((*window)->context, message.key);
    }
    if (handOver.run != nullptr) handOver.run(handOver);
    return true;
}

}  // namespace kavrel
