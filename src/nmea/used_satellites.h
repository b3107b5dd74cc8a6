// UsedSatellites: the satellites that the receiver used for its fix, as GSA sentences list them.
//
// A receiver of several constellations sends a run of GSA sentences, one each, and the lists of a
// run add up. While a new run is coming in, the sentences of the old one that it has not replaced
// yet still count; otherwise every satellite of the second constellation would look unused for the
// length of a sentence.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "nmea/nmea_sentence.h"
#include "nmea/satellite_values.h"

namespace kavrel {

class UsedSatellites {
  public:
    // Adds a GSA sentence. `continuesRun`: the sentence right before it was a GSA, too.
    void Add(const NmeaSentence& gsa, bool continuesRun);

    // The run is over: what it has not replaced is gone. REQUIRES: called before the next run.
    void EndRun();

    // A list whose constellation is known marks that constellation's satellites only; other lists
    // mark every satellite of the number.
    bool Contains(const SatelliteValues& satellite) const;

    void Clear() { count_ = 0; }

  private:
    static constexpr std::size_t kMaxSentences = 8;
    static constexpr std::size_t kPrnsPerSentence = 12;

    // What one sentence listed.
    struct List {
        Constellation constellation;
        bool isOfOldRun;
        std::uint8_t size;
        std::array<std::int32_t, kPrnsPerSentence> prns;
    };

    std::span<const List> lists() const { return std::span(lists_).first(count_); }
    void Remove(std::size_t index);
    void MakeRoomFor(Constellation constellation);

    std::array<List, kMaxSentences> lists_;
    std::size_t count_ = 0;
};

}  // namespace kavrel
