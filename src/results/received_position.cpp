#include "results/received_position.h"

#include <algorithm>
#include <string_view>

namespace kavrel {
namespace {

// A text's end is kept in 16 bits; no sentence of a receiver is that long, but clients make their
// own, and what makes a position stands at the beginning of a number.
constexpr std::size_t kMaxTextLength = 1024;

}  // namespace

void ReceivedPosition::Set(const PositionFields& fields, DatumId datum) {
    datum_ = datum;
    isPresent_ = true;
    std::array<std::string_view, kTexts> texts = {
        fields.latitude,           fields.longitude,
        fields.latitudeHemisphere, fields.longitudeHemisphere,
        fields.altitude,           fields.geoidSeparation};
    std::size_t length = 0;
    for (std::size_t i = 0; i < kTexts; ++i) {
        texts[i] = texts[i].substr(0, kMaxTextLength);
        length += texts[i].size();
        ends_[i] = static_cast<std::uint16_t>(length);
    }
    char* at = texts_.Resize(length);
    for (const std::string_view text : texts)
        at = std::copy(text.begin(), text.end(), at);
}

Ref<Position> ReceivedPosition::MakePosition() const {
    if (!isPresent_) return nullptr;
    std::array<std::string_view, kTexts> texts;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < kTexts; ++i) {
        texts[i] = texts_.view().substr(begin, ends_[i] - begin);
        begin = ends_[i];
    }
    return MakeRef<Position>(ReceiverPosition{.latitude = texts[0],
                                              .longitude = texts[1],
                                              .latitudeHemisphere = texts[2],
                                              .longitudeHemisphere = texts[3],
                                              .altitude = texts[4],
                                              .geoidalSeparation = texts[5]},
                             datum_);
}

}  // namespace kavrel
