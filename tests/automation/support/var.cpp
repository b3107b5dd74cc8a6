#include "automation/support/var.h"

#include <ole2.h>

#include <cstring>
#include <sstream>
#include <utility>

namespace kavrel::tests {

Var::Var(int value) : Var() {
    V_VT(&value_) = VT_I4;
    V_I4(&value_) = value;
}

Var::Var(double value) : Var() {
    V_VT(&value_) = VT_R8;
    V_R8(&value_) = value;
}

Var::Var(bool value) : Var() {
    V_VT(&value_) = VT_BOOL;
    V_BOOL(&value_) = value ? VARIANT_TRUE : VARIANT_FALSE;
}

Var::Var(const wchar_t* value) : Var(std::wstring(value)) {}

Var::Var(const std::wstring& value) : Var() {
    V_VT(&value_) = VT_BSTR;
    V_BSTR(&value_) = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
}

Var::Var(IDispatch* object) : Var() {
    V_VT(&value_) = VT_DISPATCH;
    V_DISPATCH(&value_) = object;
    if (object != nullptr) object->AddRef();
}

// Variants that own nothing are copied as they are: the platform makes null strings empty, and does
// not know every type.
Var::Var(const Var& other) : Var() {
    const bool isNullText = other.type() == VT_BSTR && V_BSTR(&other.value_) == nullptr;
    if (isNullText || FAILED(VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)))) {
        value_ = other.value_;
    }
}

Var::Var(Var&& other) noexcept : value_(other.value_) {
    VariantInit(&other.value_);
}

Var& Var::operator=(Var other) noexcept {
    std::swap(value_, other.value_);
    return *this;
}

Var Var::Of(VARTYPE type) {
    Var var;
    std::memset(&var.value_, 0, sizeof var.value_);
    V_VT(&var.value_) = type;
    return var;
}

Var Var::Missing() {
    Var var;
    V_VT(&var.value_) = VT_ERROR;
    V_ERROR(&var.value_) = DISP_E_PARAMNOTFOUND;
    return var;
}

Var Var::Reference(int type, void* to) {
    Var var = Of(static_cast<VARTYPE>(VT_BYREF | type));
    V_BYREF(&var.value_) = to;
    return var;
}

std::wstring Var::text() const {
    if (type() != VT_BSTR || V_BSTR(&value_) == nullptr) return {};
    return {V_BSTR(&value_), SysStringLen(V_BSTR(&value_))};
}

int Var::number() const {
    if (type() == VT_BSTR || type() == VT_DISPATCH) return 0;
    Var number;
    const HRESULT result = VariantChangeType(number.get(), const_cast<VARIANT*>(&value_), 0, VT_I4);
    return SUCCEEDED(result) ? V_I4(number.get()) : 0;
}

std::string Describe(const VARIANT& value) {
    const auto told = [](const char* type, const auto& content) {
        std::ostringstream text;
        text << type << ' ' << content;
        return text.str();
    };
    switch (V_VT(&value)) {
        case VT_EMPTY:
            return "EMPTY";
        case VT_UI1:
            return told("UI1", int{V_UI1(&value)});
        case VT_I2:
            return told("I2", V_I2(&value));
        case VT_I4:
            return told("I4", V_I4(&value));
        case VT_R4:
            return told("R4", V_R4(&value));
        case VT_R8:
            return told("R8", V_R8(&value));
        case VT_DATE:
            return told("DATE", V_DATE(&value));
        case VT_BOOL:
            return told("BOOL", V_BOOL(&value));
        case VT_BSTR:
            if (V_BSTR(&value) == nullptr) return "BSTR null";
            return "BSTR '" + Narrow({V_BSTR(&value), SysStringLen(V_BSTR(&value))}) + "'";
        case VT_DISPATCH:
            return V_DISPATCH(&value) == nullptr ? "DISPATCH null" : "DISPATCH object";
        default:
            return told("type", V_VT(&value));
    }
}

std::string Narrow(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

}  // namespace kavrel::tests
