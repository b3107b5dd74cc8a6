// Satellites: the satellites in view at one moment. Satellite: one of them. Snapshots: they never
// change while anybody holds them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/record.h"
#include "nmea/satellite_values.h"

namespace kavrel {

class Satellite final : public Record {
  public:
    explicit Satellite(const SatelliteValues& values);

    // The PRN, cut to 16 bits. It is kept in the slot of the record's serial number.
    std::int16_t Id();
    std::int16_t Elevation() { return Get(values_.elevationDegrees); }
    std::int16_t Azimuth() { return Get(values_.azimuthDegrees); }  // degrees from true north
    std::int16_t Snr() { return Get(values_.snrDb); }               // decibels
    bool UsedForFix() { return Get(values_.isUsedForFix); }

  private:
    template <typename T>
    T Get(T value) {
        error().Clear();
        return value;
    }

    SatelliteValues values_;
};

// The records of single satellites are made when the first of them is asked for, since most
// pictures are only counted, and are the same ones from then on.
// Thread safety: Item and Find may be called from any thread.
class Satellites final : public Record {
  public:
    explicit Satellites(std::span<const SatelliteValues> picture)
        : picture_(picture.begin(), picture.end()) {}
    void Assign(std::span<const SatelliteValues> picture);

    std::int16_t Count();

    // From 1, in the order in which they were first seen.
    // Errors: 10004 "Index out of bounds", with a null result.
    Ref<Satellite> Item(std::int32_t index);

    // The first satellite with that number; null when there is none, which is no error.
    Ref<Satellite> Find(std::int32_t prn);

  private:
    using Items = std::vector<Ref<Satellite>>;

    ~Satellites() override { delete items_.load(std::memory_order_acquire); }

    const Items& MakeItems();

    std::vector<SatelliteValues> picture_;
    std::atomic<Items*> items_{nullptr};
};

}  // namespace kavrel
