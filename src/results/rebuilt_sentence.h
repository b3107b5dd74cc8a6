// Decoded objects made into sentences again, from their own values. See nmea/sentence_generation.h
// for the formats. An object without a time gets the current one.
#pragma once

#include "nmea/nmea_sentence.h"
#include "results/decoded_sentence.h"
#include "results/movement.h"

namespace kavrel {

Ref<NmeaSentence> RebuildSentence(NmeaRmc& rmc);
Ref<NmeaSentence> RebuildSentence(NmeaGll& gll);
Ref<NmeaSentence> RebuildSentence(NmeaGga& gga);

// A VTG.
Ref<NmeaSentence> RebuildSentence(const Movement& movement);

}  // namespace kavrel
