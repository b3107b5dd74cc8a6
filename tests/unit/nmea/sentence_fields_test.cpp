#include "nmea/sentence_fields.h"

#include <gtest/gtest.h>

#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

Ref<NmeaSentence> Make(std::string_view body) {
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(Sentence(body));
    return sentence;
}

TEST(DecodeMovement, ReadsVtg) {
    struct Case {
        const char* body;
        double heading, variation, speed;
        bool isValid;
    };
    const Case cases[] = {
        {"GPVTG,045.2,T,043.9,M,32.4,N,60.0,K", 45.2, 45.2 - 43.9, 32.4, true},
        {"GPVTG,045.2,T,0,M,32.4,N,60.0,K", 45.2, 0, 32.4, true},
        {"GPVTG,045.2,T,,M,32.4,N,60.0,K,A", 45.2, 0, 32.4, true},
        {"GPVTG,054.7,034.4,005.5,010.2", 54.7, 54.7 - 5.5, 0, false},
        {"gpvtg,1,t,2,m,3", 1, -1, 3, false},
        {"GPVTG", 0, 0, 0, false},
        {"GPHDT,045.2,T,043.9,M,32.4,N", 0, 0, 0, false},
    };
    for (const Case& c : cases) {
        const MovementValues movement = DecodeMovement(*Make(c.body));
        EXPECT_EQ(movement.headingDegrees, c.heading) << c.body;
        EXPECT_DOUBLE_EQ(movement.magneticVariationDegrees, c.variation) << c.body;
        EXPECT_EQ(movement.speedKnots, c.speed) << c.body;
        EXPECT_EQ(movement.isValid, c.isValid) << c.body;
    }
}

TEST(DecodeMovement, ReadsRmc) {
    MovementValues movement =
        DecodeMovement(*Make("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W"));
    EXPECT_EQ(movement.magneticVariationDegrees, -3.1);
    EXPECT_EQ(movement.speedKnots, 22.4);
    EXPECT_TRUE(movement.isValid);
    movement = DecodeMovement(*Make("GPRMC,,V,,,,,,,,3.1,E"));
    EXPECT_EQ(movement.magneticVariationDegrees, 3.1);
    EXPECT_FALSE(movement.isValid);
}

TEST(Decode, LeavesAloneWhatIsOfAnotherType) {
    GllFields gll;
    const Ref<NmeaSentence> sentence = Make("GPGLL,4916.45,N,12311.12,W,225444,A");
    ASSERT_TRUE(gll.Decode(*sentence));
    EXPECT_FALSE(gll.Decode(*Make("GPGGA,1,2,3,4,5,6")));
    EXPECT_TRUE(gll.IsValid());
}

}  // namespace
}  // namespace kavrel
