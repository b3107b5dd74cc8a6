// The projections by themselves: round trips, edges, and what must be refused.

#include "geodesy/projection.h"

#include <cmath>
#include <random>

#include "support.h"

namespace kavrel::test {
namespace {

struct Case {
    const char* name;
    ProjectionParameters parameters;
    double south, north, west, east;  // degrees, west and east from the origin
};

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

const Case kClosedAndSeries[] = {
    {"TM in the zone", Parameters(Algorithm::TransverseMercator, 34, 9, 0, 0.9996), -84, 84, -4, 4},
    {"TM across the date line", Parameters(Algorithm::TransverseMercator, 34, 179, 50, 1.0), -80,
     80, -5, 5},
    {"TM wide", Parameters(Algorithm::TransverseMercator, 8, 0, 0, 1.0), -70, 70, -30, 30},
    {"conic north", Parameters(Algorithm::LambertConic, 35, 2, 46, 1.0, 45, 49), 20, 80, -40, 40},
    {"conic south", Parameters(Algorithm::LambertConic, 25, 140, -30, 0.999, -36, -18), -80, -5,
     -60, 60},
    {"conic, one parallel", Parameters(Algorithm::LambertConic, 5, 10, 50, 0.9999, 50, 50), 30, 70,
     -20, 20},
    {"Belgian", Parameters(Algorithm::BelgianLambert, 25, 4.36, 90, 0.9, 49.83, 51.17), 48, 53, -3,
     4},
    {"Swiss", Parameters(Algorithm::SwissOblique, 5, 7.44, 46.95, 1.0), 44, 50, -4, 4},
    {"Dutch", Parameters(Algorithm::ObliqueStereographic, 5, 5.39, 52.16, 0.9999), 48, 56, -4, 4},
};

TEST(Projection, RoundTripsWithinAMicrometre) {
    std::mt19937_64 random(4711);
    for (const Case& c : kClosedAndSeries) {
        SCOPED_TRACE(c.name);
        const auto projection = PrepareProjection(c.parameters);
        ASSERT_TRUE(projection);
        std::uniform_real_distribution<double> latitude(c.south, c.north);
        std::uniform_real_distribution<double> longitude(c.west, c.east);
        double worst = 0.0;
        for (int i = 0; i < 5000; ++i) {
            const GeoPoint start{
                RadsFromDegrees(latitude(random)),
                c.parameters.originLongitudeRads + RadsFromDegrees(longitude(random))};
            PlanePoint plane;
            PlanePoint again;
            GeoPoint back;
            ASSERT_TRUE(projection->Forward(start, plane));
            ASSERT_TRUE(projection->Inverse(plane, back));
            ASSERT_TRUE(projection->Forward(back, again));
            ASSERT_LE(std::fabs(back.longitudeRads), kPi);
            worst = std::fmax(worst, std::fabs(plane.eastingMetres - again.eastingMetres));
            worst = std::fmax(worst, std::fabs(plane.northingMetres - again.northingMetres));
        }
        EXPECT_LT(worst, 1e-6);
    }
}

// Flat ellipsoids leave the short series; the closed way must meet them where they part.
TEST(Projection, NothingJumpsWhereTheSeriesEnd) {
    for (const Case& c : kClosedAndSeries) {
        SCOPED_TRACE(c.name);
        ProjectionParameters parameters = c.parameters;
        const GeoPoint point{RadsFromDegrees(c.north - 1.0),
                             parameters.originLongitudeRads + RadsFromDegrees(c.east)};
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
    }
}

// A quarter meridian: the pole's northing (Karney's arc lengths for these ellipsoids).
TEST(TransverseMercator, QuarterMeridian) {
    struct Quarter {
        std::size_t ellipsoid;
        double metres;
    };
    for (const Quarter& q : {Quarter{1, 10001126.080716}, Quarter{5, 10000855.764436},
                             Quarter{8, 10001888.042976}, Quarter{21, 10001965.729230},
                             Quarter{25, 10002288.298990}, Quarter{34, 10001965.729313}}) {
        const auto projection =
            PrepareProjection(Parameters(Algorithm::TransverseMercator, q.ellipsoid, 0, 0, 1.0));
        for (const double longitude : {0.0, 0.5, -0.8}) {
            PlanePoint pole;
            ASSERT_TRUE(projection->Forward({kHalfPi, longitude}, pole));
            EXPECT_NEAR(pole.northingMetres + 200000.0, q.metres, 2e-6);
            EXPECT_NEAR(pole.eastingMetres, 500000.0, 1e-6);
            GeoPoint back;
            ASSERT_TRUE(projection->Inverse(pole, back));
            EXPECT_NEAR(back.latitudeRads, kHalfPi, 1e-12);
        }
    }
}

TEST(Projection, RefusesWhatIsNoNumber) {
    for (const Case& c : kClosedAndSeries) {
        SCOPED_TRACE(c.name);
        const auto projection = PrepareProjection(c.parameters);
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
    }
}

TEST(Projection, RefusesWhatDescribesNone) {
    const ProjectionParameters good = Parameters(Algorithm::TransverseMercator, 34, 0, 0, 1.0);
    const auto with = [&](auto change) {
        ProjectionParameters parameters = good;
        change(parameters);
        return PrepareProjection(parameters) != nullptr;
    };
    EXPECT_TRUE(with([](auto&) {}));
    EXPECT_FALSE(with([](auto& p) { p.algorithm = Algorithm::None; }));
    EXPECT_FALSE(with([](auto& p) { p.scaleFactor = 0.0; }));
    EXPECT_FALSE(with([](auto& p) { p.scaleFactor = kNan; }));
    EXPECT_FALSE(with([](auto& p) { p.ellipsoid.semiMajorAxisMetres = 0.0; }));
    EXPECT_FALSE(with([](auto& p) { p.ellipsoid.e2 = 1.0; }));
    EXPECT_FALSE(with([](auto& p) { p.ellipsoid.e2 = kNan; }));
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

// The gap of the unrolled cone is no place on earth.
TEST(LambertConic, Gap) {
    const auto projection =
        PrepareProjection(Parameters(Algorithm::LambertConic, 34, 0, 90, 1.0, 40, 50));
    GeoPoint point;
    EXPECT_FALSE(projection->Inverse({500000.0, -200000.0 + 5e6}, point));
    EXPECT_TRUE(projection->Inverse({500000.0, -200000.0 - 5e6}, point));
}

struct Edge {
    ProjectionParameters parameters;
    double latitude, longitude;
    bool isInside;
};

ProjectionParameters Local(Algorithm algorithm, std::int16_t zone = 0) {
    ProjectionParameters parameters = Parameters(algorithm, 5, 7.4, 47, 1.0);
    parameters.zone = zone;
    return parameters;
}

ProjectionParameters Conic(double origin, double parallel1, double parallel2) {
    return Parameters(Algorithm::LambertConic, 34, 10, origin, 1.0, parallel1, parallel2);
}

TEST(Projection, Edges) {
    const auto swiss = Local(Algorithm::SwissOblique);
    const auto dutch = Local(Algorithm::ObliqueStereographic);
    const auto newZealand = Local(Algorithm::NewZealandMapGrid);
    const auto jutland = Local(Algorithm::DanishSystem34, 1);
    const auto sealand = Local(Algorithm::DanishSystem34, 2);
    const auto bornholm = Local(Algorithm::DanishSystem45);
    const auto mercator = Parameters(Algorithm::TransverseMercator, 34, 170, 0, 1.0);
    const Edge edges[] = {
        {mercator, 0.0, -140.1, true},  // 49.9 degrees away
        {mercator, 0.0, -139.9, false},
        {mercator, 90.000001, 170.0, false},
        {swiss, 56.0, 7.0, true},
        {swiss, 58.0, 7.0, false},
        {swiss, 47.0, 18.0, false},
        {dutch, 47.0, 16.9, true},
        {dutch, 47.0, 17.5, false},
        {newZealand, -30.0, 160.0, true},
        {newZealand, -50.0, -175.0, true},
        {newZealand, -29.9, 173.0, false},
        {newZealand, -41.0, 159.9, false},
        {newZealand, -41.0, -174.9, false},
        {jutland, 56.0, 9.0, true},
        {sealand, 56.0, 9.0, false},
        {sealand, 55.7, 12.5, true},
        {jutland, 55.7, 12.8, false},
        {jutland, -33.0, 151.0, false},
        {bornholm, 55.1, 14.9, true},
        {bornholm, 55.7, 12.5, false},
        {Conic(45, 40, 50), 90.0, 10.0, true},
        {Conic(45, 40, 50), -90.0, 10.0, false},
        {Conic(-45, -40, -50), -90.0, 10.0, true},
        {Conic(-45, -40, -50), 90.0, 10.0, false},
        // Cylinders; and an origin at the far pole.
        {Conic(0, 30, -30), 30.0, 0.0, false},
        {Conic(0, 0, 0), 30.0, 0.0, false},
        {Conic(-90, 40, 50), 30.0, 0.0, false},
    };
    for (const Edge& edge : edges) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(edge.parameters.algorithm) << " at "
                                        << edge.latitude << " " << edge.longitude);
        const auto projection = PrepareProjection(edge.parameters);
        PlanePoint plane;
        GeoPoint back;
        const GeoPoint point{RadsFromDegrees(edge.latitude), RadsFromDegrees(edge.longitude)};
        ASSERT_EQ(projection->Forward(point, plane), edge.isInside);
        if (!edge.isInside) continue;
        ASSERT_TRUE(projection->Inverse(plane, back));
        EXPECT_NEAR(back.latitudeRads, point.latitudeRads, 1e-8);
        EXPECT_NEAR(back.longitudeRads, point.longitudeRads, 1e-8);
    }
    GeoPoint point;
    EXPECT_FALSE(PrepareProjection(mercator)->Inverse({500000.0, 1.1e7}, point));
    EXPECT_FALSE(PrepareProjection(mercator)->Inverse({9e6, 0.0}, point));
}

}  // namespace
}  // namespace kavrel::test
