#include "nmea/sentence_fields.h"

#include <gtest/gtest.h>

#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

TEST(DecodeMovement, ReadsVtgAndRmc) {
    ForEachRow("nmea/movements.csv", [](const Row& row) {
        const MovementValues movement = DecodeMovement(*MakeSentence(row.Text(0)));
        EXPECT_EQ(movement.headingDegrees, row.Number(1));
        EXPECT_NEAR(movement.magneticVariationDegrees, row.Number(2), 1e-14);
        EXPECT_EQ(movement.speedKnots, row.Number(3));
        EXPECT_EQ(movement.isValid, row.Flag(4));
    });
}

TEST(Decode, LeavesAloneWhatIsOfAnotherType) {
    GllFields gll;
    const Ref<NmeaSentence> sentence = MakeSentence("GPGLL,4916.45,N,12311.12,W,225444,A");
    ASSERT_TRUE(gll.Decode(*sentence));
    EXPECT_FALSE(gll.Decode(*MakeSentence("GPGGA,1,2,3,4,5,6")));
    EXPECT_TRUE(gll.IsValid());
}

}  // namespace
}  // namespace kavrel
