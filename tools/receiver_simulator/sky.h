// The satellites that the simulated receiver sees: a few constellations that turn slowly.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace simulator {

struct SimulatedSatellite {
    int prn;
    int elevationDegrees;
    int azimuthDegrees;
    int snrDb;  // 0: not tracked
};

struct SimulatedConstellation {
    std::string_view talker;  // of its GSV sentences
    int systemId;             // of its GSA sentences, since NMEA 4.1
    std::vector<SimulatedSatellite> satellites;
};

// The first `constellations` (1..4) of GPS, GLONASS, Galileo and BeiDou, `seconds` after start.
std::vector<SimulatedConstellation> SkyAt(double seconds, int constellations, std::uint32_t seed);

}  // namespace simulator
