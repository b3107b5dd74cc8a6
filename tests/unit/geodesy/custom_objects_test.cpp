#include <gtest/gtest.h>

#include "geodesy/custom_datum.h"
#include "geodesy/custom_grid.h"
#include "support.h"

namespace kavrel::test {
namespace {

TEST(CustomDatum, StartsWithZeros) {
    EXPECT_EQ(MakeRef<CustomDatum>()->Values(), DatumParameters{});
}

TEST(CustomDatum, ConvertsWhatIsPut) {
    const auto datum = MakeRef<CustomDatum>();
    datum->PutE2(-0.0067);
    EXPECT_EQ(datum->E2(), 0.0067);
    datum->PutRotX(1.0);
    datum->PutRotY(-2.0);
    datum->PutRotZ(3.0);
    EXPECT_EQ(datum->Values().toWgs84.rxRads, 4.84813681109536e-6);
    EXPECT_NEAR(datum->RotX(), 1.0, 1e-15);
    EXPECT_NEAR(datum->RotY(), -2.0, 1e-15);
    EXPECT_NEAR(datum->RotZ(), 3.0, 1e-15);
}

// Each property changes equality, so none is forgotten or stored over another.
template <typename T, std::size_t kCount>
void ExpectEqualByAll(void (T::*const (&puts)[kCount])(double),
                      bool (*areEqual)(const Ref<T>&, const Ref<T>&)) {
    for (const auto put : puts) {
        const auto one = MakeRef<T>();
        const auto other = MakeRef<T>();
        ((*one).*put)(5.5);
        EXPECT_FALSE(areEqual(one, other));
        ((*other).*put)(5.5);
        EXPECT_TRUE(areEqual(one, other));
        ((*other).*put)(5.500000000000001);
        EXPECT_FALSE(areEqual(one, other));
    }
}

TEST(CustomDatum, EqualByAllNineValues) {
    ExpectEqualByAll<CustomDatum>(
        {&CustomDatum::PutSemiMajorAxis, &CustomDatum::PutE2, &CustomDatum::PutDeltaX,
         &CustomDatum::PutDeltaY, &CustomDatum::PutDeltaZ, &CustomDatum::PutRotX,
         &CustomDatum::PutRotY, &CustomDatum::PutRotZ, &CustomDatum::PutScaleFactor},
        [](const auto& one, const auto& other) {
            return IsSameDatum({kDatumCustom, one}, {kDatumCustom, other});
        });
}

TEST(CustomGrid, EqualByAllValues) {
    ExpectEqualByAll<CustomGrid>(
        {&CustomGrid::PutFalseEasting, &CustomGrid::PutFalseNorthing,
         &CustomGrid::PutLongitudeOfOrigin, &CustomGrid::PutLatitudeOfOrigin,
         &CustomGrid::PutScaleFactor, &CustomGrid::PutLatitudeSP1, &CustomGrid::PutLatitudeSP2},
        [](const auto& one, const auto& other) { return CustomGrid::AreEqual(*one, *other); });
    const auto one = MakeRef<CustomGrid>();
    const auto other = MakeRef<CustomGrid>();
    one->PutAlgorithm(3);
    EXPECT_FALSE(CustomGrid::AreEqual(*one, *other));
    other->PutAlgorithm(3);
    one->PutDatum(4);
    EXPECT_FALSE(CustomGrid::AreEqual(*one, *other));
    // Two custom datums count by their values.
    one->PutCustomDatum(MakeRef<CustomDatum>());
    other->PutCustomDatum(MakeRef<CustomDatum>());
    EXPECT_TRUE(CustomGrid::AreEqual(*one, *other));
    one->CustomDatum()->PutDeltaX(1.0);
    EXPECT_FALSE(CustomGrid::AreEqual(*one, *other));
}

TEST(CustomGrid, CustomDatum) {
    const auto grid = MakeRef<CustomGrid>();
    EXPECT_FALSE(grid->CustomDatum());
    const auto datum = MakeRef<CustomDatum>();
    grid->PutCustomDatum(datum);
    EXPECT_EQ(grid->CustomDatum(), datum);
    EXPECT_EQ(grid->Datum(), 28);

    grid->PutCustomDatum(nullptr);
    EXPECT_EQ(grid->error().text(), "CustomDatum may not be null.");
    EXPECT_EQ(grid->error().code(), 10003u);
    EXPECT_EQ(grid->CustomDatum(), datum);
    grid->PutScaleFactor(1.0);
    EXPECT_FALSE(grid->error().IsSet());
}

TEST(CustomObjects, AreReleased) {
    const auto before = Record::LiveCount();
    {
        const auto grid = MakeRef<CustomGrid>();
        grid->PutCustomDatum(MakeRef<CustomDatum>());
        grid->PutCustomDatum(MakeRef<CustomDatum>());
        const auto position = MakeRef<Position>();
        position->PutCustomGrid(grid);
        position->PutCustomDatum(grid->CustomDatum());
        const auto copy = position->Copy();
        position->PutGrid(1);
        position->PutDatum(3);
    }
    EXPECT_EQ(Record::LiveCount(), before);
}

}  // namespace
}  // namespace kavrel::test
