// Record: the reference-counted engine object. Ref<T>: one owned reference to one.
//
// Thread safety: reference counts change under the library lock. Everything else of a record is
// guarded by whoever owns it (a snapshot is complete before it is published and only read after).
// Invariants: the count starts at 1 and belongs to the Ref that MakeRef returns; at 0 the record is
// deleted. Raw pointers never own.
// Cost: moving a Ref and dropping the only one are free of the lock; copying one, and dropping one
// of several, take it. Hot paths move.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

#include "base/error_slot.h"

namespace kavrel {

class Record {
  public:
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    ErrorSlot& error() { return error_; }
    const ErrorSlot& error() const { return error_; }

    // Unique among the records alive until the counter wraps at 2^32.
    std::uint32_t serialNumber() const { return serialNumber_; }

    // The number of records alive in the process. A leak check: it must return to where it was.
    static std::int32_t LiveCount();

  protected:
    Record();
    virtual ~Record();

    // Called, without the library lock, when the last reference is about to be dropped.
    virtual void OnFinalRelease() {}

    // The slot holds a serial number until the record's owner gives it a meaning of its own.
    void OverwriteSerialNumber(std::uint32_t number) { serialNumber_ = number; }

  private:
    template <typename T>
    friend class Ref;

    // A count of 1 is the caller's own: nobody else can change it, so it needs no lock to be
    // believed.
    bool HasOneReference() const { return referenceCount_.load(std::memory_order_acquire) == 1; }
    void AddReference();
    void ReleaseReference();
    bool DropSharedReference();

    ErrorSlot error_;
    std::uint32_t serialNumber_;
    std::atomic<std::int32_t> referenceCount_{1};
};

template <typename T>
class Ref {
  public:
    Ref() = default;
    Ref(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): null converts like a pointer's

    Ref(const Ref& other) : record_(other.record_) { AddReference(); }
    Ref(Ref&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}

    template <typename U>
    Ref(Ref<U>&& other) noexcept : record_(other.Detach()) {}  // NOLINT: derived to base
    template <typename U>
    Ref(const Ref<U>& other) : record_(other.get()) {  // NOLINT: derived to base
        AddReference();
    }

    ~Ref() { Reset(); }

    Ref& operator=(Ref other) noexcept {
        std::swap(record_, other.record_);
        return *this;
    }

    // Takes over a reference that the caller owns.
    static Ref Adopt(T* record) {
        Ref ref;
        ref.record_ = record;
        return ref;
    }

    // A further reference to a record that somebody else keeps alive.
    static Ref Share(T* record) {
        Ref ref;
        ref.record_ = record;
        ref.AddReference();
        return ref;
    }

    // Gives the owned reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(record_, nullptr); }

    void Reset() {
        if (record_ != nullptr)
            static_cast<Record*>(std::exchange(record_, nullptr))->ReleaseReference();
    }

    // Whether nobody else refers to the record, so that it may be filled anew. REQUIRES: not null.
    bool IsOnly() const { return static_cast<const Record*>(record_)->HasOneReference(); }

    T* get() const { return record_; }
    T* operator->() const { return record_; }
    T& operator*() const { return *record_; }
    explicit operator bool() const { return record_ != nullptr; }
    bool operator==(const Ref& other) const { return record_ == other.record_; }

  private:
    void AddReference() {
        if (record_ != nullptr) static_cast<Record*>(record_)->AddReference();
    }

    T* record_ = nullptr;
};

template <typename T, typename... Args>
Ref<T> MakeRef(Args&&... args) {
    return Ref<T>::Adopt(new T(std::forward<Args>(args)...));
}

// For creation at the automation boundary: null when memory is short, instead of a stop.
template <typename T, typename... Args>
Ref<T> TryMakeRef(Args&&... args) {
    return Ref<T>::Adopt(new (std::nothrow) T(std::forward<Args>(args)...));
}

}  // namespace kavrel
