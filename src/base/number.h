// Reading and writing numbers in NMEA text and coordinate text, independent of any locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace kavrel {

// Reads a decimal floating-point number (sign, digits, point, exponent) from the start of `text`,
// up to the first character that does not belong to it; leading blanks are skipped. No number: 0.
// Correctly rounded up to 15 significant digits and decimal exponents within +-22, which covers
// every receiver; beyond that within a few units in the last place. Never an error.
double ReadDouble(std::string_view text);

// Reads a decimal integer likewise. A value beyond 32 bits becomes the nearest one that fits.
std::int32_t ReadInteger(std::string_view text);

// Writes `value` in decimal with exactly `decimals` (0..9) digits behind the point, the whole part
// padded with zeros to at least `minWholeDigits` (the sign not counted). The exact binary value is
// rounded, halves away from zero. Writes at most out.size() characters, cutting the rest, and no
// terminator; returns how many. A value that is not finite, or is 1e15 or more, writes nothing.
std::size_t WriteFixed(std::span<char> out, double value, int decimals, int minWholeDigits = 1);

}  // namespace kavrel
