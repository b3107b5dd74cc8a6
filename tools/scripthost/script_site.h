#pragma once

#include <activscp.h>
#include <windows.h>
#include <wrl/client.h>

#include <atomic>
#include <string_view>

#include "com_object.h"

namespace scripthost {

// The host as the script engine sees it: gives out the one named item, `WScript`, and writes
// script errors with their line to stderr.
class ScriptSite : public ComObject<IActiveScriptSite, IActiveScriptSiteWindow> {
  public:
    // `wscript` is the object behind the name WScript.
    void SetNamedItem(IUnknown* wscript) { wscript_ = wscript; }

    // Writes a failure that the engine does not report itself.
    void ReportFailure(std::wstring_view message);

    // True once anything has been reported.
    bool failed() const { return failed_; }

    STDMETHODIMP GetLCID(LCID* lcid) override;
    STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item,
                             ITypeInfo** typeInfo) override;
    STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
    STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
    STDMETHODIMP OnScriptError(IActiveScriptError* error) override;
    STDMETHODIMP OnEnterScript() override { return S_OK; }
    STDMETHODIMP OnLeaveScript() override { return S_OK; }

    STDMETHODIMP GetWindow(HWND* window) override;
    STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }

  private:
    Microsoft::WRL::ComPtr<IUnknown> wscript_;
    std::atomic<bool> failed_ = false;  // a faulty source reports from its own thread
};

}  // namespace scripthost
