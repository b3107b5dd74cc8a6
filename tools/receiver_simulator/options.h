// The simulator's command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

struct Options {
    int rateHz = 1;                         // 1..10
    std::int64_t epochs = 60;               // how many fixes
    std::uint64_t bytes = 0;                // 0: no limit; else as many epochs as it takes
    std::int64_t startSeconds = 12 * 3600;  // since 1 June 2026, 00:00:00
    std::uint32_t seed = 1;
    int constellations = 1;         // 1..4
    bool hasSignalIds = false;      // as since NMEA 4.1
    double lostFixShare = 0.0;      // of the epochs
    double badChecksumShare = 0.0;  // of the sentences
    double halfSentenceShare = 0.0;
    std::string output;  // empty: standard output
};

// Nothing when the arguments cannot be understood; `complaint` then says why.
std::optional<Options> ReadOptions(int count, char** arguments, std::string& complaint);

extern const std::string_view kUsage;

}  // namespace simulator
