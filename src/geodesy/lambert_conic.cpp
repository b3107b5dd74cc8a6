#include "geodesy/lambert_conic.h"

#include <cmath>

#include "geodesy/angle.h"

namespace kavrel {
namespace {

constexpr double kBelgianTurnRads = 29.2985 * kRadsPerSecond;

// Closer together, the quotient of the cone's constant has no digits left.
constexpr double kSameParallelRads = 1e-10;
constexpr double kFarPoleRads = 1e-6;

// Radius of a parallel in units of the semi-major axis.
double ParallelRadius(double latitudeRads, double e2) {
    const double s = std::sin(latitudeRads);
    return std::cos(latitudeRads) / std::sqrt(1.0 - e2 * s * s);
}

}  // namespace

LambertConic::LambertConic(const ProjectionParameters& p)
    : Projection({p.originLongitudeRads, {p.falseEastingMetres, p.falseNorthingMetres}}),
      conformal_(p.ellipsoid.e2),
      turnRads_(p.algorithm == Algorithm::BelgianLambert ? kBelgianTurnRads : 0.0) {
    const double m1 = ParallelRadius(p.parallel1Rads, p.ellipsoid.e2);
    const double q1 = conformal_.Isometric(p.parallel1Rads);
    if (std::fabs(p.parallel1Rads - p.parallel2Rads) < kSameParallelRads) {
        cone_ = std::sin(p.parallel1Rads);
    } else {
        const double m2 = ParallelRadius(p.parallel2Rads, p.ellipsoid.e2);
        cone_ = std::log(m1 / m2) / (conformal_.Isometric(p.parallel2Rads) - q1);
    }
    const bool usesScale = p.algorithm == Algorithm::LambertConic && p.scaleFactor != 0.0;
    equatorMetres_ = p.ellipsoid.semiMajorAxisMetres * (usesScale ? p.scaleFactor : 1.0) * m1 *
                     std::exp(cone_ * q1) / cone_;
    originRadiusMetres_ = Radius(p.originLatitudeRads);
}

double LambertConic::Radius(double latitudeRads) const {
    return equatorMetres_ * std::exp(-cone_ * conformal_.Isometric(latitudeRads));
}

bool LambertConic::Project(const GeoPoint& fromOrigin, PlanePoint& plane) const {
    const double towardsPole = cone_ > 0.0 ? fromOrigin.latitudeRads : -fromOrigin.latitudeRads;
    if (!(towardsPole > kFarPoleRads - kHalfPi)) return false;

    const double radius = Radius(fromOrigin.latitudeRads);
    const double theta = cone_ * fromOrigin.longitudeRads - turnRads_;
    plane = {radius * std::sin(theta), originRadiusMetres_ - radius * std::cos(theta)};
    return true;
}

bool LambertConic::Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const {
    const double sign = cone_ < 0.0 ? -1.0 : 1.0;
    const double x = sign * fromOrigin.eastingMetres;
    const double y = sign * (originRadiusMetres_ - fromOrigin.northingMetres);
    const double radius = std::sqrt(x * x + y * y);
    if (radius == 0.0) {  // the tip of the cone
        point = {sign * kHalfPi, 0.0};
        return true;
    }
    point.longitudeRads = (std::atan2(x, y) + turnRads_) / cone_;
    point.latitudeRads =
        conformal_.LatitudeOfIsometric(-std::log(radius / (sign * equatorMetres_)) / cone_);
    // Beyond a half turn lies the gap of the unrolled cone.
    return std::fabs(point.longitudeRads) <= kPi + kFarPoleRads;
}

}  // namespace kavrel
