// Calendar arithmetic, with the results that the platform's own conversions have.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/clock.h"

namespace kavrel {

// 100-nanosecond units since 1 January 1601, proleptic Gregorian calendar.
using FileTime = std::int64_t;
inline constexpr FileTime kFileTimePerMillisecond = 10'000;
inline constexpr FileTime kFileTimePerSecond = 10'000'000;

// Nothing for a moment that the calendar does not have or whose year is outside 1601..30827.
std::optional<FileTime> ToFileTime(const CalendarTime& time);

// Nothing for a negative file time. Fractions of a millisecond are cut off.
std::optional<CalendarTime> FromFileTime(FileTime fileTime);

// The date value of automation: days since 30 December 1899, the fraction being the time of day,
// in whole seconds: milliseconds are ignored. What is one too many goes over into the next: 30
// February is a day of March, and a leap second the next midnight. Nothing for a month that is
// none, a day outside 0..31, a time beyond two digits each, or a year outside 1900..9999.
std::optional<double> ToDateValue(const CalendarTime& time);

}  // namespace kavrel
