// Satellites as GSV and GSA sentences speak of them.
#pragma once

#include <cstdint>
#include <string_view>

#include "nmea/talker.h"

namespace kavrel {

enum class Constellation : std::uint8_t { Any, Gps, Glonass, Galileo, BeiDou, Qzss, NavIc };

// Any for talkers that speak for several constellations ("GN"), or for something else.
Constellation ConstellationOf(Talker talker);

// From the system id of an NMEA 4.1 GSA sentence, one hexadecimal digit. Any when it is empty or
// unknown.
Constellation ConstellationOfSystemId(std::string_view systemId);

struct SatelliteValues {
    std::int32_t prn = 0;
    std::int16_t elevationDegrees = 0;
    std::int16_t azimuthDegrees = 0;  // from true north
    std::int16_t snrDb = 0;
    bool isUsedForFix = false;
    Talker talker;  // tells satellites of one number apart
    Constellation constellation = Constellation::Any;

    bool operator==(const SatelliteValues&) const = default;
};

}  // namespace kavrel
