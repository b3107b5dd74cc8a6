// GpsFix: time, position and type of one fix. A snapshot: it never changes.
#pragma once

#include <cstdint>
#include <optional>

#include "base/record.h"
#include "geodesy/datum.h"
#include "results/fix_builder.h"
#include "results/nmea_time.h"
#include "results/received_position.h"

namespace kavrel {

class GpsFix final : public Record {
  public:
    // `datum` is the one that the receiver works on.
    GpsFix(const FixValues& fix, DatumId datum);

    // 0 none, 2 without altitude, 3 with altitude.
    std::int32_t FixType();

    // The date value of automation; nothing when the fix has no time that the calendar knows.
    std::optional<double> Utc();

    // A new Position each time, so that whoever changes it never changes the fix. Null without one.
    Ref<Position> MakePosition();

    const std::optional<NmeaTime>& time() const { return utc_; }

  private:
    std::int32_t type_;
    std::optional<NmeaTime> utc_;
    ReceivedPosition position_;
};

}  // namespace kavrel
