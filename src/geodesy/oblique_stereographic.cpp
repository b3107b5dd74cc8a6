#include "geodesy/oblique_stereographic.h"

#include <cmath>

namespace kavrel {
namespace {

// Of the plane's radius, in diameters of the sphere.
constexpr double kMaxPlane = 0.3;

}  // namespace

ObliqueStereographic::ObliqueStereographic(const ProjectionParameters& p)
    : Projection({p.originLongitudeRads, {p.falseEastingMetres, p.falseNorthingMetres}}),
      sphere_(p.ellipsoid, p.originLatitudeRads),
      diameterMetres_(2.0 * sphere_.radiusMetres() * p.scaleFactor) {}

bool ObliqueStereographic::Project(const GeoPoint& fromOrigin, PlanePoint& plane) const {
    if (!sphere_.IsNear(fromOrigin)) return false;
    const SinCos origin = sphere_.origin();
    const SinCos chi = sphere_.ToSphere(fromOrigin.latitudeRads);
    const double l = sphere_.LongitudeToSphere(fromOrigin.longitudeRads);
    const double cosChiCosL = chi.cos * std::cos(l);

    const double factor = diameterMetres_ / (1.0 + chi.sin * origin.sin + origin.cos * cosChiCosL);
    plane = {factor * chi.cos * std::sin(l),
             factor * (chi.sin * origin.cos - cosChiCosL * origin.sin)};
    return true;
}

bool ObliqueStereographic::Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const {
    const double x = fromOrigin.eastingMetres / diameterMetres_;
    const double y = fromOrigin.northingMetres / diameterMetres_;
    const double r2 = x * x + y * y;
    if (!(r2 < kMaxPlane * kMaxPlane)) return false;

    // With c = 2 atan r: cos c, and sin c / r, which is finite at the origin, too.
    const SinCos origin = sphere_.origin();
    const double cosC = (1.0 - r2) / (1.0 + r2);
    const double sinCperR = 2.0 / (1.0 + r2);
    const double sinChi = cosC * origin.sin + y * sinCperR * origin.cos;
    const double l = std::atan2(x * sinCperR, origin.cos * cosC - y * sinCperR * origin.sin);
    point = sphere_.FromSphere(sinChi, l);
    return sphere_.IsNear(point);
}

}  // namespace kavrel
