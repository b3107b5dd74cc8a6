// The decoders of the sentence types that carry positions and movement: which field means what.
//
// A decoder slices the sentence and reads a number only when it is asked for, since most of a
// sentence is asked for by nobody. Views are valid until the sentence is next changed. A decoder
// given a sentence of another type leaves what it has unchanged and returns false. Nothing here is
// ever an error: an absent field is an empty view, and reads as the default.
#pragma once

#include <cstdint>
#include <string_view>

#include "nmea/nmea_sentence.h"

namespace kavrel {

// The texts that make a position. All may be empty.
struct PositionFields {
    std::string_view latitude;  // ddmm.mmmm
    std::string_view latitudeHemisphere;
    std::string_view longitude;  // dddmm.mmmm
    std::string_view longitudeHemisphere;
    std::string_view altitude;         // metres above mean sea level
    std::string_view geoidSeparation;  // metres
};

// Course and speed. All zero when nothing is known.
struct MovementValues {
    double speedKnots = 0.0;
    double headingDegrees = 0.0;
    double magneticVariationDegrees = 0.0;  // east positive
    bool isValid = false;
};

struct GgaFields {
    std::string_view time;  // without data when the sentence has no such field
    std::string_view quality;
    PositionFields position;
    std::string_view satellites;
    std::string_view hdop;

    bool Decode(const NmeaSentence& sentence);

    // Any quality but "0". An empty one, which receivers without a fix send, is none.
    bool IsValid() const { return !quality.empty() && quality.front() != '0'; }
    std::int16_t SatellitesInView() const;
    double Hdop() const;
};

struct GllFields {
    std::string_view time;  // without data when the sentence has less than its 6 fields
    std::string_view status;
    PositionFields position;

    bool Decode(const NmeaSentence& sentence);

    bool IsValid() const { return status.starts_with('A'); }
};

struct RmcFields {
    std::string_view time;  // without data when the sentence has no such field
    std::string_view date;
    std::string_view status;
    PositionFields position;
    std::string_view speedKnots;
    std::string_view headingDegrees;
    std::string_view magneticVariation;
    std::string_view magneticVariationSense;

    bool Decode(const NmeaSentence& sentence);

    bool IsValid() const { return status.starts_with('A'); }
    MovementValues Movement() const;
};

// From RMC or VTG; from anything else all zero and invalid.
MovementValues DecodeMovement(const NmeaSentence& sentence);

// Dilutions of precision; 0 where the sentence has none.
struct QualityValues {
    double hdop = 0.0;
    double vdop = 0.0;
    double pdop = 0.0;
};

// From GSA; from anything else all zero.
QualityValues DecodeQuality(const NmeaSentence& sentence);

}  // namespace kavrel
