#include "wscript_object.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <utility>

#include "text.h"

namespace scripthost {

namespace {

// The object in `value`, following one reference, or null.
IDispatch* ObjectIn(const VARIANT& value) {
    const VARIANT& target = V_VT(&value) == (VT_BYREF | VT_VARIANT) ? *V_VARIANTREF(&value) : value;
    if (V_VT(&target) == VT_DISPATCH) return V_DISPATCH(&target);
    if (V_VT(&target) == (VT_BYREF | VT_DISPATCH)) return *V_DISPATCHREF(&target);
    return nullptr;
}

void DispatchWaitingMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

}  // namespace

struct WScriptObject::Member {
    const wchar_t* name;
    size_t leastArguments;
    size_t mostArguments;
    HRESULT (WScriptObject::*call)(const Arguments&, VARIANT*);
};

// The DISPID of a member is its place here, counted from 1.
const WScriptObject::Member WScriptObject::kMembers[] = {
    {L"Echo", 0, SIZE_MAX, &WScriptObject::Echo},
    {L"Quit", 0, 1, &WScriptObject::Quit},
    {L"Sleep", 1, 1, &WScriptObject::Sleep},
    {L"Arg", 1, 1, &WScriptObject::Arg},
    {L"ConnectObject", 2, 2, &WScriptObject::ConnectObject},
    {L"DisconnectObject", 1, 1, &WScriptObject::DisconnectObject},
};

void EndProcess(UINT exitCode) {
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), exitCode);
    std::abort();
}

WScriptObject::WScriptObject(std::vector<std::wstring> arguments, EventSinks* sinks)
    : arguments_(std::move(arguments)), sinks_(sinks) {}

STDMETHODIMP WScriptObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    for (UINT i = 0; i < count; ++i)
        ids[i] = DISPID_UNKNOWN;
    if (count != 1) return DISP_E_UNKNOWNNAME;
    for (size_t i = 0; i < std::size(kMembers); ++i) {
        if (_wcsicmp(names[0], kMembers[i].name) != 0) continue;
        ids[0] = static_cast<DISPID>(i + 1);
        return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP WScriptObject::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments,
                                   VARIANT* result, EXCEPINFO*, UINT*) {
    if (id < 1 || static_cast<size_t>(id) > std::size(kMembers)) return DISP_E_MEMBERNOTFOUND;
    const Member& member = kMembers[id - 1];
    if (arguments->cArgs < member.leastArguments || arguments->cArgs > member.mostArguments) {
        return DISP_E_BADPARAMCOUNT;
    }
    // IDispatch passes the last argument first.
    Arguments inOrder;
    for (UINT i = arguments->cArgs; i-- > 0;)
        inOrder.push_back(&arguments->rgvarg[i]);
    VARIANT unused;
    if (result == nullptr) result = &unused;
    VariantInit(result);
    const HRESULT status = (this->*member.call)(inOrder, result);
    if (result == &unused) VariantClear(&unused);
    return status;
}

HRESULT WScriptObject::Echo(const Arguments& arguments, VARIANT*) {
    std::wstring line;
    for (const VARIANT* value : arguments) {
        const std::optional<std::wstring> text = ToText(*value);
        if (!text) return DISP_E_TYPEMISMATCH;
        if (value != arguments.front()) line += L' ';
        line += *text;
    }
    PrintLine(stdout, line);
    return S_OK;
}

HRESULT WScriptObject::Quit(const Arguments& arguments, VARIANT*) {
    const std::optional<LONG> exitCode = arguments.empty() ? 0 : ToInteger(*arguments[0]);
    if (!exitCode) return DISP_E_TYPEMISMATCH;
    sinks_->DisconnectAll();
    EndProcess(static_cast<UINT>(*exitCode));
}

HRESULT WScriptObject::Sleep(const Arguments& arguments, VARIANT*) {
    const std::optional<LONG> milliseconds = ToInteger(*arguments[0]);
    if (!milliseconds || *milliseconds < 0) return E_INVALIDARG;
    const DWORD start = GetTickCount();
    const DWORD total = static_cast<DWORD>(*milliseconds);
    DispatchWaitingMessages();
    for (DWORD passed = 0; passed < total; passed = GetTickCount() - start) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, total - passed, QS_ALLINPUT);
        DispatchWaitingMessages();
    }
    return S_OK;
}

HRESULT WScriptObject::Arg(const Arguments& arguments, VARIANT* result) {
    const std::optional<LONG> index = ToInteger(*arguments[0]);
    if (!index || *index < 0 || static_cast<size_t>(*index) >= arguments_.size()) {
        return DISP_E_BADINDEX;
    }
    V_VT(result) = VT_BSTR;
    V_BSTR(result) = SysAllocString(arguments_[static_cast<size_t>(*index)].c_str());
    return S_OK;
}

HRESULT WScriptObject::ConnectObject(const Arguments& arguments, VARIANT*) {
    IDispatch* object = ObjectIn(*arguments[0]);
    std::optional<std::wstring> prefix = ToText(*arguments[1]);
    if (object == nullptr || !prefix) return DISP_E_TYPEMISMATCH;
    return sinks_->Connect(object, *std::move(prefix));
}

HRESULT WScriptObject::DisconnectObject(const Arguments& arguments, VARIANT*) {
    IDispatch* object = ObjectIn(*arguments[0]);
    if (object == nullptr) return DISP_E_TYPEMISMATCH;
    sinks_->Disconnect(object);
    return S_OK;
}

}  // namespace scripthost
