#include "platform/clock.h"

#include <windows.h>

namespace kavrel {
namespace {

CalendarTime FromSystemTime(const SYSTEMTIME& time) {
    return {.year = time.wYear,
            .month = time.wMonth,
            .day = time.wDay,
            .hour = time.wHour,
            .minute = time.wMinute,
            .second = time.wSecond,
            .millisecond = time.wMilliseconds};
}

}  // namespace

std::uint32_t TickCountMs() {
    return GetTickCount();
}

CalendarTime UtcNow() {
    SYSTEMTIME time;
    GetSystemTime(&time);
    return FromSystemTime(time);
}

CalendarTime LocalNow() {
    SYSTEMTIME time;
    GetLocalTime(&time);
    return FromSystemTime(time);
}

}  // namespace kavrel
