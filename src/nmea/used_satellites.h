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
    // Both return whether Contains may now answer otherwise.

    // Adds a GSA sentence. `continuesRun`: the sentence right before it was a GSA, too.
    bool Add(const NmeaSentence& gsa, bool continuesRun);

    // The run is over: what it has not replaced is gone. REQUIRES: called before the next run.
    bool EndRun();

    // A list whose constellation is known marks that constellation's satellites, and those whose
    // number no other constellation has; other lists mark every satellite of the number.
    bool Contains(const SatelliteValues& satellite) const;

    void Clear() { count_ = 0; }

  private:
    static constexpr std::size_t kMaxSentences = 8;
    static constexpr std::size_t kPrnsPerSentence = 12;

    // Satellite numbers. Nearly all are below 256, and are looked up far more often than listed.
    class Numbers {
      public:
        void Add(std::int32_t prn);
        bool Contains(std::int32_t prn) const;
        bool operator==(const Numbers& other) const = default;

      private:
        static constexpr std::int32_t kSmallLimit = 256;
        std::array<std::uint64_t, kSmallLimit / 64> small_{};  // a bit each
        std::array<std::int32_t, kPrnsPerSentence> large_{};   // 0 behind the last
    };

    // What one sentence listed.
    struct List {
        Constellation constellation;
        bool isOfOldRun;
        Numbers numbers;
    };

    std::span<const List> lists() const { return std::span(lists_).first(count_); }
    void Remove(std::size_t index);
    bool MakeRoomFor(const List& list);

    std::array<List, kMaxSentences> lists_;
    std::size_t count_ = 0;
};

}  // namespace kavrel
