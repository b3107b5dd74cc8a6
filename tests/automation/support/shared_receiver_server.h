// SharedReceiverServer: a stand-in for the receiver-sharing product, of which it offers what the
// library uses, and does what a test says. The product is installed for a scope, in this program.
#pragma once

#include <ocidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <atomic>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/win32/shared_receiver_ids.h"

namespace kavrel::tests {

// The product's class, its only object, and the connection point of its events in one. Made on a
// thread of a single-threaded apartment, and known there and in the multithreaded apartment.
// Thread safety: every member may be called from any thread.
class SharedReceiverServer final : public SharedReceiverInterface,
                                   public IClassFactory,
                                   public IConnectionPointContainer,
                                   public IConnectionPoint {
  public:
    SharedReceiverServer();
    ~SharedReceiverServer();

    // What the method with this number answers, with an error object when there is a description.
    void Answer(int method, HRESULT status, const wchar_t* description);

    // The calls of methods so far: "6(1) 4() ".
    std::string calls() const;

    // Raises an event at the sink, on the calling thread; a null value leaves out the argument.
    void Raise(DISPID event, const VARIANT* value);
    void RaiseText(const std::wstring& text);

    // What the library holds of it, and it of the library.
    int references() const { return references_ - restReferences_; }
    using Sink = Microsoft::WRL::ComPtr<IDispatch>;
    Sink sink() const;

    std::atomic<bool> offersEvents = true;
    std::atomic<bool> keepsSink = false;  // and raises events at it when it was disconnected

    STDMETHODIMP QueryInterface(REFIID id, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references_); }
    STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references_); }

    STDMETHODIMP CreateInstance(IUnknown*, REFIID id, void** object) override {
        return QueryInterface(id, object);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

    STDMETHODIMP Method1(LONG argument) override { return Called(1, argument); }
    STDMETHODIMP Method2(LONG argument) override { return Called(2, argument); }
    STDMETHODIMP Method3() override { return Called(3, {}); }
    STDMETHODIMP Method4() override { return Called(4, {}); }
    STDMETHODIMP Method5() override { return Called(5, {}); }
    STDMETHODIMP Method6(LONG argument) override { return Called(6, argument); }

    STDMETHODIMP FindConnectionPoint(REFIID id, IConnectionPoint** point) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;

    // Never called.
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
    STDMETHODIMP GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer**) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

  private:
    static constexpr DWORD kCookie = 4711;

    HRESULT Called(int method, std::optional<LONG> argument);

    mutable std::mutex mutex_;
    std::map<int, std::pair<HRESULT, const wchar_t*>> answers_;
    std::string calls_;
    Sink sink_;
    std::atomic<int> references_ = 0;
    int restReferences_ = 0;  // those of the registrations
    DWORD cookie_ = 0;
    // Not latches: those of mingw miss a wake-up now and then.
    std::promise<void> isKnown_;
    std::promise<void> isOver_;
    std::thread elsewhere_;
};

}  // namespace kavrel::tests
