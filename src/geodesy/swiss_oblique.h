// Swiss oblique Mercator, algorithm code 2: ellipsoid to Gauss sphere, the sphere turned so that
// the origin lies on its equator, Mercator on it.
//
// Source: the Swiss agency's formulas for LV03 and LV95, after Rosenmund (1903). Closed, good to
// round-off. Domain: ten degrees around the origin.
#pragma once

#include "geodesy/gauss_sphere.h"
#include "geodesy/projection.h"

namespace kavrel {

class SwissOblique final : public Projection {
  public:
    explicit SwissOblique(const ProjectionParameters& parameters);

  private:
    bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const override;
    bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const override;

    GaussSphere sphere_;
    double radiusMetres_;  // of the sphere, times the scale factor
};

}  // namespace kavrel
