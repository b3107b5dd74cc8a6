// Manual-reset events, and waiting on several.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/record.h"

namespace kavrel {

inline constexpr std::uint32_t kWaitForever = 0xFFFFFFFF;

// The most events that one wait can take.
inline constexpr std::size_t kMaxWaitEvents = 64;

// Tells whoever waits for events of several owners whose and which one it is.
struct EventTag {
    std::uint32_t ownerId = 0;  // the owner's serial number
    std::uint32_t index = 0;    // given by the owner

    bool operator==(const EventTag&) const = default;
};

// An event is unsignalled when made and stays signalled until reset.
// Thread safety: every member may be called from any thread.
class Event final : public Record {
  public:
    explicit Event(EventTag tag = {});
    ~Event() override;

    EventTag tag() const { return tag_; }

    // False when the platform had no event left; such a one must not be waited for.
    bool IsUsable() const { return handle_ != nullptr; }

    void Signal();
    void Reset();

    // True when the event is, or within the time becomes, signalled. A time of 0 only looks.
    bool Wait(std::uint32_t timeoutMs);

  private:
    friend std::optional<std::size_t> WaitAny(std::span<Event* const> events,
                                              std::uint32_t timeoutMs);

    void* handle_;
    EventTag tag_;
};

// Waits until one of the events is signalled and returns the index of the first that is, or nothing
// when the time is over. REQUIRES: 1 to kMaxWaitEvents events. Resets nothing.
std::optional<std::size_t> WaitAny(std::span<Event* const> events, std::uint32_t timeoutMs);

}  // namespace kavrel
