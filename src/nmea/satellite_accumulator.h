// SatelliteAccumulator: gathers the satellites in view from GSV sentences and marks those that GSA
// sentences list as used.
//
// A group is a run of GSV sentences of one source numbered 1 to n with the same n; one out of order
// drops the group that was being gathered. A source is a talker and, since NMEA 4.1, the signal
// that it reports on. The picture is the last complete group of each source, together, in the
// order in which the sources were first heard: one satellite for each talker and number, with the
// strongest of its signals. It is ready when a group completes, and when a GSA changes a flag in
// it.
//
// A source drops out of the picture when every other source has completed two groups since its
// last; sources that fall silent together, after kMaxSilentGroups groups of any.
//
// Thread safety: none; it belongs to one receiver.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "nmea/nmea_sentence.h"
#include "nmea/satellite_values.h"
#include "nmea/used_satellites.h"

namespace kavrel {

class SatelliteAccumulator {
  public:
    static constexpr std::uint32_t kMaxSilentGroups = 40;
    static constexpr std::size_t kMaxSources = 16;
    static constexpr std::size_t kMaxSatellitesPerSource = 64;

    // Each returns true when a whole picture is ready. Sentences of other types change nothing.
    bool AddGsv(const NmeaSentence& gsv);
    bool AddGsa(const NmeaSentence& gsa, bool continuesRun);

    // The last picture; empty before the first group is complete.
    std::span<const SatelliteValues> picture() const { return picture_; }

    void Clear();

  private:
    using Satellites = std::vector<SatelliteValues>;

    struct Source {
        Talker talker;
        Constellation constellation = Constellation::Any;
        char signal = '\0';
        std::int32_t sentenceCount = 0;  // of the group being gathered; 0: none
        std::int32_t nextSentence = 1;
        Satellites gathered;
        Satellites complete;
        std::uint32_t completedAt = 0;  // in groups completed; 0: never
        std::uint32_t previouslyCompletedAt = 0;
    };

    Source& SourceFor(Talker talker, char signal);
    bool Gather(Source& source, const NmeaSentence& gsv);
    void Complete(Source& source);
    bool IsSilent(const Source& source) const;
    void BuildPicture();
    bool MarkUsed();

    std::vector<Source> sources_;
    UsedSatellites used_;
    Satellites picture_;
    bool isPictureOutdated_ = false;  // the sources hold other satellites
    std::uint32_t groupsCompleted_ = 0;
};

}  // namespace kavrel
