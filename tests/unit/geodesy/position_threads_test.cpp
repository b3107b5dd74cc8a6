// Positions and custom objects used from several threads at once. A dead-lock ends by the test's
// time limit, a race under the thread sanitizer.

#include <functional>
#include <thread>

#include "support.h"

namespace kavrel::test {
namespace {

constexpr int kRounds = 400;

void RunBoth(const std::function<void()>& first, const std::function<void()>& second) {
    const auto run = [](const std::function<void()>& call) {
        for (int i = 0; i < kRounds; ++i)
            call();
    };
    std::thread other(run, second);
    run(first);
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
    RunBoth([&] { useBoth(*a, *a); }, [&] { useBoth(*b, *b); });
    EXPECT_NEAR(a->Latitude(), 50, 0.01);
    EXPECT_NEAR(b->Latitude(), 51, 0.01);
    const auto count = a->ModifiedCount();
    RunBoth([&] { a->PutLatitude(50); }, [&] { a->PutLongitude(9); });
    EXPECT_EQ(a->ModifiedCount(), count + 2 * kRounds);
}

// Who holds the scope reads the error of its own call.
TEST(PositionThreads, ScopeKeepsTheError) {
    const auto p = PositionAt(50, 9);
    const auto expectError = [&p](void (Position::*put)(std::int32_t), std::string_view text) {
        const Position::Scope scope(*p);
        ((*p).*put)(99);
        EXPECT_EQ(p->error().text(), text);
    };
    RunBoth([&] { expectError(&Position::PutDatum, "Unknown datum!"); },
            [&] { expectError(&Position::PutGrid, "Unknown grid!"); });
}

TEST(PositionThreads, CustomObjectsChangeMeanwhile) {
    const auto datum = Osgb36();
    const auto grid = BritishGrid();
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
    EXPECT_EQ(grid->FalseEasting(), 400000 + kRounds);
}

}  // namespace
}  // namespace kavrel::test
