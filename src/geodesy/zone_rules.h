// The zones of the grids that have them: which exist, which one a point is in, what a zone changes
// in the projection, and how it is written.
//
// Six-degree zones count from longitude 180 west, without national exceptions; zone z has its
// central meridian at 6 z - 183 degrees. Grid 29's strips are centred on 3 z degrees and carry the
// zone in front of the easting: 500000 + 1000000 z.
#pragma once

#include <cstdint>
#include <string>

#include "geodesy/geo_coordinate.h"

namespace kavrel {

inline constexpr std::int32_t kZoneOutside = -1;
inline constexpr std::int32_t kZoneMissing = -2;

// True when the grid has such a zone. False for every zone of a grid without zones.
bool IsZoneOf(GridId grid, std::int32_t zone);

// True for the grids whose zone is never guessed.
bool NeedsZonePut(GridId grid);

// The zone to project a point into, whose longitude on the grid's datum is given: the fixed one
// where the grid has it, else by longitude; grids without a rule keep the zone that is stored.
std::int32_t ZoneOfPosition(const GeoCoordinate& coordinate, double longitudeRads);

// The zone that grid coordinates are in. On grid 29 `plane` gets its full easting: an easting below
// 1000000 has come without the zone in front.
std::int32_t ZoneOfPlane(const GeoCoordinate& coordinate, PlanePoint& plane);

// Moves the origin of a grid's record to that of a zone.
void AdjustToZone(GridId grid, std::int32_t zone, ProjectionParameters& parameters);

// What `Zone` reads: at most six characters.
std::string ZoneTextOf(GridId grid, std::int32_t zone, double latitudeRads);

}  // namespace kavrel
