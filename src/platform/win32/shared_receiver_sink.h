// SharedReceiverSink: where the receiver-sharing product raises its events.
#pragma once

#include <oaidl.h>
#include <windows.h>

#include "platform/lock.h"
#include "platform/shared_receiver.h"
#include "platform/win32/module_lock.h"

namespace kavrel {

// Passes the product's data event on to a listener, and takes every other event without a word.
// The product may hold the sink longer than the listener lives, and the DLL stays for as long.
// Starts with one reference, its maker's.
// Thread safety: every member may be called from any thread.
class SharedReceiverSink final : public IDispatch {
  public:
    explicit SharedReceiverSink(SharedReceiverListener& listener) : listener_(&listener) {
        LockModule();
    }
    SharedReceiverSink(const SharedReceiverSink&) = delete;
    SharedReceiverSink& operator=(const SharedReceiverSink&) = delete;

    // The listener is not called any more once this returns. Waits for a call that is under way on
    // another thread.
    void Detach();

    STDMETHOD(QueryInterface)(REFIID id, void** object) override;
    STDMETHOD_(ULONG, AddRef)() override;
    STDMETHOD_(ULONG, Release)() override;
    STDMETHOD(GetTypeInfoCount)(UINT* count) override;
    STDMETHOD(GetTypeInfo)(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHOD(GetIDsOfNames)
    (REFIID reserved, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHOD(Invoke)
    (DISPID id, REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
     EXCEPINFO* exception, UINT* wrongArgument) override;

  private:
    ~SharedReceiverSink() { UnlockModule(); }

    Lock lock_;  // held while the listener is called
    SharedReceiverListener* listener_ KAVREL_GUARDED_BY(lock_);
    LONG referenceCount_ = 1;
};

}  // namespace kavrel
