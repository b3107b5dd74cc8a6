#include "platform/clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

namespace kavrel {
namespace {

std::tm Parts(const CalendarTime& time) {
    std::tm parts{};
    parts.tm_year = time.year - 1900;
    parts.tm_mon = time.month - 1;
    parts.tm_mday = time.day;
    parts.tm_hour = time.hour;
    parts.tm_min = time.minute;
    parts.tm_sec = time.second;
    parts.tm_isdst = -1;
    return parts;
}

TEST(Clock, TheCalendarIsTheSystems) {
    const std::time_t before = std::time(nullptr);
    const CalendarTime utc = UtcNow();
    const CalendarTime local = LocalNow();
    // time() may be served from a coarser clock that lags by a tick.
    const std::time_t after = std::time(nullptr) + 1;

    std::tm utcParts = Parts(utc);
    std::tm localParts = Parts(local);
    for (const std::time_t moment : {timegm(&utcParts), mktime(&localParts)}) {
        EXPECT_GE(moment, before);
        EXPECT_LE(moment, after);
    }
    for (const CalendarTime& time : {utc, local}) {
        EXPECT_GE(time.millisecond, 0);
        EXPECT_LT(time.millisecond, 1000);
    }
}

// A span of ticks lies inside the span that the steady clock measures around it.
TEST(Clock, TicksAreMilliseconds) {
    using std::chrono::steady_clock;
    const auto outerStart = steady_clock::now();
    const std::uint32_t start = TickCountMs();
    const auto innerStart = steady_clock::now();
    while (steady_clock::now() - innerStart < std::chrono::milliseconds(30)) {
    }
    const auto innerEnd = steady_clock::now();
    const std::uint32_t elapsedMs = TickCountMs() - start;
    const auto outerEnd = steady_clock::now();

    const auto inner = std::chrono::duration<double, std::milli>(innerEnd - innerStart).count();
    const auto outer = std::chrono::duration<double, std::milli>(outerEnd - outerStart).count();
    EXPECT_GE(elapsedMs, inner - 1);
    EXPECT_LE(elapsedMs, outer + 1);
}

}  // namespace
}  // namespace kavrel
