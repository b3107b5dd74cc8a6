// GpsFix: time, position and type of one fix. A snapshot: it never changes while anybody holds it.
#pragma once

#include <cstdint>
#include <optional>

#include "base/record.h"
#include "geodesy/datum.h"
#include "results/fix_builder.h"
#include "results/nmea_time.h"

namespace kavrel {

class GpsFix final : public Record {
  public:
    // `datum` is the one that the receiver works on.
    GpsFix(const FixValues& fix, DatumId datum) { Assign(fix, datum); }
    void Assign(const FixValues& fix, DatumId datum);

    // 0 none, 2 without altitude, 3 with altitude.
    std::int32_t FixType();

    // The date value of automation; nothing when the fix has no time that the calendar knows.
    std::optional<double> Utc();

    // A new Position each time, so that whoever changes it never changes the fix. Null without one.
    Ref<Position> MakePosition();

    Ref<GpsFix> Copy() const { return MakeRef<GpsFix>(fix_, datum_); }

    const std::optional<NmeaTime>& time() const { return fix_.utc; }

  private:
    FixValues fix_;
    DatumId datum_ = kDatumWgs84;
};

}  // namespace kavrel
