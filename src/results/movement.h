// Movement: heading, speed and magnetic variation of one moment. A snapshot: it never changes
// while anybody holds it.
#pragma once

#include <cstdint>

#include "base/record.h"
#include "nmea/sentence_fields.h"

namespace kavrel {

class Movement final : public Record {
  public:
    explicit Movement(const MovementValues& values) : values_(values) {}
    void Assign(const MovementValues& values) {
        error().Clear();
        values_ = values;
    }

    double Heading();            // degrees
    double MagneticVariation();  // degrees, east positive

    // In a speed unit. Errors: 10003 "Invalid parameter!", with a speed of 0, for an unknown one.
    double Speed(std::int32_t unit);

    const MovementValues& values() const { return values_; }

  private:
    MovementValues values_;
};

}  // namespace kavrel
