// LineSettings: how a serial line is to be driven, and how that is written into the platform's
// device control block and time-outs.
#pragma once

#include <cstdint>

#include "platform/comm_device.h"

namespace kavrel {

// Bits of LineSettings::handshake.
inline constexpr std::uint32_t kHandshakeRtsCts = 1;
inline constexpr std::uint32_t kHandshakeDtrDsr = 2;
inline constexpr std::uint32_t kHandshakeXonXoff = 4;

struct LineSettings {
    std::uint32_t baudRate = 9600;
    std::uint32_t parity = 0;     // 0 none, 1 odd, 2 even, 3 mark, 4 space; the low byte counts
    std::uint32_t stopBits = 0;   // 0 one, 1 one and a half, 2 two; the low byte counts
    std::uint32_t byteSize = 8;   // the low byte counts
    std::uint32_t handshake = 0;  // any of the kHandshake bits
    bool rts = true;              // wanted level, when the line is not a handshake line
    bool dtr = true;              // likewise
};

// How long a read may take.
enum class TimeoutMode : std::uint32_t {
    AsFound = 0,    // as the port was found; so does any number without a name
    FirstByte = 1,  // until something has come, at most 200 ms
    Fill = 2,       // until the buffer is full, at most 200 ms
};

// Writes the settings into a block that was read from the port. What they do not govern stays as
// read. Values are not checked: the platform refuses what it does not know.
void WriteControlBlock(const LineSettings& settings, CommState& state);

// Likewise for the time-outs. A write may take 1 ms per byte and `writeTimeoutMs` beyond.
void WriteTimeouts(TimeoutMode mode, std::uint32_t writeTimeoutMs, CommTimeouts& timeouts);

}  // namespace kavrel
