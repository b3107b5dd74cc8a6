// FixBuilder: makes fixes of single sentences, completing each with what earlier ones said.
//
// A GGA has the altitude but no date, an RMC the date but no altitude; the builder keeps the last
// of each. Sentences that are not valid are not kept.
#pragma once

#include <cstdint>
#include <optional>

#include "base/small_text.h"
#include "nmea/nmea_sentence.h"
#include "nmea/sentence_fields.h"
#include "results/nmea_time.h"

namespace kavrel {

// Numbers that clients use.
inline constexpr std::int32_t kFixNone = 0;
inline constexpr std::int32_t kFixWithoutAltitude = 2;
inline constexpr std::int32_t kFixWithAltitude = 3;

// A fix before it is a record. The views last until sentence or builder change.
struct FixValues {
    std::int32_t type = kFixNone;
    std::optional<NmeaTime> utc;
    PositionFields position;
};

class FixBuilder {
  public:
    // From RMC, GLL or GGA. A sentence of another type, or one that is not valid, gives an empty
    // fix. A GGA's fix is always with altitude, even when its own altitude is empty; the others'
    // only once a GGA has been kept.
    FixValues Build(const NmeaSentence& sentence) const;

    // Keeps what later fixes need of a fix just built. Views into the builder end.
    void Keep(SentenceType type, const FixValues& fix);

    void Clear();

  private:
    FixValues BuildFromRmc(const NmeaSentence& sentence) const;
    FixValues BuildFromGll(const NmeaSentence& sentence) const;
    FixValues BuildFromGga(const NmeaSentence& sentence) const;

    void AddKeptAltitude(FixValues& fix) const;
    std::optional<NmeaTime> OnKeptDate(std::string_view timeField) const;

    static constexpr std::size_t kUsualNumberLength = 16;

    bool hasGga_ = false;
    SmallText<kUsualNumberLength> ggaAltitude_;
    SmallText<kUsualNumberLength> ggaGeoidSeparation_;
    std::optional<NmeaTime> rmcTime_;
};

// The time of a sentence's field; nothing when the sentence does not have the field.
std::optional<NmeaTime> TimeOf(std::string_view timeField, std::string_view dateField = {});

}  // namespace kavrel
