#include "results/fix_builder.h"

#include <gtest/gtest.h>

#include "results/gps_fix.h"
#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

// The columns behind the sentence: type, UTC, latitude, longitude, and both altitudes.
void ExpectFix(GpsFix& fix, const Row& row) {
    EXPECT_EQ(fix.FixType(), row.Integer(1));
    const bool isThere = row.Integer(1) != kFixNone;
    ASSERT_EQ(fix.Utc().has_value(), isThere);
    const Ref<Position> position = fix.MakePosition();
    ASSERT_EQ(static_cast<bool>(position), isThere);
    if (!isThere) return;
    EXPECT_NEAR(*fix.Utc(), row.Number(2), 1e-14 * (1 + row.Number(2)));
    EXPECT_NEAR(position->Latitude(), row.Number(3), 1e-12);
    EXPECT_NEAR(position->Longitude(), row.Number(4), 1e-12);
    EXPECT_DOUBLE_EQ(position->Altitude(0), row.Number(5));
    EXPECT_DOUBLE_EQ(position->Altitude(1), row.Number(6));
}

TEST(FixBuilder, CompletesWhatASentenceLeavesOut) {
    FixBuilder builder;
    ForEachRow("results/fixes.csv", [&builder](const Row& row) {
        if (row.Text(0).starts_with('=')) return builder.Clear();
        const Ref<NmeaSentence> sentence = MakeSentence(row.Text(0));
        const FixValues values = builder.Build(DecodeValues(*sentence));
        builder.Keep(sentence->Type(), values);
        const auto fix = MakeRef<GpsFix>(values, kDatumWgs84);
        ExpectFix(*fix, row);
        if (const Ref<Position> position = fix->MakePosition()) position->PutLatitude(1);
        sentence->SetText("");
        const Ref<GpsFix> copy = fix->Copy();
        fix->Assign({}, kDatumWgs84);
        ExpectFix(*copy, row);
        EXPECT_FALSE(fix->MakePosition());
    });
}

}  // namespace
}  // namespace kavrel
