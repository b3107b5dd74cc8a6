// Writing results: each function clears the output variant and sets its type and value.
#pragma once

#include <oaidl.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "base/text_view.h"
#include "frame/com_ref.h"

namespace kavrel {

void SetVariant(VARIANT& out, std::uint8_t value);
void SetVariant(VARIANT& out, std::int16_t value);
void SetVariant(VARIANT& out, std::int32_t value);
void SetVariant(VARIANT& out, float value);
void SetVariant(VARIANT& out, double value);

// A boolean of 1 or 0, not of the all-bits-set true: hosts written for this library test for
// non-zero.
void SetVariantToFlag(VARIANT& out, bool value);

// Nothing but a bool: pointers and numbers must not become booleans by themselves.
void SetVariant(VARIANT& out, std::same_as<bool> auto value) {
    SetVariantToFlag(out, value);
}

// A date value of automation. Without one the variant is left untouched.
void SetVariantToDate(VARIANT& out, std::optional<double> date);

// A new string of the text's characters, each 8-bit character widened to one of 16 bits.
void SetVariant(VARIANT& out, std::string_view text);

// The same with all 16 bits of the characters. Nothing but a TextView: other texts convert to it.
void SetVariantToWideText(VARIANT& out, const TextView& text);
void SetVariant(VARIANT& out, const std::same_as<TextView> auto& text) {
    SetVariantToWideText(out, text);
}

// An object; null gives a dispatch variant with a null object.
void SetVariant(VARIANT& out, ComRef<IDispatch> object);

// Bytes as a string, without any code-page translation; no bytes give a null string.
void SetVariantToText(VARIANT& out, std::span<const std::uint8_t> bytes);

// Bytes as an array with lower bound 0: of bytes, or of variants that hold a byte each.
// A variant of type VT_EMPTY when memory is short.
void SetVariantToByteArray(VARIANT& out, std::span<const std::uint8_t> bytes);
void SetVariantToVariantArray(VARIANT& out, std::span<const std::uint8_t> bytes);

}  // namespace kavrel
