#include "geodesy/coordinate_text.h"

#include <cmath>

#include "geodesy/longitude.h"
#include "support.h"

namespace kavrel::test {
namespace {

constexpr auto kDms = CoordinateLayout::Dms;
constexpr auto kLatitude = CoordinateLayout::NmeaLatitude;
constexpr auto kLongitude = CoordinateLayout::NmeaLongitude;

TEST(CoordinateText, Layouts) {
    struct Case {
        CoordinateLayout layout;
        Dms value;
        char hemisphere;
        const char* text;
    };
    const Case cases[] = {
        {kDms, {59, 20, 12.345}, 'N', "59 20'12.35 N"},
        {kDms, {59, 59, 59.9996}, 'S', "60 0'0.00 S"},
        {kDms, {0, 0, 0.0}, 'N', "0 0'0.00 N"},
        {kDms, {179, 59, 59.99}, 'W', "179 59'59.99 W"},
        {kDms, {59, 59, 59.996}, 'N', "59 59'60.00 N"},     // rounded after the carry was refused
        {kDms, {12345, 59, 59.99}, 'W', "12345 59'59.99"},  // cut at 14 characters
        {kLatitude, {59, 20, 12.345}, '?', "5920.20576"},
        {kLatitude, {59, 9, 59.9994}, '?', "59010.00000"},
        {kLatitude, {59, 9, 59.9996}, '?', "5910.00000"},
        {kLatitude, {5, 3, 0.0}, '?', "0503.00001"},
        {kLatitude, {59, 59, 59.9996}, '?', "6000.00000"},
        {kLongitude, {18, 5, 30.0}, '?', "01805.50001"},
        {kLongitude, {0, 0, 0.0}, '?', "00000.00001"},
        {kLongitude, {179, 59, 59.0}, '?', "17959.98334"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(CoordinateText(c.layout, c.value, c.hemisphere), c.text);
}

// Whatever the fields hold, the text fits.
TEST(CoordinateText, NeverTooLong) {
    for (const auto layout : {kDms, kLatitude, kLongitude}) {
        for (const double seconds : {0.0, -1e9, 1e300, kInfinity, -kInfinity, kNan}) {
            for (const std::int16_t whole : {std::int16_t{-32768}, std::int16_t{32767}}) {
                const std::string text = CoordinateText(layout, {whole, whole, seconds}, 'N');
                EXPECT_LE(text.size(), kMaxCoordinateText) << text;
            }
        }
    }
}

// Just below a whole degree a latitude is nudged over and a longitude carried: both must get there.
TEST(Dms, Carries) {
    struct Case {
        double degrees;
        Dms expected;
    };
    const Case cases[] = {{0.0, {0, 0, 0.0}},
                          {59.999999999, {60, 0, 0.0}},
                          {-10.5, {10, 30, 0.0}},
                          {45.0 + 29.0 / 60 + 59.9996 / 3600, {45, 30, 0.0}},
                          {12.0 + 34.0 / 60 + 56.789 / 3600, {12, 34, 56.789}},
                          {30.0 - 1e-13, {30, 0, 0.0}},
                          {30.0 - 2e-11, {30, 0, 0.0}},
                          {30.0 - 7e-11, {30, 0, 0.0}},
                          {30.0 - 1e-8, {30, 0, 0.0}}};
    for (const Case& c : cases) {
        const double rads = RadsFromDegrees(c.degrees);
        for (const Dms& dms : {DmsOfLatitude(rads), DmsOfLongitude(rads)}) {
            EXPECT_EQ(dms.degrees, c.expected.degrees) << c.degrees;
            EXPECT_EQ(dms.minutes, c.expected.minutes) << c.degrees;
            EXPECT_NEAR(dms.seconds, c.expected.seconds, 1e-12) << c.degrees;
        }
    }
}

TEST(Dms, HugeAnglesSaturate) {
    EXPECT_EQ(DmsOfLatitude(1e300).degrees, 32767);
    EXPECT_EQ(DmsOfLatitude(kInfinity).degrees, 32767);
    EXPECT_EQ(DmsOfLatitude(kNan).degrees, 0);
}

TEST(Longitude, Normalises) {
    const double pi = kPi;
    EXPECT_EQ(NormaliseLongitude(pi), pi);
    EXPECT_EQ(NormaliseLongitude(-pi), -pi);
    EXPECT_EQ(NormaliseLongitude(4.0), 4.0 - kTwoPi);
    EXPECT_EQ(NormaliseLongitude(-4.0), -4.0 + kTwoPi);
    EXPECT_NEAR(NormaliseLongitude(1.0 + 10 * kTwoPi), 1.0, 1e-13);
    EXPECT_NEAR(NormaliseLongitude(-1.0 - 10 * kTwoPi), -1.0, 1e-13);
    EXPECT_NEAR(NormaliseLongitude(3.0 * pi), pi, 1e-14);
    EXPECT_TRUE(std::isnan(NormaliseLongitude(kInfinity)));
    for (double x = -100.0; x < 100.0; x += 0.01) {
        const double normal = NormaliseLongitude(x);
        EXPECT_LE(std::fabs(normal), pi) << x;
        EXPECT_NEAR(std::sin(normal), std::sin(x), 1e-13) << x;
        EXPECT_NEAR(std::cos(normal), std::cos(x), 1e-13) << x;
    }
}

}  // namespace
}  // namespace kavrel::test
