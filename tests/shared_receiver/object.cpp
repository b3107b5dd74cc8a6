#include "shared_receiver/object.h"

#include <ocidl.h>
#include <olectl.h>

#include <atomic>

#include "platform/win32/shared_receiver_ids.h"
#include "shared_receiver/control.h"

namespace kavrel::tests {

namespace {

class StandInObject final : public SharedReceiverInterface, public IConnectionPointContainer {
  public:
    StandInObject() { Control::Get().ObjectMade(); }
    StandInObject(const StandInObject&) = delete;
    StandInObject& operator=(const StandInObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
            IsEqualIID(id, kSharedReceiverInterface)) {
            *object = static_cast<SharedReceiverInterface*>(this);
        } else if (IsEqualIID(id, IID_IConnectionPointContainer)) {
            *object = static_cast<IConnectionPointContainer*>(this);
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    // The product is called by its vtable only.
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        return E_NOTIMPL;
    }

    STDMETHODIMP Method1(LONG argument) override { return Control::Get().Called(1, argument); }
    STDMETHODIMP Method2(LONG argument) override { return Control::Get().Called(2, argument); }
    STDMETHODIMP Method3() override { return Control::Get().Called(3, {}); }
    STDMETHODIMP Method4() override { return Control::Get().Called(4, {}); }
    STDMETHODIMP Method5() override { return Control::Get().Called(5, {}); }
    STDMETHODIMP Method6(LONG argument) override { return Control::Get().Called(6, argument); }

    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    STDMETHODIMP FindConnectionPoint(REFIID id, IConnectionPoint** point) override {
        *point = nullptr;
        if (!IsEqualIID(id, kSharedReceiverEvents) || !Control::Get().OffersEvents())
            return CONNECT_E_NOCONNECTION;
        *point = &point_;
        AddRef();
        return S_OK;
    }

  private:
    // A part of the object, with the object's reference count.
    class Point final : public IConnectionPoint {
      public:
        explicit Point(StandInObject& owner) : owner_(owner) {}
        STDMETHODIMP QueryInterface(REFIID id, void** object) override {
            *object = nullptr;
            if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IConnectionPoint))
                return E_NOINTERFACE;
            *object = this;
            AddRef();
            return S_OK;
        }
        STDMETHODIMP_(ULONG) AddRef() override { return owner_.AddRef(); }
        STDMETHODIMP_(ULONG) Release() override { return owner_.Release(); }
        STDMETHODIMP GetConnectionInterface(IID* id) override {
            *id = kSharedReceiverEvents;
            return S_OK;
        }
        STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override {
            return E_NOTIMPL;
        }
        STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override {
            return Control::Get().Connect(sink, cookie);
        }
        STDMETHODIMP Unadvise(DWORD cookie) override { return Control::Get().Disconnect(cookie); }
        STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

      private:
        StandInObject& owner_;
    };

    ~StandInObject() { Control::Get().ObjectGone(); }

    std::atomic<ULONG> references_ = 1;
    Point point_{*this};
};

}  // namespace

HRESULT CreateStandInObject(REFIID id, void** object) {
    auto* const made = new StandInObject;
    const HRESULT status = made->QueryInterface(id, object);
    made->Release();
    return status;
}

}  // namespace kavrel::tests
