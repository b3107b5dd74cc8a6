// The geographic side of Position: coordinates, texts, altitudes, and what counts as a change.

#include "geodesy/position.h"

#include <cmath>

#include "support.h"

namespace kavrel::test {
namespace {

TEST(Position, IsNewAtZero) {
    const auto p = MakeRef<Position>();
    EXPECT_EQ(p->ModifiedCount(), 0u);
    EXPECT_EQ(p->Datum(), 1);
    EXPECT_EQ(p->Grid(), 0);
    EXPECT_EQ(p->Zone(), "");
    EXPECT_EQ(p->Latitude(), 0.0);
    EXPECT_EQ(p->Altitude(0), 0.0);
    EXPECT_EQ(p->Easting(), 0.0);
    EXPECT_EQ(p->ModifiedCount(), 0u);
}

TEST(Position, FromReceiverText) {
    Position p({"5920.20576", "01805.5", "S", "W", "12.5", "-30.25"}, 17);
    const auto latitude = p.LatitudeDMS();
    const auto longitude = p.LongitudeDMS();
    EXPECT_EQ(latitude.degrees, 59);
    EXPECT_EQ(latitude.minutes, 20);
    EXPECT_NEAR(latitude.seconds, 12.3456, 1e-9);  // not rounded to 0.001
    EXPECT_EQ(latitude.hemisphere, 'S');
    EXPECT_EQ(longitude.degrees, 18);
    EXPECT_EQ(longitude.minutes, 5);
    EXPECT_NEAR(longitude.seconds, 30.0, 1e-9);
    EXPECT_EQ(longitude.hemisphere, 'W');
    EXPECT_NEAR(p.Latitude(), -(59 + 20.20576 / 60), 1e-13);
    EXPECT_NEAR(p.Longitude(), -(18 + 5.5 / 60), 1e-13);
    EXPECT_EQ(p.Altitude(0), 12.5);
    EXPECT_EQ(p.Altitude(1), -17.75);
    EXPECT_EQ(p.ModifiedCount(), 0u);
    p.PutDatum(1);  // not untouched: the point moves
    EXPECT_NE(p.Latitude(), -(59 + 20.20576 / 60));
}

TEST(Position, FromOddReceiverText) {
    struct Case {
        const char *latitude, *longitude, *north, *east;
        double latitudeDegrees, longitudeDegrees;
    };
    for (const Case& c :
         {Case{"", "", "", "", 0, 0},
          Case{"4807", "01131", "N", "E", 48 + 7 / 60.0, 11 + 31 / 60.0},
          Case{"4807.5", "931.25", "n", "w", 48.125, 9 + 31.25 / 60},
          Case{".5", "30", "N", "E", 0.5 / 60, 0.5}, Case{"abc", "?", "S", "W", 0, 0},
          Case{"0000.0000", "18100.0", "N", "E", 0, -179}}) {
        Position p({c.latitude, c.longitude, c.north, c.east, "", "20"}, 1);
        EXPECT_NEAR(p.Latitude(), c.latitudeDegrees, 1e-12) << c.latitude;
        EXPECT_NEAR(p.Longitude(), c.longitudeDegrees, 1e-12) << c.longitude;
        EXPECT_EQ(p.Altitude(0), 0.0);
        EXPECT_EQ(p.Altitude(1), 0.0);
    }
    // Digits without end must not overrun anything.
    const std::string digits(400, '9');
    Position p({digits, digits, "N", "E", digits, digits}, 1);
    EXPECT_LE(p.LatitudeString(0).size(), 14u);
    EXPECT_LE(p.LongitudeString(1).size(), 14u);
}

TEST(Position, Strings) {
    const auto p = PositionAt(-(59 + 20.0 / 60 + 12.345 / 3600), -(18 + 5.5 / 60));
    EXPECT_EQ(p->LatitudeString(0), "59 20'12.35 S");
    EXPECT_EQ(p->LongitudeString(0), "18 5'30.00 W");
    EXPECT_EQ(p->LatitudeString(1), "5920.20576");
    EXPECT_EQ(p->LongitudeString(1), "01805.50001");
    EXPECT_EQ(p->LatitudeString(2), "");
    EXPECT_EQ(ErrorOf(*p), "Invalid parameter!");
    EXPECT_EQ(p->error().code(), 10003u);
    EXPECT_EQ(p->LongitudeString(-1), "");
    EXPECT_EQ(ErrorOf(*p), "Invalid parameter!");
    p->LongitudeString(1);
    EXPECT_EQ(ErrorOf(*p), "");
}

TEST(Position, LatitudeIsRangeChecked) {
    const auto p = MakeRef<Position>();
    p->PutLatitudeRads(kHalfPi);
    EXPECT_EQ(ErrorOf(*p), "");
    EXPECT_EQ(p->ModifiedCount(), 1u);
    for (const double bad :
         {1.5707963267948968, -1.5707963267948968, kNan, kInfinity, -kInfinity}) {
        p->PutLatitudeRads(bad);
        EXPECT_EQ(ErrorOf(*p), "Invalid latitude. Must be between -PI/2 and PI/2");
        EXPECT_EQ(p->error().code(), 10003u);
    }
    p->PutLatitude(90.1);
    EXPECT_EQ(ErrorOf(*p), "Invalid latitude. Must be between -PI/2 and PI/2");
    p->PutLatitude(90.0);
    EXPECT_EQ(ErrorOf(*p), "");
    EXPECT_EQ(p->LatitudeRads(), kHalfPi);
    EXPECT_EQ(p->ModifiedCount(), 2u);
}

TEST(Position, LongitudeIsNormalised) {
    const auto p = MakeRef<Position>();
    p->PutLongitudeRads(4.0);
    EXPECT_EQ(p->LongitudeRads(), 4.0 - kTwoPi);
    EXPECT_EQ(p->LongitudeDMS().hemisphere, 'W');
    p->PutLongitudeRads(kPi);
    EXPECT_EQ(p->LongitudeRads(), kPi);
    EXPECT_EQ(p->LongitudeDMS().degrees, 180);
    EXPECT_EQ(p->LongitudeDMS().hemisphere, 'E');
    p->PutLongitude(-180.0);
    EXPECT_EQ(p->LongitudeDMS().hemisphere, 'W');
    p->PutLongitude(540.5);
    EXPECT_NEAR(p->Longitude(), -179.5, 1e-12);
    for (const double bad : {kNan, kInfinity}) {  // no range check: stored as it comes
        p->PutLongitudeRads(bad);
        EXPECT_EQ(ErrorOf(*p), "");
        EXPECT_LE(p->LongitudeString(0).size(), 14u);
        p->PutGrid(1);
        p->Easting();
        EXPECT_EQ(ErrorOf(*p), "Position outside grid");
        p->PutGrid(0);
    }
}

TEST(Position, SetLatitudeDms) {
    const auto p = MakeRef<Position>();
    for (const double bad : {-1.0, 90.5, -1e-9, kNan, kInfinity}) {
        p->SetLatitudeDMS(bad, 0, 0, "N");
        EXPECT_EQ(ErrorOf(*p), "Invalid value of Degrees. Must be between 0 and 90!");
    }
    EXPECT_EQ(p->ModifiedCount(), 0u);
    p->SetLatitudeDMS(90, 30, 0, "N");  // beyond the pole, deliberately
    EXPECT_EQ(ErrorOf(*p), "");
    EXPECT_NEAR(p->Latitude(), 90.5, 1e-12);
    EXPECT_EQ(p->LatitudeDMS().degrees, 90);
    EXPECT_EQ(p->LatitudeDMS().minutes, 30);
    p->SetLatitudeDMS(10, 0, 0, "s");
    EXPECT_NEAR(p->Latitude(), 10.0, 1e-12);
    p->SetLatitudeDMS(10, 15, 36, "South");
    EXPECT_NEAR(p->Latitude(), -10.26, 1e-12);
    p->SetLatitudeDMS(10, 1e300, kNan, "");
    EXPECT_EQ(ErrorOf(*p), "");
    EXPECT_LE(p->LatitudeString(0).size(), 14u);
    EXPECT_EQ(p->ModifiedCount(), 4u);
    p->SetLatitudeDMS(10, 1e7, 0, "N");
    EXPECT_EQ(p->LatitudeDMS().degrees, 32767);
}

TEST(Position, SetLongitudeDms) {
    const auto p = MakeRef<Position>();
    p->SetLongitudeDMS(190, 30, 36, "E");
    EXPECT_NEAR(p->Longitude(), -169.49, 1e-12);
    p->SetLongitudeDMS(10, 30, 36, "W");
    EXPECT_NEAR(p->Longitude(), -10.51, 1e-12);
    p->SetLongitudeDMS(-10, 0, 0, "w");
    EXPECT_NEAR(p->Longitude(), -10.0, 1e-12);
}

TEST(Position, Altitudes) {
    const auto p = MakeRef<Position>();
    p->SetAltitude(0, 100.0);
    EXPECT_EQ(p->Altitude(1), 0.0);
    p->SetAltitude(1, 140.0);
    EXPECT_EQ(p->Altitude(0), 100.0);
    EXPECT_EQ(p->Altitude(1), 140.0);
    EXPECT_EQ(p->ModifiedCount(), 2u);
    p->SetAltitude(2, 5.0);
    EXPECT_EQ(ErrorOf(*p), "Invalid parameter!");
    EXPECT_EQ(p->ModifiedCount(), 3u);  // counted although refused
    EXPECT_EQ(p->Altitude(2), 0.0);
    EXPECT_EQ(ErrorOf(*p), "Invalid parameter!");
    const auto other = MakeRef<Position>();
    other->CopyAltitudes(*p);
    EXPECT_EQ(other->Altitude(0), 100.0);
    EXPECT_EQ(other->Altitude(1), 140.0);
    EXPECT_EQ(other->ModifiedCount(), 0u);
}

TEST(Position, CopyIsIndependent) {
    const auto p = PositionAt(50, 9);
    p->SetAltitude(0, 7.0);
    p->PutGrid(1);
    EXPECT_EQ(p->Zone(), "32U");
    const auto copy = p->Copy();
    EXPECT_EQ(copy->ModifiedCount(), 0u);
    EXPECT_EQ(copy->Easting(), p->Easting());
    EXPECT_EQ(copy->Altitude(0), 7.0);
    copy->PutLongitude(100);
    EXPECT_NEAR(p->Longitude(), 9.0, 1e-12);
    EXPECT_EQ(copy->Zone(), "47U");
    EXPECT_EQ(p->Zone(), "32U");

    // The untouched flag goes along and is not cleared by copying.
    const auto untouched = MakeRef<Position>();
    const auto second = untouched->Copy();
    second->PutDatum(5);
    EXPECT_EQ(second->Latitude(), 0.0);
    untouched->PutDatum(5);
    EXPECT_EQ(untouched->Latitude(), 0.0);
}

}  // namespace
}  // namespace kavrel::test
