// Positions and custom objects used from several threads at once. A dead-lock ends by the test's
// time limit, a race under the thread sanitizer.

#include <atomic>
#include <thread>

#include "geodesy/custom_datum.h"
#include "geodesy/custom_grid.h"
#include "support.h"

namespace kavrel::test {
namespace {

constexpr int kRounds = 400;

template <typename First, typename Second>
void RunBoth(First first, Second second) {
    std::thread other([&] {
        for (int i = 0; i < kRounds; ++i)
            second();
    });
    for (int i = 0; i < kRounds; ++i)
        first();
    other.join();
}

TEST(PositionThreads, TwoPositionsInOppositeOrder) {
    const auto a = PositionAt(50, 9);
    const auto b = PositionAt(51, 10, 7);
    a->PutGrid(1);
    b->PutGrid(13);
    const auto useBoth = [](Position& one, Position& other) {
        one.Distance(&other, 1);
        one.Bearing(&other, 3);
        one.IsSameDatum(&other);
        one.IsSameGrid(&other);
        one.MakeSameGrid(&other);
        one.MakeSameDatum(&other);
        one.CopyAltitudes(other);
    };
    RunBoth([&] { useBoth(*a, *b); }, [&] { useBoth(*b, *a); });
    EXPECT_NEAR(a->Latitude(), 50, 0.01);
    EXPECT_NEAR(b->Latitude(), 51, 0.01);
}

TEST(PositionThreads, WithItself) {
    const auto p = PositionAt(50, 9);
    p->PutGrid(1);
    RunBoth([&] { p->Distance(p.get(), 1); }, [&] { p->MakeSameGrid(p.get()); });
    EXPECT_EQ(p->Distance(p.get(), 3), 0.0);
}

TEST(PositionThreads, CallsAreSerialised) {
    const auto p = PositionAt(50, 9);
    p->PutGrid(1);
    const auto count = p->ModifiedCount();
    RunBoth(
        [&] {
            p->PutLatitude(50);
            p->Easting();
            p->ModifiedCount();
        },
        [&] {
            p->PutLongitude(9);
            p->Zone();
            p->Copy();
        });
    EXPECT_EQ(p->ModifiedCount(), count + 2 * kRounds);
    EXPECT_EQ(p->Zone(), "32U");
}

// Who holds the scope reads the error of its own call.
TEST(PositionThreads, ScopeKeepsTheError) {
    const auto p = PositionAt(50, 9);
    std::atomic<int> wrong{0};
    RunBoth(
        [&] {
            const Position::Scope scope(*p);
            p->PutDatum(99);
            if (p->error().text() != "Unknown datum!") ++wrong;
        },
        [&] {
            const Position::Scope scope(*p);
            p->PutGrid(99);
            if (p->error().text() != "Unknown grid!") ++wrong;
        });
    EXPECT_EQ(wrong, 0);
}

TEST(PositionThreads, CustomObjectsChangeMeanwhile) {
    const auto datum = MakeRef<CustomDatum>();
    datum->PutSemiMajorAxis(6378137.0);
    const auto grid = MakeRef<CustomGrid>();
    grid->PutAlgorithm(3);
    grid->PutScaleFactor(1.0);
    grid->PutCustomDatum(datum);
    const auto p = PositionAt(50, 9);
    p->PutCustomGrid(grid);
    p->PutCustomDatum(datum);
    RunBoth(
        [&] {
            datum->PutDeltaX(datum->DeltaX() + 1.0);
            grid->PutFalseEasting(grid->FalseEasting() + 1.0);
            grid->PutCustomDatum(datum);
        },
        [&] {
            p->PutLatitude(50);
            p->Easting();
            p->PutDatum(3);
            p->PutCustomDatum(datum);
        });
    EXPECT_EQ(ErrorOf(*p), "");
    EXPECT_EQ(grid->FalseEasting(), kRounds);
}

}  // namespace
}  // namespace kavrel::test
