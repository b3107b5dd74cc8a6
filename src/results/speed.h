// Speeds are kept in knots; clients read them in other units.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kavrel {

// Numbers that clients use for speed units. Any other number has no unit.
inline constexpr std::int32_t kSpeedKnots = 0;
inline constexpr std::int32_t kSpeedMetresPerSecond = 1;
inline constexpr std::int32_t kSpeedKilometresPerHour = 2;
inline constexpr std::int32_t kSpeedMilesPerHour = 3;

struct SpeedFactors {
    double fromKnots;
    double toKnots;
};

// By unit. Exactly these numbers, which are not quite those of the units' definitions, so that
// results stay the same to the last digit.
inline constexpr std::array<SpeedFactors, 4> kSpeedFactors = {{
    {.fromKnots = 1.0, .toKnots = 1.0},
    {.fromKnots = 0.51444341959472, .toKnots = 1.9438483648751945},
    {.fromKnots = 1.85199631054099, .toKnots = 0.539957879131999},
    {.fromKnots = 1.1507771555, .toKnots = 0.868977973033807},
}};

constexpr bool IsSpeedUnit(std::int32_t unit) {
    return unit >= 0 && static_cast<std::size_t>(unit) < kSpeedFactors.size();
}

// By way of knots. An unknown unit counts as knots.
constexpr double ConvertSpeed(double value, std::int32_t fromUnit, std::int32_t toUnit) {
    if (IsSpeedUnit(fromUnit)) value *= kSpeedFactors[static_cast<std::size_t>(fromUnit)].toKnots;
    if (IsSpeedUnit(toUnit)) value *= kSpeedFactors[static_cast<std::size_t>(toUnit)].fromKnots;
    return value;
}

}  // namespace kavrel
