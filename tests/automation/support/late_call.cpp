#include "automation/support/late_call.h"

#include <gtest/gtest.h>
#include <ole2.h>
#include <wrl/client.h>

#include <algorithm>
#include <ostream>
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

// The arguments as IDispatch wants them: reversed, the named ones first.
class ReversedArguments {
  public:
    explicit ReversedArguments(const Arguments& arguments)
        : names_(arguments.names.rbegin(), arguments.names.rend()) {
        for (auto at = arguments.values.rbegin(); at != arguments.values.rend(); ++at) {
            variants_.push_back(*at->get());
        }
        parameters_ = {variants_.data(), names_.data(), static_cast<UINT>(variants_.size()),
                       static_cast<UINT>(names_.size())};
    }
    DISPPARAMS* get() { return &parameters_; }

  private:
    std::vector<VARIANT> variants_;
    std::vector<DISPID> names_;
    DISPPARAMS parameters_;
};

// Runs `invoke` with everything that an Invoke writes to, and collects that.
template <typename Invoke>
CallResult Collect(Invoke&& invoke) {
    CallResult call;
    EXCEPINFO exception = {};
    call.status = invoke(call.value.Receive(), &exception, &call.argumentError);
    call.failure = call.status;
    if (call.status != DISP_E_EXCEPTION) return call;

    call.failure = exception.scode;
    ErrorReport report;
    report.source = Take(exception.bstrSource);
    report.description = Take(exception.bstrDescription).value_or(L"");
    Take(exception.bstrHelpFile);
    call.error = std::move(report);
    return call;
}

bool IsIn(const std::string& parameter) {
    return parameter.starts_with("[in");
}
bool IsResult(const std::string& parameter) {
    return parameter.starts_with("[out retval]");
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

void PrintTo(const CallResult& result, std::ostream* out) {
    *out << "status 0x" << std::hex << static_cast<DWORD>(result.status) << " failure 0x"
         << static_cast<DWORD>(result.failure) << std::dec << " value " << Describe(result.value);
    if (result.error.has_value()) {
        *out << " error '" << Narrow(result.error->description) << "' source "
             << (result.error->source.has_value() ? Narrow(*result.error->source) : "none");
    }
}

CallResult InvokeById(IDispatch* object, DISPID id, WORD kinds, const Arguments& arguments) {
    ReversedArguments reversed(arguments);
    return Collect([&](VARIANT* value, EXCEPINFO* exception, UINT* argumentError) {
        const bool isPut = (kinds & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kinds, reversed.get(),
                              isPut ? nullptr : value, exception, argumentError);
    });
}

CallResult InvokeByTypeInfo(IDispatch* object, DISPID id, WORD kinds, const Arguments& arguments) {
    ComPtr<ITypeInfo> type;
    object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &type);
    ReversedArguments reversed(arguments);
    return Collect([&](VARIANT* value, EXCEPINFO* exception, UINT* argumentError) {
        const bool isPut = (kinds & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        return type->Invoke(object, id, kinds, reversed.get(), isPut ? nullptr : value, exception,
                            argumentError);
    });
}

CallResult CallVtable(IDispatch* object, REFIID interfaceId, const MemberDescription& member,
                      const Vars& arguments) {
    CallResult call;
    ComPtr<IUnknown> dual;
    call.failure =
        object->QueryInterface(interfaceId, reinterpret_cast<void**>(dual.GetAddressOf()));
    if (FAILED(call.failure)) return call;

    Vars passed = arguments;
    while (passed.size() < member.parameters.size())
        passed.push_back(Var::Missing());
    std::vector<VARTYPE> types;
    std::vector<VARIANT*> pointers;
    for (size_t i = 0; i < member.parameters.size(); ++i) {
        if (IsResult(member.parameters[i])) {
            passed[i] = Var();
            V_VT(passed[i].get()) = VT_BYREF | VT_VARIANT;
            V_VARIANTREF(passed[i].get()) = call.value.Receive();
        }
        types.push_back(IsIn(member.parameters[i]) ? VT_VARIANT : VT_BYREF | VT_VARIANT);
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
    static const LibraryDescription library = [] {
        const std::string path = KAVREL_DLL;
        ComPtr<ITypeLib> loaded;
        LoadTypeLibEx(std::wstring(path.begin(), path.end()).c_str(), REGKIND_NONE, &loaded);
        return loaded ? DescribeTypeLibrary(loaded.Get()) : LibraryDescription();
    }();
    const auto found = std::find_if(library.types.begin(), library.types.end(),
                                    [&name](const auto& type) { return type.name == name; });
    static const TypeDescription kNone;
    if (found == library.types.end()) ADD_FAILURE() << "no interface " << name;
    return found == library.types.end() ? kNone : *found;
}

}  // namespace kavrel::tests
