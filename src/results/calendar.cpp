#include "results/calendar.h"

#include <array>

namespace kavrel {
namespace {

constexpr std::int32_t kFirstYear = 1601;
constexpr std::int32_t kLastFileTimeYear = 30827;
constexpr std::int32_t kFirstDateYear = 1900;  // before day 0, dates would count backwards
constexpr std::int32_t kLastDateYear = 9999;

constexpr std::int32_t kDaysPer400Years = 146097;
constexpr std::int32_t kSecondsPerDay = 86400;
constexpr FileTime kFileTimePerDay = kSecondsPerDay * kFileTimePerSecond;

// Whole days from 30 December 1899 back to 1 January 1601.
constexpr std::int32_t kDateValueOf1601 = -109205;

bool IsLeapYear(std::int32_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

std::int32_t DaysInMonth(std::int32_t year, std::int32_t month) {
    constexpr std::array<std::int8_t, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[static_cast<std::size_t>(month - 1)] + (month == 2 && IsLeapYear(year) ? 1 : 0);
}

bool IsWithin(std::int32_t value, std::int32_t first, std::int32_t last) {
    return value >= first && value <= last;
}

bool Exists(const CalendarTime& time) {
    return IsWithin(time.year, kFirstYear, kLastFileTimeYear) && IsWithin(time.month, 1, 12) &&
           IsWithin(time.day, 1, DaysInMonth(time.year, time.month)) &&
           IsWithin(time.hour, 0, 23) && IsWithin(time.minute, 0, 59) &&
           IsWithin(time.second, 0, 59) && IsWithin(time.millisecond, 0, 999);
}

// Whether a date value has room for it, be it one too many days or seconds.
bool HasDateValue(const CalendarTime& time) {
    constexpr std::int32_t kTwoDigits = 99;
    return IsWithin(time.year, kFirstDateYear, kLastDateYear) && IsWithin(time.month, 1, 12) &&
           IsWithin(time.day, 0, 31) && IsWithin(time.hour, 0, kTwoDigits) &&
           IsWithin(time.minute, 0, kTwoDigits) && IsWithin(time.second, 0, kTwoDigits);
}

// Years counted from March put the leap day last, so that months have a formula: the days before
// month m of such a year are (153 m + 2) / 5.
struct MarchYear {
    std::int32_t year;
    std::int32_t month;  // 0: March
};

// Days since 1 March of year 0. REQUIRES: a date of the calendar, year not negative.
constexpr std::int32_t DayNumber(std::int32_t year, std::int32_t month, std::int32_t day) {
    const MarchYear march = month > 2 ? MarchYear{year, month - 3} : MarchYear{year - 1, month + 9};
    return march.year * 365 + march.year / 4 - march.year / 100 + march.year / 400 +
           (153 * march.month + 2) / 5 + day - 1;
}

constexpr std::int32_t kDayNumberOf1601 = DayNumber(1601, 1, 1);

std::int32_t DaysSince1601(const CalendarTime& time) {
    return DayNumber(time.year, time.month, time.day) - kDayNumberOf1601;
}

void SetDate(CalendarTime& time, std::int32_t daysSince1601) {
    const std::int32_t days = daysSince1601 + kDayNumberOf1601;
    const std::int32_t era = days / kDaysPer400Years;
    const std::int32_t dayOfEra = days % kDaysPer400Years;
    const std::int32_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int32_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int32_t marchMonth = (5 * dayOfYear + 2) / 153;
    time.day = dayOfYear - (153 * marchMonth + 2) / 5 + 1;
    time.month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
    time.year = era * 400 + yearOfEra + (marchMonth < 10 ? 0 : 1);
}

std::int32_t SecondOfDay(const CalendarTime& time) {
    return (time.hour * 60 + time.minute) * 60 + time.second;
}

}  // namespace

std::optional<FileTime> ToFileTime(const CalendarTime& time) {
    if (!Exists(time)) return std::nullopt;
    return DaysSince1601(time) * kFileTimePerDay + SecondOfDay(time) * kFileTimePerSecond +
           time.millisecond * kFileTimePerMillisecond;
}

std::optional<CalendarTime> FromFileTime(FileTime fileTime) {
    if (fileTime < 0) return std::nullopt;
    CalendarTime time;
    SetDate(time, static_cast<std::int32_t>(fileTime / kFileTimePerDay));
    const auto milliseconds =
        static_cast<std::int32_t>(fileTime % kFileTimePerDay / kFileTimePerMillisecond);
    time.hour = milliseconds / 3'600'000;
    time.minute = milliseconds / 60'000 % 60;
    time.second = milliseconds / 1000 % 60;
    time.millisecond = milliseconds % 1000;
    return time;
}

std::optional<double> ToDateValue(const CalendarTime& time) {
    if (!HasDateValue(time)) return std::nullopt;
    const double days = DaysSince1601(time) + kDateValueOf1601;
    return days + static_cast<double>(SecondOfDay(time)) / kSecondsPerDay;
}

}  // namespace kavrel
