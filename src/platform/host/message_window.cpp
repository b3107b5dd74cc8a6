#include "platform/host/message_window.h"

#include <algorithm>
#include <memory>

namespace kavrel {

class MessageQueue::Window final : public ClientWindow {
  public:
    Window(MessageQueue& queue, TakeHandOver take, void* context)
        : queue_(queue), take_(take), context_(context) {
        const LibraryLockScope lock;
        number_ = ++queue_.lastWindow_;
        queue_.windows_.push_back(this);
    }
    ~Window() override {
        const LibraryLockScope lock;
        std::erase(queue_.windows_, this);
    }

    // Called with the library lock held.
    bool Post(std::uint32_t key) override KAVREL_REQUIRES(libraryLock) {
        if (queue_.messages_.size() >= queue_.limit_) return false;
        queue_.messages_.push_back({number_, key});
        return true;
    }

    MessageQueue& queue_;
    const TakeHandOver take_;
    void* const context_;
    std::uint32_t number_ = 0;
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
        const auto window = std::ranges::find(windows_, message.window, &Window::number_);
        if (window != windows_.end()) handOver = (*window)->take_((*window)->context_, message.key);
    }
    if (handOver.run != nullptr) handOver.run(handOver);
    return true;
}

}  // namespace kavrel
