// EventClock: when each of the four derived events is due. It runs on the receiver's time, not on
// the computer's: the UTC of the last fix.
//
// Thread safety: none; it belongs to the thread that dispatches.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "parser/event_intervals.h"
#include "results/nmea_time.h"

namespace kavrel {

class EventClock {
  public:
    // The UTC of a fix; nothing when it has none, and then no event is held back.
    void SetNow(const std::optional<NmeaTime>& utc) { now_ = utc; }

    // Whether the event is due now; if so it counts as raised. Never with EventIntervals::kOff.
    // Whole seconds of receiver time are compared with whole seconds of the interval. A time that
    // went backwards, as it does at midnight without a date, makes the event due.
    bool TakeTurn(IntervalSlot slot, std::int32_t intervalMs);

  private:
    std::optional<NmeaTime> now_;
    std::array<std::optional<NmeaTime>, static_cast<std::size_t>(IntervalSlot::Count)> raised_;
};

}  // namespace kavrel
