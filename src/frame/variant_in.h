// Reading arguments: from a variant of any type to a plain value.
//
// A reference to a variant is followed. A value of another type is coerced as the platform does it;
// one that cannot be coerced, and a missing argument, yields 0, false or an empty text.
#pragma once

#include <oaidl.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/byte_block.h"
#include "base/record.h"
#include "base/text_view.h"

namespace kavrel {

std::int16_t ToInt16(const VARIANT& argument);
std::int32_t ToInt32(const VARIANT& argument);
std::uint8_t ToByte(const VARIANT& argument);
float ToSingle(const VARIANT& argument);
double ToDouble(const VARIANT& argument);
bool ToBool(const VARIANT& argument);

// The same by the type of the value.
template <typename Value>
Value FromVariant(const VARIANT& argument) {
    if constexpr (std::is_same_v<Value, double>) {
        return ToDouble(argument);
    } else if constexpr (std::is_same_v<Value, bool>) {
        return ToBool(argument);
    } else if constexpr (std::is_same_v<Value, std::int32_t>) {
        return ToInt32(argument);
    } else {
        static_assert(std::is_same_v<Value, std::int16_t>);
        return ToInt16(argument);
    }
}

// A text argument, each 16-bit character cut to its low 8 bits, as bytes of a receiver are.
class TextArgument {
  public:
    explicit TextArgument(const VARIANT& argument);

    // A null string, unlike an empty one, gives a view without data.
    std::string_view view() const { return isAbsent_ ? std::string_view() : text_; }

  private:
    std::string text_;
    bool isAbsent_;
};

// A text argument with all 16 bits of its characters.
class WideTextArgument {
  public:
    explicit WideTextArgument(const VARIANT& argument);

    // A null string, unlike an empty one, gives a view without data.
    TextView view() const { return isAbsent_ ? TextView() : TextView(narrow_, wide_); }

  private:
    std::u16string wide_;
    std::string narrow_;
    bool isAbsent_;
};

// Whether an argument is given as text, by reference or not.
bool IsText(const VARIANT& argument);

// Whether an argument is an array, by reference or not.
bool IsArray(const VARIANT& argument);

// The bytes of a string (each character cut to its low 8 bits), or of a one-dimensional array of
// bytes or of variants (each coerced to a 32-bit integer and cut). Anything else gives none.
Ref<ByteBlock> BytesFromString(const VARIANT& argument);
Ref<ByteBlock> BytesFromArray(const VARIANT& argument);

// Asks an object argument for an interface. Null variants and null objects give no object and
// success; what is no object fails with E_NOINTERFACE.
HRESULT ToObject(const VARIANT& argument, REFIID interfaceId, void** object);

}  // namespace kavrel
