// Oblique stereographic projection by way of the Gauss sphere, algorithm code 8; EPSG method 9809,
// the Dutch one.
//
// Source: EPSG Guidance Note 7-2. Closed, good to round-off. Domain: ten degrees around the origin.
#pragma once

#include "geodesy/gauss_sphere.h"
#include "geodesy/projection.h"

namespace kavrel {

class ObliqueStereographic final : public Projection {
  public:
    explicit ObliqueStereographic(const ProjectionParameters& parameters);

  private:
    bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const override;
    bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const override;

    GaussSphere sphere_;
    double diameterMetres_;  // of the sphere, times the scale factor
};

}  // namespace kavrel
