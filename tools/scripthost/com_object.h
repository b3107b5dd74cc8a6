#pragma once

#include <windows.h>

#include <atomic>

namespace scripthost {

// COM's own interfaces have no destructors; objects are only ever deleted by Release below.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Base of the host's COM objects: reference counting from 1 and QueryInterface over `Interfaces`.
// The first interface also answers for IUnknown.
template <typename First, typename... Others>
class ComObject : public First, public Others... {
  public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid == __uuidof(IUnknown)) *object = static_cast<First*>(this);
        Offer<First>(iid, object);
        (Offer<Others>(iid, object), ...);
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

  protected:
    virtual ~ComObject() = default;

  private:
    template <typename Interface>
    void Offer(REFIID iid, void** object) {
        if (iid == __uuidof(Interface)) *object = static_cast<Interface*>(this);
    }

    std::atomic<ULONG> references_ = 1;
};

#pragma GCC diagnostic pop

// Base of objects that scripts or event sources call by IDispatch without type information.
class DispatchObject : public ComObject<IDispatch> {
  public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
};

}  // namespace scripthost
