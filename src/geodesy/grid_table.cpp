#include "geodesy/grid_table.h"

#include <array>
#include <cstddef>

namespace kavrel {
namespace {

constexpr Algorithm kNone = Algorithm::None;
constexpr Algorithm kTm = Algorithm::TransverseMercator;
constexpr Algorithm kConic = Algorithm::LambertConic;
constexpr Algorithm kSwiss = Algorithm::SwissOblique;
constexpr Algorithm kNzmg = Algorithm::NewZealandMapGrid;
constexpr Algorithm kBelgian = Algorithm::BelgianLambert;
constexpr Algorithm kStereo = Algorithm::ObliqueStereographic;
constexpr Algorithm kSystem34 = Algorithm::DanishSystem34;
constexpr Algorithm kSystem45 = Algorithm::DanishSystem45;

// Indexed by GridId: datum, algorithm, false easting and northing, longitude and latitude of the
// origin, scale factor, two parallels. Angles have nine decimals by definition. The grids with
// zones hold the values of zone 31 (six degrees) or of "zone 0" (grid 29); grids 30 and 31 have
// their values in the zone tables, grids 21, 48 and 49 in the code of their projections.
// clang-format off
constexpr std::array<GridRow, kGridCustom + 1> kGrids = {{
    {0, kNone},  // 0: none
    {1, kTm, 500000.0, 0, 3.0, 0, 0.9996},  // 1: UTM, northern hemisphere
    {1, kTm, 500000.0, 10000000.0, 3.0, 0, 0.9996},  // 2: UTM, southern hemisphere
    {3, kTm, 400000.0, -100000.0, -2.0, 49.0, 0.9996012717},  // 3: British National Grid
    {6, kTm, 200000.0, 250000.0, -8.0, 53.5, 1.000035},  // 4: Irish Grid
    {2, kTm, 600000.0, 750000.0, -8.0, 53.5, 0.99982},  // 5: Irish Transverse Mercator
    {5, kTm, 1500000.0, 0, 15.808277778, 0, 1.0},  // 6: RT 90 2.5 gon V
    {4, kSwiss, 600000.0, 200000.0, 7.439583333, 46.952405556, 1.0},  // 7: LV03
    {4, kSwiss, 2600000.0, 1200000.0, 7.439583333, 46.952405556, 1.0},  // 8: LV95
    {7, kTm, 1500000.0, 0, 21.0, 0, 1.0},  // 9: KKJ zone 1
    {7, kTm, 2500000.0, 0, 24.0, 0, 1.0},  // 10: KKJ zone 2
    {7, kTm, 3500000.0, 0, 27.0, 0, 1.0},  // 11: KKJ zone 3
    {7, kTm, 4500000.0, 0, 30.0, 0, 1.0},  // 12: KKJ zone 4
    {2, kTm, 500000.0, 0, 3.0, 0, 0.9996},  // 13: UTM on ETRS89
    {8, kTm, 80000.0, 100000.0, 6.166666667, 49.833333333, 1.0},  // 14: Luxembourg
    {10, kTm, 500000.0, 10000000.0, 3.0, 0, 0.9996},  // 15: AMG on AGD84
    {11, kTm, 500000.0, 10000000.0, 3.0, 0, 0.9996},  // 16: MGA94
    {12, kTm, 150000.0, -5000000.0, 10.333333333, 0, 1.0},  // 17: Austria M28
    {12, kTm, 450000.0, -5000000.0, 13.333333333, 0, 1.0},  // 18: Austria M31
    {12, kTm, 750000.0, -5000000.0, 16.333333333, 0, 1.0},  // 19: Austria M34
    {14, kTm, 1600000.0, 10000000.0, 173.0, 0, 0.9996},  // 20: NZTM2000
    {13, kNzmg},  // 21: New Zealand Map Grid
    {16, kBelgian, 150000.01, 5400088.44, 4.356939722, 90.0, 0.9998774, 49.833333333, 51.166666667},  // 22: Belgian Lambert 72
    {15, kConic, 600000.0, 200000.0, 2.337229167, 49.5, 1.0, 48.598522778, 50.395911667},  // 23: Lambert I
    {15, kConic, 600000.0, 200000.0, 2.337229167, 46.8, 1.0, 45.898918889, 47.696014444},  // 24: Lambert II
    {15, kConic, 600000.0, 200000.0, 2.337229167, 44.1, 1.0, 43.199291389, 44.996093889},  // 25: Lambert III
    {15, kConic, 234.358, 185861.369, 2.337229167, 42.165, 1.0, 41.560387778, 42.767663333},  // 26: Lambert IV
    {2, kConic, 700000.0, 6600000.0, 3.0, 46.5, 1.0, 44.0, 49.0},  // 27: Lambert-93
    {17, kTm, 500000.0, 0, 3.0, 0, 0.9996},  // 28: UTM on ED50
    {18, kTm, 500000.0, 0, 0, 0, 1.0},  // 29: German Gauss-Krueger
    {0, kNone},  // 30: State Plane 1927
    {19, kNone},  // 31: State Plane 1983
    {22, kTm, 500000.0, 0, 3.0, 0, 0.9996},  // 32: UTM on NAD 27
    {19, kTm, 500000.0, 0, 3.0, 0, 0.9996},  // 33: UTM on NAD 83
    {24, kStereo, 155000.0, 463000.0, 5.387638889, 52.156160556, 0.9999079},  // 34: RD New
    {25, kTm, 1500000.0, 0, 9.0, 0, 0.9996},  // 35: Gauss-Boaga zone 1
    {25, kTm, 2520000.0, 0, 15.0, 0, 0.9996},  // 36: Gauss-Boaga zone 2
    {26, kTm, 0, 0, 6.05625, 58.0, 1.0},  // 37: NGO 1948 axis I
    {26, kTm, 0, 0, 8.389583333, 58.0, 1.0},  // 38: NGO 1948 axis II
    {26, kTm, 0, 0, 10.722916667, 58.0, 1.0},  // 39: NGO 1948 axis III
    {26, kTm, 0, 0, 13.222916667, 58.0, 1.0},  // 40: NGO 1948 axis IV
    {26, kTm, 0, 0, 16.889583333, 58.0, 1.0},  // 41: NGO 1948 axis V
    {26, kTm, 0, 0, 20.889583333, 58.0, 1.0},  // 42: NGO 1948 axis VI
    {26, kTm, 0, 0, 24.889583333, 58.0, 1.0},  // 43: NGO 1948 axis VII
    {26, kTm, 0, 0, 29.05625, 58.0, 1.0},  // 44: NGO 1948 axis VIII
    {15, kConic, 600000.0, 2200000.0, 2.337229167, 46.8, 1.0, 45.898918889, 47.696014444},  // 45: Lambert II etendu
    {15, kConic, 600000.0, 600000.0, 2.337229167, 47.0, 1.0, 45.0, 49.0},  // 46: Lambert grand champ
    {27, kTm, 500000.0, 0, 3.0, 0, 0.9996},  // 47: UTM in Denmark
    {27, kSystem34},  // 48: System 34
    {27, kSystem45},  // 49: System 45
    {2, kTm, 118467.6688, -6366206.3789, 15.80316, 0, 1.00000496},  // 50: Swedish local grid
    {5, kTm, 1500000.0, 0, 13.558277778, 0, 1.0},  // 51: RT 90 5 gon V
    {0, kNone},  // 52: custom
}};
// clang-format on
static_assert(kGrids[kGridStatePlane83].datum == 19);
static_assert(kGrids[51].algorithm == kTm);  // no row is missing

}  // namespace

const GridRow& GridRowOf(GridId grid) {
    return kGrids[static_cast<std::size_t>(grid)];
}

ZoneRule ZoneRuleOf(GridId grid) {
    switch (grid) {
        case 1:
        case 2:
        case 13:
        case 15:
        case 16:
        case 28:
        case 32:
        case 33:
        case 47:
            return ZoneRule::SixDegrees;
        case kGridGaussKrueger:
            return ZoneRule::Strips;
        case kGridStatePlane27:
        case kGridStatePlane83:
            return ZoneRule::Table;
        case kGridSystem34:
            return ZoneRule::System34;
        default:
            return ZoneRule::None;
    }
}

}  // namespace kavrel
