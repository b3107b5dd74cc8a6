// NmeaTime: a moment of UTC as sentences carry it, a time of day with or without a date.
//
// A value: what the results share of it they copy. A year of 0 means that no date is known.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/clock.h"
#include "results/calendar.h"

namespace kavrel {

enum class TimeStyle : std::uint8_t {
    NmeaTime = 0,  // hhmmss
    NmeaDate = 1,  // ddmmyy
    Readable = 2,  // hh:mm.ss, a point before the seconds
};

class NmeaTime {
  public:
    // All zero.
    NmeaTime() = default;

    // From year, month, day, hour, minute, second, millisecond.
    explicit NmeaTime(const CalendarTime& time) : time_(time) {}

    // From the texts of the fields: ddmmyy, years 80 to 99 being of the last century, and hhmmss
    // with any decimals. An empty text leaves its part 0. Nothing is checked for its range.
    static NmeaTime FromFields(std::string_view date, std::string_view time);

    static NmeaTime UtcNow() { return NmeaTime(kavrel::UtcNow()); }
    static NmeaTime LocalNow() { return NmeaTime(kavrel::LocalNow()); }

    // This time of day on the other's date.
    NmeaTime OnDateOf(const NmeaTime& other) const;

    // Moved by an interval in 100-nanosecond units; by nothing: a plain copy. A moment without a
    // date moves on 1 January 1970. All zero when one end is outside the platform's calendar.
    NmeaTime Later(std::optional<FileTime> interval) const;
    NmeaTime Earlier(std::optional<FileTime> interval) const;

    // Getters, as they were read: a day of 99 is possible.
    std::int32_t year() const { return time_.year; }
    std::int32_t month() const { return time_.month; }
    std::int32_t day() const { return time_.day; }
    std::int32_t hour() const { return time_.hour; }
    std::int32_t minute() const { return time_.minute; }
    std::int32_t second() const { return time_.second; }
    std::int32_t millisecond() const { return time_.millisecond; }

    // Milliseconds are never written. Each number has at least two digits.
    std::string Format(TimeStyle style) const;

    // The date value of automation, see ToDateValue; the time of day alone when there is no date.
    std::optional<double> DateValue() const;

    // The platform's file time. Years below 1970 count as 1970 and a month or day of 0 as 1, so
    // that moments without a date compare as times of one day. 0 outside the calendar.
    FileTime ToComparable() const;

    bool HasDate() const { return time_.year != 0; }

    bool operator==(const NmeaTime&) const = default;

  private:
    void ReadDate(std::string_view field);
    void ReadTimeOfDay(std::string_view field);
    static NmeaTime FromComparable(FileTime fileTime);

    CalendarTime time_;
};

// From the first to the second, in whole seconds, cut toward 0; negative when the second is earlier
// and 0 when either is missing. Beyond 32 bits: the low 32.
std::int32_t DifferenceSeconds(const std::optional<NmeaTime>& from,
                               const std::optional<NmeaTime>& to);

}  // namespace kavrel
