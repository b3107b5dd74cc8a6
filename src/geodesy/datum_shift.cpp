#include "geodesy/datum_shift.h"

#include <cmath>

namespace kavrel {
namespace {

struct Geocentric {
    double x;
    double y;
    double z;
};

Geocentric ToGeocentric(const GeodeticPoint& point, const Ellipsoid& ellipsoid) {
    const double s = std::sin(point.latitudeRads);
    const double c = std::cos(point.latitudeRads);
    const double n = ellipsoid.semiMajorAxisMetres / std::sqrt(1.0 - ellipsoid.e2 * s * s);
    const double p = (n + point.heightMetres) * c;
    return {p * std::cos(point.longitudeRads), p * std::sin(point.longitudeRads),
            (n * (1.0 - ellipsoid.e2) + point.heightMetres) * s};
}

void ToWgs84(Geocentric& g, const HelmertShift& d) {
    const double k = 1.0 + d.scale;
    g.x = (g.x - d.rzRads * g.y + d.ryRads * g.z) * k + d.dxMetres;
    g.y = (d.rzRads * g.x + g.y - d.rxRads * g.z) * k + d.dyMetres;
    g.z = (d.rxRads * g.y - d.ryRads * g.x + g.z) * k + d.dzMetres;
}

void FromWgs84(Geocentric& g, const HelmertShift& d) {
    const double k = 1.0 + d.scale;
    const double u = g.x - d.dxMetres;
    const double v = g.y - d.dyMetres;
    const double w = g.z - d.dzMetres;
    g.x = (u + d.rzRads * v - d.ryRads * w) / k;
    g.y = (d.rxRads * w - d.rzRads * g.x + v) / k;
    g.z = (d.ryRads * g.x - d.rxRads * g.y + w) / k;
}

// The iteration that defines the result: at most ten rounds, ended by two equal latitudes.
GeodeticPoint IterateToGeodetic(const Geocentric& g, double p, const Ellipsoid& ellipsoid) {
    constexpr int kMaxRounds = 10;
    GeodeticPoint point;
    point.longitudeRads = std::atan2(g.y, g.x);
    point.latitudeRads = std::atan2(g.z, (1.0 - ellipsoid.e2) * p);
    double n = 0.0;
    for (int i = 0; i < kMaxRounds; ++i) {
        const double s = std::sin(point.latitudeRads);
        n = ellipsoid.semiMajorAxisMetres / std::sqrt(1.0 - ellipsoid.e2 * s * s);
        const double previous = point.latitudeRads;
        point.latitudeRads = std::atan2(g.z + ellipsoid.e2 * n * s, p);
        if (point.latitudeRads == previous) break;
    }
    point.heightMetres = p / std::cos(point.latitudeRads) - n;
    return point;
}

// Where ten rounds of that iteration reach its fixed point, any way to the fixed point will do:
// Newton's method on t = tan(latitude), solving p t = z + e2 a t / sqrt(1 + (1 - e2) t^2), takes
// two rounds near the ground and no trigonometry. Not for odd ellipsoids, for points deep inside
// the earth, or at the poles, where t ends.
bool CanSolve(const Geocentric& g, double p, const Ellipsoid& ellipsoid) {
    constexpr double kMaxE2 = 0.01;
    constexpr double kLeastDepthRatio = 0.5;  // of the distance from the centre to the axis
    constexpr double kMaxTangent = 1e12;
    const double leastDistance = kLeastDepthRatio * ellipsoid.semiMajorAxisMetres;
    return ellipsoid.e2 >= 0.0 && ellipsoid.e2 <= kMaxE2 && leastDistance > 0.0 &&
           p * p + g.z * g.z > leastDistance * leastDistance && std::fabs(g.z) < kMaxTangent * p;
}

GeodeticPoint SolveToGeodetic(const Geocentric& g, double p, const Ellipsoid& ellipsoid) {
    constexpr int kMaxRounds = 8;
    constexpr double kTolerance = 1e-9;  // of a step: the next one would be its square
    const double w = 1.0 - ellipsoid.e2;
    const double bend = ellipsoid.e2 * ellipsoid.semiMajorAxisMetres;
    double t = g.z / (w * p);
    for (int i = 0; i < kMaxRounds; ++i) {
        const double root = std::sqrt(1.0 + w * t * t);
        const double step = (g.z + bend * t / root - p * t) / (p - bend / (root * root * root));
        t += step;
        if (std::fabs(step) <= kTolerance * std::fabs(t)) break;
    }
    const double secant = std::sqrt(1.0 + t * t);
    const double n = ellipsoid.semiMajorAxisMetres * secant / std::sqrt(1.0 + w * t * t);
    return {{std::atan(t), std::atan2(g.y, g.x)}, p * secant - n};
}

}  // namespace

GeodeticPoint ShiftDatum(const GeodeticPoint& point, const DatumParameters& from,
                         const DatumParameters& to) {
    const HelmertShift kNoShift{};
    Geocentric g = ToGeocentric(point, from.ellipsoid);
    if (!(from.toWgs84 == kNoShift)) ToWgs84(g, from.toWgs84);
    if (!(to.toWgs84 == kNoShift)) FromWgs84(g, to.toWgs84);

    const double p = std::sqrt(g.x * g.x + g.y * g.y);
    return CanSolve(g, p, to.ellipsoid) ? SolveToGeodetic(g, p, to.ellipsoid)
                                        : IterateToGeodetic(g, p, to.ellipsoid);
}

}  // namespace kavrel
