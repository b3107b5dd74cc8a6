// FormSync: hands operations over to the thread that made it, by the hidden window that it owns.
//
// Thread safety: Post may be called from any thread. The table of what is on its way is guarded by
// the library lock, which is never held while an operation runs.
// Invariant: operations run in the order of posting, each at most once, and none after the object
// is gone.
#pragma once

#include <cstdint>
#include <memory>

#include "base/record.h"
#include "platform/machine.h"

namespace kavrel {

// What hand-overs are addressed to.
class HandOverTarget : public Record {
  public:
    // Runs on the thread that made the FormSync. The selector is the one that was posted.
    virtual void OnHandOver(std::uint32_t selector, Ref<Record> argument) = 0;
};

class FormSync {
  public:
    // On the client's thread. Errors: 10018 "Could not create window"; nothing is ever posted then.
    FormSync(Machine& machine, ErrorSlot& error);
    ~FormSync();
    FormSync(const FormSync&) = delete;
    FormSync& operator=(const FormSync&) = delete;

    // What the platform's queue of messages does not take (10000 messages on desktops) is dropped.
    void Post(Ref<HandOverTarget> target, std::uint32_t selector, Ref<Record> argument);

    bool HasWindow() const { return window_ != nullptr; }

  private:
    struct Pending {
        std::uint32_t key;
        HandOver handOver;
        std::unique_ptr<Pending> next;
    };

    static void Run(HandOver& handOver);
    static HandOver Take(void* context, std::uint32_t key) KAVREL_REQUIRES(libraryLock);

    std::unique_ptr<Pending> Unlink(std::uint32_t key) KAVREL_REQUIRES(libraryLock);

    // Nearly always the oldest is asked for, and a new one goes to the end.
    std::unique_ptr<Pending> oldest_ KAVREL_GUARDED_BY(libraryLock);
    Pending* newest_ KAVREL_GUARDED_BY(libraryLock) = nullptr;
    std::uint32_t lastKey_ KAVREL_GUARDED_BY(libraryLock) = 0;

    // Destroyed first: from then on nothing is taken any more.
    std::unique_ptr<ClientWindow> window_;
};

}  // namespace kavrel
