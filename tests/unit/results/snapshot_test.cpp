#include <gtest/gtest.h>

#include <thread>
#include <tuple>
#include <vector>

#include "results/quality.h"
#include "results/satellites.h"
#include "results/speed.h"
#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

Ref<Satellites> MakeSatellites() {
    return MakeRef<Satellites>(std::vector<SatelliteValues>{
        {.prn = 7, .elevationDegrees = 47, .azimuthDegrees = 210, .snrDb = 42},
        {.prn = 65536 + 9, .elevationDegrees = 15, .isUsedForFix = true}});
}

TEST(Satellites, CountFromOne) {
    const auto satellites = MakeSatellites();
    EXPECT_EQ(satellites->Count(), 2);
    const auto valuesOf = [](Satellite& s) {
        return std::tuple(s.Id(), s.Elevation(), s.Azimuth(), s.Snr(), s.UsedForFix());
    };
    EXPECT_EQ(valuesOf(*satellites->Item(1)), std::tuple(7, 47, 210, 42, false));
    EXPECT_EQ(valuesOf(*satellites->Item(2)), std::tuple(9, 15, 0, 0, true));  // the low 16 bits
    EXPECT_EQ(satellites->Item(2)->serialNumber(), 65536u + 9);

    satellites->Assign(std::vector<SatelliteValues>{{.prn = 3}});
    EXPECT_EQ(satellites->Count(), 1);
    EXPECT_EQ(satellites->Item(1)->Id(), 3);
}

TEST(Satellites, HaveNoItemsOutside) {
    const auto satellites = MakeSatellites();
    for (const int index : {0, 3, -1, 32767}) {
        EXPECT_FALSE(satellites->Item(index));
        EXPECT_EQ(satellites->error().code(), kErrorIndexOutOfBounds);
        EXPECT_EQ(satellites->error().text(), "Index out of bounds");
    }
    EXPECT_FALSE(satellites->Find(9));
    EXPECT_FALSE(satellites->error().IsSet());
    EXPECT_TRUE(satellites->Find(7) == satellites->Item(1));
    EXPECT_TRUE(satellites->Find(65536 + 9) == satellites->Item(2));
}

TEST(Satellites, GiveTheSameItemsToAll) {
    const auto satellites = MakeSatellites();
    std::vector<Ref<Satellite>> seen(4);
    std::vector<std::thread> threads;
    for (Ref<Satellite>& item : seen)
        threads.emplace_back([&item, &satellites] { item = satellites->Item(2); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Ref<Satellite>& item : seen)
        EXPECT_TRUE(item == satellites->Item(2));
}

TEST(Quality, ComesFromGsaOnly) {
    ForEachRow("results/qualities.csv", [](const Row& row) {
        const auto quality = MakeRef<Quality>(DecodeQuality(*MakeSentence(row.Text(0))));
        EXPECT_EQ(quality->Pdop(), row.Number(1));
        EXPECT_EQ(quality->Hdop(), row.Number(2));
        EXPECT_EQ(quality->Vdop(), row.Number(3));
    });
}

// The factors are the library's own; those to knots are not the exact inverses.
TEST(Speed, ConvertsByWayOfKnots) {
    EXPECT_DOUBLE_EQ(ConvertSpeed(10, kSpeedMetresPerSecond, kSpeedKnots), 19.438483648751945);
    EXPECT_DOUBLE_EQ(ConvertSpeed(100, kSpeedKilometresPerHour, kSpeedMilesPerHour),
                     53.9957879131999 * 1.1507771555);
    EXPECT_EQ(ConvertSpeed(10, 9, -9), 10.0);
}

}  // namespace
}  // namespace kavrel
