#include "results/fix_builder.h"

#include <gtest/gtest.h>

#include "results/gps_fix.h"
#include "unit/results/results_text.h"

namespace kavrel {
namespace {

constexpr const char* kGga = "GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
constexpr const char* kRmc = "GPRMC,123520,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W";
constexpr const char* kGll = "GPGLL,4916.45,N,12311.12,W,225444,A";

class FixBuilderTest : public testing::Test {
  protected:
    Ref<GpsFix> Feed(std::string_view body) {
        const Ref<NmeaSentence> sentence = MakeSentence(body);
        const FixValues fix = builder_.Build(DecodeValues(*sentence));
        auto record = MakeRef<GpsFix>(fix, kDatumWgs84);
        builder_.Keep(sentence->Type(), fix);
        return record;
    }

    FixBuilder builder_;
};

TEST_F(FixBuilderTest, CompletesRmcByTheKeptGga) {
    EXPECT_EQ(Feed(kRmc)->FixType(), kFixWithoutAltitude);
    EXPECT_EQ(Feed(kRmc)->MakePosition()->Altitude(0), 0.0);
    Feed(kGga);
    const Ref<GpsFix> fix = Feed(kRmc);
    EXPECT_EQ(fix->FixType(), kFixWithAltitude);
    EXPECT_EQ(fix->MakePosition()->Altitude(0), 545.4);
    EXPECT_DOUBLE_EQ(fix->MakePosition()->Altitude(1), 545.4 + 46.9);
    EXPECT_NEAR(fix->MakePosition()->Latitude(), 48.1173, 1e-12);  // 48 + 7.038 / 60
}

TEST_F(FixBuilderTest, CompletesGllByGgaAndRmc) {
    Ref<GpsFix> fix = Feed(kGll);
    EXPECT_EQ(fix->FixType(), kFixWithoutAltitude);
    EXPECT_NEAR(*fix->Utc(), (22 * 3600 + 54 * 60 + 44) / 86400.0, 1e-12);
    EXPECT_LT(fix->MakePosition()->Longitude(), 0);
    Feed(kGga);
    Feed(kRmc);
    fix = Feed(kGll);
    EXPECT_EQ(fix->FixType(), kFixWithAltitude);
    EXPECT_EQ(fix->MakePosition()->Altitude(0), 545.4);
    EXPECT_NEAR(*fix->Utc(), 34416 + (22 * 3600 + 54 * 60 + 44) / 86400.0, 1e-9);  // 23 March 1994
}

TEST_F(FixBuilderTest, GgaIsAlwaysWithAltitude) {
    const Ref<GpsFix> fix = Feed("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,,M,,M,,");
    EXPECT_EQ(fix->FixType(), kFixWithAltitude);
    EXPECT_EQ(fix->MakePosition()->Altitude(1), 0.0);
    EXPECT_NEAR(*fix->Utc(), 0.524525462962963, 1e-14);
    Feed(kRmc);
    EXPECT_NEAR(*Feed(kGga)->Utc(), 34416.52452546296, 1e-9);
}

TEST_F(FixBuilderTest, InvalidSentencesGiveAndLeaveNothing) {
    Feed(kGga);
    Feed(kRmc);
    for (const char* body : {"GPGGA,123519,4807.038,N,01131.000,E,0,00,,9.9,M,1,M,,",
                             "GPRMC,123520,V,4807.038,N,01131.000,E,022.4,084.4,010101,,",
                             "GPGLL,4916.45,N,12311.12,W,225444,V", "GPVTG,1,T,,M,2,N,,K",
                             "GPGLL,4916.45,N,12311.12,W"}) {
        const Ref<GpsFix> fix = Feed(body);
        EXPECT_EQ(fix->FixType(), kFixNone) << body;
        EXPECT_FALSE(fix->Utc().has_value()) << body;
        EXPECT_FALSE(fix->MakePosition()) << body;
    }
    const Ref<GpsFix> fix = Feed(kGll);
    EXPECT_EQ(fix->MakePosition()->Altitude(0), 545.4);
    EXPECT_GT(*fix->Utc(), 34416);
    builder_.Clear();
    EXPECT_EQ(Feed(kGll)->FixType(), kFixWithoutAltitude);
    EXPECT_LT(*Feed(kGll)->Utc(), 1.0);
}

// A later change of the sentence, or of a position handed out, is not seen in the fix.
TEST_F(FixBuilderTest, FixesNeverChange) {
    const Ref<NmeaSentence> sentence = MakeSentence(kRmc);
    const auto fix = MakeRef<GpsFix>(builder_.Build(DecodeValues(*sentence)), DatumId{5});
    sentence->SetField(3, "1000.000");
    EXPECT_EQ(sentence->Text().substr(0, 7), "$GPRMC,");
    const Ref<Position> first = fix->MakePosition();
    const Ref<Position> second = fix->MakePosition();
    EXPECT_FALSE(first == second);
    EXPECT_EQ(second->Datum(), 5);
    first->PutLatitude(0);
    EXPECT_NEAR(second->Latitude(), 48.1173, 1e-12);
    EXPECT_NEAR(fix->MakePosition()->Latitude(), 48.1173, 1e-12);
}

TEST_F(FixBuilderTest, CopiesAFix) {
    Feed(kGga);
    Ref<GpsFix> fix = Feed(kRmc);
    const Ref<GpsFix> copy = fix->Copy();
    fix->Assign({}, kDatumWgs84);
    EXPECT_EQ(copy->FixType(), kFixWithAltitude);
    EXPECT_NEAR(*copy->Utc(), 34416.524537037, 1e-9);
    EXPECT_EQ(copy->MakePosition()->Altitude(0), 545.4);
    EXPECT_FALSE(fix->Copy()->MakePosition());
}

}  // namespace
}  // namespace kavrel
