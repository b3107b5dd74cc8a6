// Units of angle. Inside the geodesy every angle is in radians.
#pragma once

namespace kavrel {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kHalfPi = kPi / 2;
inline constexpr double kTwoPi = 2 * kPi;

// Factors, written with the digits that the results of the properties depend on.
inline constexpr double kRadsPerDegree = 0.017453292519943295;
inline constexpr double kRadsPerMinute = 0.0002908882086657216;
inline constexpr double kRadsPerSecond = 4.84813681109536e-6;
inline constexpr double kDegreesPerRad = 57.29577951308232;
inline constexpr double kSecondsPerRad = 206264.80624709636;

constexpr double RadsFromDegrees(double degrees) {
    return degrees * kRadsPerDegree;
}

}  // namespace kavrel
