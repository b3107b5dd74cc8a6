#include "frame/variant_out.h"

#include <oleauto.h>

#include <algorithm>
#include <cstddef>

namespace kavrel {
namespace {

void Begin(VARIANT& out, VARTYPE type) {
    VariantClear(&out);
    V_VT(&out) = type;
}

template <typename Character>
BSTR Widened(const Character* characters, std::size_t length) {
    BSTR const text = SysAllocStringLen(nullptr, static_cast<UINT>(length));
    if (text == nullptr) return nullptr;
    for (std::size_t i = 0; i < length; ++i)
        text[i] = static_cast<std::uint8_t>(characters[i]);
    return text;
}

void SetByte(std::uint8_t& element, std::uint8_t byte) {
    element = byte;
}

void SetByte(VARIANT& element, std::uint8_t byte) {
    SetVariant(element, byte);
}

template <typename Element>
void SetArray(VARIANT& out, std::span<const std::uint8_t> bytes, VARTYPE elementType) {
    VariantClear(&out);
    SAFEARRAY* const array =
        SafeArrayCreateVector(elementType, 0, static_cast<ULONG>(bytes.size()));
    if (array == nullptr) return;

    void* data = nullptr;
    if (SUCCEEDED(SafeArrayAccessData(array, &data))) {
        auto* element = static_cast<Element*>(data);
        for (const std::uint8_t byte : bytes)
            SetByte(*element++, byte);
        SafeArrayUnaccessData(array);
    }
    V_VT(&out) = VT_ARRAY | elementType;
    V_ARRAY(&out) = array;
}

}  // namespace

void SetVariant(VARIANT& out, std::uint8_t value) {
    Begin(out, VT_UI1);
    V_UI1(&out) = value;
}

void SetVariant(VARIANT& out, std::int16_t value) {
    Begin(out, VT_I2);
    V_I2(&out) = value;
}

void SetVariant(VARIANT& out, std::int32_t value) {
    Begin(out, VT_I4);
    V_I4(&out) = value;
}

void SetVariant(VARIANT& out, float value) {
    Begin(out, VT_R4);
    V_R4(&out) = value;
}

void SetVariant(VARIANT& out, double value) {
    Begin(out, VT_R8);
    V_R8(&out) = value;
}

void SetVariantToFlag(VARIANT& out, bool value) {
    Begin(out, VT_BOOL);
    V_BOOL(&out) = value ? 1 : 0;
}

void SetVariantToDate(VARIANT& out, std::optional<double> date) {
    if (!date.has_value()) return;
    Begin(out, VT_DATE);
    V_DATE(&out) = *date;
}

void SetVariant(VARIANT& out, std::string_view text) {
    Begin(out, VT_BSTR);
    V_BSTR(&out) = Widened(text.data(), text.size());
}

void SetVariantToWideText(VARIANT& out, const TextView& text) {
    if (text.wide.empty()) {
        SetVariant(out, text.narrow);
        return;
    }
    Begin(out, VT_BSTR);
    V_BSTR(&out) = SysAllocStringLen(nullptr, static_cast<UINT>(text.wide.size()));
    if (V_BSTR(&out) != nullptr) std::copy(text.wide.begin(), text.wide.end(), V_BSTR(&out));
}

void SetVariant(VARIANT& out, ComRef<IDispatch> object) {
    Begin(out, VT_DISPATCH);
    V_DISPATCH(&out) = object.Detach();
}

void SetVariantToText(VARIANT& out, std::span<const std::uint8_t> bytes) {
    Begin(out, VT_BSTR);
    V_BSTR(&out) = bytes.empty() ? nullptr : Widened(bytes.data(), bytes.size());
}

void SetVariantToByteArray(VARIANT& out, std::span<const std::uint8_t> bytes) {
    SetArray<std::uint8_t>(out, bytes, VT_UI1);
}

void SetVariantToVariantArray(VARIANT& out, std::span<const std::uint8_t> bytes) {
    SetArray<VARIANT>(out, bytes, VT_VARIANT);
}

}  // namespace kavrel
