// The texts of a latitude or longitude.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "geodesy/dms.h"

namespace kavrel {

enum class CoordinateLayout : std::uint8_t {
    Dms,            // 59 20'12.35 N
    NmeaLatitude,   // 5920.20576
    NmeaLongitude,  // 01805.50001
};

inline constexpr std::size_t kMaxCoordinateText = 14;

// 0.0005 seconds are added before the text is cut to its decimals, in every layout, and the minutes
// decide on their leading zero before they are rounded: 59' 59.9994" of the ninth minute reads
// 10.00000 behind the zero. Both are kept. Longer texts are cut at kMaxCoordinateText characters.
std::string CoordinateText(CoordinateLayout layout, const Dms& value, char hemisphere);

}  // namespace kavrel
