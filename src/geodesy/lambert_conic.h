// Lambert conformal conic with two standard parallels, algorithm codes 5 and 6; EPSG methods 9802
// and 9803 (Belgium: the cone turned by 29.2985 arc-seconds).
//
// Formulas: Snyder, USGS PP 1395, chapter 15; EPSG Guidance Note 7-2. Closed, so good to round-off.
// Domain: all but the pole opposite the cone's. Parallels of equal size and opposite sign make no
// cone; nothing is covered then.
// Scale: code 5 multiplies by the scale factor, and takes 0 (never set) as 1; code 6 ignores it,
// since the two parallels already say what the Belgian grid's factor repeats.
#pragma once

#include "geodesy/conformal_latitude.h"
#include "geodesy/projection.h"

namespace kavrel {

class LambertConic final : public Projection {
  public:
    explicit LambertConic(const ProjectionParameters& parameters);

  private:
    bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const override;
    bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const override;
    double Radius(double latitudeRads) const;

    ConformalLatitude conformal_;
    double turnRads_;            // of the cone; 0 for code 5
    double cone_;                // n: sine of the latitude that the cone touches
    double equatorMetres_;       // F: radius of the equator on the unrolled cone
    double originRadiusMetres_;  // of the parallel of the origin
};

}  // namespace kavrel
