// The calendar time is the platform's, field by field.
#include "platform/clock.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>

namespace kavrel::tests {
namespace {

TEST(ClockTest, TellsThePlatformsTime) {
    const std::pair<void(WINAPI*)(SYSTEMTIME*), CalendarTime (*)()> clocks[] = {
        {GetSystemTime, UtcNow}, {GetLocalTime, LocalNow}};
    for (const auto& [platform, own] : clocks) {
        const auto ask = [platform = platform] {
            SYSTEMTIME now;
            platform(&now);
            return std::array<int, 7>{now.wYear,   now.wMonth,  now.wDay,         now.wHour,
                                      now.wMinute, now.wSecond, now.wMilliseconds};
        };
        const auto before = ask();
        const CalendarTime now = own();
        const std::array<int, 7> told = {now.year,   now.month,  now.day,        now.hour,
                                         now.minute, now.second, now.millisecond};
        EXPECT_LE(before, told);
        EXPECT_LE(told, ask());
    }
}

}  // namespace
}  // namespace kavrel::tests
