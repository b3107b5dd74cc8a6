#include "script_site.h"

#include <string>

#include "text.h"

namespace scripthost {

namespace {

// Takes the text out of an EXCEPINFO and frees it.
std::wstring Take(BSTR& text) {
    std::wstring copy(text == nullptr ? L"" : text);
    SysFreeString(text);
    text = nullptr;
    return copy;
}

}  // namespace

void ScriptSite::ReportFailure(std::wstring_view message) {
    failed_ = true;
    PrintLine(stderr, message);
}

STDMETHODIMP ScriptSite::GetLCID(LCID* lcid) {
    *lcid = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
    return S_OK;
}

STDMETHODIMP ScriptSite::GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item,
                                     ITypeInfo** typeInfo) {
    if (typeInfo != nullptr) *typeInfo = nullptr;
    if (item != nullptr) *item = nullptr;
    if (wcscmp(name, L"WScript") != 0) return TYPE_E_ELEMENTNOTFOUND;
    if ((mask & SCRIPTINFO_IUNKNOWN) != 0 && item != nullptr) wscript_.CopyTo(item);
    return S_OK;
}

STDMETHODIMP ScriptSite::OnScriptError(IActiveScriptError* error) {
    EXCEPINFO info = {};
    error->GetExceptionInfo(&info);
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    DWORD context = 0;
    ULONG line = 0;
    LONG column = 0;
    error->GetSourcePosition(&context, &line, &column);

    const DWORD code = static_cast<DWORD>(info.scode);
    ReportFailure(L"SCRIPT ERROR line " + std::to_wstring(line + 1) + L": 0x" + ToHex(code) +
                  L" '" + Take(info.bstrDescription) + L"' source '" + Take(info.bstrSource) +
                  L"'");
    Take(info.bstrHelpFile);
    return S_OK;
}

STDMETHODIMP ScriptSite::GetWindow(HWND* window) {
    *window = nullptr;
    return S_OK;
}

}  // namespace scripthost
