// PortChoice: which source of sentences the client wants.
#pragma once

#include <cstdint>

namespace kavrel {

// Com ports that are no port numbers.
inline constexpr std::int32_t kSearchForPort = 0;
inline constexpr std::int32_t kSharedReceiverOnly = -1;

// A baud rate that is to be found out.
inline constexpr std::int32_t kDetectBaudRate = 0;

struct PortChoice {
    std::int32_t comPort = kSearchForPort;
    std::int32_t baudRate = 4800;

    // Port or rate is to be found out.
    bool IsDetecting() const { return comPort == kSearchForPort || baudRate == kDetectBaudRate; }

    // The source is the port with that number, at that rate.
    bool IsFixedPort() const { return !IsDetecting() && comPort != kSharedReceiverOnly; }
};

}  // namespace kavrel
