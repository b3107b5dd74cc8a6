// Isometric and conformal latitude of an ellipsoid: what all conformal projections are made of.
//
// Isometric latitude q = asinh(tan phi) - e atanh(e sin phi); conformal latitude chi with
// tan chi = sinh q. Formulas: J. P. Snyder, Map Projections - A Working Manual (USGS PP 1395,
// 1987); C. F. F. Karney, Transverse Mercator with an accuracy of a few nanometers (J. Geodesy 85,
// 2011). Accuracy: round-off. Domain: 0 <= e2 < 1, |latitude| <= pi/2 (a hair more is taken as the
// pole).
#pragma once

#include <array>

namespace kavrel {

inline constexpr int kSeriesOrder = 6;  // of the series in the third flattening
using SeriesCoefficients = std::array<double, kSeriesOrder>;

// Table row j - 1 holds the factors of n^j ... n^6 of coefficient j, from n^j on.
using SeriesTable = std::array<SeriesCoefficients, kSeriesOrder>;
SeriesCoefficients SeriesFromThirdFlattening(const SeriesTable& table, double n);

// (1 - sqrt(1 - e2)) / (1 + sqrt(1 - e2)).
double ThirdFlattening(double e2);

// An angle as the direction (x, y); saves the divisions and roots of its tangent or sine.
struct Direction {
    double y;
    double x;
};

class ConformalLatitude {
  public:
    explicit ConformalLatitude(double e2);

    // q. Infinite at the poles.
    double Isometric(double latitudeRads) const;

    // A direction whose angle is chi, of any length.
    Direction ToConformal(double latitudeRads) const;

    // The latitude whose conformal latitude is the angle of a direction. REQUIRES: x >= 0.
    double LatitudeOf(const Direction& conformal) const;

    // The latitude whose isometric latitude is q.
    double LatitudeOfIsometric(double q) const;

  private:
    double EccentricPart(double sinLatitude) const;
    double LatitudeByNewton(double tangent) const;

    double e2_;
    double e_;
    SeriesCoefficients toLatitude_;
};

}  // namespace kavrel
