#include "geodesy/new_zealand_map_grid.h"

#include <array>
#include <cmath>

#include "geodesy/angle.h"

namespace kavrel {
namespace {

struct Complex {
    double re = 0.0;
    double im = 0.0;

    Complex operator+(const Complex& b) const { return {re + b.re, im + b.im}; }
    Complex operator*(const Complex& b) const {
        return {re * b.re - im * b.im, re * b.im + im * b.re};
    }
    Complex operator*(double b) const { return {re * b, im * b}; }
    Complex operator/(const Complex& b) const {
        const double norm = b.re * b.re + b.im * b.im;
        return {(re * b.re + im * b.im) / norm, (im * b.re - re * b.im) / norm};
    }
};

constexpr double kOriginLatitudeRads = RadsFromDegrees(-41.0);
constexpr double kOriginLongitudeRads = RadsFromDegrees(173.0);
constexpr PlanePoint kFalseOrigin = {2510000.0, 6023150.0};
constexpr double kAxisMetres = kEllipsoids[kInternational1924].semiMajorAxisMetres;

// The series count latitudes in units of 1e5 arc-seconds.
constexpr double kUnitsPerRad = kSecondsPerRad * 1e-5;

// Coefficient k - 1 belongs to power k.
constexpr std::array kToIsometric = {0.6399175073, -0.1358797613, 0.063294409, -0.02526853,
                                     0.0117879,    -0.0055161,    0.0026906,   -0.001333,
                                     0.00067,      -0.00034};
constexpr std::array kToLatitude = {1.5627014243, 0.5185406398, -0.03333098, -0.1052906, -0.0368594,
                                    0.007317,     0.0122,       0.00394,     -0.0013};
constexpr std::array<Complex, 6> kToPlane = {{{0.7557853228, 0.0},
                                              {0.249204646, 0.003371507},
                                              {-0.001541739, 0.04105856},
                                              {-0.10162907, 0.01727609},
                                              {-0.26623489, -0.36249218},
                                              {-0.6870983, -1.1651967}}};
constexpr std::array<Complex, 6> kFromPlaneStart = {{{1.3231270439, 0.0},
                                                     {-0.577245789, -0.007809598},
                                                     {0.508307513, -0.112208952},
                                                     {-0.15094762, 0.18200602},
                                                     {1.01418179, 1.64497696},
                                                     {1.9660549, 2.5127645}}};

// With the start off by up to 100 m, two rounds leave only the mismatch of the real series.
constexpr int kRounds = 2;

constexpr double kEdgeRads = 1e-9;
constexpr double kSouthRads = RadsFromDegrees(-50.0) - kEdgeRads;
constexpr double kNorthRads = RadsFromDegrees(-30.0) + kEdgeRads;
constexpr double kWestRads = RadsFromDegrees(160.0 - 173.0) - kEdgeRads;
constexpr double kEastRads = RadsFromDegrees(185.0 - 173.0) + kEdgeRads;
constexpr double kMaxPlane = 0.25;  // in semi-major axes

template <typename T, std::size_t n>
T PowerSum(const std::array<T, n>& coefficients, const T& x) {
    T sum{};
    for (std::size_t k = n; k-- > 0;)
        sum = (sum + coefficients[k]) * x;
    return sum;
}

bool IsCovered(const GeoPoint& fromOrigin) {
    return fromOrigin.latitudeRads >= kSouthRads && fromOrigin.latitudeRads <= kNorthRads &&
           fromOrigin.longitudeRads >= kWestRads && fromOrigin.longitudeRads <= kEastRads;
}

// One round of Newton's method for the zeta whose plane point is z.
Complex Improved(const Complex& zeta, const Complex& z) {
    Complex numerator = z;
    Complex denominator{};
    Complex power{1.0, 0.0};  // zeta^(k-1)
    for (std::size_t k = 1; k <= kToPlane.size(); ++k) {
        const Complex term = kToPlane[k - 1] * power;
        denominator = denominator + term * static_cast<double>(k);
        power = power * zeta;
        numerator = numerator + kToPlane[k - 1] * power * static_cast<double>(k - 1);
    }
    return numerator / denominator;
}

}  // namespace

NewZealandMapGrid::NewZealandMapGrid() : Projection({kOriginLongitudeRads, kFalseOrigin}) {}

bool NewZealandMapGrid::Project(const GeoPoint& fromOrigin, PlanePoint& plane) const {
    if (!IsCovered(fromOrigin)) return false;
    const double units = (fromOrigin.latitudeRads - kOriginLatitudeRads) * kUnitsPerRad;
    const Complex z =
        PowerSum(kToPlane, Complex{PowerSum(kToIsometric, units), fromOrigin.longitudeRads});
    plane = {z.im * kAxisMetres, z.re * kAxisMetres};
    return true;
}

bool NewZealandMapGrid::Unproject(const PlanePoint& fromOrigin, GeoPoint& point) const {
    const Complex z{fromOrigin.northingMetres / kAxisMetres,
                    fromOrigin.eastingMetres / kAxisMetres};
    if (!(std::fabs(z.re) < kMaxPlane && std::fabs(z.im) < kMaxPlane)) return false;

    Complex zeta = PowerSum(kFromPlaneStart, z);
    for (int i = 0; i < kRounds; ++i)
        zeta = Improved(zeta, z);
    point.latitudeRads = kOriginLatitudeRads + PowerSum(kToLatitude, zeta.re) / kUnitsPerRad;
    point.longitudeRads = zeta.im;
    return IsCovered(point);
}

}  // namespace kavrel
