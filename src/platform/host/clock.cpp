#include "platform/clock.h"

#include <chrono>
#include <ctime>

namespace kavrel {
namespace {

using Break = std::tm* (*)(const std::time_t*, std::tm*);

CalendarTime Now(Break breakDown) {
    using std::chrono::system_clock;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();

    std::tm parts{};
    breakDown(&seconds, &parts);
    return {.year = parts.tm_year + 1900,
            .month = parts.tm_mon + 1,
            .day = parts.tm_mday,
            .hour = parts.tm_hour,
            .minute = parts.tm_min,
            .second = parts.tm_sec,
            .millisecond = static_cast<std::int32_t>(milliseconds % 1000)};
}

}  // namespace

std::uint32_t TickCountMs() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

CalendarTime UtcNow() {
    return Now(gmtime_r);
}

CalendarTime LocalNow() {
    return Now(localtime_r);
}

}  // namespace kavrel
