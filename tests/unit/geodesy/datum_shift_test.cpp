#include "geodesy/datum_shift.h"

#include <cmath>

#include "geodesy/datum.h"
#include "support.h"

namespace kavrel::test {
namespace {

DatumParameters BuiltIn(int datum) {
    return *ParametersOf({static_cast<DatumId>(datum), nullptr});
}

// Expected values: the formulas as defined, in 50 digits; the table's head says how.
TEST(DatumShift, AgreesWithTheDefinition) {
    ForEachRow("geodesy/shifts.csv", [](const Row& row) {
        const GeodeticPoint point{{row.Number(2), row.Number(3)}, row.Number(4)};
        const GeodeticPoint shifted =
            ShiftDatum(point, BuiltIn(row.Integer(0)), BuiltIn(row.Integer(1)));
        // A few units in the last place of an angle, 1.4 nm each, or of a satellite's height.
        const double tolerance = point.heightMetres > 1e6 ? 2e-8 : 5e-9;
        const double radius = kEarthRadiusMetres;
        const double parallel = radius * std::cos(row.Number(5));
        EXPECT_NEAR(shifted.latitudeRads * radius, row.Number(5) * radius, tolerance);
        EXPECT_NEAR(shifted.longitudeRads * parallel, row.Number(6) * parallel, tolerance);
        EXPECT_NEAR(shifted.heightMetres, row.Number(7), tolerance);
    });
}

// Poles, the earth's centre and ellipsoids of no sense go the literal way and may yield anything
// but a hang or a trap.
TEST(DatumShift, OddInput) {
    const DatumParameters wgs84 = BuiltIn(1);
    const DatumParameters grs80 = BuiltIn(2);
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
    const DatumParameters wgs84 = BuiltIn(1);
    const GeodeticPoint start{{0.7, 0.3}, 100.0};
    const GeodeticPoint back = ShiftDatum(ShiftDatum(start, flat, wgs84), wgs84, flat);
    EXPECT_NEAR(back.latitudeRads, start.latitudeRads, 1e-12);
    EXPECT_NEAR(back.heightMetres, start.heightMetres, 1e-5);
}

}  // namespace
}  // namespace kavrel::test
