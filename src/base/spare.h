// Spare: a record that has come back, to be filled anew instead of making another one.
//
// A stream of results costs no memory of its own while its receivers look at each and let go of it,
// as nearly all of them do. A record that somebody keeps is never touched again.
//
// Thread safety: none. Records may come back from any thread.
#pragma once

#include <utility>

#include "base/record.h"

namespace kavrel {

// The part of a spare that is the same for every type of record.
class SpareRecord {
  public:
    // Keeps a record that nobody else refers to; lets go of any other, and of null.
    // REQUIRES: the record is of the spare's type.
    void GiveBack(Ref<Record> record) {
        if (record && record.IsOnly()) spare_ = std::move(record);
    }

  protected:
    Ref<Record> spare_;
};

// A T is made by the same arguments as it is filled anew: T(args...), void T::Assign(args...).
template <typename T>
class Spare : public SpareRecord {
  public:
    template <typename... Args>
    Ref<T> Make(Args&&... args) {
        if (!spare_) return MakeRef<T>(std::forward<Args>(args)...);
        Ref<T> record = Ref<T>::Adopt(static_cast<T*>(spare_.Detach()));
        record->Assign(std::forward<Args>(args)...);
        return record;
    }
};

}  // namespace kavrel
