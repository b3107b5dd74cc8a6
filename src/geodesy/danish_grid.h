// Danish Systems 34 and 45, algorithm codes 9 and 10: transverse Mercator (zone 32 on the
// International ellipsoid, always), then a pair of polynomials fitted to the old triangulation.
//
// The systems count y to the north and x to the WEST; x is the easting here, unchanged.
// Source: the Danish agency's published transformation library. Accuracy: the fit is good to 1 to
// 2 cm, forward and inverse agree to a few millimetres where it was made.
// Domain: the boxes of the polynomials, and there only where forward and inverse agree within 1 m.
#pragma once

#include "geodesy/danish_polynomials.h"
#include "geodesy/projection.h"
#include "geodesy/transverse_mercator.h"

namespace kavrel {

class DanishGrid final : public Projection {
  public:
    enum class System { Jylland, Sjaelland, Bornholm };

    explicit DanishGrid(System system);

  private:
    bool Project(const GeoPoint& fromOrigin, PlanePoint& plane) const override;
    bool Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const override;

    const DanishPolynomialPair& polynomials_;
    TransverseMercator transverseMercator_;
};

}  // namespace kavrel
