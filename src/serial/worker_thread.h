// WorkerThread: a thread that runs its owner's body and can be waited for.
#pragma once

#include <atomic>
#include <cstdint>

#include "base/record.h"
#include "platform/event.h"
#include "platform/thread.h"

namespace kavrel {

class WorkerThread;

// Whose work a WorkerThread does.
class ThreadOwner {
  public:
    // Runs on the thread until it returns; how it is asked to end is the owner's business.
    // `argument` is what Start was given, null if nothing; `thread` tells several threads apart.
    virtual void ThreadBody(WorkerThread& thread, Record* argument) = 0;

  protected:
    ~ThreadOwner() = default;
};

// Thread safety: Start and Stop are called by one thread at a time, never by the thread itself;
// IsRunning may be called from any thread.
// Invariants: between Start and the body's end, owner and argument are kept.
class WorkerThread final : public Record {
  public:
    // `name` is a literal; debuggers show it.
    explicit WorkerThread(const char* name) : name_(name) {}

    // False when memory was short at its making: then it must not be started.
    bool IsComplete() const {
        return begun_ && begun_->IsUsable() && finished_ && finished_->IsUsable();
    }

    // Runs owner.ThreadBody(*this, argument) on a new thread, and returns when that is on its way;
    // does nothing when there is one. Errors: the platform's number with "Could not create thread".
    // REQUIRES: the owner outlives the body.
    void Start(ThreadOwner& owner, Ref<Record> argument);

    // Waits for the body's end, at most for the stop time-out, and gives the thread back. Does not
    // ask the body to end: signal that first. When the time-out ran out, the caller must see to it
    // that the body ends before this object or the owner does.
    void Stop();

    // From Start until Stop, also when the body has ended.
    bool IsRunning() const { return isRunning_.load(std::memory_order_relaxed); }

    // Milliseconds; kWaitForever, the default, waits without limit.
    void SetStopTimeout(std::uint32_t ms) { stopTimeoutMs_ = ms; }

  private:
    static void Run(void* thread);

    const char* name_;
    Thread thread_;
    ThreadOwner* owner_ = nullptr;
    Ref<Record> argument_;
    Ref<Event> begun_ = TryMakeRef<Event>();
    Ref<Event> finished_ = TryMakeRef<Event>();
    std::atomic<bool> isRunning_{false};
    std::uint32_t stopTimeoutMs_ = kWaitForever;
};

}  // namespace kavrel
