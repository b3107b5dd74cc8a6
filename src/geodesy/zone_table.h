// The zones of the US state plane grids.
#pragma once

#include <cstdint>
#include <span>

#include "geodesy/grid_table.h"

namespace kavrel {

// One zone. Angles are whole minutes of arc, as the zones were laid down.
struct ZoneRow {
    std::int16_t zone;
    std::uint8_t datum;
    Algorithm algorithm;  // TransverseMercator or LambertConic
    std::int16_t originLongitudeMinutes;
    std::int16_t originLatitudeMinutes;
    std::int16_t parallel1Minutes;  // 0 in transverse Mercator zones
    std::int16_t parallel2Minutes;
    std::int32_t scaleReduction;  // N of the scale factor 1 - 1/N; 0 means a factor of 1
    double falseEastingMetres;
    double falseNorthingMetres;
};

// Ordered by zone.
extern const std::span<const ZoneRow> kStatePlane27;
extern const std::span<const ZoneRow> kStatePlane83;

// The row of a zone in grid 30 or 31; null when the grid has no such zone.
const ZoneRow* FindZone(GridId grid, std::int32_t zone);

// The row in the form that the projections take.
GridRow GridRowOf(const ZoneRow& zone);

// For the tables.

// Degrees and minutes of arc; the sign is the degrees'.
consteval std::int16_t Dm(int degrees, int minutes) {
    return static_cast<std::int16_t>(degrees < 0 ? degrees * 60 - minutes : degrees * 60 + minutes);
}

// How many rows have an algorithm; -1 when the zones do not ascend.
consteval int CountZones(std::span<const ZoneRow> rows, Algorithm algorithm) {
    int count = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i > 0 && rows[i - 1].zone >= rows[i].zone) return -1;
        if (rows[i].algorithm == algorithm) ++count;
    }
    return count;
}

}  // namespace kavrel
