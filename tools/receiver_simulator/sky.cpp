#include "sky.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace simulator {
namespace {

struct Design {
    std::string_view talker;
    int systemId;
    int firstPrn;
    int prns;
    int inView;
};

constexpr std::array kDesigns = {
    Design{"GP", 1, 1, 32, 11},
    Design{"GL", 2, 65, 24, 7},
    Design{"GA", 3, 1, 36, 6},
    Design{"GB", 4, 1, 37, 9},
};

constexpr double kRevolutionSeconds = 43000.0;
constexpr double kPi = 3.14159265358979323846;

SimulatedSatellite SatelliteAt(double seconds, int prn, double phase, double highestDegrees) {
    const double angle = 2 * kPi * seconds / kRevolutionSeconds + phase;
    const int elevation = static_cast<int>(highestDegrees * std::fabs(std::sin(angle)));
    const int azimuth = static_cast<int>(std::fmod(angle * 180 / kPi, 360.0));
    const int snr = elevation < 5 ? 0 : 25 + elevation / 4;
    return {prn, elevation, azimuth, snr};
}

}  // namespace

std::vector<SimulatedConstellation> SkyAt(double seconds, int constellations, std::uint32_t seed) {
    std::mt19937 random(seed);  // the same sky for every moment
    const auto next = [&random](double limit) {
        return limit * (static_cast<double>(random()) / 4294967296.0);
    };
    std::vector<SimulatedConstellation> sky;
    for (const Design& design : kDesigns) {
        if (static_cast<int>(sky.size()) == constellations) break;
        SimulatedConstellation& constellation =
            sky.emplace_back(SimulatedConstellation{design.talker, design.systemId, {}});
        std::vector<int> numbers(static_cast<std::size_t>(design.prns));
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            numbers[i] = design.firstPrn + static_cast<int>(i);
        }
        for (int i = 0; i < design.inView; ++i) {
            const auto at = static_cast<std::size_t>(next(static_cast<double>(numbers.size())));
            constellation.satellites.push_back(
                SatelliteAt(seconds, numbers[at], next(2 * kPi), 20 + next(69)));
            numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }
    return sky;
}

}  // namespace simulator
