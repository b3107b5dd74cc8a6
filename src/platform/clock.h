// Clocks: a tick count for time-outs and the calendar time.
#pragma once

#include <cstdint>

namespace kavrel {

// Milliseconds since some moment in the past; wraps after 49.7 days. Compare by differences only.
std::uint32_t TickCountMs();

// A calendar moment, as precise as the platform's clock, without the day of the week.
struct CalendarTime {
    std::int32_t year = 0;
    std::int32_t month = 0;  // 1..12
    std::int32_t day = 0;    // 1..31
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;
    std::int32_t millisecond = 0;

    bool operator==(const CalendarTime&) const = default;
};

CalendarTime UtcNow();
CalendarTime LocalNow();

}  // namespace kavrel
