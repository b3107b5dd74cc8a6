// What a datum shift needs to know of a datum.
#pragma once

#include "geodesy/ellipsoid.h"

namespace kavrel {

// Seven parameters that take geocentric coordinates on a datum to WGS 84. Position-vector
// convention of the rotation signs.
struct HelmertShift {
    double dxMetres = 0.0;
    double dyMetres = 0.0;
    double dzMetres = 0.0;
    double rxRads = 0.0;
    double ryRads = 0.0;
    double rzRads = 0.0;
    double scale = 0.0;  // difference: the factor is 1 + scale

    bool operator==(const HelmertShift&) const = default;
};

struct DatumParameters {
    Ellipsoid ellipsoid;
    HelmertShift toWgs84;

    // By exact values.
    bool operator==(const DatumParameters&) const = default;
};

}  // namespace kavrel
