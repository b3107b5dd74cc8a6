#include "geodesy/longitude.h"

#include <cmath>

#include "geodesy/angle.h"

namespace kavrel {

double NormaliseLongitude(double longitudeRads) {
    constexpr double kTurnsPerRad = 0.15915494309189535;
    if (longitudeRads >= -kPi && longitudeRads <= kPi) return longitudeRads;
    const double turns = longitudeRads * kTurnsPerRad;
    longitudeRads -= (turns < 0.0 ? std::ceil(turns) : std::floor(turns)) * kTwoPi;
    if (longitudeRads > kPi) return longitudeRads - kTwoPi;
    if (longitudeRads < -kPi) return longitudeRads + kTwoPi;
    return longitudeRads;
}

}  // namespace kavrel
