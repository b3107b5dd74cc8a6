#include "geodesy/datum_shift.h"

#include <cmath>

#include "geodesy/datum.h"
#include "support.h"

namespace kavrel::test {
namespace {

// Expected values: the formulas as defined, in 50 digits; the table's head says how.
TEST(DatumShift, AgreesWithTheDefinition) {
    const auto rows = ReadTable("shifts.csv");
    ASSERT_GE(rows.size(), 200u);
    for (const auto& row : rows) {
        SCOPED_TRACE("datum " + row[0] + " to " + row[1] + " at " + row[2] + " " + row[3] + " " +
                     row[4]);
        const auto from = ParametersOf({static_cast<DatumId>(std::stoi(row[0])), nullptr});
        const auto to = ParametersOf({static_cast<DatumId>(std::stoi(row[1])), nullptr});
        const GeodeticPoint point{{std::stod(row[2]), std::stod(row[3])}, std::stod(row[4])};
        const GeodeticPoint shifted = ShiftDatum(point, *from, *to);
        const double latitude = std::stod(row[5]);

        // A few units in the last place of an angle, 1.4 nm each, or of a satellite's height.
        const double radius = kEarthRadiusMetres;
        const double tolerance = point.heightMetres > 1e6 ? 2e-8 : 5e-9;
        EXPECT_NEAR(shifted.latitudeRads * radius, latitude * radius, tolerance);
        EXPECT_NEAR(shifted.longitudeRads * radius * std::cos(latitude),
                    std::stod(row[6]) * radius * std::cos(latitude), tolerance);
        EXPECT_NEAR(shifted.heightMetres, std::stod(row[7]), tolerance);
    }
}

// The sequential lines: what the textbook's product would give is 16 mm away in Sweden.
TEST(DatumShift, DoesNotReturnToItsStart) {
    const auto rt90 = *ParametersOf({5, nullptr});
    const auto wgs84 = *ParametersOf({1, nullptr});
    const GeodeticPoint start{{RadsFromDegrees(59.3), RadsFromDegrees(18.1)}, 30.0};
    const GeodeticPoint back = ShiftDatum(ShiftDatum(start, rt90, wgs84), wgs84, rt90);
    const double north = (back.latitudeRads - start.latitudeRads) * kEarthRadiusMetres;
    const double east = (back.longitudeRads - start.longitudeRads) * kEarthRadiusMetres *
                        std::cos(start.latitudeRads);
    const double up = back.heightMetres - start.heightMetres;
    const double metres = std::sqrt(north * north + east * east + up * up);
    EXPECT_GT(metres, 0.015);
    EXPECT_LT(metres, 0.030);
}

// Poles, the earth's centre and ellipsoids of no sense go the literal way and may yield anything
// but a hang or a trap.
TEST(DatumShift, OddInput) {
    const auto wgs84 = *ParametersOf({1, nullptr});
    const auto grs80 = *ParametersOf({2, nullptr});
    EXPECT_NEAR(ShiftDatum({{kHalfPi, 0.3}, 0.0}, wgs84, grs80).latitudeRads, kHalfPi, 1e-12);
    EXPECT_NEAR(ShiftDatum({{-kHalfPi, 0.3}, 0.0}, wgs84, grs80).latitudeRads, -kHalfPi, 1e-12);
    ShiftDatum({{0.5, 0.3}, -6378137.0}, wgs84, grs80);
    const GeodeticPoint nan = ShiftDatum({{kNan, 0.0}, 0.0}, wgs84, grs80);
    EXPECT_TRUE(std::isnan(nan.latitudeRads));
    const GeodeticPoint infinite = ShiftDatum({{0.5, 0.0}, kInfinity}, wgs84, grs80);
    EXPECT_FALSE(std::isfinite(infinite.heightMetres));
    for (const Ellipsoid odd : {Ellipsoid{}, Ellipsoid{6e6, 1.0}, Ellipsoid{6e6, 2.0},
                                Ellipsoid{-6e6, 0.006}, Ellipsoid{kNan, kNan}}) {
        ShiftDatum({{0.5, 0.3}, 10.0}, wgs84, {odd, {}});
        ShiftDatum({{0.5, 0.3}, 10.0}, {odd, {}}, wgs84);
    }
}

// A flat ellipsoid, beyond the quick way, still reads back what was put in.
TEST(DatumShift, FlatEllipsoid) {
    const DatumParameters flat{{6378137.0, 0.05}, {1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}};
    const auto wgs84 = *ParametersOf({1, nullptr});
    const GeodeticPoint start{{0.7, 0.3}, 100.0};
    const GeodeticPoint back = ShiftDatum(ShiftDatum(start, flat, wgs84), wgs84, flat);
    EXPECT_NEAR(back.latitudeRads, start.latitudeRads, 1e-12);
    EXPECT_NEAR(back.heightMetres, start.heightMetres, 1e-5);
}

TEST(Datum, NumbersOutsideTheTableHaveNoParameters) {
    for (const DatumId datum : {-32768, -1, 0, 28, 29, 32767}) {
        EXPECT_FALSE(ParametersOf({datum, nullptr})) << datum;
    }
}

}  // namespace
}  // namespace kavrel::test
