// What several of the geodesy's tests need.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "geodesy/angle.h"
#include "geodesy/custom_datum.h"
#include "geodesy/custom_grid.h"
#include "geodesy/position.h"
#include "table.h"

namespace kavrel::test {

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kEarthRadiusMetres = 6.4e6;

inline std::string ErrorOf(Position& position) {
    return std::string(position.error().text());
}

// A position that has been used, so that changes of datum shift it.
inline Ref<Position> PositionAt(double latitudeDegrees, double longitudeDegrees,
                                DatumId datum = 1) {
    return MakeRef<Position>(
        GeoPoint{RadsFromDegrees(latitudeDegrees), RadsFromDegrees(longitudeDegrees)}, 0.0, 0.0,
        datum);
}

// The values of datum 3, so that a custom datum can be compared with it.
inline Ref<CustomDatum> Osgb36() {
    auto datum = MakeRef<CustomDatum>();
    datum->PutSemiMajorAxis(6377563.396);
    datum->PutE2(0.00667054);
    datum->PutDeltaX(375.0);
    datum->PutDeltaY(-111.0);
    datum->PutDeltaZ(431.0);
    return datum;
}

// The values of grid 3.
inline Ref<CustomGrid> BritishGrid() {
    auto grid = MakeRef<CustomGrid>();
    grid->PutDatum(3);
    grid->PutAlgorithm(3);
    grid->PutFalseEasting(400000);
    grid->PutFalseNorthing(-100000);
    grid->PutLongitudeOfOrigin(RadsFromDegrees(-2));
    grid->PutLatitudeOfOrigin(RadsFromDegrees(49));
    grid->PutScaleFactor(0.9996012717);
    return grid;
}

}  // namespace kavrel::test
