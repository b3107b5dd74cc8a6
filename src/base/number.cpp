#include "base/number.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace kavrel {
namespace {

// Every power of ten that a double holds exactly.
constexpr std::array<double, 23> kPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPower = static_cast<int>(kPowersOfTen.size()) - 1;

// More digits than a 64-bit significand holds only move the exponent.
constexpr int kMaxSignificantDigits = 18;

// No exponent beyond this changes the result any more; it keeps the arithmetic from overflowing.
constexpr int kExponentLimit = 400;

// A written exponent may be cancelled by zeros of the text, so it is kept up to here.
constexpr int kWrittenExponentLimit = 100'000'000;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Walks a text, character by character; reads as 0 behind the end.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

    char Peek() const { return at_ != end_ ? *at_ : '\0'; }
    void Skip() { ++at_; }

    void SkipBlanks() {
        while (Peek() == ' ' || (Peek() >= '\t' && Peek() <= '\r'))
            Skip();
    }

    // Skips a sign and tells whether it was a minus.
    bool TakeSign() {
        const bool isNegative = Peek() == '-';
        if (isNegative || Peek() == '+') Skip();
        return isNegative;
    }

  private:
    const char* at_;
    const char* end_;
};

double ScaleByPowerOfTen(double value, int exponent) {
    while (exponent > kLargestExactPower) {
        value *= kPowersOfTen[kLargestExactPower];
        exponent -= kLargestExactPower;
    }
    while (exponent < -kLargestExactPower) {
        value /= kPowersOfTen[kLargestExactPower];
        exponent += kLargestExactPower;
    }
    return exponent < 0 ? value / kPowersOfTen[static_cast<std::size_t>(-exponent)]
                        : value * kPowersOfTen[static_cast<std::size_t>(exponent)];
}

// Reads "e+12" where it stands and is whole; else takes nothing.
int TakeExponent(Scanner& scanner) {
    if (scanner.Peek() != 'e' && scanner.Peek() != 'E') return 0;
    Scanner ahead = scanner;
    ahead.Skip();
    const bool isNegative = ahead.TakeSign();
    if (!IsDigit(ahead.Peek())) return 0;

    int exponent = 0;
    for (; IsDigit(ahead.Peek()); ahead.Skip()) {
        exponent = std::min(exponent * 10 + (ahead.Peek() - '0'), kWrittenExponentLimit);
    }
    scanner = ahead;
    return isNegative ? -exponent : exponent;
}

// The rounding error of a * b, exact (Dekker 1971; Veltkamp's splitting, since not every device
// has a fused multiply-add). REQUIRES: no overflow.
double ProductError(double a, double b, double product) {
    constexpr double kSplitter = 134217729.0;  // 2^27 + 1
    const double ca = kSplitter * a;
    const double highA = ca - (ca - a);
    const double lowA = a - highA;
    const double cb = kSplitter * b;
    const double highB = cb - (cb - b);
    const double lowB = b - highB;
    return ((highA * highB - product) + highA * lowB + lowA * highB) + lowA * lowB;
}

// value * 10^decimals rounded to an integer, halves upward. 0 <= value < 1.
std::uint64_t RoundedFraction(double value, int decimals) {
    const double power = kPowersOfTen[static_cast<std::size_t>(decimals)];
    const double scaled = value * power;
    const double whole = std::floor(scaled);
    // Compare with one half by what the multiplication lost, too: 1.115 is below its tie.
    const double distance = (scaled - whole - 0.5) + ProductError(value, power, scaled);
    return static_cast<std::uint64_t>(whole) + (distance >= 0 ? 1 : 0);
}

// Puts digits from the right into a small buffer.
class DigitWriter {
  public:
    void Digits(std::uint64_t value, int count) {
        for (; count > 0 || value != 0; --count) {
            if (at_ == buffer_.begin()) return;
            Put(static_cast<char>('0' + value % 10));
            value /= 10;
        }
    }
    void Put(char c) {
        if (at_ != buffer_.begin()) *--at_ = c;
    }
    std::string_view text() const { return {at_, buffer_.end()}; }

  private:
    std::array<char, 48> buffer_;
    std::array<char, 48>::iterator at_ = buffer_.end();
};

// Adds the digits that stand at `at`, and returns what stands behind them.
const char* TakeDigits(const char* at, const char* end, std::uint64_t& value) {
    for (; at != end && IsDigit(*at); ++at)
        value = value * 10 + static_cast<unsigned>(*at - '0');
    return at;
}

// Any text that has a number of any kind, or none.
double ReadAnyDouble(std::string_view text) {
    Scanner scanner(text);
    scanner.SkipBlanks();
    const bool isNegative = scanner.TakeSign();

    std::uint64_t significand = 0;
    int exponent = 0;
    int digits = 0;
    bool isBehindPoint = false;
    bool hasDigits = false;
    for (;; scanner.Skip()) {
        const char c = scanner.Peek();
        if (c == '.' && !isBehindPoint) {
            isBehindPoint = true;
        } else if (IsDigit(c)) {
            hasDigits = true;
            if (digits < kMaxSignificantDigits) {
                significand = significand * 10 + static_cast<unsigned>(c - '0');
                if (significand != 0) ++digits;
                if (isBehindPoint) --exponent;
            } else if (!isBehindPoint) {
                ++exponent;
            }
        } else {
            break;
        }
    }
    if (!hasDigits) return 0.0;
    exponent += TakeExponent(scanner);
    exponent = std::clamp(exponent, -kExponentLimit, kExponentLimit);

    const double value =
        significand == 0 ? 0.0 : ScaleByPowerOfTen(static_cast<double>(significand), exponent);
    return isNegative ? -value : value;
}

std::int32_t ReadAnyInteger(std::string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    Scanner scanner(text);
    scanner.SkipBlanks();
    const bool isNegative = scanner.TakeSign();

    std::int64_t value = 0;
    for (; IsDigit(scanner.Peek()); scanner.Skip()) {
        value = std::min<std::int64_t>(value * 10 + (scanner.Peek() - '0'), std::int64_t{1} << 32);
    }
    if (isNegative) value = -value;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

}  // namespace

// What receivers write, "4807.038", is read by two plain loops; every other text goes the long way
// to the same number.
double ReadDouble(std::string_view text) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    std::uint64_t significand = 0;
    const char* at = TakeDigits(begin, end, significand);
    std::ptrdiff_t digits = at - begin;
    std::size_t decimals = 0;
    if (at != end && *at == '.') {
        const char* const point = at;
        at = TakeDigits(point + 1, end, significand);
        decimals = static_cast<std::size_t>(at - point - 1);
        digits = at - begin - 1;
    }
    const bool hasExponent = at != end && (*at == 'e' || *at == 'E');
    if (digits < 1 || digits > kMaxSignificantDigits || hasExponent) return ReadAnyDouble(text);
    const auto value = static_cast<double>(significand);
    return decimals != 0 ? value / kPowersOfTen[decimals] : value;
}

std::int32_t ReadInteger(std::string_view text) {
    constexpr std::ptrdiff_t kSurelyFitting = 9;
    std::uint64_t value = 0;
    const char* const begin = text.data();
    const std::ptrdiff_t digits = TakeDigits(begin, begin + text.size(), value) - begin;
    if (digits < 1 || digits > kSurelyFitting) return ReadAnyInteger(text);
    return static_cast<std::int32_t>(value);
}

std::size_t WriteFixed(std::span<char> out, double value, int decimals, int minWholeDigits) {
    const double magnitude = std::fabs(value);
    if (!(magnitude < 1e15)) return 0;

    std::uint64_t whole = static_cast<std::uint64_t>(magnitude);
    std::uint64_t fraction = RoundedFraction(magnitude - static_cast<double>(whole), decimals);
    const auto fractionLimit =
        static_cast<std::uint64_t>(kPowersOfTen[static_cast<std::size_t>(decimals)]);
    if (fraction >= fractionLimit) {
        fraction -= fractionLimit;
        ++whole;
    }

    DigitWriter writer;
    if (decimals > 0) {
        writer.Digits(fraction, decimals);
        writer.Put('.');
    }
    writer.Digits(whole, minWholeDigits);
    if (std::signbit(value)) writer.Put('-');

    const std::string_view text = writer.text();
    const std::size_t length = std::min(text.size(), out.size());
    std::copy_n(text.begin(), length, out.begin());
    return length;
}

}  // namespace kavrel
