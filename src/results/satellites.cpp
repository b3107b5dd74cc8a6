#include "results/satellites.h"

#include <algorithm>
#include <memory>

namespace kavrel {

Satellite::Satellite(const SatelliteValues& values) : values_(values) {
    OverwriteSerialNumber(static_cast<std::uint32_t>(values.prn));
}

std::int16_t Satellite::Id() {
    error().Clear();
    return static_cast<std::int16_t>(serialNumber());
}

void Satellites::Assign(std::span<const SatelliteValues> picture) {
    error().Clear();
    delete items_.exchange(nullptr, std::memory_order_acq_rel);
    picture_.assign(picture.begin(), picture.end());
}

std::int16_t Satellites::Count() {
    error().Clear();
    return static_cast<std::int16_t>(picture_.size());
}

Ref<Satellite> Satellites::Item(std::int32_t index) {
    error().Clear();
    if (index < 1 || static_cast<std::size_t>(index) > picture_.size()) {
        error().Set(kErrorIndexOutOfBounds, Message::IndexOutOfBounds);
        return nullptr;
    }
    return MakeItems()[static_cast<std::size_t>(index - 1)];
}

Ref<Satellite> Satellites::Find(std::int32_t prn) {
    error().Clear();
    const auto found =
        std::find_if(picture_.begin(), picture_.end(),
                     [prn](const SatelliteValues& satellite) { return satellite.prn == prn; });
    if (found == picture_.end()) return nullptr;
    return MakeItems()[static_cast<std::size_t>(found - picture_.begin())];
}

const Satellites::Items& Satellites::MakeItems() {
    Items* known = items_.load(std::memory_order_acquire);
    if (known != nullptr) return *known;

    auto items = std::make_unique<Items>();
    items->reserve(picture_.size());
    for (const SatelliteValues& satellite : picture_) {
        items->push_back(MakeRef<Satellite>(satellite));
    }
    // Whoever comes second uses what the first one made.
    if (items_.compare_exchange_strong(known, items.get(), std::memory_order_acq_rel)) {
        return *items.release();
    }
    return *known;
}

}  // namespace kavrel
