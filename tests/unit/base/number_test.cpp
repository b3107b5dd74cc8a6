#include "base/number.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include "table.h"

namespace kavrel {
namespace {

std::string Written(double value, int decimals, int minWholeDigits = 1) {
    std::array<char, 64> buffer;
    const std::size_t length = WriteFixed(buffer, value, decimals, minWholeDigits);
    return {buffer.data(), length};
}

// Each text also with more digits behind its end, which are none of its own.
TEST(ReadNumber, TakesWhatBelongsToTheNumber) {
    ForEachRow("base/read_numbers.csv", [](const Row& row) {
        const double expected = row.Number(1);
        const std::string longer = row.Text(0) + "55";
        const std::string_view text = std::string_view(longer).substr(0, row.Text(0).size());
        EXPECT_DOUBLE_EQ(ReadDouble(text), expected);
        EXPECT_EQ(std::fpclassify(ReadDouble(text)), std::fpclassify(expected));
        EXPECT_EQ(std::signbit(ReadDouble(text)), std::signbit(expected));
        EXPECT_EQ(ReadInteger(text), row.Integer(2));
    });
    EXPECT_EQ(ReadDouble(std::string_view()), 0);
}

// Leading and trailing zeros move the exponent, however many there are.
TEST(ReadNumber, ZerosAndExponentCancel) {
    for (const std::size_t count : {30u, 350u, 1000u}) {
        const std::string zeros(count, '0');
        const std::string exponent = std::to_string(count);
        EXPECT_DOUBLE_EQ(ReadDouble("0." + zeros + "125e" + exponent), 0.125) << count;
        EXPECT_DOUBLE_EQ(ReadDouble("125" + zeros + "e-" + exponent), 125) << count;
    }
}

// Against strtod: what receivers send, 15 digits with an exponent within +-22, must be exact to the
// last bit, everything else close.
TEST(ReadNumber, AgreesWithTheCLibrary) {
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

TEST(WriteFixed, RoundsPadsAndSigns) {
    ForEachRow("base/write_fixed.csv", [](const Row& row) {
        EXPECT_EQ(Written(row.Number(0), row.Integer(1), row.Integer(2)), row.Text(3));
    });
}

TEST(WriteFixed, CutsOffWhatDoesNotFit) {
    const std::string whole = "-0123.46";
    for (std::size_t room = 0; room <= whole.size() + 2; ++room) {
        std::string out(whole.size() + 2, '?');
        const std::size_t length = WriteFixed({out.data(), room}, -123.456, 2, 4);
        ASSERT_EQ(length, std::min(room, whole.size()));
        EXPECT_EQ(out, whole.substr(0, length) + std::string(out.size() - length, '?'));
    }
}

}  // namespace
}  // namespace kavrel
