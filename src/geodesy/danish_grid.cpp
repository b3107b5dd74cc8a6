#include "geodesy/danish_grid.h"

#include <cmath>

#include "geodesy/angle.h"

namespace kavrel {
namespace {

constexpr double kCentralMeridianRads = RadsFromDegrees(9.0);

constexpr ProjectionParameters kPlane = {.algorithm = Algorithm::TransverseMercator,
                                         .ellipsoid = kEllipsoids[kInternational1924],
                                         .falseEastingMetres = 500000.0,
                                         .originLongitudeRads = kCentralMeridianRads,
                                         .scaleFactor = 0.9996};

// Where forward and inverse polynomials disagree by more, neither means anything.
constexpr double kMaxDisagreementMetres = 1.0;

const DanishPolynomialPair& PolynomialsOf(DanishGrid::System system) {
    switch (system) {
        case DanishGrid::System::Jylland:
            return kJyllandPolynomials;
        case DanishGrid::System::Sjaelland:
            return kSjaellandPolynomials;
        case DanishGrid::System::Bornholm:
            break;
    }
    return kBornholmPolynomials;
}

// Horner's rule in both variables.
double Sum(std::span<const double> coefficients, int degree, double dn, double de) {
    const double* at = coefficients.data();
    double sum = 0.0;
    for (int i = degree; i >= 0; --i) {
        double inner = 0.0;
        for (int j = degree - i; j >= 0; --j)
            inner = inner * de + *at++;
        sum = sum * dn + inner;
    }
    return sum;
}

PlanePoint Apply(const DanishPolynomial& p, const PlanePoint& from) {
    const double dn = from.northingMetres - p.origin.northingMetres;
    const double de = from.eastingMetres - p.origin.eastingMetres;
    return {Sum(p.easting, p.degree, dn, de), Sum(p.northing, p.degree, dn, de)};
}

bool IsInBox(const DanishPolynomial& p, const PlanePoint& point) {
    return point.eastingMetres >= p.southWest.eastingMetres &&
           point.eastingMetres <= p.northEast.eastingMetres &&
           point.northingMetres >= p.southWest.northingMetres &&
           point.northingMetres <= p.northEast.northingMetres;
}

// Applies `there` and checks that `back` undoes it.
bool ApplyChecked(const DanishPolynomial& there, const DanishPolynomial& back,
                  const PlanePoint& from, PlanePoint& to) {
    if (!IsInBox(there, from)) return false;
    to = Apply(there, from);
    const PlanePoint again = Apply(back, to);
    return std::fabs(again.eastingMetres - from.eastingMetres) <= kMaxDisagreementMetres &&
           std::fabs(again.northingMetres - from.northingMetres) <= kMaxDisagreementMetres;
}

}  // namespace

DanishGrid::DanishGrid(System system)
    : Projection({kCentralMeridianRads, {0.0, 0.0}}),
      polynomials_(PolynomialsOf(system)),
      transverseMercator_(kPlane) {}

bool DanishGrid::Project(const GeoPoint& fromOrigin, PlanePoint& plane) const {
    PlanePoint between;
    const GeoPoint point{fromOrigin.latitudeRads, fromOrigin.longitudeRads + kCentralMeridianRads};
    return transverseMercator_.Forward(point, between) &&
           ApplyChecked(polynomials_.toGrid, polynomials_.fromGrid, between, plane);
}

bool DanishGrid::Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const {
    PlanePoint between;
    if (!ApplyChecked(polynomials_.fromGrid, polynomials_.toGrid, fromOrigin, between) ||
        !transverseMercator_.Inverse(between, point)) {
        return false;
    }
    point.longitudeRads -= kCentralMeridianRads;
    return true;
}

}  // namespace kavrel
