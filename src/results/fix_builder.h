// FixBuilder: makes fixes of single sentences, completing each with what earlier ones said.
//
// A GGA has the altitude but no date, an RMC the date but no altitude; the builder keeps the last
// of each. Sentences that are not valid are not kept.
#pragma once

#include <cstdint>
#include <optional>

#include "geodesy/position.h"
#include "results/nmea_time.h"
#include "results/sentence_values.h"

namespace kavrel {

// Numbers that clients use.
inline constexpr std::int32_t kFixNone = 0;
inline constexpr std::int32_t kFixWithoutAltitude = 2;
inline constexpr std::int32_t kFixWithAltitude = 3;

// A fix before it is a record.
struct FixValues {
    std::int32_t type = kFixNone;
    std::optional<NmeaTime> utc;
    ReceiverPositionValues position;
};

class FixBuilder {
  public:
    // From RMC, GLL or GGA. A sentence of another type, or one that is not valid, gives an empty
    // fix. A GGA's fix is always with altitude, even when its own altitude is empty; the others'
    // only once a GGA has been kept.
    FixValues Build(const SentenceValues& values) const;

    // Keeps what later fixes need of a fix just built.
    void Keep(SentenceType type, const FixValues& fix);

    void Clear();

  private:
    void AddKeptAltitude(FixValues& fix) const;
    void AddKeptDate(FixValues& fix) const;

    bool hasGga_ = false;
    double ggaAltitudeMetres_ = 0.0;
    double ggaEllipsoidalHeightMetres_ = 0.0;
    std::optional<NmeaTime> rmcTime_;
};

}  // namespace kavrel
