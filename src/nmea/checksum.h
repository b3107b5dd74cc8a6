// The NMEA 0183 checksum: the exclusive-or of the characters between "$" and "*", written as two
// upper-case hexadecimal digits.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kavrel {

class Checksum {
  public:
    Checksum() = default;

    // Of characters that were summed up eight at a time.
    explicit Checksum(std::uint64_t sum) {
        sum ^= sum >> 32;
        sum ^= sum >> 16;
        sum ^= sum >> 8;
        value_ = static_cast<std::uint8_t>(sum & 0xFF);
    }

    void Add(char c) { value_ = static_cast<std::uint8_t>(value_ ^ static_cast<std::uint8_t>(c)); }

    // Eight characters at a time.
    void Add(std::string_view text) {
        std::uint64_t sum = 0;
        for (; text.size() >= sizeof sum; text.remove_prefix(sizeof sum)) {
            std::uint64_t eight;
            std::memcpy(&eight, text.data(), sizeof eight);
            sum ^= eight;
        }
        value_ ^= Checksum(sum).value_;
        for (const char c : text)
            Add(c);
    }

    // Compares with the two digits behind a "*". Lower-case digits do not match: only upper case is
    // accepted. Characters that are no digits have a value all the same, see DigitValue.
    bool Matches(char highDigit, char lowDigit) const {
        return static_cast<std::uint8_t>(DigitValue(highDigit) * 16 + DigitValue(lowDigit)) ==
               value_;
    }

    std::array<char, 2> Digits() const {
        constexpr const char* kHexDigits = "0123456789ABCDEF";
        return {kHexDigits[value_ >> 4], kHexDigits[value_ & 15]};
    }

  private:
    // Everything but '0'..'9' counts from 'A' = 10, so 'a' is 42 and fails to be a digit.
    static int DigitValue(char c) { return c >= '0' && c <= '9' ? c - '0' : c - 55; }

    std::uint8_t value_ = 0;
};

}  // namespace kavrel
