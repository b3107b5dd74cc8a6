#include "serial/worker_thread.h"

#include <utility>

namespace kavrel {

void WorkerThread::Start(ThreadOwner& owner, Ref<Record> argument) {
    error().Clear();
    if (thread_.IsStarted()) return;

    owner_ = &owner;
    argument_ = std::move(argument);
    isRunning_.store(true, std::memory_order_relaxed);
    begun_->Reset();
    finished_->Reset();
    if (const std::uint32_t failure = thread_.Start(Run, this, name_); failure != 0) {
        isRunning_.store(false, std::memory_order_relaxed);
        error().Set(failure, Message::ThreadNotCreated);
        return;
    }
    // Wine hangs a thread for good when a port is closed while the thread is being born.
    begun_->Wait(kWaitForever);
}

void WorkerThread::Run(void* thread) {
    auto& self = *static_cast<WorkerThread*>(thread);
    self.begun_->Signal();
    self.owner_->ThreadBody(self, self.argument_.get());
    self.finished_->Signal();
    // Whoever waited for that may have destroyed `self` by now.
}

void WorkerThread::Stop() {
    error().Clear();
    if (thread_.IsStarted()) {
        finished_->Wait(stopTimeoutMs_);
        finished_->Reset();
        thread_.Close();
    }
    owner_ = nullptr;
    isRunning_.store(false, std::memory_order_relaxed);
    argument_.Reset();
}

}  // namespace kavrel
