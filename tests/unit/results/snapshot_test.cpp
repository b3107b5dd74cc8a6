#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "results/com_status.h"
#include "results/quality.h"
#include "results/satellites.h"
#include "results/speed.h"
#include "unit/results/results_text.h"

namespace kavrel {
namespace {

std::vector<SatelliteValues> Picture() {
    return {{.prn = 7, .elevationDegrees = 47, .azimuthDegrees = 210, .snrDb = 42},
            {.prn = 65536 + 9, .elevationDegrees = 15, .isUsedForFix = true}};
}

TEST(Satellites, CountsFromOne) {
    const auto satellites = MakeRef<Satellites>(Picture());
    EXPECT_EQ(satellites->Count(), 2);
    const Ref<Satellite> first = satellites->Item(1);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->Id(), 7);
    EXPECT_EQ(first->serialNumber(), 7u);
    EXPECT_EQ(first->Elevation(), 47);
    EXPECT_EQ(first->Azimuth(), 210);
    EXPECT_EQ(first->Snr(), 42);
    EXPECT_FALSE(first->UsedForFix());
    EXPECT_EQ(satellites->Item(2)->Id(), 9);  // the low 16 bits
    EXPECT_TRUE(satellites->Item(2)->UsedForFix());
}

TEST(Satellites, HasNoItemsOutside) {
    const auto satellites = MakeRef<Satellites>(Picture());
    for (const int index : {0, 3, -1, 32767}) {
        EXPECT_FALSE(satellites->Item(index));
        EXPECT_EQ(satellites->error().code(), kErrorIndexOutOfBounds);
        EXPECT_EQ(satellites->error().text(), "Index out of bounds");
    }
    EXPECT_EQ(satellites->Count(), 2);
    EXPECT_FALSE(satellites->error().IsSet());
    EXPECT_FALSE(MakeRef<Satellites>(std::vector<SatelliteValues>())->Item(1));

    EXPECT_TRUE(satellites->Find(7) == satellites->Item(1));
    EXPECT_TRUE(satellites->Find(65536 + 9) == satellites->Item(2));
    satellites->Item(0);
    EXPECT_FALSE(satellites->Find(9));
    EXPECT_FALSE(satellites->error().IsSet());
}

TEST(Satellites, GivesTheSameItemsToAll) {
    const std::int32_t liveBefore = Record::LiveCount();
    {
        const auto satellites = MakeRef<Satellites>(Picture());
        std::vector<Ref<Satellite>> seen(4);
        std::vector<std::thread> threads;
        for (Ref<Satellite>& item : seen) {
            threads.emplace_back([&item, &satellites] { item = satellites->Item(2); });
        }
        for (std::thread& thread : threads)
            thread.join();
        for (const Ref<Satellite>& item : seen)
            EXPECT_TRUE(item == seen.front());
        EXPECT_EQ(Record::LiveCount(), liveBefore + 3);
    }
    EXPECT_EQ(Record::LiveCount(), liveBefore);
}

TEST(Quality, ComesFromGsaOnly) {
    const auto quality = MakeRef<Quality>(
        DecodeQuality(*MakeSentence("GPGSA,A,3,02,05,07,09,13,21,28,30,,,,,1.9,1.1,1.6")));
    EXPECT_EQ(quality->Pdop(), 1.9);
    EXPECT_EQ(quality->Hdop(), 1.1);
    EXPECT_EQ(quality->Vdop(), 1.6);
    // Short, empty, or another type.
    for (const char* body : {"GPGSA,A,3,02", "GPGSA,A,1,,,,,,,,,,,,,,,",
                             "GPGSV,A,3,02,05,07,09,13,21,28,30,,,,,1.9,1.1,1.6"}) {
        const auto none = MakeRef<Quality>(DecodeQuality(*MakeSentence(body)));
        EXPECT_EQ(none->Pdop() + none->Hdop() + none->Vdop(), 0.0) << body;
    }
}

TEST(ComStatus, ShowsItsValues) {
    const auto status =
        MakeRef<ComStatus>(ComStatusValues{.baudRate = 115200, .comPort = 3, .hasValidFix = true});
    EXPECT_EQ(status->BaudRate(), 115200);
    EXPECT_EQ(status->ComPort(), 3);
    EXPECT_TRUE(status->ValidFix());
    EXPECT_FALSE(status->ValidNmea());
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
