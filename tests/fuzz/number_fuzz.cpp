// Reading and writing of numbers, compared with the C library's.
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/number.h"
#include "fuzz/fuzz.h"

namespace kavrel {
namespace {

// The part of the text that both sides read alike: strtod knows hexadecimal, "inf" and "nan", too.
std::string DecimalOnly(const std::string& text) {
    return text.substr(0, text.find_first_not_of("0123456789+-.eE \t\r\n\v\f"));
}

void CheckReading(const std::string& text) {
    const std::string decimal = DecimalOnly(text);
    const double expected = std::strtod(decimal.c_str(), nullptr);
    const double value = ReadDouble(text);
    if (std::isinf(expected) || std::fabs(expected) < 1e-300 || std::fabs(expected) > 1e300) {
        // Near the limits only the direction counts.
        Check(std::fabs(value) < 2e-300 || std::fabs(value) > 5e299);
        Check((std::fabs(value) < 1) == (std::fabs(expected) < 1));
    } else {
        Check(std::fabs(value - expected) <= 4e-15 * std::fabs(expected));
    }

    const long long whole = std::strtoll(decimal.c_str(), nullptr, 10);
    Check(ReadInteger(text) == std::clamp(whole, -2147483648LL, 2147483647LL));
}

// A written number with one added to its last digit.
std::string Incremented(std::string text) {
    for (std::size_t i = text.size(); i > 0; --i) {
        char& c = text[i - 1];
        if (c == '.') continue;
        if (c == '-') return "-1" + text.substr(1);
        if (c != '9') {
            ++c;
            return text;
        }
        c = '0';
    }
    return "1" + text;
}

// The exact value, which has so many decimals that matter, cut and rounded by hand: snprintf rounds
// ties to even, the library away from zero.
std::string Expected(double value, int decimals, int minWholeDigits) {
    std::array<char, 512> exact;
    std::snprintf(exact.data(), exact.size(), "%.60f", value);
    std::string text = exact.data();
    const std::size_t point = text.find('.');
    const std::size_t at = point + 1 + static_cast<std::size_t>(decimals);
    const bool isUp = text[at] >= '5';
    text.resize(decimals == 0 ? point : at);
    if (isUp) text = Incremented(text);

    const std::size_t sign = text[0] == '-' ? 1 : 0;
    const std::size_t whole = std::min(text.find('.'), text.size()) - sign;
    const auto wanted = static_cast<std::size_t>(minWholeDigits);
    if (whole < wanted) text.insert(sign, wanted - whole, '0');
    return text;
}

void CheckWriting(double value, int decimals, int minWholeDigits, std::size_t room) {
    std::array<char, 64> buffer;
    buffer.fill('?');
    const std::size_t length = WriteFixed({buffer.data(), room}, value, decimals, minWholeDigits);
    Check(length <= room);
    for (std::size_t i = length; i < buffer.size(); ++i)
        Check(buffer[i] == '?');
    if (!(std::fabs(value) < 1e15)) {
        Check(length == 0);
        return;
    }
    const std::string expected = Expected(value, decimals, minWholeDigits);
    Check(std::string(buffer.data(), length) == expected.substr(0, room));
    if (length == expected.size()) {
        const double back = ReadDouble({buffer.data(), length});
        Check(std::fabs(back - value) <= 0.5 * std::pow(10, -decimals) + 4e-15 * std::fabs(value));
    }
}

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kavrel;
    Input input(data, size);
    const auto decimals = static_cast<int>(input.TakeBelow(10));
    const auto minWholeDigits = 1 + static_cast<int>(input.TakeBelow(12));
    const std::size_t room = input.TakeBelow(65);
    CheckWriting(input.Take<double>(), decimals, minWholeDigits, room);
    const std::string text = input.TakeRest();
    CheckReading(text);
    // Values with a short decimal form are the ones close to ties.
    CheckWriting(ReadDouble(text), decimals, minWholeDigits, room);
    return 0;
}
