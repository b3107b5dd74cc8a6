#include "geodesy/hyperbolic.h"

#include <cmath>

namespace kavrel {
namespace {

// Below this the exponentials would cancel; the power series needs seven terms at most.
constexpr double kSeriesLimit = 0.5;

double SinhSeries(double x) {
    const double y = x * x;
    const double tail = 1.0 + y * (1.0 / 72) * (1.0 + y * (1.0 / 110) * (1.0 + y * (1.0 / 156)));
    return x * (1.0 + y * (1.0 / 6) * (1.0 + y * (1.0 / 20) * (1.0 + y * (1.0 / 42) * tail)));
}

// log(1 + x) for x > -1, good also where 1 + x rounds (Kahan's correction).
double LogOfOnePlus(double x) {
    const double sum = 1.0 + x;
    const double part = sum - 1.0;
    if (part == 0.0) return x;
    if (part > 1e300) return std::log(sum);
    return std::log(sum) * (x / part);
}

}  // namespace

SinhCosh SinhCoshOf(double x) {
    if (std::fabs(x) < kSeriesLimit) {
        const double s = SinhSeries(x);
        return {s, std::sqrt(1.0 + s * s)};
    }
    const double e = std::exp(x);
    const double inverse = 1.0 / e;
    return {0.5 * (e - inverse), 0.5 * (e + inverse)};
}

double Sinh(double x) {
    return SinhCoshOf(x).sinh;
}

double Asinh(double x) {
    const double y = std::fabs(x);
    double result;
    if (y > 1e8) {
        result = std::log(y) + 0.69314718055994530942;  // x*x + 1 == x*x; ln 2
    } else {
        result = LogOfOnePlus(y + y * y / (1.0 + std::sqrt(1.0 + y * y)));
    }
    return x < 0.0 ? -result : result;
}

double Atanh(double x) {
    const double y = std::fabs(x);
    const double result = 0.5 * LogOfOnePlus(2.0 * y / (1.0 - y));
    return x < 0.0 ? -result : result;
}

}  // namespace kavrel
