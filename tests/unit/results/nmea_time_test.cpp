#include "results/nmea_time.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace kavrel {
namespace {

std::string Text(const NmeaTime& time) {
    char text[96];
    std::snprintf(text, sizeof text, "%d-%d-%d %d:%d:%d.%d", time.year(), time.month(), time.day(),
                  time.hour(), time.minute(), time.second(), time.millisecond());
    return text;
}

NmeaTime At(int year, int month, int day, int hour, int minute, int second, int millisecond = 0) {
    return NmeaTime(CalendarTime{year, month, day, hour, minute, second, millisecond});
}

TEST(NmeaTime, ReadsFields) {
    struct Case {
        const char* date;
        const char* time;
        const char* expected;
    };
    const Case cases[] = {
        {"", "123519", "0-0-0 12:35:19.0"},    {"", "123519.5", "0-0-0 12:35:19.500"},
        {"", "120000.10", "0-0-0 12:0:0.100"}, {"", "90507", "0-0-0 9:5:7.0"},
        {"230394", "", "1994-3-23 0:0:0.0"},   {"230304", "123519", "2004-3-23 12:35:19.0"},
        {"010180", "", "1980-1-1 0:0:0.0"},    {"010179", "", "2079-1-1 0:0:0.0"},
        {"996161", "", "2061-61-99 0:0:0.0"},  {"", "", "0-0-0 0:0:0.0"},
        {"x", "x", "2000-0-0 0:0:0.0"},        {"", "-000001", "0-0-0 0:0:-1.0"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Text(NmeaTime::FromFields(c.date, c.time)), c.expected) << c.date << c.time;
    }
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
    const NmeaTime time = At(2004, 3, 23, 9, 5, 7, 999);
    EXPECT_EQ(time.Format(TimeStyle::NmeaTime), "090507");
    EXPECT_EQ(time.Format(TimeStyle::NmeaDate), "230304");
    EXPECT_EQ(time.Format(TimeStyle::Readable), "09:05.07");
    EXPECT_EQ(At(1999, 12, 31, 23, 59, 59).Format(TimeStyle::NmeaDate), "311299");
}

// Golden values: Python's datetime, days since 30 December 1899 plus seconds / 86400.
TEST(NmeaTime, HasDateValues) {
    EXPECT_DOUBLE_EQ(*At(1994, 3, 23, 12, 35, 19).DateValue(), 34416.52452546296);
    EXPECT_DOUBLE_EQ(*At(2004, 3, 23, 9, 5, 7, 999).DateValue(), 38069.37855324074);
    EXPECT_EQ(*At(2000, 2, 29, 0, 0, 0).DateValue(), 36585.0);
    EXPECT_EQ(*At(1980, 1, 1, 0, 0, 0).DateValue(), 29221.0);
    EXPECT_NEAR(*At(0, 0, 0, 12, 35, 19).DateValue(), 0.524525462962963, 1e-14);
    EXPECT_NEAR(*At(0, 7, 7, 12, 35, 19).DateValue(), 0.524525462962963, 1e-14);
    EXPECT_EQ(*At(0, 0, 0, 0, 0, 0).DateValue(), 0.0);
}

TEST(NmeaTime, HasNoDateValueOutsideTheCalendar) {
    const NmeaTime none[] = {
        At(2061, 61, 99, 0, 0, 0), At(2001, 2, 29, 0, 0, 0), At(2004, 4, 31, 0, 0, 0),
        At(2000, 0, 0, 0, 0, 0),   At(2004, 1, 1, 24, 0, 0), At(2004, 1, 1, 0, 60, 0),
        At(2004, 1, 1, 0, 0, 60),  At(0, 0, 0, 99, 0, 0),    At(2004, 1, -1, 0, 0, 0),
    };
    for (const NmeaTime& time : none)
        EXPECT_FALSE(time.DateValue().has_value()) << Text(time);
    for (int month = 1; month <= 12; ++month) {
        const int days = month == 2                                              ? 28
                         : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                                 : 31;
        EXPECT_TRUE(At(2003, month, days, 0, 0, 0).DateValue().has_value()) << month;
        EXPECT_FALSE(At(2003, month, days + 1, 0, 0, 0).DateValue().has_value()) << month;
    }
}

TEST(NmeaTime, MeasuresDifferences) {
    struct Case {
        NmeaTime from;
        NmeaTime to;
        std::int32_t seconds;
    };
    const Case cases[] = {
        {At(0, 0, 0, 12, 0, 0), At(0, 0, 0, 12, 0, 5), 5},
        {At(0, 0, 0, 12, 0, 5), At(0, 0, 0, 12, 0, 0), -5},
        {At(0, 0, 0, 12, 0, 0, 500), At(0, 0, 0, 12, 0, 5, 499), 4},
        {At(0, 0, 0, 12, 0, 5, 499), At(0, 0, 0, 12, 0, 0, 500), -4},
        {At(0, 0, 0, 23, 59, 59), At(0, 0, 0, 0, 0, 1), -86398},
        {At(2003, 12, 31, 23, 59, 59), At(2004, 1, 1, 0, 0, 1), 2},
        {At(2004, 2, 28, 0, 0, 0), At(2004, 3, 1, 0, 0, 0), 2 * 86400},
        {At(1900, 1, 1, 0, 0, 0), At(1970, 1, 1, 0, 0, 1), 1},  // the floor is 1970
    };
    for (const Case& c : cases) {
        EXPECT_EQ(DifferenceSeconds(c.from, c.to), c.seconds) << Text(c.from) << " " << Text(c.to);
    }
    EXPECT_EQ(DifferenceSeconds(std::nullopt, At(2004, 1, 1, 0, 0, 0)), 0);
    EXPECT_EQ(DifferenceSeconds(At(2004, 1, 1, 0, 0, 0), std::nullopt), 0);
}

TEST(NmeaTime, Shifts) {
    const NmeaTime time = At(2004, 2, 28, 23, 59, 59, 750);
    EXPECT_EQ(Text(time.Later(kFileTimePerSecond)), "2004-2-29 0:0:0.750");
    EXPECT_EQ(Text(time.Earlier(kFileTimePerSecond)), "2004-2-28 23:59:58.750");
    EXPECT_EQ(time.Later(std::nullopt), time);
    EXPECT_FALSE(time.Later(kFileTimePerSecond / 1000) == time);
    EXPECT_TRUE(NmeaTime::UtcNow().HasDate());
    EXPECT_TRUE(NmeaTime::LocalNow().DateValue().has_value());
    EXPECT_EQ(Text(At(0, 0, 0, 1, 2, 3).Later(std::nullopt)), "0-0-0 1:2:3.0");
    EXPECT_EQ(Text(At(0, 0, 0, 1, 2, 3).Later(0)), "1970-1-1 1:2:3.0");
    EXPECT_EQ(Text(At(0, 0, 0, 1, 2, 3).Earlier(std::numeric_limits<FileTime>::max())),
              "0-0-0 0:0:0.0");
}

// Golden values: Python's datetime.
TEST(Calendar, KnowsFileTimes) {
    EXPECT_EQ(ToFileTime({2004, 3, 23, 0, 0, 0, 0}), 127244736000000000);
    EXPECT_EQ(ToFileTime({1970, 1, 1, 0, 0, 0, 1}), 116444736000010000);
    EXPECT_EQ(ToFileTime({1601, 1, 1, 0, 0, 0, 0}), 0);
    EXPECT_FALSE(ToFileTime({1600, 12, 31, 23, 59, 59, 999}).has_value());
    EXPECT_TRUE(ToFileTime({30827, 12, 31, 23, 59, 59, 999}).has_value());
    EXPECT_FALSE(ToFileTime({30828, 1, 1, 0, 0, 0, 0}).has_value());
    EXPECT_FALSE(FromFileTime(-1).has_value());
}

TEST(Calendar, GoesThereAndBack) {
    constexpr FileTime kStep = 864000000000 / 3 * 100 + 12345678 * 10000LL;
    for (FileTime time = 0; time < 900000000000000000; time += kStep) {
        const auto calendar = FromFileTime(time);
        ASSERT_TRUE(calendar.has_value());
        ASSERT_EQ(ToFileTime(*calendar), time / 10000 * 10000);
    }
}

}  // namespace
}  // namespace kavrel
