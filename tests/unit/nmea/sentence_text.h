// Sentence texts for tests, with a checksum that is not computed by the code under test.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "nmea/nmea_sentence.h"

namespace kavrel {

inline std::string ChecksumDigits(std::string_view body) {
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    std::array<char, 8> digits;
    std::snprintf(digits.data(), digits.size(), "%02X", sum & 0xFF);
    return digits.data();
}

// "GPGGA,1" becomes "$GPGGA,1*" and two digits.
inline std::string Sentence(std::string_view body) {
    return "$" + std::string(body) + "*" + ChecksumDigits(body);
}

// The same with the line end behind it, as receivers send it.
inline std::string Line(std::string_view body) {
    return Sentence(body) + "\r\n";
}

inline Ref<NmeaSentence> MakeSentence(std::string_view body) {
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(Sentence(body));
    return sentence;
}

}  // namespace kavrel
