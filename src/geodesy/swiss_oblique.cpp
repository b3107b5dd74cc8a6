#include "geodesy/swiss_oblique.h"

#include <cmath>

#include "geodesy/hyperbolic.h"

namespace kavrel {
namespace {

// In radii. Further out the sphere's formulas would fold a point back into reach.
constexpr double kMaxPlane = 0.3;

}  // namespace

SwissOblique::SwissOblique(const ProjectionParameters& p)
    : Projection({p.originLongitudeRads, {p.falseEastingMetres, p.falseNorthingMetres}}),
      sphere_(p.ellipsoid, p.originLatitudeRads),
      radiusMetres_(sphere_.radiusMetres() * p.scaleFactor) {}

bool SwissOblique::Project(const GeoPoint& fromOrigin, PlanePoint& plane) const {
    if (!sphere_.IsNear(fromOrigin)) return false;
    const SinCos origin = sphere_.origin();
    const SinCos b = sphere_.ToSphere(fromOrigin.latitudeRads);
    const double l = sphere_.LongitudeToSphere(fromOrigin.longitudeRads);
    const double cosBcosL = b.cos * std::cos(l);

    const double turnedLongitude =
        std::atan2(b.cos * std::sin(l), origin.sin * b.sin + origin.cos * cosBcosL);
    const double turnedSine = origin.cos * b.sin - origin.sin * cosBcosL;
    plane = {radiusMetres_ * turnedLongitude, radiusMetres_ * Atanh(turnedSine)};
    return true;
}

bool SwissOblique::Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const {
    const double turnedLongitude = fromOrigin.eastingMetres / radiusMetres_;
    const double mercator = fromOrigin.northingMetres / radiusMetres_;
    if (!(std::fabs(turnedLongitude) < kMaxPlane && std::fabs(mercator) < kMaxPlane)) return false;

    // Everything times cosh(mercator), which cancels in the longitude.
    const SinCos origin = sphere_.origin();
    const SinhCosh h = SinhCoshOf(mercator);
    const double cosL = std::cos(turnedLongitude);
    const double sinB = (origin.cos * h.sinh + origin.sin * cosL) / h.cosh;
    const double l = std::atan2(std::sin(turnedLongitude), origin.cos * cosL - origin.sin * h.sinh);
    point = sphere_.FromSphere(sinB, l);
    return sphere_.IsNear(point);
}

}  // namespace kavrel
