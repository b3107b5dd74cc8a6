// From doubles to integers without undefined results: the integer part, the nearest integer that
// fits, and 0 for NaN.
#pragma once

#include <cstdint>
#include <limits>

namespace kavrel {

template <typename Integer>
constexpr Integer SaturatedIntegerPart(double x) {
    using Limits = std::numeric_limits<Integer>;
    if (x != x) return 0;
    if (x <= static_cast<double>(Limits::min())) return Limits::min();
    if (x >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(x);
}

constexpr std::int16_t ToInt16(double x) {
    return SaturatedIntegerPart<std::int16_t>(x);
}

constexpr std::int32_t ToInt32(double x) {
    return SaturatedIntegerPart<std::int32_t>(x);
}

}  // namespace kavrel
