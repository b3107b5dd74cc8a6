// The sentence types that the library decodes.
#pragma once

#include <cstdint>
#include <string_view>

namespace kavrel {

// The numbers are the sentence type codes of the dispatch.
enum class SentenceType : std::uint8_t {
    Other = 0,
    Rmc = 1,
    Gll = 2,
    Gga = 3,
    Gsv = 4,
    Gsa = 5,
    Vtg = 6,
};

// From the three-character sentence formatter, in either case. The talker does not matter.
SentenceType SentenceTypeOf(std::string_view command);

}  // namespace kavrel
