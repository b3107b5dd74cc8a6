// Sentences from values: RMC, GLL, GGA and VTG of the talker "GP".
//
// What is written is read back by the decoders to within the decimals written:
//
//   latitude, longitude  ddmm.mmmmm, dddmm.mmmmm and N, S, E or W
//   speed                0.00 knots; in VTG also kilometres per hour
//   course               0.00 degrees
//   magnetic variation   0.00 degrees and E or W; VTG writes the magnetic course instead, 360 for
//                        0, because a course of 0 means there that none is known
//   altitude, separation 0.00 metres
//   HDOP                 0.00
//
// A value that is not given leaves its fields empty.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "nmea/sentence_fields.h"

namespace kavrel {

struct GeneratedPosition {
    double latitudeDegrees = 0.0;   // north positive
    double longitudeDegrees = 0.0;  // east positive
    double altitudeMetres = 0.0;    // above mean sea level
    double geoidSeparationMetres = 0.0;
};

// What all of the sentences with a position have. The texts stand in the sentence as they are.
struct GeneratedFix {
    std::string_view time;  // hhmmss, with or without decimals
    std::string_view date;  // ddmmyy; in RMC only
    bool isValid = false;
    std::optional<GeneratedPosition> position;
};

struct GeneratedQuality {
    std::int16_t satellites = 0;
    double hdop = 0.0;
};

std::string GenerateRmc(const GeneratedFix& fix, const MovementValues& movement);
std::string GenerateGll(const GeneratedFix& fix);
std::string GenerateGga(const GeneratedFix& fix, const GeneratedQuality& quality);
std::string GenerateVtg(const MovementValues& movement);

}  // namespace kavrel
