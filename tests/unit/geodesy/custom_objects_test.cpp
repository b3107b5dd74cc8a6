#include <initializer_list>

#include "support.h"

namespace kavrel::test {
namespace {

TEST(CustomDatum, ConvertsWhatIsPut) {
    const auto datum = MakeRef<CustomDatum>();
    EXPECT_EQ(datum->Values(), DatumParameters{});
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
template <typename T, typename IsEqual>
void ExpectEqualByAll(std::initializer_list<void (T::*)(double)> puts, IsEqual isEqual) {
    for (const auto put : puts) {
        const auto one = MakeRef<T>();
        const auto other = MakeRef<T>();
        ((*one).*put)(5.5);
        EXPECT_FALSE(isEqual(one, other));
        ((*other).*put)(5.5);
        EXPECT_TRUE(isEqual(one, other));
        ((*other).*put)(5.500000000000001);
        EXPECT_FALSE(isEqual(one, other));
    }
}

TEST(CustomDatum, EqualByAllNineValues) {
    ExpectEqualByAll<CustomDatum>(
        {&CustomDatum::PutSemiMajorAxis, &CustomDatum::PutE2, &CustomDatum::PutDeltaX,
         &CustomDatum::PutDeltaY, &CustomDatum::PutDeltaZ, &CustomDatum::PutRotX,
         &CustomDatum::PutRotY, &CustomDatum::PutRotZ, &CustomDatum::PutScaleFactor},
        [](const auto& one, const auto& other) { return one->Values() == other->Values(); });
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

}  // namespace
}  // namespace kavrel::test
