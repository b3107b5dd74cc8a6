// ReceivedPosition: the texts that a receiver gave for a position, kept until somebody asks for the
// Position that they make. Most positions of a stream are never asked for.
//
// Not changed once it is set, so any thread may read it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/small_text.h"
#include "geodesy/position.h"
#include "nmea/sentence_fields.h"

namespace kavrel {

class ReceivedPosition {
  public:
    // Copies the texts. `datum` is the one that the receiver works on.
    // REQUIRES: called once at most, before anybody else reads.
    void Set(const PositionFields& fields, DatumId datum);

    // A new Position; null when none was set.
    Ref<Position> MakePosition() const;

  private:
    static constexpr std::size_t kTexts = 6;
    static constexpr std::size_t kUsualLength = 48;

    DatumId datum_ = kDatumWgs84;
    bool isPresent_ = false;
    std::array<std::uint16_t, kTexts> ends_{};  // of each text within texts_
    SmallText<kUsualLength> texts_;
};

}  // namespace kavrel
