// EventSink: where the parser's events go. The layer above fills it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/record.h"

namespace kavrel {

// The events, in the order in which their callbacks are kept.
enum class ParserEvent : std::uint8_t {
    Generic,
    Gga,
    Gll,
    Rmc,
    GpsFix,
    Movement,
    Satellites,
    Quality,
    ComStatus,
    Count
};

// Receives the context and the event's object: the NmeaSentence of Generic; the decoded sentence,
// which knows its NmeaSentence, of Gga, Gll and Rmc; the snapshot of the others.
// No lock of the library is held meanwhile.
using EventCallback = void (*)(void* context, ParserEvent event, Record& object);

// Where one event goes.
struct EventHandler {
    EventCallback callback = nullptr;
    void* context = nullptr;

    explicit operator bool() const { return callback != nullptr; }
};

// An event without a callback is not raised, and nothing is decoded for it alone.
struct EventSink {
    std::array<EventCallback, static_cast<std::size_t>(ParserEvent::Count)> callbacks{};
    void* context = nullptr;

    EventHandler HandlerOf(ParserEvent event) const {
        return {callbacks[static_cast<std::size_t>(event)], context};
    }
};

}  // namespace kavrel
