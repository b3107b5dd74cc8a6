// Changes of a position's datum.

#include <cmath>

#include "geodesy/custom_datum.h"
#include "support.h"

namespace kavrel::test {
namespace {

// The values of datum 3, so that a custom datum can be compared with it.
Ref<CustomDatum> Osgb36() {
    auto datum = MakeRef<CustomDatum>();
    datum->PutSemiMajorAxis(6377563.396);
    datum->PutE2(0.00667054);
    datum->PutDeltaX(375.0);
    datum->PutDeltaY(-111.0);
    datum->PutDeltaZ(431.0);
    return datum;
}

TEST(PositionDatum, UntouchedIsOnlyRenamed) {
    const auto p = MakeRef<Position>();
    p->PutDatum(5);
    EXPECT_EQ(p->ModifiedCount(), 1u);
    EXPECT_EQ(p->Datum(), 5);
    EXPECT_EQ(p->Latitude(), 0.0);
    EXPECT_EQ(p->Altitude(1), 0.0);
    p->PutDatum(7);
    EXPECT_NE(p->Latitude(), 0.0);
}

TEST(PositionDatum, EveryReaderTouches) {
    void (*const readers[])(Position&) = {
        [](Position& p) { p.LatitudeDMS(); },
        [](Position& p) { p.LongitudeDMS(); },
        [](Position& p) { p.LatitudeString(0); },
        [](Position& p) { p.LongitudeString(9); },
        [](Position& p) { p.Altitude(0); },
        [](Position& p) { p.LatitudeRads(); },
        [](Position& p) { p.Longitude(); },
        [](Position& p) { p.Datum(); },
        [](Position& p) { p.Grid(); },
        [](Position& p) { p.Easting(); },
        [](Position& p) { p.Northing(); },
        [](Position& p) { p.PutLatitudeRads(9.0); },
        [](Position& p) { p.PutZone(0); },
        [](Position& p) { p.SetAltitude(7, 0); },
        [](Position& p) { p.PutDatum(99); },
        [](Position& p) { p.PutGrid(99); },
    };
    for (const auto reader : readers) {
        const auto p = MakeRef<Position>();
        reader(*p);
        p->PutDatum(5);
        EXPECT_NE(p->Latitude(), 0.0) << &reader - readers;
    }
    void (*const others[])(Position&, Position&) = {
        [](Position& p, Position&) { p.ModifiedCount(); },
        [](Position& p, Position&) { p.Copy(); },
        [](Position& p, Position& q) { p.IsSameDatum(&q); },
        [](Position& p, Position& q) { p.IsSameGrid(&q); },
        [](Position& p, Position& q) { p.MakeSameDatum(&q); },
        [](Position& p, Position& q) { p.MakeSameGrid(&q); },
        [](Position& p, Position&) { p.Zone(); },  // without a grid
    };
    for (const auto other : others) {
        const auto p = MakeRef<Position>();
        const auto q = MakeRef<Position>();
        other(*p, *q);
        p->PutDatum(5);
        EXPECT_EQ(p->Latitude(), 0.0) << &other - others;
    }
}

TEST(PositionDatum, Refusals) {
    const auto p = PositionAt(50, 9);
    for (const int bad : {-1, 0, 29, 70000, -2147483647}) {
        p->PutDatum(bad);
        EXPECT_EQ(ErrorOf(*p), "Unknown datum!") << bad;
    }
    p->PutDatum(28);
    EXPECT_EQ(ErrorOf(*p), "Set Position.CustomDatum instead!");
    p->PutCustomDatum(nullptr);
    EXPECT_EQ(ErrorOf(*p), "CustomDatum may not be null.");
    EXPECT_EQ(p->Datum(), 1);
    EXPECT_EQ(p->ModifiedCount(), 0u);
    p->PutDatum(1);  // the same: no change
    EXPECT_EQ(p->ModifiedCount(), 0u);
    EXPECT_EQ(ErrorOf(*p), "");
}

TEST(PositionDatum, CustomDatumShiftsLikeABuiltInOne) {
    const auto builtIn = PositionAt(52, -1);
    const auto custom = PositionAt(52, -1);
    builtIn->PutDatum(3);
    custom->PutCustomDatum(Osgb36());
    EXPECT_EQ(custom->Datum(), 28);
    EXPECT_EQ(custom->Latitude(), builtIn->Latitude());
    EXPECT_EQ(custom->Longitude(), builtIn->Longitude());
    EXPECT_EQ(custom->Altitude(1), builtIn->Altitude(1));
    EXPECT_GT(std::fabs(custom->Altitude(1)), 1.0);
    EXPECT_EQ(custom->ModifiedCount(), 1u);
    custom->PutCustomDatum(Osgb36());  // equal values: nothing happens
    EXPECT_EQ(custom->ModifiedCount(), 1u);
    custom->PutDatum(1);
    EXPECT_NEAR(custom->Latitude(), 52.0, 1e-12);
    EXPECT_EQ(custom->ModifiedCount(), 2u);
}

TEST(PositionDatum, DmsFollowsTheShift) {
    const auto p = PositionAt(52, -1);
    p->PutDatum(3);
    EXPECT_EQ(p->LatitudeDMS().degrees, 51);
    EXPECT_NEAR(p->LatitudeDMS().degrees + p->LatitudeDMS().minutes / 60.0 +
                    p->LatitudeDMS().seconds / 3600.0,
                p->Latitude(), 1.0 / 3600 / 1000);
}

// The ground point stays and the grid coordinates with it; only the other side is read anew.
TEST(PositionDatum, GridSideHoldsThePoint) {
    const auto p = PositionAt(0, 0, 3);
    p->PutGrid(3);
    p->PutEasting(400000);
    p->PutNorthing(200000);
    const auto read = p->Copy();
    const double latitude = read->Latitude();
    p->PutDatum(1);
    EXPECT_EQ(p->Easting(), 400000);
    EXPECT_EQ(p->Northing(), 200000);
    read->PutDatum(1);
    EXPECT_NE(p->Latitude(), latitude);
    EXPECT_NEAR(p->Latitude(), read->Latitude(), 1e-9);  // heights differ: 47 m of them
    EXPECT_NEAR(p->Longitude(), read->Longitude(), 1e-9);
}

TEST(PositionDatum, SameDatum) {
    const auto a = PositionAt(1, 2, 5);
    const auto b = PositionAt(3, 4, 5);
    EXPECT_TRUE(a->IsSameDatum(b.get()));
    EXPECT_TRUE(a->IsSameDatum(a.get()));
    EXPECT_FALSE(a->IsSameDatum(nullptr));
    a->PutCustomDatum(Osgb36());
    EXPECT_FALSE(a->IsSameDatum(b.get()));
    b->PutCustomDatum(Osgb36());
    EXPECT_TRUE(a->IsSameDatum(b.get()));  // different objects, equal values

    const auto c = PositionAt(0, 0);
    c->MakeSameDatum(nullptr);
    EXPECT_EQ(ErrorOf(*c), "");
    EXPECT_EQ(c->Datum(), 1);
    const auto shared = Osgb36();
    a->PutDatum(1);
    a->PutCustomDatum(shared);
    c->MakeSameDatum(a.get());
    EXPECT_TRUE(c->IsSameDatum(a.get()));
    shared->PutDeltaX(0.0);  // the very object: a later change is seen by both
    EXPECT_TRUE(c->IsSameDatum(a.get()));
    EXPECT_FALSE(c->IsSameDatum(b.get()));
    c->MakeSameDatum(PositionAt(0, 0, 4).get());
    EXPECT_EQ(c->Datum(), 4);
}

// The parser may stamp 28, for which it has no object.
TEST(PositionDatum, CustomNumberWithoutObject) {
    Position p(GeoPoint{0.9, 0.1}, 0.0, 0.0, 28);
    p.PutDatum(1);
    EXPECT_EQ(ErrorOf(p), "Unknown datum!");
    EXPECT_EQ(p.Datum(), 28);
    EXPECT_EQ(p.ModifiedCount(), 0u);
    const auto q = PositionAt(1, 1);
    EXPECT_FALSE(p.IsSameDatum(q.get()));
    EXPECT_EQ(q->Distance(&p, 1), 0.0);
    EXPECT_EQ(ErrorOf(*q), "Unknown datum!");
    const auto same = q->Copy();
    same->MakeSameDatum(&p);
    EXPECT_EQ(ErrorOf(*same), "CustomDatum may not be null.");

    // The object that comes later says what the number meant; nothing moves.
    p.PutCustomDatum(Osgb36());
    EXPECT_EQ(ErrorOf(p), "");
    EXPECT_EQ(p.LatitudeRads(), 0.9);
    p.PutDatum(1);
    EXPECT_EQ(ErrorOf(p), "");
    EXPECT_NE(p.LatitudeRads(), 0.9);
}

}  // namespace
}  // namespace kavrel::test
