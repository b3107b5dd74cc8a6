// Distance, Bearing and Move on the library's sphere of 6366710 m.

#include <cmath>
#include <random>

#include "support.h"

namespace kavrel::test {
namespace {

TEST(DistanceAndBearing, OnGreatCircles) {
    ForEachRow("geodesy/great_circles.csv", [](const Row& row) {
        const auto a = PositionAt(row.Number(0), row.Number(1));
        const auto b = PositionAt(row.Number(2), row.Number(3));
        const double rads = RadsFromDegrees(row.Number(4));
        EXPECT_NEAR(a->Distance(b.get(), 2), rads, 1e-12);
        EXPECT_NEAR(a->Distance(b.get(), 1), rads * 6366710.0, 1e-5);
        const double bearing = a->Bearing(b.get(), 1);
        EXPECT_NEAR(std::remainder(bearing - row.Number(5), 360.0), 0.0, 1e-4);  // also below 360
        EXPECT_TRUE(bearing >= 0.0 && bearing < 360.0) << bearing;
        EXPECT_EQ(a->Bearing(b.get(), 2), bearing);
        EXPECT_EQ(ErrorOf(*a), "");
        EXPECT_EQ(a->Bearing(a.get(), 1), 0.0);
        EXPECT_EQ(a->Distance(a.get(), 1), 0.0);
    });
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
    EXPECT_EQ(ErrorOf(*here), "Position outside grid");
    EXPECT_EQ(here->Bearing(there.get(), 3), 0.0);
}

// From anywhere exactly to a pole, in steps that round in every way.
TEST(Move, ToThePole) {
    for (double latitude = -89.9; latitude < 90; latitude += 0.37) {
        const auto p = PositionAt(latitude, 10);
        p->Move(RadsFromDegrees(90 - latitude), 0, 2);
        EXPECT_EQ(ErrorOf(*p), "");
        EXPECT_NEAR(p->Latitude(), 90, 1e-5);
    }
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
