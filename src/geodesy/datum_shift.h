// The datum shift: latitude, longitude and ellipsoidal height from one datum to another, by way of
// geocentric coordinates and WGS 84.
//
// The three lines of the rotation use the coordinates that the lines before them have already
// changed. That is the definition, not the textbook's matrix: it differs by up to 25 mm, and a
// shift there and back does not return to the start (by up to 23 mm).
// Accuracy: within 1e-9 m of the definition. The longitude comes out in [-pi, pi].
#pragma once

#include "geodesy/datum_parameters.h"
#include "geodesy/points.h"

namespace kavrel {

// Values that make no sense (an axis of 0, e2 of 1 or more) yield what the arithmetic makes of
// them.
GeodeticPoint ShiftDatum(const GeodeticPoint& point, const DatumParameters& from,
                         const DatumParameters& to);

}  // namespace kavrel
