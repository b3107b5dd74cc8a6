// What a position's datum and grid do to its coordinates.

#include <cmath>

#include "support.h"

namespace kavrel::test {
namespace {

TEST(PositionDatum, TakingOverSharesTheCustomObject) {
    const auto a = PositionAt(1, 2);
    const auto b = PositionAt(3, 4);
    const auto shared = Osgb36();
    a->PutCustomDatum(shared);
    b->MakeSameDatum(a.get());
    shared->PutDeltaX(0.0);  // a later change is seen by both
    EXPECT_TRUE(b->IsSameDatum(a.get()));
}

TEST(PositionGrid, ZonesOfThePoint) {
    ForEachRow("geodesy/zones.csv", [](const Row& row) {
        const auto p =
            PositionAt(row.Number(2), row.Number(3), static_cast<DatumId>(row.Integer(1)));
        p->PutGrid(row.Integer(0));
        p->Easting();
        EXPECT_EQ(ErrorOf(*p), row.Text(5));
        if (!row.Text(5).empty()) return;
        EXPECT_EQ(p->Zone(), row.Text(4));
        EXPECT_NEAR(std::fmod(p->Easting(), 1e6), 500000, 334001);
    });
}

TEST(CustomGrids, ChangesAreSeenByTheNextComputation) {
    const auto p = PositionAt(52, 1);
    const auto grid = BritishGrid();
    p->PutCustomGrid(grid);
    const double easting = p->Easting();
    grid->PutFalseEasting(0);
    EXPECT_EQ(p->Easting(), easting);
    p->PutLongitude(1);
    EXPECT_NEAR(p->Easting(), easting - 400000, 1e-6);
}

TEST(CustomGrids, Unusable) {
    const auto grid = BritishGrid();
    const auto p = PositionAt(52, 1);
    p->PutCustomGrid(grid);
    const auto errorOfUpdate = [&p] {
        p->PutLatitude(52);
        p->Easting();
        return ErrorOf(*p);
    };
    for (const int code : {0, 1, 4, 7, 9, 10, 255, 259, -3}) {
        grid->PutAlgorithm(static_cast<std::int16_t>(code));
        EXPECT_EQ(errorOfUpdate(), "Unknown grid!") << code;
        EXPECT_EQ(grid->Algorithm(), code);
    }
    grid->PutAlgorithm(3);
    for (const DatumId datum : {0, 28, 29, -1}) {
        grid->PutDatum(datum);
        EXPECT_EQ(errorOfUpdate(), "Unknown datum!") << datum;
    }
    grid->PutCustomDatum(MakeRef<CustomDatum>());
    EXPECT_EQ(errorOfUpdate(), "Position outside grid");
    grid->CustomDatum()->PutSemiMajorAxis(6378137.0);
    EXPECT_EQ(errorOfUpdate(), "");
    grid->PutScaleFactor(0.0);
    EXPECT_EQ(errorOfUpdate(), "Position outside grid");
}

}  // namespace
}  // namespace kavrel::test
