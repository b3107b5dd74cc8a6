#include "results/nmea_time.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>
#include <string>

#include "table.h"

namespace kavrel {
namespace {

std::string Text(const NmeaTime& time) {
    char text[96];
    std::snprintf(text, sizeof text, "%d-%d-%d %d:%d:%d.%d", time.year(), time.month(), time.day(),
                  time.hour(), time.minute(), time.second(), time.millisecond());
    return text;
}

CalendarTime CalendarAt(const std::string& text) {
    CalendarTime time;
    EXPECT_EQ(std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d.%d", &time.year, &time.month, &time.day,
                          &time.hour, &time.minute, &time.second, &time.millisecond),
              7);
    return time;
}

NmeaTime At(const std::string& text) {
    return NmeaTime(CalendarAt(text));
}

TEST(NmeaTime, ReadsFields) {
    ForEachRow("results/time_fields.csv", [](const Row& row) {
        EXPECT_EQ(Text(NmeaTime::FromFields(row.Text(0), row.Text(1))), row.Text(2));
    });
}

// Every second of a day, so that no product of the reading falls short of its whole number.
TEST(NmeaTime, ReadsEverySecond) {
    for (int second = 0; second < 86400; ++second) {
        char text[32];
        std::snprintf(text, sizeof text, "%02d%02d%02d.90", second / 3600, second / 60 % 60,
                      second % 60);
        const NmeaTime time = NmeaTime::FromFields({}, text);
        ASSERT_EQ(time.hour() * 3600 + time.minute() * 60 + time.second(), second) << text;
        ASSERT_EQ(time.millisecond(), 900) << text;
    }
}

TEST(NmeaTime, SurvivesAbsurdNumbers) {
    for (const char* text : {"1e300", "-1e300", "99999999999999999999", "2147483648"}) {
        const NmeaTime time = NmeaTime::FromFields(text, text);
        EXPECT_FALSE(time.DateValue().has_value()) << text;
        EXPECT_EQ(time.ToComparable(), 0) << text;
    }
}

TEST(NmeaTime, Formats) {
    const NmeaTime time = At("2004-3-23 9:5:7.999");
    EXPECT_EQ(time.Format(TimeStyle::NmeaTime), "090507");
    EXPECT_EQ(time.Format(TimeStyle::NmeaDate), "230304");
    EXPECT_EQ(time.Format(TimeStyle::Readable), "09:05.07");
    EXPECT_EQ(At("1999-12-31 23:59:59.0").Format(TimeStyle::NmeaDate), "311299");
}

TEST(NmeaTime, HasDateValuesWithinTheCalendar) {
    ForEachRow("results/date_values.csv", [](const Row& row) {
        const bool hasValue = !row.Text(1).empty();
        const std::optional<double> value = At(row.Text(0)).DateValue();
        ASSERT_EQ(value.has_value(), hasValue);
        if (!hasValue) return;
        EXPECT_NEAR(*value, row.Number(1), 3e-16 * (33 + row.Number(1)));
    });
}

TEST(NmeaTime, MeasuresDifferences) {
    ForEachRow("results/differences.csv", [](const Row& row) {
        EXPECT_EQ(DifferenceSeconds(At(row.Text(0)), At(row.Text(1))), row.Integer(2));
        EXPECT_EQ(DifferenceSeconds(std::nullopt, At(row.Text(0))), 0);
        EXPECT_EQ(DifferenceSeconds(At(row.Text(0)), std::nullopt), 0);
    });
}

TEST(NmeaTime, Shifts) {
    const NmeaTime time = At("2004-2-28 23:59:59.750");
    EXPECT_EQ(Text(time.Later(kFileTimePerSecond)), "2004-2-29 0:0:0.750");
    EXPECT_EQ(Text(time.Earlier(kFileTimePerSecond)), "2004-2-28 23:59:58.750");
    EXPECT_EQ(time.Later(std::nullopt), time);
    EXPECT_FALSE(time.Later(kFileTimePerSecond / 1000) == time);
    EXPECT_TRUE(NmeaTime::UtcNow().HasDate());
    EXPECT_TRUE(NmeaTime::LocalNow().DateValue().has_value());
    const NmeaTime withoutDate = At("0-0-0 1:2:3.0");
    EXPECT_EQ(Text(withoutDate.Later(std::nullopt)), "0-0-0 1:2:3.0");
    EXPECT_EQ(Text(withoutDate.Later(0)), "1970-1-1 1:2:3.0");
    EXPECT_EQ(Text(withoutDate.Earlier(std::numeric_limits<FileTime>::max())), "0-0-0 0:0:0.0");
}

TEST(Calendar, KnowsFileTimes) {
    ForEachRow("results/file_times.csv", [](const Row& row) {
        const std::optional<FileTime> time = ToFileTime(CalendarAt(row.Text(0)));
        EXPECT_EQ(time ? std::to_string(*time) : "", row.Text(1));
    });
}

TEST(Calendar, GoesThereAndBack) {
    EXPECT_FALSE(FromFileTime(-1).has_value());
    constexpr FileTime kStep = 864000000000 / 3 * 100 + 12345678 * 10000LL;
    for (FileTime time = 0; time < 900000000000000000; time += kStep) {
        const auto calendar = FromFileTime(time);
        ASSERT_TRUE(calendar.has_value());
        ASSERT_EQ(ToFileTime(*calendar), time / 10000 * 10000);
    }
}

}  // namespace
}  // namespace kavrel
