#include "results/rebuilt_sentence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "nmea/sentence_generation.h"
#include "results/speed.h"
#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

TEST(RebuildSentence, WritesMovements) {
    ForEachRow("results/movements.csv", [](const Row& row) {
        const MovementValues values{.speedKnots = row.Number(0),
                                    .headingDegrees = row.Number(1),
                                    .magneticVariationDegrees = row.Number(2),
                                    .isValid = row.Flag(3)};
        EXPECT_EQ(RebuildSentence(*MakeRef<Movement>(values))->Text(), Sentence(row.Text(4)));
    });
}

TEST(RebuildSentence, WithoutATimeTakesTheCurrentOne) {
    const auto bare = MakeRef<NmeaGga>(MakeSentence("GPVTG,1"), kDatumWgs84);
    const Ref<NmeaSentence> rebuilt = RebuildSentence(*bare);
    EXPECT_EQ(rebuilt->FieldOrEmpty(1).size(), 6u);
    EXPECT_THAT(std::string(rebuilt->Text()),
                testing::ContainsRegex("^.GPGGA,[0-2][0-9][0-5].*,,,,,0,00,0.00,,M,,M,,\\*"));
}

TEST(NmeaRmc, WritesItsSentenceAnewForAnotherSpeed) {
    const std::string start = "GPRMC,123519,A,4807.03800,N,01131.00000,E,";
    const std::string end = ",084.40,230394,003.10,W";
    const auto rmc = MakeRef<NmeaRmc>(MakeSentence(start + "22.40" + end), kDatumWgs84);
    const auto expectSpeed = [&](double knots, const std::string& text) {
        EXPECT_DOUBLE_EQ(rmc->GroundSpeed(0), knots);
        EXPECT_EQ(rmc->sentence().Text(), Sentence(start + text + end));
    };
    expectSpeed(22.4, "22.40");
    rmc->SetSpeed(10, kSpeedKilometresPerHour);
    expectSpeed(10 * 0.539957879131999, "5.40");
    rmc->SetSpeed(7, 9);
    expectSpeed(7, "7.00");

    // Once written, the sentence is anybody's to change.
    rmc->sentence().SetField(7, "8");
    expectSpeed(7, "8");

    rmc->SetSpeed(9, kSpeedKnots);
    rmc->Assign(MakeSentence("GPRMC,1"), {}, kDatumWgs84);
    EXPECT_EQ(rmc->sentence().Text(), Sentence("GPRMC,1"));
}

Ref<NmeaSentence> SentenceOf(const std::string& text) {
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(text);
    return sentence;
}

// What is written comes back to within half a unit of its last decimal.
TEST(Generation, IsReadBackByTheDecoders) {
    std::mt19937 random(4711);
    const auto within = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    constexpr double kAngleTolerance = 0.5e-5 / 60 + 1e-11;
    constexpr double kTolerance = 0.005 + 1e-9;
    for (int i = 0; i < 2000; ++i) {
        const GeneratedPosition position{within(-90, 90), within(-180, 180), within(-400, 9000),
                                         within(-100, 100)};
        const MovementValues movement{within(0, 600), within(0, 360), within(-30, 30), true};
        const GeneratedFix fix{
            .time = "010203.45", .date = "280299", .isValid = i % 2 == 0, .position = position};
        const auto expectRead = [&](DecodedSentence& decoded) {
            EXPECT_EQ(decoded.Valid(), fix.isValid);
            const Ref<Position> read = decoded.MakePosition();
            EXPECT_NEAR(read->Latitude(), position.latitudeDegrees, kAngleTolerance);
            EXPECT_NEAR(read->Longitude(), position.longitudeDegrees, kAngleTolerance);
            EXPECT_EQ(decoded.time()->millisecond(), 450);
        };

        const auto rmc = MakeRef<NmeaRmc>(SentenceOf(GenerateRmc(fix, movement)), kDatumWgs84);
        expectRead(*rmc);
        EXPECT_NEAR(rmc->GroundSpeed(0), movement.speedKnots, kTolerance);
        EXPECT_NEAR(rmc->Heading(), movement.headingDegrees, kTolerance);
        EXPECT_NEAR(rmc->MagneticVariation(), movement.magneticVariationDegrees, kTolerance);
        EXPECT_EQ(rmc->time()->year(), 1999);

        const auto gga = MakeRef<NmeaGga>(
            SentenceOf(GenerateGga(fix, {.satellites = 12, .hdop = 1.25})), kDatumWgs84);
        expectRead(*gga);
        EXPECT_EQ(gga->SatellitesInView(), 12);
        EXPECT_EQ(gga->Hdop(), 1.25);
        EXPECT_NEAR(gga->MakePosition()->Altitude(0), position.altitudeMetres, kTolerance);
        EXPECT_NEAR(gga->MakePosition()->Altitude(1),
                    position.altitudeMetres + position.geoidSeparationMetres, 2 * kTolerance);

        expectRead(*MakeRef<NmeaGll>(SentenceOf(GenerateGll(fix)), kDatumWgs84));

        // The magnetic course that VTG writes comes back as a variation modulo a full turn.
        const MovementValues read = DecodeMovement(*SentenceOf(GenerateVtg(movement)));
        EXPECT_TRUE(read.isValid);
        EXPECT_NEAR(read.speedKnots, movement.speedKnots, kTolerance);
        const double turn = read.magneticVariationDegrees - movement.magneticVariationDegrees;
        EXPECT_NEAR(std::remainder(turn, 360.0), 0.0, 2 * kTolerance);
    }
}

}  // namespace
}  // namespace kavrel
