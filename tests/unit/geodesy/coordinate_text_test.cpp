#include "geodesy/coordinate_text.h"

#include <cmath>

#include "geodesy/longitude.h"
#include "support.h"

namespace kavrel::test {
namespace {

Dms DmsOf(const Row& row) {
    return {static_cast<std::int16_t>(row.Integer(1)), static_cast<std::int16_t>(row.Integer(2)),
            row.Number(3)};
}

TEST(CoordinateText, Layouts) {
    ForEachRow("geodesy/coordinate_texts.csv", [](const Row& row) {
        const auto layout = static_cast<CoordinateLayout>(row.Integer(0));
        EXPECT_EQ(CoordinateText(layout, DmsOf(row), row.Text(4)[0]), row.Text(5));
        // Whatever the fields hold, the text fits.
        for (const double seconds : {0.0, -1e9, 1e300, kInfinity, -kInfinity, kNan}) {
            for (const std::int16_t whole : {std::int16_t{-32768}, std::int16_t{32767}}) {
                const std::string text = CoordinateText(layout, {whole, whole, seconds}, 'N');
                EXPECT_LE(text.size(), kMaxCoordinateText) << text;
            }
        }
    });
}

TEST(Dms, Carries) {
    ForEachRow("geodesy/dms.csv", [](const Row& row) {
        const double rads = RadsFromDegrees(row.Number(0));
        const Dms expected = DmsOf(row);
        for (const Dms& dms : {DmsOfLatitude(rads), DmsOfLongitude(rads)}) {
            EXPECT_EQ(dms.degrees, expected.degrees);
            EXPECT_EQ(dms.minutes, expected.minutes);
            EXPECT_NEAR(dms.seconds, expected.seconds, 1e-12);
        }
    });
}

TEST(Dms, HugeAnglesSaturate) {
    EXPECT_EQ(DmsOfLatitude(1e300).degrees, 32767);
    EXPECT_EQ(DmsOfLatitude(kInfinity).degrees, 32767);
    EXPECT_EQ(DmsOfLatitude(kNan).degrees, 0);
}

TEST(Longitude, Normalises) {
    EXPECT_EQ(NormaliseLongitude(kPi), kPi);
    EXPECT_EQ(NormaliseLongitude(-kPi), -kPi);
    EXPECT_EQ(NormaliseLongitude(-4.0), -4.0 + kTwoPi);
    EXPECT_NEAR(NormaliseLongitude(3.0 * kPi), kPi, 1e-14);
    EXPECT_TRUE(std::isnan(NormaliseLongitude(kInfinity)));
    for (double x = -100.0; x < 100.0; x += 0.01) {
        const double normal = NormaliseLongitude(x);
        EXPECT_LE(std::fabs(normal), kPi) << x;
        EXPECT_NEAR(std::sin(normal), std::sin(x), 1e-13) << x;
        EXPECT_NEAR(std::cos(normal), std::cos(x), 1e-13) << x;
    }
}

}  // namespace
}  // namespace kavrel::test
