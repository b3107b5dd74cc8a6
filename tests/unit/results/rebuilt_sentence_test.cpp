#include "results/rebuilt_sentence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

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

}  // namespace
}  // namespace kavrel
