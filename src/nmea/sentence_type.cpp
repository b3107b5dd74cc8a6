#include "nmea/sentence_type.h"

namespace kavrel {
namespace {

// Three letters in one number. Clearing bit 5 makes a small letter a capital, and turns nothing
// else into a letter of a command.
constexpr std::uint32_t Key(std::string_view command) {
    constexpr std::uint32_t kSmallLetterBit = 0x20;
    std::uint32_t key = 0;
    for (const char c : command) {
        key = key << 8 | (static_cast<std::uint8_t>(c) & ~kSmallLetterBit);
    }
    return key;
}

}  // namespace

SentenceType SentenceTypeOf(std::string_view command) {
    if (command.size() != 3) return SentenceType::Other;
    switch (Key(command)) {
        case Key("RMC"):
            return SentenceType::Rmc;
        case Key("GLL"):
            return SentenceType::Gll;
        case Key("GGA"):
            return SentenceType::Gga;
        case Key("GSV"):
            return SentenceType::Gsv;
        case Key("GSA"):
            return SentenceType::Gsa;
        case Key("VTG"):
            return SentenceType::Vtg;
        default:
            return SentenceType::Other;
    }
}

}  // namespace kavrel
