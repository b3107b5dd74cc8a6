// PlainDispatch: an object of a client's own, with as much of IDispatch as tests need.
#pragma once

#include <oaidl.h>

namespace kavrel::tests {

class PlainDispatch : public IDispatch {
  public:
    PlainDispatch(const PlainDispatch&) = delete;
    PlainDispatch& operator=(const PlainDispatch&) = delete;

    ULONG references() const { return references_; }

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool isOffered = id == IID_IUnknown || Offers(id);
        *object = isOffered ? this : nullptr;
        if (isOffered) AddRef();
        return isOffered ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

  protected:
    PlainDispatch() = default;  // without a reference: the first is its maker's
    virtual ~PlainDispatch() = default;

    // Which interfaces it answers for besides IUnknown.
    virtual bool Offers(REFIID id) const { return id == IID_IDispatch; }

  private:
    ULONG references_ = 0;
};

}  // namespace kavrel::tests
