// New Zealand Map Grid, algorithm code 4; EPSG method 9811.
//
// Source: W. I. Reilly, A conformal mapping projection with minimum scale error (Survey Review 22,
// 1973), in the New Zealand land agency's form. All constants are the projection's own.
// Accuracy: the forward and the inverse series agree to 0.05 mm in the country, to 1.5 mm eight
// degrees from the origin. Domain: 50 to 30 degrees south, 160 to 185 degrees east.
#pragma once

#include "geodesy/projection.h"

namespace kavrel {

class NewZealandMapGrid final : public Projection {
  public:
    NewZealandMapGrid();

  private:
    bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const override;
    bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const override;
};

}  // namespace kavrel
