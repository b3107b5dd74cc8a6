// Transverse Mercator (Gauss-Krueger), algorithm code 3; EPSG method 9807.
//
// Krueger's series in the third flattening to the sixth order: Karney, Transverse Mercator with an
// accuracy of a few nanometers (J. Geodesy 85, 2011), equations 12, 14, 35 and 36.
// Accuracy: 10 nm within 4000 km of the central meridian. Domain: 50 degrees either side of it.
#pragma once

#include "geodesy/conformal_latitude.h"
#include "geodesy/projection.h"

namespace kavrel {

class TransverseMercator final : public Projection {
  public:
    explicit TransverseMercator(const ProjectionParameters& parameters);

  private:
    bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const override;
    bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const override;

    ConformalLatitude conformal_;
    SeriesCoefficients alpha_;  // from the conformal sphere to the ellipsoid
    SeriesCoefficients beta_;   // and back
    double radiusMetres_;       // of the rectifying sphere, times the scale factor
    double originArcRads_;      // from the equator to the origin, on that sphere
};

}  // namespace kavrel
