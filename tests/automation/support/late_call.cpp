#include "automation/support/late_call.h"

#include <gtest/gtest.h>
#include <ole2.h>
#include <wrl/client.h>

#include <algorithm>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

std::optional<std::wstring> Take(BSTR text) {
    if (text == nullptr) return std::nullopt;
    std::wstring taken(text, SysStringLen(text));
    SysFreeString(text);
    return taken;
}

// A late-bound call by `invoke`, with everything that it reads and writes.
template <typename Invoke>
CallResult CallBy(const Invoke& invoke, WORD kinds, const Arguments& arguments) {
    // Arguments stand reversed, the named ones first.
    std::vector<VARIANT> variants;
    for (auto at = arguments.values.rbegin(); at != arguments.values.rend(); ++at)
        variants.push_back(*at->get());
    std::vector<DISPID> names(arguments.names.rbegin(), arguments.names.rend());
    DISPPARAMS parameters = {variants.data(), names.data(), static_cast<UINT>(variants.size()),
                             static_cast<UINT>(names.size())};
    const bool isPut = (kinds & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    CallResult call;
    EXCEPINFO exception = {};
    call.status =
        invoke(&parameters, isPut ? nullptr : call.value.get(), &exception, &call.argumentError);
    call.failure = call.status;
    if (call.status != DISP_E_EXCEPTION) return call;

    call.failure = exception.scode;
    ErrorReport& report = call.error.emplace();
    report.source = Take(exception.bstrSource);
    report.description = Take(exception.bstrDescription).value_or(L"");
    Take(exception.bstrHelpFile);
    return call;
}

}  // namespace

std::optional<ErrorReport> TakeErrorObject() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, &info) != S_OK) return std::nullopt;
    ErrorReport report;
    BSTR text = nullptr;
    if (SUCCEEDED(info->GetSource(&text))) report.source = Take(std::exchange(text, nullptr));
    if (SUCCEEDED(info->GetDescription(&text))) report.description = Take(text).value_or(L"");
    info->GetGUID(&report.interfaceId);
    return report;
}

CallResult InvokeById(IDispatch* object, DISPID id, WORD kinds, const Arguments& arguments) {
    const auto invoke = [&](auto... rest) {
        return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kinds, rest...);
    };
    return CallBy(invoke, kinds, arguments);
}

CallResult InvokeByTypeInfo(IDispatch* object, DISPID id, WORD kinds, const Arguments& arguments) {
    ComPtr<ITypeInfo> type;
    object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type);
    const auto invoke = [&](auto... rest) { return type->Invoke(object, id, kinds, rest...); };
    return CallBy(invoke, kinds, arguments);
}

CallResult CallVtable(IDispatch* object, const TypeDescription& type,
                      const MemberDescription& member, const Vars& arguments) {
    CallResult call;
    ComPtr<IUnknown> dual;
    call.failure = object->QueryInterface(type.id, reinterpret_cast<void**>(dual.GetAddressOf()));
    if (FAILED(call.failure)) return call;

    Vars passed = arguments;
    passed.resize(member.parameters.size(), Var::Missing());
    std::vector<VARTYPE> types;
    std::vector<VARIANT*> pointers;
    for (size_t i = 0; i < passed.size(); ++i) {
        const bool isIn = member.parameters[i].starts_with("[in");
        if (!isIn && i >= arguments.size()) {
            call.value = L"held before";
            passed[i] = Var::To(call.value);
        }
        types.push_back(isIn ? VT_VARIANT : VT_BYREF | VT_VARIANT);
        pointers.push_back(passed[i].get());
    }
    VARIANT returned;
    VariantInit(&returned);
    call.status = DispCallFunc(dual.Get(), static_cast<ULONG_PTR>(member.slot) * sizeof(void*),
                               CC_STDCALL, VT_ERROR, static_cast<UINT>(types.size()), types.data(),
                               pointers.data(), &returned);
    call.failure = SUCCEEDED(call.status) ? V_ERROR(&returned) : call.status;
    if (FAILED(call.failure)) call.error = TakeErrorObject();
    return call;
}

DISPID IdOf(IDispatch* object, const wchar_t* name) {
    DISPID id = DISPID_UNKNOWN;
    auto* text = const_cast<LPOLESTR>(name);
    object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

CallResult Call(IDispatch* object, const wchar_t* name, const Vars& arguments) {
    return InvokeById(object, IdOf(object, name), DISPATCH_METHOD, {arguments, {}});
}

CallResult Get(IDispatch* object, const wchar_t* name, const Vars& arguments) {
    return InvokeById(object, IdOf(object, name), DISPATCH_PROPERTYGET, {arguments, {}});
}

CallResult Put(IDispatch* object, const wchar_t* name, const Var& value) {
    return InvokeById(object, IdOf(object, name), DISPATCH_PROPERTYPUT,
                      {{value}, {DISPID_PROPERTYPUT}});
}

const TypeDescription& InterfaceNamed(const std::string& name) {
    const std::vector<TypeDescription>& types = DescribeTypeLibrary();
    const auto found = std::ranges::find(types, name, &TypeDescription::name);
    static const TypeDescription kNone;
    EXPECT_NE(types.end(), found) << "no interface " << name;
    return found != types.end() ? *found : kNone;
}

}  // namespace kavrel::tests
