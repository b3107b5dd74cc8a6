// Records for tests.
#pragma once

#include <string_view>

#include "nmea/nmea_sentence.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {

inline Ref<NmeaSentence> MakeSentence(std::string_view body) {
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(Sentence(body));
    return sentence;
}

}  // namespace kavrel
