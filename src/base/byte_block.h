// ByteBlock: a run of bytes that is handed from one owner to the next.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "base/record.h"

namespace kavrel {

// Thread safety: complete before it is handed over, and only read after.
class ByteBlock final : public Record {
  public:
    explicit ByteBlock(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}

    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace kavrel
