#include "geodesy/conformal_latitude.h"

#include <algorithm>
#include <cmath>

#include "geodesy/angle.h"
#include "geodesy/hyperbolic.h"

namespace kavrel {
namespace {

// Up to here the short series below lose nothing; every real ellipsoid is well within. Flatter
// ones, which only a custom datum can describe, take the closed forms.
constexpr double kSeriesLimitE2 = 0.01;

// cos(pi/2) is not 0 in doubles; below this a latitude is the pole.
constexpr double kCosineAtPole = 1e-15;

// phi - chi as a series of sines of 2 chi (Karney 2011 and its supplement; the coefficients of
// Engsager and Poder 2007).
constexpr SeriesTable kConformalToGeographic = {{
    {2.0, -2.0 / 3, -2.0, 116.0 / 45, 26.0 / 45, -2854.0 / 675},
    {7.0 / 3, -8.0 / 5, -227.0 / 45, 2704.0 / 315, 2323.0 / 945},
    {56.0 / 15, -136.0 / 35, -1262.0 / 105, 73814.0 / 2835},
    {4279.0 / 630, -332.0 / 35, -399572.0 / 14175},
    {4174.0 / 315, -144838.0 / 6237},
    {601676.0 / 22275},
}};

// Sum of c[j] sin(2 (j + 1) x), from the sine and cosine of 2 x (Clenshaw).
double SineSum(const SeriesCoefficients& c, double sin2x, double cos2x) {
    const double u = 2.0 * cos2x;
    double b0 = 0.0;
    double b1 = 0.0;
    for (int j = kSeriesOrder - 1; j >= 0; --j) {
        const double b = c[static_cast<std::size_t>(j)] + u * b0 - b1;
        b1 = b0;
        b0 = b;
    }
    return b0 * sin2x;
}

// sinh, quick for the small values that real ellipsoids give.
double SinhOfSmall(double x) {
    if (std::fabs(x) > kSeriesLimitE2) return Sinh(x);
    const double y = x * x;
    return x + x * y * (1.0 / 6 + y * (1.0 / 120));
}

}  // namespace

SeriesCoefficients SeriesFromThirdFlattening(const SeriesTable& table, double n) {
    SeriesCoefficients result;
    double power = 1.0;
    for (std::size_t j = 0; j < kSeriesOrder; ++j) {
        power *= n;
        double sum = 0.0;
        for (std::size_t k = kSeriesOrder - j; k-- > 0;)
            sum = sum * n + table[j][k];
        result[j] = sum * power;
    }
    return result;
}

double ThirdFlattening(double e2) {
    const double root = std::sqrt(1.0 - e2);
    return (1.0 - root) / (1.0 + root);
}

ConformalLatitude::ConformalLatitude(double e2)
    : e2_(e2),
      e_(std::sqrt(e2)),
      toLatitude_(SeriesFromThirdFlattening(kConformalToGeographic, ThirdFlattening(e2))) {}

// e atanh(e sin phi).
double ConformalLatitude::EccentricPart(double sinLatitude) const {
    if (e2_ > kSeriesLimitE2) return e_ * Atanh(e_ * sinLatitude);
    const double x = e2_ * sinLatitude * sinLatitude;
    const double tail = 1.0 / 9 + x * (1.0 / 11 + x * (1.0 / 13 + x * (1.0 / 15)));
    return e2_ * sinLatitude * (1.0 + x * (1.0 / 3 + x * (1.0 / 5 + x * (1.0 / 7 + x * tail))));
}

double ConformalLatitude::Isometric(double latitudeRads) const {
    const double s = std::sin(latitudeRads);
    const double c = std::cos(latitudeRads);
    if (c < kCosineAtPole) return s < 0.0 ? -HUGE_VAL : HUGE_VAL;
    // asinh(tan phi), the sign put on afterwards so that nothing cancels in the south.
    const double mercator = std::log((1.0 + std::fabs(s)) / c);
    return (s < 0.0 ? -mercator : mercator) - EccentricPart(s);
}

// tan chi = tan phi sqrt(1 + sigma^2) - sigma / cos phi with sigma = sinh(e atanh(e sin phi)),
// times cos phi.
Direction ConformalLatitude::ToConformal(double latitudeRads) const {
    const double s = std::sin(latitudeRads);
    const double c = std::max(std::cos(latitudeRads), kCosineAtPole);
    const double sigma = SinhOfSmall(EccentricPart(s));
    return {s * std::sqrt(1.0 + sigma * sigma) - sigma, c};
}

double ConformalLatitude::LatitudeOf(const Direction& conformal) const {
    const auto [y, x] = conformal;
    if (e2_ > kSeriesLimitE2) return LatitudeByNewton(y / x);
    const double inverseNorm = 1.0 / (y * y + x * x);
    return std::atan2(y, x) +
           SineSum(toLatitude_, 2.0 * x * y * inverseNorm, (x - y) * (x + y) * inverseNorm);
}

double ConformalLatitude::LatitudeOfIsometric(double q) const {
    constexpr double kAlmostInfinite = 40.0;  // beyond, tan chi exceeds 1e17
    if (std::fabs(q) > kAlmostInfinite) return q < 0.0 ? -kHalfPi : kHalfPi;
    const double t = std::exp(q);
    return LatitudeOf({0.5 * (t - 1.0 / t), 1.0});
}

// Karney 2011, equations 19 to 21.
double ConformalLatitude::LatitudeByNewton(double tangent) const {
    constexpr int kMaxRounds = 12;
    constexpr double kTolerance = 1e-15;
    if (std::fabs(tangent) > 1e15) return tangent < 0.0 ? -kHalfPi : kHalfPi;
    const double w = 1.0 - e2_;
    double tau = std::fabs(tangent) > 70.0 ? tangent * std::exp(e_ * Atanh(e_)) : tangent / w;
    for (int i = 0; i < kMaxRounds; ++i) {
        const double secant = std::sqrt(1.0 + tau * tau);
        const double sigma = Sinh(EccentricPart(tau / secant));
        const double reached = tau * std::sqrt(1.0 + sigma * sigma) - sigma * secant;
        const double step = (tangent - reached) / std::sqrt(1.0 + reached * reached) *
                            (1.0 + w * tau * tau) / (w * secant);
        tau += step;
        if (!(std::fabs(step) > kTolerance * std::max(1.0, std::fabs(tau)))) break;
    }
    return std::atan(tau);
}

}  // namespace kavrel
