#include "geodesy/dms.h"

#include <cmath>

#include "geodesy/angle.h"
#include "geodesy/whole_number.h"

namespace kavrel {
namespace {

double IntegerPart(double x) {
    return x < 0.0 ? std::ceil(x) : std::floor(x);
}

Dms DmsOf(double rads, double nudge) {
    const double d = std::fabs(rads) * kDegreesPerRad;
    double degrees = IntegerPart(d + nudge);
    double minutes = IntegerPart((d - degrees) * 60.0 + nudge);
    const double rest = (d * 3600.0 - degrees * 3600.0) - minutes * 60.0;
    double seconds = IntegerPart(rest * 1000.0 + 0.5) * 0.001;
    if (seconds >= 60.0) {
        seconds -= 60.0;
        minutes += 1.0;
    }
    if (minutes >= 60.0) {
        minutes -= 60.0;
        degrees += 1.0;
    }
    return {ToInt16(degrees), ToInt16(minutes), seconds};
}

}  // namespace

Dms DmsOfLatitude(double latitudeRads) {
    return DmsOf(latitudeRads, 5e-11);
}

Dms DmsOfLongitude(double longitudeRads) {
    return DmsOf(longitudeRads, 0.0);
}

}  // namespace kavrel
