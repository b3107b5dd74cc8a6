#include "geodesy/projection.h"

#include <cmath>

#include "geodesy/danish_grid.h"
#include "geodesy/lambert_conic.h"
#include "geodesy/longitude.h"
#include "geodesy/new_zealand_map_grid.h"
#include "geodesy/oblique_stereographic.h"
#include "geodesy/swiss_oblique.h"
#include "geodesy/transverse_mercator.h"

namespace kavrel {
namespace {

// Those that a scale factor of 0 (never set) would shrink to a point.
bool NeedsScale(Algorithm algorithm) {
    return algorithm == Algorithm::SwissOblique || algorithm == Algorithm::TransverseMercator ||
           algorithm == Algorithm::ObliqueStereographic;
}

}  // namespace

bool Projection::Forward(const GeoPoint& point, PlanePoint& plane) const {
    const GeoPoint fromOrigin{point.latitudeRads,
                              NormaliseLongitude(point.longitudeRads - origin_.longitudeRads)};
    if (!(std::fabs(fromOrigin.latitudeRads) <= kMaxLatitudeRads)) return false;

    PlanePoint result;
    if (!IsFinite(fromOrigin.longitudeRads) || !Project(fromOrigin, result)) return false;
    result.eastingMetres += origin_.falseOrigin.eastingMetres;
    result.northingMetres += origin_.falseOrigin.northingMetres;
    if (!IsFinite(result.eastingMetres) || !IsFinite(result.northingMetres)) return false;
    plane = result;
    return true;
}

bool Projection::Inverse(const PlanePoint& plane, GeoPoint& point) const {
    const PlanePoint fromOrigin{plane.eastingMetres - origin_.falseOrigin.eastingMetres,
                                plane.northingMetres - origin_.falseOrigin.northingMetres};
    if (!IsFinite(fromOrigin.eastingMetres) || !IsFinite(fromOrigin.northingMetres)) return false;

    GeoPoint result;
    if (!Unproject(fromOrigin, result)) return false;
    if (!IsFinite(result.latitudeRads) || !IsFinite(result.longitudeRads)) return false;
    result.longitudeRads = NormaliseLongitude(result.longitudeRads + origin_.longitudeRads);
    point = result;
    return true;
}

std::unique_ptr<Projection> PrepareProjection(const ProjectionParameters& parameters) {
    using Result = std::unique_ptr<Projection>;
    const Ellipsoid& ellipsoid = parameters.ellipsoid;
    if (!(ellipsoid.semiMajorAxisMetres > 0.0) || !(ellipsoid.e2 < 1.0)) return nullptr;
    if (NeedsScale(parameters.algorithm) && !(parameters.scaleFactor > 0.0)) return nullptr;

    switch (parameters.algorithm) {
        case Algorithm::SwissOblique:
            return Result(new SwissOblique(parameters));
        case Algorithm::TransverseMercator:
            return Result(new TransverseMercator(parameters));
        case Algorithm::NewZealandMapGrid:
            return Result(new NewZealandMapGrid());
        case Algorithm::LambertConic:
        case Algorithm::BelgianLambert:
            return Result(new LambertConic(parameters));
        case Algorithm::ObliqueStereographic:
            return Result(new ObliqueStereographic(parameters));
        case Algorithm::DanishSystem34:
            return Result(new DanishGrid(parameters.zone == 1 ? DanishGrid::System::Jylland
                                                              : DanishGrid::System::Sjaelland));
        case Algorithm::DanishSystem45:
            return Result(new DanishGrid(DanishGrid::System::Bornholm));
        case Algorithm::None:
            break;
    }
    return nullptr;
}

}  // namespace kavrel
