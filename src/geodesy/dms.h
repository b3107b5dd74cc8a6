// Degrees, minutes and seconds of an angle, without its sign.
#pragma once

#include <cstdint>

namespace kavrel {

struct Dms {
    std::int16_t degrees = 0;
    std::int16_t minutes = 0;
    double seconds = 0.0;  // below 60; rounded to 0.001 when computed from radians
};

// The two differ: a latitude is nudged by 5e-11 degrees before its degrees and its minutes are cut
// off, a longitude is not. That is intended. Angles too large for a field get its largest value.
Dms DmsOfLatitude(double latitudeRads);
Dms DmsOfLongitude(double longitudeRads);

}  // namespace kavrel
