#include "geodesy/transverse_mercator.h"

#include <cmath>

#include "geodesy/angle.h"
#include "geodesy/hyperbolic.h"

namespace kavrel {
namespace {

// At 50 degrees the series is still good to 0.13 micrometres, at 70 to 5 mm, at 80 to 138 m.
constexpr double kMaxLongitudeRads = RadsFromDegrees(50.0);

// In radii of the rectifying sphere: just beyond what 50 degrees give on the equator.
constexpr double kMaxEastingRads = 1.05;
constexpr double kMaxNorthingRads = kHalfPi + 1e-9;

constexpr SeriesTable kAlpha = {{
    {1.0 / 2, -2.0 / 3, 5.0 / 16, 41.0 / 180, -127.0 / 288, 7891.0 / 37800},
    {13.0 / 48, -3.0 / 5, 557.0 / 1440, 281.0 / 630, -1983433.0 / 1935360},
    {61.0 / 240, -103.0 / 140, 15061.0 / 26880, 167603.0 / 181440},
    {49561.0 / 161280, -179.0 / 168, 6601661.0 / 7257600},
    {34729.0 / 80640, -3418889.0 / 1995840},
    {212378941.0 / 319334400},
}};

constexpr SeriesTable kBeta = {{
    {1.0 / 2, -2.0 / 3, 37.0 / 96, -1.0 / 360, -81.0 / 512, 96199.0 / 604800},
    {1.0 / 48, 1.0 / 15, -437.0 / 1440, 46.0 / 105, -1118711.0 / 3870720},
    {17.0 / 480, -37.0 / 840, -209.0 / 4480, 5569.0 / 90720},
    {4397.0 / 161280, -11.0 / 504, -830251.0 / 7257600},
    {4583.0 / 161280, -108847.0 / 3991680},
    {20648693.0 / 638668800},
}};

double RectifyingRadius(const Ellipsoid& ellipsoid) {
    const double n = ThirdFlattening(ellipsoid.e2);
    const double n2 = n * n;
    return ellipsoid.semiMajorAxisMetres / (1.0 + n) *
           (1.0 + n2 * (1.0 / 4 + n2 * (1.0 / 64 + n2 * (1.0 / 256))));
}

// Sine and cosine of an angle x, and hyperbolic ones of a y: a complex angle x + i y.
struct ComplexAngle {
    double sinX;
    double cosX;
    double sinhY;
    double coshY;

    ComplexAngle Doubled() const {
        return {2.0 * sinX * cosX, (cosX - sinX) * (cosX + sinX), 2.0 * sinhY * coshY,
                1.0 + 2.0 * sinhY * sinhY};
    }
};

struct Complex {
    double re;
    double im;
};

// Sum of c[j] sin(2 (j + 1) (x + i y)) from the doubled angle (Clenshaw). The real part is the sum
// of c sin(2jx) cosh(2jy), the imaginary part that of c cos(2jx) sinh(2jy).
Complex SineSum(const SeriesCoefficients& c, const ComplexAngle& doubled) {
    const double ur = 2.0 * doubled.cosX * doubled.coshY;
    const double ui = -2.0 * doubled.sinX * doubled.sinhY;
    Complex b0{0.0, 0.0};
    Complex b1{0.0, 0.0};
    for (int j = kSeriesOrder - 1; j >= 0; --j) {
        const Complex b{c[static_cast<std::size_t>(j)] + ur * b0.re - ui * b0.im - b1.re,
                        ur * b0.im + ui * b0.re - b1.im};
        b1 = b0;
        b0 = b;
    }
    const double sr = doubled.sinX * doubled.coshY;
    const double si = doubled.cosX * doubled.sinhY;
    return {b0.re * sr - b0.im * si, b0.re * si + b0.im * sr};
}

// The corrections of the series are small angles: then a few terms spare the library's functions.
constexpr double kSmallRads = 0.02;

ComplexAngle ComplexAngleOf(const Complex& z) {
    if (!(std::fabs(z.re) < kSmallRads && std::fabs(z.im) < kSmallRads)) {
        const SinhCosh h = SinhCoshOf(z.im);
        return {std::sin(z.re), std::cos(z.re), h.sinh, h.cosh};
    }
    const double x2 = z.re * z.re;
    const double y2 = z.im * z.im;
    return {z.re * (1.0 - x2 * (1.0 / 6) * (1.0 - x2 * (1.0 / 20))),
            1.0 - x2 * 0.5 * (1.0 - x2 * (1.0 / 12) * (1.0 - x2 * (1.0 / 30))),
            z.im * (1.0 + y2 * (1.0 / 6) * (1.0 + y2 * (1.0 / 20))),
            1.0 + y2 * 0.5 * (1.0 + y2 * (1.0 / 12) * (1.0 + y2 * (1.0 / 30)))};
}

ComplexAngle Difference(const ComplexAngle& a, const ComplexAngle& b) {
    return {a.sinX * b.cosX - a.cosX * b.sinX, a.cosX * b.cosX + a.sinX * b.sinX,
            a.sinhY * b.coshY - a.coshY * b.sinhY, a.coshY * b.coshY - a.sinhY * b.sinhY};
}

// atanh, quick in the zone, where x stays below 0.06.
double AtanhOfSmall(double x) {
    const double x2 = x * x;
    if (!(x2 < 0.004)) return Atanh(x);
    const double tail = 1.0 / 9 + x2 * (1.0 / 11 + x2 * (1.0 / 13));
    return x + x * x2 * (1.0 / 3 + x2 * (1.0 / 5 + x2 * (1.0 / 7 + x2 * tail)));
}

}  // namespace

TransverseMercator::TransverseMercator(const ProjectionParameters& p)
    : Projection({p.originLongitudeRads, {p.falseEastingMetres, p.falseNorthingMetres}}),
      conformal_(p.ellipsoid.e2),
      alpha_(SeriesFromThirdFlattening(kAlpha, ThirdFlattening(p.ellipsoid.e2))),
      beta_(SeriesFromThirdFlattening(kBeta, ThirdFlattening(p.ellipsoid.e2))),
      radiusMetres_(RectifyingRadius(p.ellipsoid) * p.scaleFactor),
      originArcRads_(0.0) {
    if (p.originLatitudeRads == 0.0) return;
    const auto [y, x] = conformal_.ToConformal(p.originLatitudeRads);
    const double length = std::sqrt(x * x + y * y);
    const ComplexAngle chi{y / length, x / length, 0.0, 1.0};
    originArcRads_ = std::atan2(y, x) + SineSum(alpha_, chi.Doubled()).re;
}

bool TransverseMercator::Project(const GeoPoint& fromOrigin, PlanePoint& plane) const {
    if (!(std::fabs(fromOrigin.longitudeRads) <= kMaxLongitudeRads)) return false;
    const auto [y, c] = conformal_.ToConformal(fromOrigin.latitudeRads);
    const double s = c * std::sin(fromOrigin.longitudeRads);
    const double x = c * std::cos(fromOrigin.longitudeRads);

    // On the conformal sphere, turned so that the central meridian becomes its equator:
    // tan xi = y / x and tanh eta = s / length, from which the doubled angles follow.
    const double length = std::sqrt(y * y + c * c);
    const double inverse = 1.0 / (y * y + x * x);
    const ComplexAngle doubled{2.0 * x * y * inverse, (x - y) * (x + y) * inverse,
                               2.0 * s * length * inverse, 1.0 + 2.0 * s * s * inverse};
    const Complex correction = SineSum(alpha_, doubled);

    const double xi = std::atan2(y, x) + correction.re;
    const double eta = AtanhOfSmall(s / length) + correction.im;
    plane = {radiusMetres_ * eta, radiusMetres_ * (xi - originArcRads_)};
    return true;
}

bool TransverseMercator::Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const {
    const double eta = fromOrigin.eastingMetres / radiusMetres_;
    const double xi = fromOrigin.northingMetres / radiusMetres_ + originArcRads_;
    if (!(std::fabs(eta) <= kMaxEastingRads && std::fabs(xi) <= kMaxNorthingRads)) return false;

    const SinhCosh h = SinhCoshOf(eta);
    const ComplexAngle rectified{std::sin(xi), std::cos(xi), h.sinh, h.cosh};
    const Complex correction = SineSum(beta_, rectified.Doubled());
    const ComplexAngle sphere = Difference(rectified, ComplexAngleOf(correction));

    const double r = std::sqrt(sphere.sinhY * sphere.sinhY + sphere.cosX * sphere.cosX);
    point.latitudeRads = conformal_.LatitudeOf({sphere.sinX, r});
    point.longitudeRads = std::atan2(sphere.sinhY, sphere.cosX);
    return true;
}

}  // namespace kavrel
