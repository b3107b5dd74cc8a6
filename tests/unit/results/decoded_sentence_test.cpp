#include "results/decoded_sentence.h"

#include <gtest/gtest.h>

#include <string>

#include "results/movement.h"
#include "results/rebuilt_sentence.h"
#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

// The columns behind class and sentence: valid, UTC, latitude, longitude, and the rebuilt sentence.
template <typename Decoded>
void ExpectDecoded(const Row& row) {
    const auto decoded = MakeRef<Decoded>(MakeSentence(row.Text(1)), kDatumWgs84);
    decoded->sentence().SetText("$GPXXX");  // the values stay
    EXPECT_EQ(decoded->Valid(), row.Flag(2));
    const bool hasTime = !row.Text(3).empty();
    ASSERT_EQ(decoded->Utc().has_value(), hasTime);
    if (hasTime) {
        EXPECT_NEAR(*decoded->Utc(), row.Number(3), 1e-14 * (1 + row.Number(3)));
    }
    const Ref<Position> position = decoded->MakePosition();
    ASSERT_EQ(static_cast<bool>(position), !row.Text(4).empty());
    if (!position) return;
    EXPECT_NEAR(position->Latitude(), row.Number(4), 1e-12);
    EXPECT_NEAR(position->Longitude(), row.Number(5), 1e-12);
    if (row.Text(6).empty()) return;
    EXPECT_EQ(RebuildSentence(*decoded)->Text(), Sentence(row.Text(6)));
}

TEST(DecodedSentence, HasItsValuesAndWritesThem) {
    ForEachRow("results/decoded.csv", [](const Row& row) {
        if (row.Text(0) == "GGA") ExpectDecoded<NmeaGga>(row);
        if (row.Text(0) == "GLL") ExpectDecoded<NmeaGll>(row);
        if (row.Text(0) == "RMC") ExpectDecoded<NmeaRmc>(row);
    });
}

TEST(NmeaRmc, ConvertsSpeeds) {
    const auto movement = MakeRef<Movement>(MovementValues{10, 84.4, -3.1, true});
    EXPECT_EQ(movement->Heading(), 84.4);
    EXPECT_EQ(movement->MagneticVariation(), -3.1);
    const auto rmc = MakeRef<NmeaRmc>(MakeSentence("GPRMC,,A,,,,,10,,,,"), kDatumWgs84);
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
}

}  // namespace
}  // namespace kavrel
