// What the C++ hosts here share: variants, a sink for events, and fixes as text.
#pragma once

#include <ocidl.h>
#include <oleauto.h>
#include <windows.h>

#include <string>

#include "KavrelCE_h.h"

namespace host {

// Plain characters only, which is all that the library gives.
std::string Narrow(const wchar_t* text);

// Owns a variant.
struct Var : VARIANT {
    Var() { VariantInit(this); }
    explicit Var(const std::string& text) {
        vt = VT_BSTR;
        bstrVal = SysAllocString(std::wstring(text.begin(), text.end()).c_str());
    }
    explicit Var(LONG number) {
        vt = VT_I4;
        lVal = number;
    }
    ~Var() { VariantClear(this); }
    Var(const Var&) = delete;
    Var& operator=(const Var&) = delete;
};

// The dispids of _INmeaParserEvents that the hosts here heed.
enum Event : DISPID { kGeneric = 1, kOnSatellites = 5, kOnGpsFix = 6, kOnComStatus = 9 };

// Receives the events of a parser while it is connected. Lives on the stack, so its count does not
// matter.
class EventSink : public IDispatch {
  public:
    virtual ~EventSink() { Disconnect(); }

    // Not at the same time to two parsers. REQUIRES: disconnected before the parser is released.
    HRESULT Connect(INmeaParser* parser);
    void Disconnect();

    STDMETHODIMP QueryInterface(REFIID id, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                        EXCEPINFO*, UINT*) override;

  protected:
    // The object is the event's own: the last argument.
    virtual void OnEvent(DISPID event, IDispatch* object) = 0;

  private:
    IConnectionPoint* point_ = nullptr;
    DWORD cookie_ = 0;
};

// "fix of type 3 at 6/1/2026 12:00:00 PM, 47 30'0.35 N 8 43'0.66 E"
std::string DescribeFix(IDispatch* fix);

// Null, with a message on stderr, when the library is not registered.
INmeaParser* CreateParser();

// Tells what the failed call left as the thread's error.
void PrintLastError(HRESULT result);

}  // namespace host
