#include "geodesy/gauss_sphere.h"

#include <cmath>

#include "geodesy/angle.h"
#include "geodesy/hyperbolic.h"

namespace kavrel {
namespace {

// Ten degrees, and a hair so that the edge itself comes back.
constexpr double kReachRads = RadsFromDegrees(10.0) + 1e-9;

}  // namespace

GaussSphere::GaussSphere(const Ellipsoid& ellipsoid, double originLatitudeRads)
    : conformal_(ellipsoid.e2), originLatitudeRads_(originLatitudeRads) {
    const double e2 = ellipsoid.e2;
    const double s = std::sin(originLatitudeRads);
    const double c2 = 1.0 - s * s;
    exponent_ = std::sqrt(1.0 + e2 * c2 * c2 / (1.0 - e2));
    origin_.sin = s / exponent_;
    origin_.cos = std::sqrt(1.0 - origin_.sin * origin_.sin);
    shift_ = Atanh(origin_.sin) - exponent_ * conformal_.Isometric(originLatitudeRads);
    radiusMetres_ = ellipsoid.semiMajorAxisMetres * std::sqrt(1.0 - e2) / (1.0 - e2 * s * s);
}

SinCos GaussSphere::ToSphere(double latitudeRads) const {
    const double t = std::exp(exponent_ * conformal_.Isometric(latitudeRads) + shift_);
    const double t2 = t * t;
    return {(t2 - 1.0) / (t2 + 1.0), 2.0 * t / (t2 + 1.0)};
}

GeoPoint GaussSphere::FromSphere(double sinLatitude, double longitudeRads) const {
    return {conformal_.LatitudeOfIsometric((Atanh(sinLatitude) - shift_) / exponent_),
            longitudeRads / exponent_};
}

bool GaussSphere::IsNear(const GeoPoint& fromOrigin) const {
    return std::fabs(fromOrigin.latitudeRads - originLatitudeRads_) <= kReachRads &&
           std::fabs(fromOrigin.longitudeRads) <= kReachRads;
}

}  // namespace kavrel
