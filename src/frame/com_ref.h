// ComRef<T>: owns one reference to a COM object.
#pragma once

#include <unknwn.h>

#include <cstddef>
#include <utility>

namespace kavrel {

template <typename T>
class ComRef {
  public:
    ComRef() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): null converts like a pointer's
    ComRef(std::nullptr_t) {}
    ComRef(const ComRef& other) : ComRef(Share(other.object_)) {}
    ComRef(ComRef&& other) noexcept : object_(other.Detach()) {}
    ~ComRef() { Reset(); }

    ComRef& operator=(ComRef other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    // Takes over a reference that the caller owns.
    static ComRef Adopt(T* object) {
        ComRef ref;
        ref.object_ = object;
        return ref;
    }

    // A further reference to an object that somebody else keeps alive.
    static ComRef Share(T* object) {
        if (object != nullptr) object->AddRef();
        return Adopt(object);
    }

    // Gives the owned reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(object_, nullptr); }

    void Reset() {
        if (object_ != nullptr) std::exchange(object_, nullptr)->Release();
    }

    // Where a function puts a new reference.
    T** Receive() {
        Reset();
        return &object_;
    }
    void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

  private:
    T* object_ = nullptr;
};

}  // namespace kavrel
