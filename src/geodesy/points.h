// The points that the geodesy computes with.
#pragma once

namespace kavrel {

// On an ellipsoid; east and north positive.
struct GeoPoint {
    double latitudeRads = 0.0;
    double longitudeRads = 0.0;
};

struct GeodeticPoint : GeoPoint {
    double heightMetres = 0.0;  // above the ellipsoid
};

// In the plane of a grid.
struct PlanePoint {
    double eastingMetres = 0.0;
    double northingMetres = 0.0;
};

// True for numbers that are neither infinite nor NaN.
inline bool IsFinite(double x) {
    return x - x == 0.0;
}

}  // namespace kavrel
