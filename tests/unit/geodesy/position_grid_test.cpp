// The grid side of Position: lazy updates, zones and their texts, custom grids.

#include <cmath>

#include "geodesy/custom_datum.h"
#include "geodesy/custom_grid.h"
#include "support.h"

namespace kavrel::test {
namespace {

constexpr int kSixDegreeGrids[] = {1, 2, 13, 15, 16, 28, 32, 33, 47};

TEST(PositionGrid, Refusals) {
    const auto p = PositionAt(50, 9);
    for (const int bad : {-1, 53, 65536, -2147483647}) {
        p->PutGrid(bad);
        EXPECT_EQ(ErrorOf(*p), "Unknown grid!") << bad;
    }
    p->PutGrid(52);
    EXPECT_EQ(ErrorOf(*p), "Set Position.CustomGrid instead!");
    p->PutCustomGrid(nullptr);
    EXPECT_EQ(ErrorOf(*p), "CustomGrid may not be null.");
    EXPECT_EQ(p->Grid(), 0);
    EXPECT_EQ(p->ModifiedCount(), 0u);
    p->PutGrid(1);
    p->PutGrid(1);
    EXPECT_EQ(p->ModifiedCount(), 1u);
}

TEST(PositionGrid, WithoutGrid) {
    const auto p = PositionAt(50, 9);
    p->PutLatitude(51);
    EXPECT_EQ(p->Easting(), 0.0);
    EXPECT_EQ(ErrorOf(*p), "Grid not set!");
    p->PutEasting(1.0);
    p->Latitude();
    EXPECT_EQ(ErrorOf(*p), "Grid not set!");
    EXPECT_EQ(p->Altitude(2), 0.0);
    p->LatitudeString(0);  // the flag stays: each read tries again
    EXPECT_EQ(ErrorOf(*p), "Grid not set!");
    EXPECT_EQ(p->Easting(), 1.0);
    EXPECT_EQ(ErrorOf(*p), "");
    p->PutLongitude(1.0);  // the geographic side is written: the error is gone
    p->Latitude();
    EXPECT_EQ(ErrorOf(*p), "");
}

TEST(PositionGrid, LastWrittenSideWins) {
    const auto p = PositionAt(50, 9.5);
    p->PutGrid(1);
    const double easting = p->Easting();
    const double northing = p->Northing();
    p->PutEasting(easting + 1000);
    EXPECT_GT(p->Longitude(), 9.51);
    EXPECT_NEAR(p->Northing(), northing, 1e-6);
    EXPECT_EQ(p->LongitudeDMS().minutes, 30);
    p->PutLongitude(9.5);
    EXPECT_NEAR(p->Easting(), easting, 20.0);  // the latitude moved a little with the easting
    const auto count = p->ModifiedCount();
    p->PutEasting(1);
    p->PutNorthing(2);
    EXPECT_EQ(p->ModifiedCount(), count + 2);
    EXPECT_EQ(p->Easting(), 1);
    EXPECT_EQ(p->Northing(), 2);
}

TEST(SixDegreeZones, BordersAndBandLetters) {
    struct Case {
        double latitude, longitude;
        const char* zone;
    };
    for (const Case& c :
         {Case{0, -180, "1N"},        Case{0, -174.0000001, "1N"}, Case{0, -173.9999999, "2N"},
          Case{0, -0.0000001, "30N"}, Case{0, 0, "31N"},           Case{0, 5.9999999, "31N"},
          Case{0, 6, "32N"},          Case{0, 179.9999999, "60N"}, Case{0, 180, "60N"},
          Case{0, 181, "1N"},         Case{-90, 3, "31B"},         Case{-80, 3, "31C"},
          Case{-72.1, 3, "31C"},      Case{-40.1, 3, "31G"},       Case{-40, 3, "31H"},
          Case{-24, 3, "31K"},        Case{-0.1, 3, "31M"},        Case{8, 3, "31P"},
          Case{71.9, 3, "31W"},       Case{72, 3, "31X"},          Case{79.9, 3, "31X"},
          Case{80, 3, "31Y"},         Case{88, 3, "31Z"}}) {
        const auto p = PositionAt(c.latitude, 0);
        p->PutLongitude(c.longitude);
        p->PutGrid(1);
        EXPECT_EQ(p->Zone(), c.zone) << c.latitude << " " << c.longitude;
        EXPECT_EQ(ErrorOf(*p), "");
        EXPECT_NEAR(p->Easting(), 500000, 334001) << c.longitude;
    }
    // The zone belongs to the longitude on the grid's datum: 6 degrees on 25 is further east.
    const auto p = PositionAt(50, 6.0 - 1e-5, 1);
    p->PutGrid(28);
    EXPECT_EQ(p->Zone(), "32U");
    // The letter is kept within a zone.
    p->PutLatitude(0);
    EXPECT_EQ(p->Zone(), "32U");
    p->PutLongitude(3);
    EXPECT_EQ(p->Zone(), "31N");
}

TEST(SixDegreeZones, LetterComesFromTheGridSide) {
    const auto p = PositionAt(0, 0);
    p->PutGrid(1);
    p->PutZone(33);
    p->PutEasting(676509.2272);
    p->PutNorthing(6577565.3173);
    EXPECT_EQ(p->Zone(), "33V");
}

TEST(PositionGrid, GridChangeKeepsThePoint) {
    const auto p = PositionAt(0, 0, 2);
    p->PutGrid(27);
    p->PutEasting(648583.2621);
    p->PutNorthing(6855774.7157);
    p->PutGrid(13);
    EXPECT_NEAR(p->Latitude(), 48.8, 1e-9);
    EXPECT_NEAR(p->Longitude(), 2.3, 1e-9);
    EXPECT_EQ(p->Zone(), "31U");
}

TEST(SixDegreeZones, FixedZone) {
    for (const int grid : kSixDegreeGrids) {
        SCOPED_TRACE(grid);
        const auto p = PositionAt(50, 11.9);
        p->PutGrid(grid);
        p->PutZone(33);
        EXPECT_EQ(ErrorOf(*p), "");
        EXPECT_EQ(p->ModifiedCount(), 2u);
        const double easting = p->Easting();
        EXPECT_LT(easting, 300000);
        EXPECT_EQ(p->Zone(), "33U");
        p->PutLongitude(11.8);  // stays fixed
        EXPECT_LT(p->Easting(), easting);
        const std::uint32_t count = p->ModifiedCount();
        p->PutZone(33);  // the stored value: nothing happens
        EXPECT_EQ(p->ModifiedCount(), count);
        for (const int bad : {0, 61, -1, 65569, 1 << 30}) {
            p->PutZone(bad);
            EXPECT_EQ(ErrorOf(*p), "Invalid Zone for this grid!");
        }
        EXPECT_EQ(p->ModifiedCount(), count);
        p->PutLongitude(11.9);  // a refused zone has undone the fixing
        EXPECT_EQ(p->Zone(), "32U");
    }
}

TEST(SixDegreeZones, ZoneAfterEastingCannotWork) {
    const auto p = PositionAt(0, 0);
    p->PutGrid(1);
    p->PutEasting(676509.2272);
    p->PutNorthing(6577565.3173);
    p->Latitude();
    EXPECT_EQ(ErrorOf(*p), "Zone must be specified for this grid");
    p->PutZone(33);
    EXPECT_EQ(ErrorOf(*p), "Zone must be specified for this grid");
    EXPECT_EQ(p->Easting(), 676509.2272);  // the grid side wins
    p->PutEasting(676509.2272);
    p->PutLatitude(59.3);
    p->PutLongitude(18.1);
    EXPECT_EQ(p->Zone(), "33V");
    EXPECT_NEAR(p->Easting(), 676509.2272, 1e-4);
}

TEST(Zones, AsText) {
    const auto p = PositionAt(50, 11.9);
    p->PutGrid(1);
    p->PutZone("33U");
    EXPECT_EQ(p->Zone(), "33U");
    p->PutZone(" 31");
    EXPECT_EQ(p->Zone(), "31U");
    p->PutZone("U");
    EXPECT_EQ(ErrorOf(*p), "Invalid Zone for this grid!");
    p->PutZone("99999999999");
    EXPECT_EQ(ErrorOf(*p), "Invalid Zone for this grid!");
}

TEST(Zones, IgnoredWhereThereAreNone) {
    for (const int grid : {0, 3, 21, 34, 49, 51}) {
        const auto p = PositionAt(50, 9);
        p->PutGrid(grid);
        const auto count = p->ModifiedCount();
        p->PutZone(3);
        EXPECT_EQ(ErrorOf(*p), "") << grid;
        EXPECT_EQ(p->ModifiedCount(), count) << grid;
    }
}

TEST(Zones, TablesNeedOne) {
    struct Case {
        int grid, good, bad;
    };
    for (const Case& c : {Case{30, 101, 103}, Case{30, 5202, 5203}, Case{31, 5200, 5202},
                          Case{31, 101, 65637}, Case{48, 1, 3}, Case{48, 2, -1}}) {
        SCOPED_TRACE(testing::Message() << c.grid << " " << c.good);
        const auto p = PositionAt(56, 9.5);
        p->PutGrid(c.grid);
        p->Easting();
        EXPECT_EQ(ErrorOf(*p), "Zone must be specified for this grid");
        p->PutZone(c.bad);
        EXPECT_EQ(ErrorOf(*p), "Invalid Zone for this grid!");
        p->PutZone(c.good);
        EXPECT_EQ(ErrorOf(*p), "");
        // The text is there even when the point is outside the zone.
        const auto inside = MakeRef<Position>();
        inside->PutGrid(c.grid);
        inside->PutZone(c.good);
        inside->PutEasting(200000);
        inside->PutNorthing(200000);
        EXPECT_EQ(inside->Zone(), std::to_string(c.good));
        inside->PutGrid(1);
        EXPECT_EQ(inside->Zone().back() >= 'C', true);
    }
}

TEST(Strips, ZoneStandsInTheEasting) {
    // Without the zone in front, with it, and with it alone.
    for (const double easting : {547638.8181, 3547638.8181}) {
        const auto q = PositionAt(0, 0, 18);
        q->PutGrid(29);
        q->PutZone(3);
        q->PutEasting(easting);
        q->PutNorthing(5807484.5980);
        EXPECT_NEAR(q->Longitude(), 9.7, 1e-9);
        EXPECT_NEAR(q->Latitude(), 52.4, 1e-9);
    }
    const auto q = PositionAt(0, 0, 18);
    q->PutGrid(29);
    q->PutEasting(3547638.8181);
    q->PutNorthing(5807484.5980);
    EXPECT_NEAR(q->Longitude(), 9.7, 1e-9);
    EXPECT_EQ(q->Zone(), "3");
    q->PutGrid(0);
    q->PutGrid(29);
    q->PutEasting(547638.8181);
    q->Latitude();
    EXPECT_EQ(ErrorOf(*q), "Zone must be specified for this grid");
    q->PutEasting(11547638.8181);
    q->Latitude();
    EXPECT_EQ(ErrorOf(*q), "Position outside grid");
}

TEST(Strips, Borders) {
    struct Case {
        double longitude;
        const char* zone;
    };
    for (const Case& c : {Case{1.4999, ""}, Case{1.5001, "1"}, Case{4.4999, "1"}, Case{4.5001, "2"},
                          Case{31.4999, ":"}, Case{31.5001, ""}, Case{-30, ""}}) {
        const auto p = PositionAt(52, c.longitude, 18);
        p->PutGrid(29);
        p->Easting();
        EXPECT_EQ(ErrorOf(*p), *c.zone == '\0' ? "Position outside grid" : "") << c.longitude;
        if (*c.zone != '\0') {
            EXPECT_EQ(p->Zone(), c.zone);
        }
    }
    const auto p = PositionAt(52, 13, 18);
    p->PutGrid(29);
    p->PutZone(11);
    EXPECT_EQ(ErrorOf(*p), "Invalid Zone for this grid!");
    p->PutZone(5);
    EXPECT_GT(p->Easting(), 5000000);
}

TEST(PositionGrid, OutsideKeepsEverything) {
    const auto p = PositionAt(51, 9);
    p->PutGrid(3);
    const double easting = p->Easting();
    p->PutLatitude(10);
    p->PutLongitude(120);
    EXPECT_EQ(p->Easting(), easting);
    EXPECT_EQ(ErrorOf(*p), "Position outside grid");
    EXPECT_EQ(p->error().code(), 10003u);
    p->PutLongitude(0);  // tried again
    EXPECT_NE(p->Easting(), easting);
    EXPECT_EQ(ErrorOf(*p), "");
    p->SetLatitudeDMS(90, 30, 0, "N");
    p->Northing();
    EXPECT_EQ(ErrorOf(*p), "Position outside grid");
    for (const double bad : {kNan, kInfinity}) {
        p->PutEasting(bad);
        EXPECT_EQ(ErrorOf(*p), "");
        p->Longitude();
        EXPECT_EQ(ErrorOf(*p), "Position outside grid");
    }
}

// The values of grid 3, so that a custom grid can be compared with it.
Ref<CustomGrid> BritishGrid() {
    auto grid = MakeRef<CustomGrid>();
    grid->PutDatum(3);
    grid->PutAlgorithm(3);
    grid->PutFalseEasting(400000);
    grid->PutFalseNorthing(-100000);
    grid->PutLongitudeOfOrigin(RadsFromDegrees(-2));
    grid->PutLatitudeOfOrigin(RadsFromDegrees(49));
    grid->PutScaleFactor(0.9996012717);
    return grid;
}

TEST(CustomGrids, LikeABuiltInOne) {
    const auto builtIn = PositionAt(52, 1);
    const auto custom = PositionAt(52, 1);
    const auto grid = BritishGrid();
    builtIn->PutGrid(3);
    custom->PutCustomGrid(grid);
    EXPECT_EQ(custom->Grid(), 52);
    EXPECT_EQ(custom->Easting(), builtIn->Easting());
    EXPECT_EQ(custom->Northing(), builtIn->Northing());
    EXPECT_EQ(custom->Zone(), "");
    const auto count = custom->ModifiedCount();
    custom->PutCustomGrid(BritishGrid());  // equal: nothing happens
    EXPECT_EQ(custom->ModifiedCount(), count);

    grid->PutFalseEasting(0);  // seen by the next computation, not by what is stored
    EXPECT_EQ(custom->Easting(), builtIn->Easting());
    custom->PutLongitude(1);
    EXPECT_NEAR(custom->Easting(), builtIn->Easting() - 400000, 1e-6);
}

TEST(CustomGrids, Unusable) {
    const auto grid = BritishGrid();
    const auto p = PositionAt(52, 1);
    p->PutCustomGrid(grid);
    for (const int code : {0, 1, 4, 7, 9, 10, 255, 259, -3}) {
        grid->PutAlgorithm(static_cast<std::int16_t>(code));
        p->PutLatitude(52);
        p->Easting();
        EXPECT_EQ(ErrorOf(*p), "Unknown grid!") << code;
        EXPECT_EQ(grid->Algorithm(), code);
    }
    grid->PutAlgorithm(3);
    for (const DatumId datum : {0, 28, 29, -1}) {
        grid->PutDatum(datum);
        p->Easting();
        EXPECT_EQ(ErrorOf(*p), "Unknown datum!") << datum;
    }
    grid->PutCustomDatum(MakeRef<CustomDatum>());
    p->Easting();
    EXPECT_EQ(ErrorOf(*p), "Position outside grid");
    grid->CustomDatum()->PutSemiMajorAxis(6378137.0);
    p->Easting();
    EXPECT_EQ(ErrorOf(*p), "");
    grid->PutScaleFactor(0.0);
    p->PutLatitude(52);
    p->Easting();
    EXPECT_EQ(ErrorOf(*p), "Position outside grid");
}

TEST(CustomGrids, KeepTheZone) {
    const auto p = PositionAt(50, 9);
    p->PutGrid(1);
    EXPECT_EQ(p->Zone(), "32U");
    p->PutCustomGrid(BritishGrid());
    EXPECT_EQ(p->Zone(), "32U");  // kept with its text
    p->PutGrid(3);
    EXPECT_EQ(p->Zone(), "");
}

TEST(SameGrid, Comparisons) {
    const auto a = PositionAt(50, 9);
    const auto b = PositionAt(51, 10);
    EXPECT_FALSE(a->IsSameGrid(b.get()));  // neither has one
    EXPECT_FALSE(a->IsSameGrid(nullptr));
    a->PutGrid(1);
    b->PutGrid(1);
    EXPECT_FALSE(a->IsSameGrid(b.get()));  // this side's zone is not computed yet
    a->Easting();
    EXPECT_TRUE(a->IsSameGrid(b.get()));
    b->PutLongitude(13);
    EXPECT_FALSE(a->IsSameGrid(b.get()));
    a->PutCustomGrid(BritishGrid());
    EXPECT_FALSE(a->IsSameGrid(b.get()));
    b->PutCustomGrid(BritishGrid());
    EXPECT_TRUE(a->IsSameGrid(b.get()));
    EXPECT_TRUE(a->IsSameGrid(a.get()));
}

TEST(SameGrid, Make) {
    const auto a = PositionAt(50, 11.9);
    const auto b = PositionAt(51, 13);
    a->MakeSameGrid(nullptr);
    a->PutGrid(3);
    a->MakeSameGrid(b.get());  // without a grid: this one keeps its own
    EXPECT_EQ(a->Grid(), 3);
    b->PutGrid(1);
    a->MakeSameGrid(b.get());
    EXPECT_EQ(a->Grid(), 1);
    EXPECT_EQ(a->Zone(), "33U");
    EXPECT_LT(a->Easting(), 300000);
    b->PutCustomGrid(BritishGrid());
    a->MakeSameGrid(b.get());
    EXPECT_EQ(a->Grid(), 52);
    EXPECT_TRUE(a->IsSameGrid(b.get()));
    a->MakeSameGrid(a.get());
    EXPECT_EQ(ErrorOf(*a), "");
}

// Zone 10 of grid 29 reads ":", which is no number.
TEST(SameGrid, ZoneTenOfTheStrips) {
    const auto a = PositionAt(52, 30, 18);
    const auto b = PositionAt(52, 30, 18);
    a->PutGrid(29);
    b->PutGrid(29);
    EXPECT_EQ(a->Zone(), ":");
    EXPECT_FALSE(a->IsSameGrid(b.get()));
    a->MakeSameGrid(b.get());
    EXPECT_EQ(ErrorOf(*a), "Invalid Zone for this grid!");
}

}  // namespace
}  // namespace kavrel::test
