// Distance, Bearing and Move. Expected values by hand from spherical trigonometry on the library's
// sphere of 6366710 m.

#include <cmath>
#include <random>

#include "support.h"

namespace kavrel::test {
namespace {

constexpr double kRadius = 6366710.0;

// Bearings near 0 may come out just below 360.
void ExpectBearing(double actual, double expected, double tolerance = 1e-5) {
    EXPECT_NEAR(std::remainder(actual - expected, 360.0), 0.0, tolerance);
    EXPECT_GE(actual, 0.0);
    EXPECT_LT(actual, 360.0);
}

TEST(DistanceAndBearing, OnGreatCircles) {
    struct Case {
        double lat1, lon1, lat2, lon2, rads, bearing;
    };
    const double quarter = kHalfPi;
    for (const Case& c :
         {Case{0, 0, 0, 90, quarter, 90}, Case{0, 0, 90, 0, quarter, 0},
          Case{0, 0, 0, -10, RadsFromDegrees(10), 270},
          Case{30, 20, 10, 20, RadsFromDegrees(20), 180},
          Case{0, 179, 0, -179, RadsFromDegrees(2), 90}, Case{90, 0, -90, 0, kPi, 180},
          Case{90, 0, 10, 50, RadsFromDegrees(80), 180},
          Case{-90, 0, 10, 50, RadsFromDegrees(100), 0}, Case{45, 10, 45, 10, 0, 0},
          Case{89, 0, 89, 180, RadsFromDegrees(2), 0}, Case{0, 0, 45, 90, quarter, 45},
          Case{0, 0, -45, 90, quarter, 135}}) {
        const auto a = PositionAt(c.lat1, c.lon1);
        const auto b = PositionAt(c.lat2, c.lon2);
        EXPECT_NEAR(a->Distance(b.get(), 2), c.rads, 1e-12);
        EXPECT_NEAR(a->Distance(b.get(), 1), c.rads * kRadius, 1e-5);
        ExpectBearing(a->Bearing(b.get(), 1), c.bearing, 1e-4);
        EXPECT_EQ(a->Bearing(b.get(), 1), a->Bearing(b.get(), 2));
        EXPECT_EQ(ErrorOf(*a), "");
        EXPECT_EQ(a->Bearing(a.get(), 1), 0.0);
        EXPECT_EQ(a->Distance(a.get(), 1), 0.0);
    }
}

TEST(Distance, Refusals) {
    const auto a = PositionAt(0, 0);
    const auto b = PositionAt(1, 1);
    for (const int method : {0, 4, -1}) {
        EXPECT_EQ(a->Distance(b.get(), method), 0.0);
        EXPECT_EQ(ErrorOf(*a), "Unknown method to calculate distance.");
        EXPECT_EQ(a->Bearing(b.get(), method), 0.0);
        EXPECT_EQ(ErrorOf(*a), "Unknown method to calculate bearing.");
        a->Move(1, 1, method);
        EXPECT_EQ(ErrorOf(*a), "Unknown method.");
    }
    EXPECT_EQ(a->ModifiedCount(), 3u);
    EXPECT_EQ(a->Latitude(), 0.0);
    EXPECT_EQ(a->Distance(nullptr, 1), 0.0);
    EXPECT_EQ(ErrorOf(*a), "Position may not be null.");
    EXPECT_EQ(a->Bearing(nullptr, 1), 0.0);
    EXPECT_EQ(ErrorOf(*a), "Position may not be null.");
    EXPECT_EQ(a->Distance(b.get(), 3), 0.0);  // no grid; both sides are settled
    EXPECT_EQ(ErrorOf(*a), "");
    a->PutLatitude(1);
    EXPECT_EQ(a->Distance(b.get(), 3), 0.0);
    EXPECT_EQ(ErrorOf(*a), "Grid not set!");
    EXPECT_EQ(a->Bearing(b.get(), 3), 0.0);
    EXPECT_EQ(ErrorOf(*a), "Grid not set!");
    b->PutEasting(1);
    for (const int method : {1, 2}) {  // the other position's failure is this one's, too
        EXPECT_EQ(a->Distance(b.get(), method), 0.0);
        EXPECT_EQ(ErrorOf(*a), "Grid not set!");
        EXPECT_EQ(a->Bearing(b.get(), method), 0.0);
        EXPECT_EQ(ErrorOf(*a), "Grid not set!");
    }
}

// Distance brings the other point onto this datum; Bearing takes it as it is.
TEST(Distance, AcrossDatums) {
    const auto a = PositionAt(52, 0, 1);
    const auto p = PositionAt(52, 0, 3);
    const auto shifted = p->Copy();
    shifted->PutDatum(1);
    EXPECT_GT(a->Distance(p.get(), 1), 50.0);
    EXPECT_EQ(a->Distance(p.get(), 1), a->Distance(shifted.get(), 1));
    EXPECT_EQ(p->Datum(), 3);
    EXPECT_EQ(p->ModifiedCount(), 0u);
    // Unshifted the two coincide, but are told to be some metres apart: by the formula that is 270.
    ExpectBearing(a->Bearing(p.get(), 1), 270.0, 0.01);
    EXPECT_GT(std::fabs(a->Bearing(shifted.get(), 1) - 270.0), 1.0);
}

TEST(Distance, InTheGrid) {
    const auto a = PositionAt(52, 1);
    const auto p = PositionAt(52, 1.5);
    a->PutGrid(3);
    p->PutGrid(1);
    const auto same = p->Copy();
    same->PutGrid(3);
    const double de = same->Easting() - a->Easting();
    const double dn = same->Northing() - a->Northing();
    EXPECT_NEAR(a->Distance(p.get(), 3), std::sqrt(de * de + dn * dn), 1e-9);
    ExpectBearing(a->Bearing(p.get(), 3), std::atan2(de, dn) * kDegreesPerRad, 1e-9);
    EXPECT_EQ(p->Grid(), 1);

    // A copy takes over the zone: 33 for a point that is itself in 32.
    a->PutGrid(1);
    a->PutLongitude(12.1);
    p->PutLongitude(11.9);
    a->Easting();
    const double metres = 0.2 * kRadsPerDegree * std::cos(RadsFromDegrees(52)) * 6391000.0;
    EXPECT_NEAR(a->Distance(p.get(), 3), metres, 30.0);
    EXPECT_EQ(ErrorOf(*a), "");

    p->PutLatitude(0);
    p->PutLongitude(-120);
    for (const int grid : {1, 3}) {  // another grid than the other's, and the same
        a->PutGrid(3);
        p->PutGrid(grid);
        EXPECT_EQ(a->Distance(p.get(), 3), 0.0);
        EXPECT_EQ(ErrorOf(*a), "Position outside grid");
    }
}

// This position can tell its plane point, but not the zone that the other one is to be put into.
TEST(Distance, FailsWhereThisPositionsZoneCannotBeTold) {
    const Ref<Position> here = MakeRef<Position>();
    here->PutGrid(1);
    here->PutZone(32);
    here->PutEasting(3e87);
    here->PutNorthing(0.0);
    const Ref<Position> there = MakeRef<Position>();
    there->PutGrid(2);
    there->PutLatitudeRads(0.8);
    EXPECT_EQ(here->Distance(there.get(), 3), 0.0);
    EXPECT_EQ(here->error().text(), "Position outside grid");
    EXPECT_EQ(here->Bearing(there.get(), 3), 0.0);
}

TEST(Move, AtTheEquator) {
    const auto p = PositionAt(0, 0);
    p->PutGrid(1);
    const auto count = p->ModifiedCount();
    p->Move(1000, 90, 1);
    EXPECT_NEAR(p->LongitudeRads(), 1000 / kRadius, 1e-18);
    EXPECT_NEAR(p->LatitudeRads(), 0.0, 1e-18);
    EXPECT_EQ(p->ModifiedCount(), count + 3);
    EXPECT_NEAR(p->Easting(), 167000, 1100);  // the grid side follows
    p->Move(kHalfPi, 0, 2);
    EXPECT_NEAR(p->Latitude(), 90.0, 1e-9);
}

TEST(Move, AcrossTheDateLineAndThePole) {
    const auto p = PositionAt(0, 179);
    p->Move(RadsFromDegrees(2), 90, 2);
    EXPECT_NEAR(p->Longitude(), -179, 1e-12);
    const auto q = PositionAt(89, 0);
    q->Move(RadsFromDegrees(2), 0, 2);
    EXPECT_NEAR(q->Latitude(), 89, 1e-9);
    EXPECT_NEAR(std::fabs(q->Longitude()), 180, 1e-9);
    // From anywhere exactly to a pole, in steps that round in every way.
    for (double latitude = -89.9; latitude < 90; latitude += 0.37) {
        const auto r = PositionAt(latitude, 10);
        r->Move(RadsFromDegrees(90 - latitude), 0, 2);
        EXPECT_EQ(ErrorOf(*r), "");
        EXPECT_NEAR(r->Latitude(), 90, 1e-5);
    }
}

TEST(Move, InTheGrid) {
    const auto p = PositionAt(52, 1);
    p->PutGrid(3);
    const auto start = p->Copy();
    struct Case {
        double de, dn, degrees;
    };
    for (const Case& c : {Case{0, 10, 0}, Case{10, 0, 90}, Case{0, -10, 180}, Case{-10, 0, 270},
                          Case{-10, 10, 315}, Case{250, 500 * std::sqrt(0.75), 30}}) {
        const auto count = p->ModifiedCount();
        p->Move(std::sqrt(c.de * c.de + c.dn * c.dn), c.degrees, 3);
        EXPECT_EQ(p->ModifiedCount(), count + 3);
        EXPECT_NEAR(p->Easting(), start->Easting() + c.de, 1e-9);
        EXPECT_NEAR(p->Northing(), start->Northing() + c.dn, 1e-9);
        ExpectBearing(start->Bearing(p.get(), 3), c.degrees, 1e-6);
        p->PutEasting(start->Easting());
        p->PutNorthing(start->Northing());
    }
    EXPECT_EQ(start->Bearing(p.get(), 3), 90.0);  // of a point to itself
    p->Move(500, 30, 3);
    EXPECT_GT(p->Latitude(), 52.0);
}

TEST(Move, Failures) {
    const auto p = PositionAt(10, 10);
    p->PutLatitude(10);
    const auto count = p->ModifiedCount();
    p->Move(10, 0, 3);
    EXPECT_EQ(ErrorOf(*p), "Grid not set!");
    EXPECT_EQ(p->ModifiedCount(), count + 1);
    for (const double bad : {kNan, kInfinity}) {
        p->Move(bad, 0, 1);
        EXPECT_EQ(ErrorOf(*p), "Invalid latitude. Must be between -PI/2 and PI/2");
        EXPECT_NEAR(p->Latitude(), 10, 1e-12);
        EXPECT_NEAR(p->Longitude(), 10, 1e-12);
    }
    EXPECT_EQ(p->ModifiedCount(), count + 3);
    p->PutEasting(5);
    p->Move(10, 0, 1);
    EXPECT_EQ(ErrorOf(*p), "Grid not set!");
}

// Moving by what Distance and Bearing say arrives.
TEST(Move, ArrivesWhereDistanceAndBearingPoint) {
    std::mt19937_64 random(99);
    std::uniform_real_distribution<double> latitude(-85, 85);
    std::uniform_real_distribution<double> longitude(-180, 180);
    for (int i = 0; i < 2000; ++i) {
        const auto from = PositionAt(latitude(random), longitude(random));
        const auto to = PositionAt(latitude(random), longitude(random));
        const double bearing = from->Bearing(to.get(), 1);
        from->Move(from->Distance(to.get(), 1), bearing, 1);
        EXPECT_NEAR(from->Distance(to.get(), 1), 0.0, 0.5);  // acos costs half the digits at 0, 180
    }
}

}  // namespace
}  // namespace kavrel::test
