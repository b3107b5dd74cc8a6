#include "base/number.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <string_view>

namespace kavrel {
namespace {

using namespace std::string_view_literals;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// What snprintf makes of a value; "%.*f" is exact and locale "C" here.
std::string Printed(double value, int decimals) {
    std::array<char, 512> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, value);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string Written(double value, int decimals, int minWholeDigits = 1) {
    std::array<char, 64> buffer;
    const std::size_t length = WriteFixed(buffer, value, decimals, minWholeDigits);
    return {buffer.data(), length};
}

// snprintf rounds exact ties to even, the library away from zero.
bool IsTie(double value, int decimals) {
    const std::string exact = Printed(value, 60);
    const std::size_t at = exact.find('.') + 1 + static_cast<std::size_t>(decimals);
    return exact[at] == '5' && exact.find_first_not_of('0', at + 1) == std::string::npos;
}

TEST(ReadDouble, TakesWhatBelongsToTheNumber) {
    const struct {
        std::string_view text;
        double expected;
    } kCases[] = {
        {"", 0},
        {"+12", 12},
        {"-12.5", -12.5},
        {"  \t\r\n\v\f7", 7},
        {".5", 0.5},
        {"-.5", -0.5},
        {"5.", 5},
        {".", 0},
        {"-.", 0},
        {".e5", 0},
        {"e5", 0},
        {"+-5", 0},
        {"- 5", 0},
        {"1.2.3", 1.2},
        {"1,5", 1},
        {"4807.038N", 4807.038},
        {"1E+3", 1000},
        {"25e-2x", 0.25},
        {"1e+", 1},
        {"1e-x", 1},
        {"1e 3", 1},
        {"1e3.5", 1000},
        {"0x10", 0},
        {"inf", 0},
        {"nan", 0},
        {"1\0002"sv, 1},
        {"000000000000000000000000000000042", 42},
        {"0.000000000000000000000000000000", 0},
        {"00000000000000000000000000000000.25", 0.25},
        {"9007199254740993e0", 9007199254740992},
        {"1e309", kInfinity},
        {"-1e99999999999999999999", -kInfinity},
        {"1e-99999999999999999999", 0},
        {"0e99999999999999999999", 0},
        {"1.7976931348623157e308", 1.7976931348623157e308},
        {"2.2250738585072014e-308", 2.2250738585072014e-308},
    };
    for (const auto& each : kCases) {
        if (each.expected == 0 || std::fabs(each.expected) == kInfinity) {
            EXPECT_EQ(ReadDouble(each.text), each.expected) << each.text;
        } else {
            EXPECT_DOUBLE_EQ(ReadDouble(each.text), each.expected) << each.text;
        }
    }
}

TEST(ReadDouble, EndsOfTextAndSignsOfZero) {
    EXPECT_EQ(ReadDouble("123456"sv.substr(0, 3)), 123);
    EXPECT_EQ(ReadDouble("1e55"sv.substr(0, 3)), 1e5);
    EXPECT_EQ(ReadDouble("-5"sv.substr(0, 1)), 0);
    EXPECT_EQ(ReadDouble("   5"sv.substr(0, 3)), 0);
    EXPECT_EQ(ReadDouble(std::string_view()), 0);
    EXPECT_TRUE(std::signbit(ReadDouble("-0.0")));
    EXPECT_FALSE(std::signbit(ReadDouble("-N"))) << "no zero is written";
}

// Leading and trailing zeros move the exponent, however many there are.
TEST(ReadDouble, ZerosAndExponentCancel) {
    for (const std::size_t count : {std::size_t{30}, std::size_t{350}, std::size_t{1000}}) {
        const std::string zeros(count, '0');
        const std::string exponent = std::to_string(count);
        EXPECT_DOUBLE_EQ(ReadDouble("0." + zeros + "125e" + exponent), 0.125) << count;
        EXPECT_DOUBLE_EQ(ReadDouble("125" + zeros + "e-" + exponent), 125) << count;
    }
}

// Against strtod: what receivers send, 15 digits with an exponent within +-22, must be exact to the
// last bit, everything else close.
TEST(ReadDouble, AgreesWithTheCLibrary) {
    std::mt19937_64 random(1);
    int exact = 0;
    for (int round = 0; round < 300000; ++round) {
        const bool isLong = random() % 3 == 0;
        const int digits = 1 + static_cast<int>(random() % (isLong ? 40 : 15));
        const int point = static_cast<int>(random() % static_cast<unsigned>(digits + 1));
        std::string text = random() % 2 != 0 ? "-" : "";
        for (int i = 0; i < digits; ++i) {
            if (i == point) text += '.';
            text += static_cast<char>('0' + random() % 10);
        }
        int exponent = 0;
        if (random() % 2 != 0) {
            exponent = static_cast<int>(random() % (isLong ? 500 : 45)) - (isLong ? 250 : 22);
            text += "e" + std::to_string(exponent);
        }
        // The digits behind the point count against the exponent.
        const bool isExact = digits <= 15 && exponent <= 22 && exponent - (digits - point) >= -22;
        exact += isExact ? 1 : 0;
        const double expected = std::strtod(text.c_str(), nullptr);
        const double tolerance = isExact ? 0 : 4e-15 * std::fabs(expected);
        ASSERT_NEAR(ReadDouble(text), expected, tolerance) << text;
    }
    EXPECT_GT(exact, 100000);
}

TEST(ReadInteger, TakesWhatBelongsToTheNumber) {
    constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
    const struct {
        std::string_view text;
        std::int32_t expected;
    } kCases[] = {
        {"", 0},
        {"-", 0},
        {"x", 0},
        {"08", 8},
        {" +7", 7},
        {"-7", -7},
        {"7.9", 7},
        {"1e3", 1},
        {"0x1F", 0},
        {"12,34", 12},
        {"2147483647", kMax},
        {"2147483648", kMax},
        {"-2147483648", kMin},
        {"-2147483649", kMin},
        {"4294967296", kMax},
        {"99999999999999999999999999999999999999", kMax},
        {"-99999999999999999999999999999999999999", kMin},
        {"000000000000000000000000000000000000005", 5},
    };
    for (const auto& each : kCases)
        EXPECT_EQ(ReadInteger(each.text), each.expected) << each.text;
    EXPECT_EQ(ReadInteger("123"sv.substr(0, 2)), 12);
}

TEST(WriteFixed, RoundsPadsAndSigns) {
    const struct {
        double value;
        int decimals;
        int minWholeDigits;
        std::string_view expected;
    } kCases[] = {
        {0, 2, 1, "0.00"},
        {-0.0, 1, 1, "-0.0"},
        {5, 2, 3, "005.00"},
        {-5.25, 1, 3, "-005.3"},
        {48.5, 4, 2, "48.5000"},
        // Exact ties go away from zero.
        {0.5, 0, 1, "1"},
        {-2.5, 0, 1, "-3"},
        {0.125, 2, 1, "0.13"},
        {-0.375, 2, 1, "-0.38"},
        // Near ties go where the binary value is.
        {1.005, 2, 1, "1.00"},
        {0.285, 2, 1, "0.28"},
        {0.49999999999999994, 0, 1, "0"},
        // Carries.
        {0.999, 2, 1, "1.00"},
        {59.99999, 4, 2, "60.0000"},
        {9.9999999999, 9, 1, "10.000000000"},
        {-99.95, 1, 1, "-100.0"},
        // Limits.
        {5e-324, 9, 1, "0.000000000"},
        {999999999999999.0, 0, 1, "999999999999999"},
        {999999999999999.875, 0, 1, "1000000000000000"},
        {999999999999999.875, 9, 1, "999999999999999.875000000"},
        {1e15, 0, 1, ""},
        {-1e15, 0, 1, ""},
        {kInfinity, 2, 1, ""},
        {-kInfinity, 2, 1, ""},
        {std::numeric_limits<double>::quiet_NaN(), 2, 1, ""},
    };
    for (const auto& each : kCases) {
        EXPECT_EQ(Written(each.value, each.decimals, each.minWholeDigits), each.expected)
            << each.value << " with " << each.decimals;
    }
}

TEST(WriteFixed, CutsOffWhatDoesNotFit) {
    const std::string whole = "-0123.46";
    for (std::size_t room = 0; room <= whole.size() + 2; ++room) {
        std::string out(whole.size() + 2, '?');
        const std::size_t length = WriteFixed({out.data(), room}, -123.456, 2, 4);
        ASSERT_EQ(length, std::min(room, whole.size()));
        EXPECT_EQ(out.substr(0, length), whole.substr(0, length));
        EXPECT_EQ(out.find_first_not_of('?', length), std::string::npos);
    }
}

TEST(WriteFixed, AgreesWithPrintf) {
    std::mt19937_64 random(3);
    int compared = 0;
    for (int round = 0; round < 200000; ++round) {
        const int decimals = static_cast<int>(random() % 10);
        // Any magnitude up to 1e15; every other value lies close to a tie.
        double value =
            std::ldexp(static_cast<double>(random() >> 11), -3 - static_cast<int>(random() % 60));
        if (round % 2 != 0) {
            const double scale = std::pow(10.0, decimals);
            value = (static_cast<double>(random() % 10000000) + 0.5) / scale;
        }
        if (random() % 2 != 0) value = -value;
        if (std::fabs(value) >= 1e15 || IsTie(value, decimals)) continue;
        ++compared;
        ASSERT_EQ(Written(value, decimals), Printed(value, decimals));
    }
    EXPECT_GT(compared, 150000);
}

}  // namespace
}  // namespace kavrel
