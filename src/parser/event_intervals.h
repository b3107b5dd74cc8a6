// Event intervals: how often the four derived events are raised at the most.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace kavrel {

// The events that have an interval. The numbers behind them, which clients use, are the library's
// own event type codes and differ from the dispids of the first two events.
enum class IntervalSlot : std::uint8_t { GpsFix, Satellites, Movement, Quality, Count };

// The slot of event type 5 to 8; nothing for any other.
constexpr std::optional<IntervalSlot> IntervalSlotOf(std::int32_t eventType) {
    constexpr std::int32_t kFirstType = 5;
    constexpr std::int32_t kLastType =
        kFirstType + static_cast<std::int32_t>(IntervalSlot::Count) - 1;
    if (eventType < kFirstType || eventType > kLastType) return std::nullopt;
    return static_cast<IntervalSlot>(eventType - kFirstType);
}

// Milliseconds; 0, the default, raises every time, -1 never.
class EventIntervals {
  public:
    static constexpr std::int32_t kOff = -1;

    // Any negative interval is kept as kOff.
    void Set(IntervalSlot slot, std::int32_t intervalMs) {
        intervalsMs_[static_cast<std::size_t>(slot)] = intervalMs < 0 ? kOff : intervalMs;
    }

    std::int32_t Get(IntervalSlot slot) const {
        return intervalsMs_[static_cast<std::size_t>(slot)];
    }

  private:
    std::array<std::int32_t, static_cast<std::size_t>(IntervalSlot::Count)> intervalsMs_{};
};

}  // namespace kavrel
