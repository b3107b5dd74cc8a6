// GeoCoordinate: the two sides of a point, geographic and grid, and the operations between them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/messages.h"
#include "geodesy/custom_grid.h"
#include "geodesy/datum.h"
#include "geodesy/grid_table.h"
#include "geodesy/points.h"
#include "geodesy/projection.h"

namespace kavrel {

// Why an operation could not be done; nothing when it was. The code is always "invalid argument".
using Failure = std::optional<Message>;

// The projection last used, with the choice that it was prepared for. A cache: copies start empty.
struct PreparedGrid {
    PreparedGrid() = default;
    PreparedGrid(const PreparedGrid&) {}
    PreparedGrid& operator=(const PreparedGrid&) { return *this; }

    GridId grid = kGridNone;
    std::int16_t zone = 0;
    ProjectionParameters custom;  // what a custom grid held then
    std::unique_ptr<Projection> projection;
};

// Not guarded: it belongs to the Position that owns it.
struct GeoCoordinate {
    double longitudeRads = 0.0;  // kept in [-pi, pi]
    double latitudeRads = 0.0;
    double ellipsoidalHeightMetres = 0.0;
    double eastingMetres = 0.0;
    double northingMetres = 0.0;
    DatumReference datum;
    GridId grid = kGridNone;
    std::int16_t zone = 0;         // number or code; 0 none
    std::int16_t fixedZone = 0;    // forced by the user; 0: chosen by longitude
    std::int16_t cachedZone = -1;  // the zone that zoneText was built for
    std::string zoneText;
    Ref<kavrel::CustomGrid> customGrid;  // when grid is kGridCustom
    PreparedGrid prepared;
};

// Moves latitude, longitude and height to `target`, which becomes the datum. Nothing to do when the
// numbers are equal and built in. Fails, changing nothing, when either datum is none.
Failure ShiftToDatum(GeoCoordinate& coordinate, const DatumReference& target);

// Easting, northing and zone from latitude and longitude. Changes nothing on failure.
Failure ProjectForward(GeoCoordinate& coordinate);

// Latitude and longitude, on the coordinate's own datum, from easting, northing and zone. The
// height is taken as the height on the grid's datum and stays as it is. Changes nothing on failure.
Failure ProjectInverse(GeoCoordinate& coordinate);

}  // namespace kavrel
