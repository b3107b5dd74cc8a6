// PortEvent: what a worker thread of a port has to tell, in one number.
#pragma once

#include <cstdint>

#include "base/record.h"

namespace kavrel {

// Of a completed write, the number of bytes written; of a change of the input lines, a code of
// LineChange.
// Thread safety: never changes.
class PortEvent final : public Record {
  public:
    explicit PortEvent(std::uint32_t value) : value_(value) {}

    std::uint32_t value() const { return value_; }

  private:
    std::uint32_t value_;
};

// Which input line changed, and to what.
enum class LineChange : std::uint32_t {
    None = 0,
    DsrOn = 1,
    DsrOff = 2,
    CtsOn = 3,
    CtsOff = 4,
    RingOn = 5,
    RingOff = 6,
    RlsdOn = 7,
    RlsdOff = 8,
};

}  // namespace kavrel
