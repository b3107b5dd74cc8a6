#include "results/decoded_sentence.h"

#include <gtest/gtest.h>

#include "results/movement.h"
#include "unit/results/results_text.h"

namespace kavrel {
namespace {

TEST(NmeaGga, Decodes) {
    const auto gga = MakeRef<NmeaGga>(
        MakeSentence("GPGGA,123519,4807.038,S,01131.000,W,1,08,0.9,545.4,M,46.9,M,,"), kDatumWgs84);
    EXPECT_TRUE(gga->Valid());
    EXPECT_EQ(gga->SatellitesInView(), 8);
    EXPECT_EQ(gga->Hdop(), 0.9);
    EXPECT_NEAR(*gga->Utc(), 0.524525462962963, 1e-14);
    EXPECT_NEAR(gga->MakePosition()->Latitude(), -48.1173, 1e-12);
    EXPECT_NEAR(gga->MakePosition()->Longitude(), -11.516666666666667, 1e-12);
    EXPECT_DOUBLE_EQ(gga->MakePosition()->Altitude(1), 592.3);
    EXPECT_EQ(gga->sentence().Command(), "GGA");
}

TEST(NmeaGga, LooksAtTheFirstCharacterOfQuality) {
    const auto isValid = [](const std::string& quality) {
        return MakeRef<NmeaGga>(MakeSentence("GPGGA,1,1,N,1,E," + quality + ",,"), kDatumWgs84)
            ->Valid();
    };
    EXPECT_FALSE(isValid("0"));
    EXPECT_FALSE(isValid("01"));
    EXPECT_FALSE(isValid(""));
    for (const char* quality : {"1", "2", "6", "9", "x", " 0"})
        EXPECT_TRUE(isValid(quality));
}

TEST(NmeaGga, ShortAndForeignSentencesAreDefaults) {
    for (const char* body : {"GPGGA", "GPGGA,", "GPGLL,4916.45,N,12311.12,W,225444,A"}) {
        const auto gga = MakeRef<NmeaGga>(MakeSentence(body), kDatumWgs84);
        EXPECT_FALSE(gga->Valid()) << body;
        EXPECT_EQ(gga->Hdop(), 0.0) << body;
        EXPECT_EQ(gga->SatellitesInView(), 0) << body;
    }
    EXPECT_FALSE(MakeRef<NmeaGga>(MakeSentence("GPGGA"), kDatumWgs84)->Utc().has_value());
    EXPECT_FALSE(MakeRef<NmeaGga>(MakeSentence("GPVTG,1"), kDatumWgs84)->MakePosition());
}

TEST(NmeaGll, ShortSentenceHasNoTime) {
    const auto isTimed = [](const char* body) {
        return MakeRef<NmeaGll>(MakeSentence(body), kDatumWgs84)->Utc().has_value();
    };
    EXPECT_TRUE(isTimed("GPGLL,4916.45,N,12311.12,W,225444,A"));
    EXPECT_FALSE(isTimed("GPGLL,4916.45,N,12311.12,W,225444"));
    EXPECT_FALSE(isTimed("GPGLL,4916.45,N,12311.12,W"));
}

TEST(NmeaRmc, DecodesEvenWhenNotValid) {
    const auto rmc = MakeRef<NmeaRmc>(
        MakeSentence("GPRMC,123519,V,4807.038,N,01131.000,E,10,084.4,230394,003.1,W"), kDatumWgs84);
    EXPECT_FALSE(rmc->Valid());
    EXPECT_EQ(rmc->Heading(), 84.4);
    EXPECT_EQ(rmc->MagneticVariation(), -3.1);
    EXPECT_NEAR(*rmc->Utc(), 34416.52452546296, 1e-9);
    EXPECT_NEAR(rmc->MakePosition()->Latitude(), 48.1173, 1e-12);
}

TEST(NmeaRmc, ConvertsSpeeds) {
    const Ref<NmeaSentence> sentence = MakeSentence("GPRMC,123519,A,,,,,10,,,,");
    const auto movement = MakeRef<Movement>(DecodeMovement(*sentence));
    const auto rmc = MakeRef<NmeaRmc>(sentence, kDatumWgs84);
    const double expected[] = {10.0, 5.1444341959472, 18.5199631054099, 11.507771555};
    for (int unit = 0; unit < 4; ++unit) {
        EXPECT_DOUBLE_EQ(rmc->GroundSpeed(unit), expected[unit]);
        EXPECT_EQ(movement->Speed(unit), rmc->GroundSpeed(unit));
        EXPECT_FALSE(movement->error().IsSet());
    }
    // Unknown units: knots here, an error there.
    for (const int unit : {-1, 4, 7, 32767}) {
        EXPECT_EQ(rmc->GroundSpeed(unit), 10.0);
        EXPECT_FALSE(rmc->error().IsSet());
        EXPECT_EQ(movement->Speed(unit), 0.0);
        EXPECT_EQ(movement->error().code(), kErrorInvalidArgument);
        EXPECT_EQ(movement->error().text(), "Invalid parameter!");
    }
    EXPECT_EQ(movement->Heading(), 0.0);
    EXPECT_FALSE(movement->error().IsSet());
    EXPECT_LT(*rmc->Utc(), 1.0);  // an empty date is none
    EXPECT_EQ(
        MakeRef<Movement>(MovementValues{.magneticVariationDegrees = 3.5})->MagneticVariation(),
        3.5);
}

TEST(DecodedSentence, KeepsItsValuesWhenTheSentenceChanges) {
    const auto gll =
        MakeRef<NmeaGll>(MakeSentence("GPGLL,4916.45,N,12311.12,W,225444,A"), kDatumWgs84);
    gll->sentence().SetText("$GPVTG,1,2");
    EXPECT_TRUE(gll->Valid());
    EXPECT_NEAR(gll->MakePosition()->Latitude(), 49 + 16.45 / 60, 1e-12);
}

}  // namespace
}  // namespace kavrel
