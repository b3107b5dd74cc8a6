#include "parser/event_clock.h"

namespace kavrel {

bool EventClock::TakeTurn(IntervalSlot slot, std::int32_t intervalMs) {
    if (intervalMs == EventIntervals::kOff) return false;

    std::optional<NmeaTime>& raised = raised_[static_cast<std::size_t>(slot)];
    if (intervalMs != 0 && now_.has_value() && raised.has_value()) {
        const std::int32_t elapsedSeconds = DifferenceSeconds(raised, now_);
        if (elapsedSeconds >= 0 && elapsedSeconds < intervalMs / 1000) return false;
    }
    raised = now_;
    return true;
}

}  // namespace kavrel
