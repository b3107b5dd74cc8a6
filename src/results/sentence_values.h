// SentenceValues: what one sentence says, all of it read once and shared by everything that is made
// of the sentence. It refers to nothing: the sentence may change.
#pragma once

#include <cstdint>
#include <optional>

#include "geodesy/position.h"
#include "nmea/nmea_sentence.h"
#include "nmea/sentence_fields.h"
#include "results/nmea_time.h"

namespace kavrel {

// What a sentence does not carry, and everything of a type that is not decoded, is at its default.
struct SentenceValues {
    SentenceType type = SentenceType::Other;
    bool isValid = false;
    std::optional<NmeaTime> utc;        // with a date from RMC; nothing without such a field
    ReceiverPositionValues position;    // GGA, GLL, RMC
    MovementValues movement;            // RMC, VTG
    std::int16_t satellitesInView = 0;  // GGA
    double hdop = 0.0;                  // GGA
};

SentenceValues DecodeValues(const NmeaSentence& sentence);

}  // namespace kavrel
