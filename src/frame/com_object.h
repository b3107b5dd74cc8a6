// ComObject: the reference count and the identity of a COM object with one interface.
#pragma once

#include <unknwn.h>
#include <windows.h>

namespace kavrel {

// Starts with one reference, its maker's.
template <typename Interface>
class ComObject : public Interface {
  public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHOD(QueryInterface)(REFIID id, void** object) final {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, interfaceId_)) return E_NOINTERFACE;
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }

    STDMETHOD_(ULONG, AddRef)() final {
        return static_cast<ULONG>(InterlockedIncrement(&referenceCount_));
    }

    STDMETHOD_(ULONG, Release)() final {
        const LONG count = InterlockedDecrement(&referenceCount_);
        if (count == 0) delete this;
        return static_cast<ULONG>(count);
    }

  protected:
    explicit ComObject(REFIID interfaceId) : interfaceId_(interfaceId) {}
    virtual ~ComObject() = default;

  private:
    const IID& interfaceId_;
    LONG referenceCount_ = 1;
};

}  // namespace kavrel
