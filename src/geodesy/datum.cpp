#include "geodesy/datum.h"

#include <array>
#include <cstddef>

#include "geodesy/ellipsoid.h"

namespace kavrel {
namespace {

struct DatumRow {
    std::uint8_t ellipsoidRow;
    HelmertShift toWgs84;
};

// Indexed by DatumId. The digits are the definition; docs/position.md says how they compare with
// the published transformations.
// clang-format off
constexpr std::array<DatumRow, kDatumCustom + 1> kDatums = {{
    {0, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 0: none
    {34, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 1: WGS 84
    {21, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 2: ETRS89
    {1, {375.0, -111.0, 431.0, 0.0, 0.0, 0.0, 0.0}},  // 3: OSGB36
    {5, {674.374, 15.056, 405.346, 0.0, 0.0, 0.0, 0.0}},  // 4: CH1903
    {5, {414.1055246174, 41.3265500042, 603.0582474221, -4.14572099457242e-06, 1.03813997378438e-05, -3.40471549964131e-05, 0.0}},  // 5: RT 90
    {2, {482.53, -130.596, 564.557, -5.05175855716137e-06, -1.03750127757441e-06, -3.05917432780117e-06, 8.15e-06}},  // 6: Ireland 1965
    {25, {-90.7, -106.1, -119.2, 1.982887955738e-05, 1.05689382481879e-06, -5.09054365165013e-06, 1.37e-06}},  // 7: KKJ
    {25, {-192.986, 13.673, -39.309, -1.98725127886799e-06, -1.42205548943049e-05, 1.30322765619054e-05, 4.3e-07}},  // 8: LUREF
    {33, {0.0, 0.0, 4.5, 0.0, 0.0, 2.68586779334683e-06, 2.19e-07}},  // 9: WGS 72
    {4, {-116.0, -50.47, 141.69, 1.11507146655193e-06, 1.89077335632719e-06, 1.6677590630168e-06, 9.83e-08}},  // 10: AGD84
    {21, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 11: GDA94
    {5, {577.326, 90.129, 463.919, 2.49029395438724e-05, 7.14712328691678e-06, 2.56805806883721e-05, 2.4232e-06}},  // 12: MGI
    {25, {59.47, -5.04, 187.44, 2.27862430121482e-06, -4.84813681109536e-07, 4.96449209456165e-06, -4.5993e-06}},  // 13: NZGD49
    {21, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 14: NZGD2000
    {35, {-168.0, -60.0, 320.0, 0.0, 0.0, 0.0, 0.0}},  // 15: NTF
    {25, {-99.1, 53.3, -112.5, 2.03136932384896e-06, -4.02395355320915e-06, 9.13873788891475e-06, -1e-06}},  // 16: Belge 1972
    {25, {-89.5, -93.8, -123.1, 0.0, 0.0, -7.56309342530876e-07, 1.2e-06}},  // 17: ED50
    {5, {582.0, 105.0, 414.0, 5.04206228353917e-06, 1.69684788388338e-06, -1.49322613781737e-05, 8.3e-06}},  // 18: DHDN
    {21, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 19: NAD 83
    {8, {-5.0, 135.0, 172.0, 0.0, 0.0, 0.0, 0.0}},  // 20: NAD 27, Alaska
    {8, {-9.0, 161.0, 179.0, 0.0, 0.0, 0.0, 0.0}},  // 21: NAD 27, eastern US
    {8, {-8.0, 160.0, 176.0, 0.0, 0.0, 0.0, 0.0}},  // 22: NAD 27, mean of the conterminous US
    {8, {-8.0, 159.0, 175.0, 0.0, 0.0, 0.0, 0.0}},  // 23: NAD 27, western US
    {5, {565.0, 49.9, 465.8, -1.982887955738e-06, 1.74532925199433e-06, -9.06116769993723e-06, 4.08e-06}},  // 24: Amersfoort
    {25, {-104.1, -49.1, -9.9, 4.70754084357359e-06, -1.41420150779652e-05, 3.46156968312209e-06, -1.168e-05}},  // 25: Monte Mario
    {36, {278.3, 93.0, 474.5, 3.82469513027313e-05, 2.42406840554768e-07, -3.20461843213403e-05, 6.21e-06}},  // 26: NGO 1948
    {25, {-81.0703, -89.3603, -115.7526, 2.35076457696392e-06, 1.18100612718283e-07, 2.00329861171271e-06, -5.40645e-07}},  // 27: ED50 in its Danish realisation
    {0, {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0}},  // 28: custom
}};
// clang-format on

constexpr bool AllRowsExist() {
    for (const DatumRow& row : kDatums) {
        if (row.ellipsoidRow >= kEllipsoids.size()) {
            return false;
        }
    }
    return true;
}
static_assert(AllRowsExist());

}  // namespace

std::optional<DatumParameters> ParametersOf(const DatumReference& datum) {
    if (datum.id == kDatumCustom && datum.custom) return datum.custom->Values();
    if (datum.id < kDatumWgs84 || datum.id > kDatumLastBuiltIn) return std::nullopt;
    const DatumRow& row = kDatums[static_cast<std::size_t>(datum.id)];
    return DatumParameters{kEllipsoids[static_cast<std::size_t>(row.ellipsoidRow)], row.toWgs84};
}

bool IsSameDatum(const DatumReference& a, const DatumReference& b) {
    if (a.id != b.id) return false;
    if (a.id != kDatumCustom || a.custom == b.custom) return true;
    return a.custom && b.custom && a.custom->Values() == b.custom->Values();
}

}  // namespace kavrel
