// ComStatus: the state of the serial port at one moment. A snapshot: it never changes.
#pragma once

#include <cstdint>

#include "base/record.h"

namespace kavrel {

struct ComStatusValues {
    std::uint32_t baudRate = 0;
    std::int16_t comPort = 0;   // 1: the first serial port
    bool isFromSource = false;  // set by the serial data source; shown to nobody
    bool hasValidFix = false;
    bool hasValidNmea = false;

    bool operator==(const ComStatusValues&) const = default;
};

class ComStatus final : public Record {
  public:
    explicit ComStatus(const ComStatusValues& values) : values_(values) {}

    bool ValidNmea() const { return values_.hasValidNmea; }
    bool ValidFix() const { return values_.hasValidFix; }
    std::int16_t ComPort() const { return values_.comPort; }
    std::int32_t BaudRate() const { return static_cast<std::int32_t>(values_.baudRate); }

  private:
    ComStatusValues values_;
};

}  // namespace kavrel
