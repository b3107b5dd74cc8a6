// ParserEventLink: the way of an event from the parser record to the object that wraps it.
//
// The record may be about to raise an event, on its reader thread, while another thread drops the
// last reference to the object. The link outlives both and knows whether the object is still there.
//
// Thread safety: any thread.
#pragma once

#include "base/record.h"
#include "frame/com_ref.h"
#include "platform/lock.h"

namespace kavrel {

template <typename Object>
class ParserEventLink final : public Record {
  public:
    // For the object, on its beginning.
    void Tie(Object* object) {
        const LockScope scope(lock_);
        object_ = object;
    }

    // The object with a reference to it; null when it is gone or going.
    ComRef<Object> Lock() {
        const LockScope scope(lock_);
        const bool isAlive = object_ != nullptr && object_->AddReferenceUnlessLast();
        return isAlive ? ComRef<Object>::Adopt(object_) : ComRef<Object>();
    }

    // For the object, on its end.
    void Cut() {
        const LockScope scope(lock_);
        object_ = nullptr;
    }

  private:
    kavrel::Lock lock_;
    Object* object_ KAVREL_GUARDED_BY(lock_) = nullptr;
};

}  // namespace kavrel
