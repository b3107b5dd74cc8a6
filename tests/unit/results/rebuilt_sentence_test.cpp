#include "results/rebuilt_sentence.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "nmea/sentence_generation.h"
#include "results/speed.h"
#include "unit/results/results_text.h"

namespace kavrel {
namespace {

Ref<NmeaSentence> SentenceOf(const std::string& text) {
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(text);
    return sentence;
}

TEST(RebuildSentence, WritesOwnValues) {
    const auto rmc = MakeRef<NmeaRmc>(
        MakeSentence("GNRMC,123519.6,A,4807.038,S,01131.000,W,22.4,84.4,230394,3.1,W,A"),
        kDatumWgs84);
    EXPECT_EQ(RebuildSentence(*rmc)->Text(),
              Sentence("GPRMC,123519,A,4807.03800,S,01131.00000,W,22.40,084.40,230394,003.10,W"));
    const auto gll =
        MakeRef<NmeaGll>(MakeSentence("GPGLL,4916.45,N,12311.12,W,225444,A"), kDatumWgs84);
    EXPECT_EQ(RebuildSentence(*gll)->Text(), Sentence("GPGLL,4916.45000,N,12311.12000,W,225444,A"));
    const auto gga = MakeRef<NmeaGga>(
        MakeSentence("GPGGA,123519,4807.038,N,01131.000,E,2,08,0.9,-5.4,M,46.9,M,,"), kDatumWgs84);
    EXPECT_EQ(RebuildSentence(*gga)->Text(),
              Sentence("GPGGA,123519,4807.03800,N,01131.00000,E,1,08,0.90,-5.40,M,46.90,M,,"));
    const MovementValues movement{10.0, 5.0, 6.5, true};
    EXPECT_EQ(RebuildSentence(*MakeRef<Movement>(movement))->Text(),
              Sentence("GPVTG,005.00,T,358.50,M,10.00,N,18.52,K"));
    const auto bare = MakeRef<NmeaGga>(MakeSentence("GPVTG,1"), kDatumWgs84);
    const std::string text(RebuildSentence(*bare)->Text());
    EXPECT_EQ(text.substr(0, 7), "$GPGGA,");
    EXPECT_EQ(text.substr(13, 22), ",,,,,0,00,0.00,,M,,M,,");
}

TEST(NmeaRmc, WritesItsSentenceAnewForAnotherSpeed) {
    constexpr std::string_view kBefore =
        "GPRMC,123519,A,4807.03800,N,01131.00000,E,22.40,084.40,230394,003.10,W";
    const auto rmc = MakeRef<NmeaRmc>(MakeSentence(kBefore), kDatumWgs84);
    const auto expectSpeed = [&rmc](double knots, const std::string& text) {
        EXPECT_DOUBLE_EQ(rmc->GroundSpeed(0), knots);
        EXPECT_EQ(rmc->sentence().Text(), Sentence("GPRMC,123519,A,4807.03800,N,01131.00000,E," +
                                                   text + ",084.40,230394,003.10,W"));
    };
    expectSpeed(22.4, "22.40");
    rmc->SetSpeed(10, kSpeedKilometresPerHour);
    expectSpeed(10 * 0.539957879131999, "5.40");
    rmc->SetSpeed(7, 9);
    expectSpeed(7, "7.00");

    // Once written, the sentence is anybody's to change.
    rmc->sentence().SetField(7, "8");
    expectSpeed(7, "8");
}

TEST(RebuildSentence, WithoutATimeTakesTheCurrentOne) {
    const auto gll = MakeRef<NmeaGll>(MakeSentence("GPGLL,4916.45,N,12311.12,W"), kDatumWgs84);
    const Ref<NmeaSentence> rebuilt = RebuildSentence(*gll);
    EXPECT_EQ(rebuilt->FieldOrEmpty(5).size(), 6u);
    EXPECT_EQ(rebuilt->FieldOrEmpty(6), "V");
}

TEST(Generation, RoundsMinutesIntoDegrees) {
    const GeneratedFix fix{.time = "1",
                           .date = {},
                           .isValid = true,
                           .position = GeneratedPosition{59.99999999, -179.99999999}};
    EXPECT_EQ(GenerateGll(fix), Sentence("GPGLL,6000.00000,N,18000.00000,W,1,A"));
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

        const auto rmc = MakeRef<NmeaRmc>(SentenceOf(GenerateRmc(fix, movement)), kDatumWgs84);
        EXPECT_EQ(rmc->Valid(), fix.isValid);
        EXPECT_NEAR(rmc->MakePosition()->Latitude(), position.latitudeDegrees, kAngleTolerance);
        EXPECT_NEAR(rmc->MakePosition()->Longitude(), position.longitudeDegrees, kAngleTolerance);
        EXPECT_NEAR(rmc->GroundSpeed(0), movement.speedKnots, kTolerance);
        EXPECT_NEAR(rmc->Heading(), movement.headingDegrees, kTolerance);
        EXPECT_NEAR(rmc->MagneticVariation(), movement.magneticVariationDegrees, kTolerance);
        EXPECT_EQ(rmc->time()->year(), 1999);
        EXPECT_EQ(rmc->time()->millisecond(), 450);

        const auto gga = MakeRef<NmeaGga>(
            SentenceOf(GenerateGga(fix, {.satellites = 12, .hdop = 1.25})), kDatumWgs84);
        EXPECT_EQ(gga->Valid(), fix.isValid);
        EXPECT_EQ(gga->SatellitesInView(), 12);
        EXPECT_NEAR(gga->MakePosition()->Altitude(0), position.altitudeMetres, kTolerance);
        EXPECT_NEAR(gga->MakePosition()->Altitude(1),
                    position.altitudeMetres + position.geoidSeparationMetres, 2 * kTolerance);

        const auto gll = MakeRef<NmeaGll>(SentenceOf(GenerateGll(fix)), kDatumWgs84);
        EXPECT_NEAR(gll->MakePosition()->Latitude(), position.latitudeDegrees, kAngleTolerance);

        // The magnetic course that VTG writes comes back as a variation modulo a full turn.
        const MovementValues read = DecodeMovement(*SentenceOf(GenerateVtg(movement)));
        EXPECT_TRUE(read.isValid);
        EXPECT_NEAR(read.speedKnots, movement.speedKnots, kTolerance);
        EXPECT_NEAR(std::remainder(
                        read.magneticVariationDegrees - movement.magneticVariationDegrees, 360.0),
                    0.0, 2 * kTolerance);
    }
}

}  // namespace
}  // namespace kavrel
