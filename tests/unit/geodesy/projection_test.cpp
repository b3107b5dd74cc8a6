// The projections by themselves: round trips, edges, and what must be refused.

#include "geodesy/projection.h"

#include <cmath>
#include <random>

#include "support.h"

namespace kavrel::test {
namespace {

ProjectionParameters Parameters(Algorithm algorithm, std::size_t ellipsoid, double originLongitude,
                                double originLatitude, double scale, double parallel1 = 0.0,
                                double parallel2 = 0.0) {
    return {.algorithm = algorithm,
            .ellipsoid = kEllipsoids[ellipsoid],
            .falseEastingMetres = 500000.0,
            .falseNorthingMetres = -200000.0,
            .originLongitudeRads = RadsFromDegrees(originLongitude),
            .originLatitudeRads = RadsFromDegrees(originLatitude),
            .scaleFactor = scale,
            .parallel1Rads = RadsFromDegrees(parallel1),
            .parallel2Rads = RadsFromDegrees(parallel2)};
}

ProjectionParameters ParametersOf(const Row& row) {
    ProjectionParameters parameters =
        Parameters(static_cast<Algorithm>(row.Integer(1)), static_cast<std::size_t>(row.Integer(3)),
                   row.Number(4), row.Number(5), row.Number(6), row.Number(7), row.Number(8));
    parameters.zone = static_cast<std::int16_t>(row.Integer(2));
    return parameters;
}

TEST(Projection, RoundTripsWithinAMicrometre) {
    std::mt19937_64 random(4711);
    ForEachRow("geodesy/projections.csv", [&random](const Row& row) {
        const ProjectionParameters parameters = ParametersOf(row);
        const auto projection = PrepareProjection(parameters);
        ASSERT_TRUE(projection);
        std::uniform_real_distribution<double> latitude(row.Number(9), row.Number(10));
        std::uniform_real_distribution<double> longitude(row.Number(11), row.Number(12));
        for (int i = 0; i < 5000; ++i) {
            const GeoPoint start{
                RadsFromDegrees(latitude(random)),
                parameters.originLongitudeRads + RadsFromDegrees(longitude(random))};
            PlanePoint plane;
            PlanePoint again;
            GeoPoint back;
            ASSERT_TRUE(projection->Forward(start, plane));
            ASSERT_TRUE(projection->Inverse(plane, back));
            ASSERT_TRUE(projection->Forward(back, again));
            ASSERT_LE(std::fabs(back.longitudeRads), kPi);
            ASSERT_NEAR(plane.eastingMetres, again.eastingMetres, 1e-6);
            ASSERT_NEAR(plane.northingMetres, again.northingMetres, 1e-6);
        }
    });
}

// Flat ellipsoids leave the short series; the closed way must meet them where they part.
TEST(Projection, NothingJumpsWhereTheSeriesEnd) {
    ForEachRow("geodesy/projections.csv", [](const Row& row) {
        ProjectionParameters parameters = ParametersOf(row);
        const GeoPoint point{RadsFromDegrees(row.Number(10) - 1.0),
                             parameters.originLongitudeRads + RadsFromDegrees(row.Number(12))};
        PlanePoint below;
        PlanePoint above;
        GeoPoint back;
        parameters.ellipsoid.e2 = 0.01;
        ASSERT_TRUE(PrepareProjection(parameters)->Forward(point, below));
        parameters.ellipsoid.e2 = 0.01 + 1e-16;
        ASSERT_TRUE(PrepareProjection(parameters)->Forward(point, above));
        EXPECT_NEAR(below.eastingMetres, above.eastingMetres, 1e-6);
        EXPECT_NEAR(below.northingMetres, above.northingMetres, 1e-6);
        ASSERT_TRUE(PrepareProjection(parameters)->Inverse(above, back));
        EXPECT_NEAR(back.latitudeRads, point.latitudeRads, 1e-13);
    });
}

TEST(TransverseMercator, QuarterMeridian) {
    ForEachRow("geodesy/quarter_meridians.csv", [](const Row& row) {
        const auto projection = PrepareProjection(Parameters(
            Algorithm::TransverseMercator, static_cast<std::size_t>(row.Integer(0)), 0, 0, 1.0));
        for (const double longitude : {0.0, 0.5, -0.8}) {
            PlanePoint pole;
            ASSERT_TRUE(projection->Forward({kHalfPi, longitude}, pole));
            EXPECT_NEAR(pole.northingMetres + 200000.0, row.Number(1), 2e-6);
            EXPECT_NEAR(pole.eastingMetres, 500000.0, 1e-6);
            GeoPoint back;
            ASSERT_TRUE(projection->Inverse(pole, back));
            EXPECT_NEAR(back.latitudeRads, kHalfPi, 1e-12);
        }
    });
}

TEST(Projection, RefusesWhatIsNoNumber) {
    ForEachRow("geodesy/projections.csv", [](const Row& row) {
        const auto projection = PrepareProjection(ParametersOf(row));
        for (const double bad : {kNan, kInfinity, -kInfinity}) {
            PlanePoint plane{1.0, 2.0};
            GeoPoint point{1.0, 2.0};
            EXPECT_FALSE(projection->Forward({bad, 0.0}, plane));
            EXPECT_FALSE(projection->Forward({0.8, bad}, plane));
            EXPECT_FALSE(projection->Inverse({bad, 0.0}, point));
            EXPECT_FALSE(projection->Inverse({0.0, bad}, point));
            EXPECT_EQ(plane.eastingMetres, 1.0);
            EXPECT_EQ(point.latitudeRads, 1.0);
        }
        GeoPoint point;
        for (const double far : {1e9, -1e9, 1e30, -1e30, 1e300}) {
            projection->Inverse({far, far}, point);  // any answer, but no trap
            EXPECT_TRUE(std::isfinite(point.latitudeRads));
        }
    });
}

TEST(Projection, RefusesWhatDescribesNone) {
    void (*const kChanges[])(ProjectionParameters&) = {
        [](auto& p) { p.algorithm = Algorithm::None; },
        [](auto& p) { p.scaleFactor = 0.0; },
        [](auto& p) { p.scaleFactor = kNan; },
        [](auto& p) { p.ellipsoid.semiMajorAxisMetres = 0.0; },
        [](auto& p) { p.ellipsoid.e2 = 1.0; },
        [](auto& p) { p.ellipsoid.e2 = kNan; },
    };
    for (const auto change : kChanges) {
        ProjectionParameters parameters = Parameters(Algorithm::TransverseMercator, 34, 0, 0, 1.0);
        EXPECT_TRUE(PrepareProjection(parameters));
        change(parameters);
        EXPECT_FALSE(PrepareProjection(parameters)) << &change - kChanges;
    }
    EXPECT_FALSE(PrepareProjection(Parameters(Algorithm::SwissOblique, 5, 7, 47, 0.0)));
    EXPECT_FALSE(PrepareProjection(Parameters(Algorithm::ObliqueStereographic, 5, 7, 47, 0.0)));
}

TEST(LambertConic, ParallelsInEitherOrderAndAScaleNeverSet) {
    PlanePoint one;
    PlanePoint other;
    const GeoPoint point{0.8, 0.1};
    ASSERT_TRUE(PrepareProjection(Parameters(Algorithm::LambertConic, 34, 3, 46, 1.0, 44, 49))
                    ->Forward(point, one));
    ASSERT_TRUE(PrepareProjection(Parameters(Algorithm::LambertConic, 34, 3, 46, 0.0, 49, 44))
                    ->Forward(point, other));
    EXPECT_NEAR(one.eastingMetres, other.eastingMetres, 1e-6);
    EXPECT_NEAR(one.northingMetres, other.northingMetres, 1e-6);
}

TEST(Projection, Edges) {
    ForEachRow("geodesy/edges.csv", [](const Row& row) {
        const auto projection = PrepareProjection(ParametersOf(row));
        const GeoPoint point{RadsFromDegrees(row.Number(9)), RadsFromDegrees(row.Number(10))};
        PlanePoint plane;
        GeoPoint back;
        ASSERT_EQ(projection->Forward(point, plane), row.Flag(11));
        if (!row.Flag(11)) return;
        ASSERT_TRUE(projection->Inverse(plane, back));
        EXPECT_NEAR(back.latitudeRads, point.latitudeRads, 1e-8);
        EXPECT_NEAR(back.longitudeRads, point.longitudeRads, 1e-8);
    });
}

TEST(Projection, EdgesOfThePlane) {
    ForEachRow("geodesy/plane_edges.csv", [](const Row& row) {
        const PlanePoint plane{row.Number(9), row.Number(10)};
        GeoPoint point;
        EXPECT_EQ(PrepareProjection(ParametersOf(row))->Inverse(plane, point), row.Flag(11));
    });
}

}  // namespace
}  // namespace kavrel::test
