// The grids by number: parameters, and the rules of their zones.
#pragma once

#include <cstdint>

#include "geodesy/datum.h"

namespace kavrel {

// 0 no grid, 1..51 built in, 52 custom.
using GridId = std::int16_t;
inline constexpr GridId kGridNone = 0;
inline constexpr GridId kGridGaussKrueger = 29;
inline constexpr GridId kGridStatePlane27 = 30;
inline constexpr GridId kGridStatePlane83 = 31;
inline constexpr GridId kGridSystem34 = 48;
inline constexpr GridId kGridCustom = 52;

// Projection algorithms by their codes.
enum class Algorithm : std::int8_t {
    None = 0,
    SwissOblique = 2,
    TransverseMercator = 3,
    NewZealandMapGrid = 4,
    LambertConic = 5,
    BelgianLambert = 6,
    ObliqueStereographic = 8,
    DanishSystem34 = 9,
    DanishSystem45 = 10,
};

// What a projection is made of, as tables and custom grids give it. Angles in degrees.
struct GridRow {
    std::uint8_t datum;
    Algorithm algorithm;
    double falseEastingMetres = 0.0;
    double falseNorthingMetres = 0.0;
    double originLongitudeDegrees = 0.0;
    double originLatitudeDegrees = 0.0;
    double scaleFactor = 0.0;
    double parallel1Degrees = 0.0;
    double parallel2Degrees = 0.0;
};

// REQUIRES: 0 <= grid <= kGridCustom.
const GridRow& GridRowOf(GridId grid);

// How a grid is divided.
enum class ZoneRule : std::uint8_t {
    None,        // one plane
    SixDegrees,  // 1..60 by longitude
    Strips,      // 1..10, three degrees each
    Table,       // codes of a zone table, never guessed
    System34,    // 1..2, never guessed
};

ZoneRule ZoneRuleOf(GridId grid);

}  // namespace kavrel
