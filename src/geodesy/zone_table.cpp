#include "geodesy/zone_table.h"

#include <algorithm>

namespace kavrel {

const ZoneRow* FindZone(GridId grid, std::int32_t zone) {
    const std::span<const ZoneRow> rows = grid == kGridStatePlane27 ? kStatePlane27 : kStatePlane83;
    const auto found =
        std::lower_bound(rows.begin(), rows.end(), zone,
                         [](const ZoneRow& r, int wanted) { return r.zone < wanted; });
    return found != rows.end() && found->zone == zone ? &*found : nullptr;
}

GridRow GridRowOf(const ZoneRow& zone) {
    const double reduction = zone.scaleReduction;
    return {.datum = zone.datum,
            .algorithm = zone.algorithm,
            .falseEastingMetres = zone.falseEastingMetres,
            .falseNorthingMetres = zone.falseNorthingMetres,
            .originLongitudeDegrees = zone.originLongitudeMinutes / 60.0,
            .originLatitudeDegrees = zone.originLatitudeMinutes / 60.0,
            .scaleFactor = reduction == 0.0 ? 1.0 : (reduction - 1.0) / reduction,
            .parallel1Degrees = zone.parallel1Minutes / 60.0,
            .parallel2Degrees = zone.parallel2Minutes / 60.0};
}

}  // namespace kavrel
