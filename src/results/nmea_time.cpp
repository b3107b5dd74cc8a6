#include "results/nmea_time.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/number.h"

namespace kavrel {
namespace {

// Toward 0; what does not fit becomes the smallest number, as processors have it.
std::int32_t Truncate(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!(std::fabs(value) < 2147483648.0)) return Limits::min();
    return static_cast<std::int32_t>(value);
}

void AppendTwoDigits(std::string& text, std::int32_t value) {
    char digits[12];
    text.append(digits, WriteFixed(digits, value, 0, 2));
}

}  // namespace

NmeaTime NmeaTime::FromFields(std::string_view date, std::string_view time) {
    NmeaTime result;
    result.ReadDate(date);
    result.ReadTimeOfDay(time);
    return result;
}

void NmeaTime::ReadDate(std::string_view field) {
    if (field.empty()) return;
    constexpr std::int32_t kPivotYear = 80;
    const std::int32_t date = ReadInteger(field);
    const std::int32_t shortYear = date % 100;
    time_.day = date / 10000;
    time_.month = date / 100 % 100;
    time_.year = shortYear + (shortYear < kPivotYear ? 2000 : 1900);
}

void NmeaTime::ReadTimeOfDay(std::string_view field) {
    if (field.empty()) return;
    // Keeps a fraction such as 0.123, which is 0.12299999... in binary, from losing a millisecond.
    constexpr double kNudgeMs = 0.000005;
    const double value = ReadDouble(field);
    time_.hour = static_cast<std::int16_t>(Truncate(value * 0.0001));
    time_.minute = Truncate(value * 0.01) % 100;
    const double rest = value - time_.hour * 10000.0 - time_.minute * 100.0;
    time_.second = Truncate(rest);
    time_.millisecond = Truncate((rest - time_.second) * 1000.0 + kNudgeMs);
}

NmeaTime NmeaTime::OnDateOf(const NmeaTime& other) const {
    NmeaTime result = *this;
    result.time_.year = other.time_.year;
    result.time_.month = other.time_.month;
    result.time_.day = other.time_.day;
    return result;
}

FileTime NmeaTime::ToComparable() const {
    constexpr std::int32_t kFloorYear = 1970;
    CalendarTime time = time_;
    time.year = std::max(time.year, kFloorYear);
    if (time.month == 0) time.month = 1;
    if (time.day == 0) time.day = 1;
    return ToFileTime(time).value_or(0);
}

NmeaTime NmeaTime::FromComparable(FileTime fileTime) {
    return NmeaTime(FromFileTime(fileTime).value_or(CalendarTime()));
}

NmeaTime NmeaTime::Later(std::optional<FileTime> interval) const {
    if (!interval.has_value()) return *this;
    // Unsigned, so that an absurd interval wraps as the platform's own arithmetic would.
    return FromComparable(static_cast<FileTime>(static_cast<std::uint64_t>(ToComparable()) +
                                                static_cast<std::uint64_t>(*interval)));
}

NmeaTime NmeaTime::Earlier(std::optional<FileTime> interval) const {
    if (!interval.has_value()) return *this;
    return FromComparable(static_cast<FileTime>(static_cast<std::uint64_t>(ToComparable()) -
                                                static_cast<std::uint64_t>(*interval)));
}

std::string NmeaTime::Format(TimeStyle style) const {
    std::string text;
    if (style == TimeStyle::NmeaDate) {
        AppendTwoDigits(text, time_.day);
        AppendTwoDigits(text, time_.month);
        AppendTwoDigits(text, time_.year % 100);
        return text;
    }
    const bool isReadable = style == TimeStyle::Readable;
    AppendTwoDigits(text, time_.hour);
    if (isReadable) text.push_back(':');
    AppendTwoDigits(text, time_.minute);
    if (isReadable) text.push_back('.');
    AppendTwoDigits(text, time_.second);
    return text;
}

std::optional<double> NmeaTime::DateValue() const {
    if (HasDate()) return ToDateValue(time_);
    CalendarTime time = time_;
    time.year = 1900;
    time.month = 1;
    time.day = 1;
    const std::optional<double> value = ToDateValue(time);
    if (!value.has_value()) return std::nullopt;
    return *value - std::floor(*value);
}

std::int32_t DifferenceSeconds(const std::optional<NmeaTime>& from,
                               const std::optional<NmeaTime>& to) {
    if (!from.has_value() || !to.has_value()) return 0;
    const FileTime difference = to->ToComparable() - from->ToComparable();
    return static_cast<std::int32_t>(difference / kFileTimePerSecond);
}

}  // namespace kavrel
