// Gauss's conformal sphere: the sphere that fits an ellipsoid best around one point. The Swiss and
// the Dutch projection go through it.
//
// Source: EPSG Guidance Note 7-2, methods 9814 and 9809. Closed, good to round-off.
#pragma once

#include "geodesy/conformal_latitude.h"
#include "geodesy/ellipsoid.h"
#include "geodesy/points.h"

namespace kavrel {

struct SinCos {
    double sin;
    double cos;
};

class GaussSphere {
  public:
    GaussSphere(const Ellipsoid& ellipsoid, double originLatitudeRads);

    double radiusMetres() const { return radiusMetres_; }
    const SinCos& origin() const { return origin_; }  // latitude of the origin on the sphere

    // Latitude on the sphere.
    SinCos ToSphere(double latitudeRads) const;
    double LongitudeToSphere(double longitudeRads) const { return exponent_ * longitudeRads; }

    // From the sine of a latitude on the sphere, and from a longitude there.
    GeoPoint FromSphere(double sinLatitude, double longitudeRads) const;

    // Neither projection is meant for points further from its origin, in latitude or longitude.
    bool IsNear(const GeoPoint& fromOrigin) const;

  private:
    ConformalLatitude conformal_;
    double originLatitudeRads_;
    double exponent_;  // ratio of longitudes, and of isometric latitudes
    SinCos origin_;
    double shift_;  // of isometric latitudes
    double radiusMetres_;
};

}  // namespace kavrel
