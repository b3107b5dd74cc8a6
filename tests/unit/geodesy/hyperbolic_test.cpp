// Our hyperbolic functions against the C library's, which devices do not have.

#include "geodesy/hyperbolic.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kavrel::test {
namespace {

constexpr double kRelative = 1e-15;

TEST(Hyperbolic, AgreesFromTinyToHuge) {
    for (double x = 1e-20; x < 700.0; x *= 1.03) {
        for (const double v : {x, -x}) {
            EXPECT_NEAR(Sinh(v), std::sinh(v), kRelative * std::sinh(x)) << v;
            EXPECT_NEAR(SinhCoshOf(v).cosh, std::cosh(v), kRelative * std::cosh(v)) << v;
            EXPECT_NEAR(Asinh(v), std::asinh(v), kRelative * std::asinh(x)) << v;
            if (x >= 1.0) continue;
            EXPECT_NEAR(Atanh(v), std::atanh(v), kRelative * std::atanh(x)) << v;
        }
    }
}

TEST(Hyperbolic, Ends) {
    EXPECT_EQ(Asinh(0.0), 0.0);
    EXPECT_NEAR(Asinh(1e200), std::asinh(1e200), 1e-12);
    EXPECT_EQ(Atanh(1.0), HUGE_VAL);
    EXPECT_EQ(Sinh(HUGE_VAL), HUGE_VAL);
    EXPECT_EQ(Sinh(-HUGE_VAL), -HUGE_VAL);
}

}  // namespace
}  // namespace kavrel::test
