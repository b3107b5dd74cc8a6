#include "nmea/sentence_writer.h"

#include <array>
#include <cmath>
#include <cstdint>

#include "base/number.h"
#include "nmea/checksum.h"

namespace kavrel {
namespace {

constexpr int kMinuteDecimals = 5;
constexpr double kUnitsPerMinute = 1e5;

void AppendNumber(std::string& text, double value, int decimals, int minWholeDigits) {
    std::array<char, 40> digits;
    text.append(digits.data(), WriteFixed(digits, value, decimals, minWholeDigits));
}

}  // namespace

SentenceWriter::SentenceWriter(std::string_view address) {
    constexpr std::size_t kUsualLength = 96;
    text_.reserve(kUsualLength);
    text_.append(1, '$').append(address);
}

SentenceWriter& SentenceWriter::Text(std::string_view text) {
    text_.append(1, ',').append(text);
    return *this;
}

SentenceWriter& SentenceWriter::Number(double value, int decimals, int minWholeDigits) {
    text_.push_back(',');
    AppendNumber(text_, value, decimals, minWholeDigits);
    return *this;
}

SentenceWriter& SentenceWriter::Latitude(double degrees) {
    Angle(degrees, 2);
    return Text(degrees < 0 ? "S" : "N");
}

SentenceWriter& SentenceWriter::Longitude(double degrees) {
    Angle(degrees, 3);
    return Text(degrees < 0 ? "W" : "E");
}

// Rounded as a whole first, so that minutes never read 60.
void SentenceWriter::Angle(double degrees, int degreeDigits) {
    text_.push_back(',');
    const double units = std::floor(std::fabs(degrees) * 60.0 * kUnitsPerMinute + 0.5);
    const double wholeDegrees = std::floor(units / (60.0 * kUnitsPerMinute));
    const double minutes = (units - wholeDegrees * 60.0 * kUnitsPerMinute) / kUnitsPerMinute;
    AppendNumber(text_, wholeDegrees, 0, degreeDigits);
    AppendNumber(text_, minutes, kMinuteDecimals, 2);
}

std::string SentenceWriter::Finish() const {
    Checksum checksum;
    checksum.Add(std::string_view{text_}.substr(1));
    const std::array<char, 2> digits = checksum.Digits();
    return (text_ + '*').append(digits.data(), digits.size());
}

}  // namespace kavrel
