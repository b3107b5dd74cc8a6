#include "geodesy/zone_table.h"

namespace kavrel {
namespace {

// Every zone of this grid has the same false easting, 500000 US survey feet, by definition.
constexpr double kFalseEastingMetres = 152400.30480061;

consteval ZoneRow Tm(std::int16_t zone, std::uint8_t datum, std::int16_t longitude,
                     std::int16_t latitude, std::int32_t scaleReduction) {
    return {zone, datum,          Algorithm::TransverseMercator, longitude, latitude, 0,
            0,    scaleReduction, kFalseEastingMetres,           0.0};
}

consteval ZoneRow Conic(std::int16_t zone, std::uint8_t datum, std::int16_t longitude,
                        std::int16_t latitude, std::int16_t parallel1, std::int16_t parallel2,
                        double falseNorthingMetres = 0.0) {
    return {zone,      datum, Algorithm::LambertConic, longitude,          latitude, parallel1,
            parallel2, 0,     kFalseEastingMetres,     falseNorthingMetres};
}

// Zone, datum, longitude and latitude of the origin, then N of the scale factor 1 - 1/N, or two
// parallels and a false northing. Source: the US Coast and Geodetic Survey's State Plane
// Coordinate System of 1927, compared zone by zone with the EPSG registry. The datum follows the
// division of NAD 27 into east (21), west (23), Alaska (20) and the mean (22, for islands that
// were on datums of their own).
// clang-format off
constexpr ZoneRow kRows[] = {
    Tm(101, 21, Dm(-85, 50), Dm(30, 30), 25000),  // Alabama East
    Tm(102, 21, Dm(-87, 30), Dm(30, 0), 15000),  // Alabama West
    Tm(201, 23, Dm(-110, 10), Dm(31, 0), 10000),  // Arizona East
    Tm(202, 23, Dm(-111, 55), Dm(31, 0), 10000),  // Arizona Central
    Tm(203, 23, Dm(-113, 45), Dm(31, 0), 15000),  // Arizona West
    Conic(301, 23, Dm(-92, 0), Dm(34, 20), Dm(34, 56), Dm(36, 14)),  // Arkansas North
    Conic(302, 23, Dm(-92, 0), Dm(32, 40), Dm(33, 18), Dm(34, 46)),  // Arkansas South
    Conic(401, 23, Dm(-122, 0), Dm(39, 20), Dm(40, 0), Dm(41, 40)),  // California I
    Conic(402, 23, Dm(-122, 0), Dm(37, 40), Dm(38, 20), Dm(39, 50)),  // California II
    Conic(403, 23, Dm(-120, 30), Dm(36, 30), Dm(37, 4), Dm(38, 26)),  // California III
    Conic(404, 23, Dm(-119, 0), Dm(35, 20), Dm(36, 0), Dm(37, 15)),  // California IV
    Conic(405, 23, Dm(-118, 0), Dm(33, 30), Dm(34, 2), Dm(35, 28)),  // California V
    Conic(406, 23, Dm(-116, 15), Dm(32, 10), Dm(32, 47), Dm(33, 53)),  // California VI
    Conic(407, 23, Dm(-118, 20), Dm(34, 8), Dm(33, 52), Dm(34, 25), 1268253.006858014),  // California VII
    Conic(501, 23, Dm(-105, 30), Dm(39, 20), Dm(39, 43), Dm(40, 47)),  // Colorado North
    Conic(502, 23, Dm(-105, 30), Dm(37, 50), Dm(38, 27), Dm(39, 45)),  // Colorado Central
    Conic(503, 23, Dm(-105, 30), Dm(36, 40), Dm(37, 14), Dm(38, 26)),  // Colorado South
    Conic(600, 21, Dm(-72, 45), Dm(40, 50), Dm(41, 12), Dm(41, 52)),  // Connecticut
    Tm(700, 21, Dm(-75, 25), Dm(38, 0), 200000),  // Delaware
    Tm(901, 21, Dm(-81, 0), Dm(24, 20), 17000),  // Florida East
    Tm(902, 21, Dm(-82, 0), Dm(24, 20), 17000),  // Florida West
    Conic(903, 21, Dm(-84, 30), Dm(29, 0), Dm(29, 35), Dm(30, 45)),  // Florida North
    Tm(1001, 21, Dm(-82, 10), Dm(30, 0), 10000),  // Georgia East
    Tm(1002, 21, Dm(-84, 10), Dm(30, 0), 10000),  // Georgia West
    Tm(1101, 23, Dm(-112, 10), Dm(41, 40), 19000),  // Idaho East
    Tm(1102, 23, Dm(-114, 0), Dm(41, 40), 19000),  // Idaho Central
    Tm(1103, 23, Dm(-115, 45), Dm(41, 40), 15000),  // Idaho West
    Tm(1201, 21, Dm(-88, 20), Dm(36, 40), 40000),  // Illinois East
    Tm(1202, 21, Dm(-90, 10), Dm(36, 40), 17000),  // Illinois West
    Tm(1301, 21, Dm(-85, 40), Dm(37, 30), 30000),  // Indiana East
    Tm(1302, 21, Dm(-87, 5), Dm(37, 30), 30000),  // Indiana West
    Conic(1401, 23, Dm(-93, 30), Dm(41, 30), Dm(42, 4), Dm(43, 16)),  // Iowa North
    Conic(1402, 23, Dm(-93, 30), Dm(40, 0), Dm(40, 37), Dm(41, 47)),  // Iowa South
    Conic(1501, 23, Dm(-98, 0), Dm(38, 20), Dm(38, 43), Dm(39, 47)),  // Kansas North
    Conic(1502, 23, Dm(-98, 30), Dm(36, 40), Dm(37, 16), Dm(38, 34)),  // Kansas South
    Conic(1601, 21, Dm(-84, 15), Dm(37, 30), Dm(37, 58), Dm(38, 58)),  // Kentucky North
    Conic(1602, 21, Dm(-85, 45), Dm(36, 20), Dm(36, 44), Dm(37, 56)),  // Kentucky South
    Conic(1701, 21, Dm(-92, 30), Dm(30, 40), Dm(31, 10), Dm(32, 40)),  // Louisiana North
    Conic(1702, 21, Dm(-91, 20), Dm(28, 40), Dm(29, 18), Dm(30, 42)),  // Louisiana South
    Conic(1703, 21, Dm(-91, 20), Dm(25, 40), Dm(26, 10), Dm(27, 50)),  // Louisiana Offshore
    Tm(1801, 21, Dm(-68, 30), Dm(43, 50), 10000),  // Maine East
    Tm(1802, 21, Dm(-70, 10), Dm(42, 50), 30000),  // Maine West
    Conic(1900, 21, Dm(-77, 0), Dm(37, 50), Dm(38, 18), Dm(39, 27)),  // Maryland
    Conic(2001, 21, Dm(-71, 30), Dm(41, 0), Dm(41, 43), Dm(42, 41)),  // Massachusetts Mainland
    Conic(2002, 21, Dm(-70, 30), Dm(41, 0), Dm(41, 17), Dm(41, 29)),  // Massachusetts Island
    Tm(2101, 21, Dm(-83, 40), Dm(41, 30), 17500),  // Michigan East (old TM)
    Tm(2102, 21, Dm(-85, 45), Dm(41, 30), 11000),  // Michigan Central (old TM)
    Tm(2103, 21, Dm(-88, 45), Dm(41, 30), 11000),  // Michigan West (old TM)
    Conic(2111, 21, Dm(-87, 0), Dm(44, 47), Dm(45, 29), Dm(47, 5)),  // Michigan North
    Conic(2112, 21, Dm(-84, 20), Dm(43, 19), Dm(44, 11), Dm(45, 42)),  // Michigan Central (Lambert)
    Conic(2113, 21, Dm(-84, 20), Dm(41, 30), Dm(42, 6), Dm(43, 40)),  // Michigan South
    Conic(2201, 21, Dm(-93, 6), Dm(46, 30), Dm(47, 2), Dm(48, 38)),  // Minnesota North
    Conic(2202, 21, Dm(-94, 15), Dm(45, 0), Dm(45, 37), Dm(47, 3)),  // Minnesota Central
    Conic(2203, 21, Dm(-94, 0), Dm(43, 0), Dm(43, 47), Dm(45, 13)),  // Minnesota South
    Tm(2301, 21, Dm(-88, 50), Dm(29, 40), 25000),  // Mississippi East
    Tm(2302, 21, Dm(-90, 20), Dm(30, 30), 17000),  // Mississippi West
    Tm(2401, 21, Dm(-90, 30), Dm(35, 50), 15000),  // Missouri East
    Tm(2402, 21, Dm(-92, 30), Dm(35, 50), 15000),  // Missouri Central
    Tm(2403, 21, Dm(-94, 30), Dm(36, 10), 17000),  // Missouri West
    Conic(2501, 23, Dm(-109, 30), Dm(47, 0), Dm(47, 51), Dm(48, 43)),  // Montana North
    Conic(2502, 23, Dm(-109, 30), Dm(45, 50), Dm(46, 27), Dm(47, 53)),  // Montana Central
    Conic(2503, 23, Dm(-109, 30), Dm(44, 0), Dm(44, 52), Dm(46, 24)),  // Montana South
    Conic(2601, 23, Dm(-100, 0), Dm(41, 20), Dm(41, 51), Dm(42, 49)),  // Nebraska North
    Conic(2602, 23, Dm(-99, 30), Dm(39, 40), Dm(40, 17), Dm(41, 43)),  // Nebraska South
    Tm(2701, 23, Dm(-115, 35), Dm(34, 45), 10000),  // Nevada East
    Tm(2702, 23, Dm(-116, 40), Dm(34, 45), 10000),  // Nevada Central
    Tm(2703, 23, Dm(-118, 35), Dm(34, 45), 10000),  // Nevada West
    Tm(2800, 21, Dm(-71, 40), Dm(42, 30), 30000),  // New Hampshire
    Tm(2900, 21, Dm(-74, 40), Dm(38, 50), 40000),  // New Jersey
    Tm(3001, 23, Dm(-104, 20), Dm(31, 0), 11000),  // New Mexico East
    Tm(3002, 23, Dm(-106, 15), Dm(31, 0), 10000),  // New Mexico Central
    Tm(3003, 23, Dm(-107, 50), Dm(31, 0), 12000),  // New Mexico West
    Tm(3101, 21, Dm(-74, 20), Dm(40, 0), 30000),  // New York East
    Tm(3102, 21, Dm(-76, 35), Dm(40, 0), 16000),  // New York Central
    Tm(3103, 21, Dm(-78, 35), Dm(40, 0), 16000),  // New York West
    Conic(3104, 21, Dm(-74, 0), Dm(40, 30), Dm(40, 40), Dm(41, 2), 30480.06096012192),  // New York Long Island
    Conic(3200, 21, Dm(-79, 0), Dm(33, 45), Dm(34, 20), Dm(36, 10)),  // North Carolina
    Conic(3301, 23, Dm(-100, 30), Dm(47, 0), Dm(47, 26), Dm(48, 44)),  // North Dakota North
    Conic(3302, 23, Dm(-100, 30), Dm(45, 40), Dm(46, 11), Dm(47, 29)),  // North Dakota South
    Conic(3401, 21, Dm(-82, 30), Dm(39, 40), Dm(40, 26), Dm(41, 42)),  // Ohio North
    Conic(3402, 21, Dm(-82, 30), Dm(38, 0), Dm(38, 44), Dm(40, 2)),  // Ohio South
    Conic(3501, 23, Dm(-98, 0), Dm(35, 0), Dm(35, 34), Dm(36, 46)),  // Oklahoma North
    Conic(3502, 23, Dm(-98, 0), Dm(33, 20), Dm(33, 56), Dm(35, 14)),  // Oklahoma South
    Conic(3601, 23, Dm(-120, 30), Dm(43, 40), Dm(44, 20), Dm(46, 0)),  // Oregon North
    Conic(3602, 23, Dm(-120, 30), Dm(41, 40), Dm(42, 20), Dm(44, 0)),  // Oregon South
    Conic(3701, 21, Dm(-77, 45), Dm(40, 10), Dm(40, 53), Dm(41, 57)),  // Pennsylvania North
    Conic(3702, 21, Dm(-77, 45), Dm(39, 20), Dm(39, 56), Dm(40, 58)),  // Pennsylvania South
    Tm(3800, 21, Dm(-71, 30), Dm(41, 5), 160000),  // Rhode Island
    Conic(3901, 21, Dm(-81, 0), Dm(33, 0), Dm(33, 46), Dm(34, 58)),  // South Carolina North
    Conic(3902, 21, Dm(-81, 0), Dm(31, 50), Dm(32, 20), Dm(33, 40)),  // South Carolina South
    Conic(4001, 23, Dm(-100, 0), Dm(43, 50), Dm(44, 25), Dm(45, 41)),  // South Dakota North
    Conic(4002, 23, Dm(-100, 20), Dm(42, 20), Dm(42, 50), Dm(44, 24)),  // South Dakota South
    Conic(4100, 21, Dm(-86, 0), Dm(34, 40), Dm(35, 15), Dm(36, 25), 30480.06096012192),  // Tennessee
    Conic(4201, 23, Dm(-101, 30), Dm(34, 0), Dm(34, 39), Dm(36, 11)),  // Texas North
    Conic(4202, 23, Dm(-97, 30), Dm(31, 40), Dm(32, 8), Dm(33, 58)),  // Texas North Central
    Conic(4203, 23, Dm(-100, 20), Dm(29, 40), Dm(30, 7), Dm(31, 53)),  // Texas Central
    Conic(4204, 23, Dm(-99, 0), Dm(27, 50), Dm(28, 23), Dm(30, 17)),  // Texas South Central
    Conic(4205, 23, Dm(-98, 30), Dm(25, 40), Dm(26, 10), Dm(27, 50)),  // Texas South
    Conic(4301, 23, Dm(-111, 30), Dm(40, 20), Dm(40, 43), Dm(41, 47)),  // Utah North
    Conic(4302, 23, Dm(-111, 30), Dm(38, 20), Dm(39, 1), Dm(40, 39)),  // Utah Central
    Conic(4303, 23, Dm(-111, 30), Dm(36, 40), Dm(37, 13), Dm(38, 21)),  // Utah South
    Tm(4400, 21, Dm(-72, 30), Dm(42, 30), 28000),  // Vermont
    Conic(4501, 21, Dm(-78, 30), Dm(37, 40), Dm(38, 2), Dm(39, 12)),  // Virginia North
    Conic(4502, 21, Dm(-78, 30), Dm(36, 20), Dm(36, 46), Dm(37, 58)),  // Virginia South
    Conic(4601, 23, Dm(-120, 50), Dm(47, 0), Dm(47, 30), Dm(48, 44)),  // Washington North
    Conic(4602, 23, Dm(-120, 30), Dm(45, 20), Dm(45, 50), Dm(47, 20)),  // Washington South
    Conic(4701, 21, Dm(-79, 30), Dm(38, 30), Dm(39, 0), Dm(40, 15)),  // West Virginia North
    Conic(4702, 21, Dm(-81, 0), Dm(37, 0), Dm(37, 29), Dm(38, 53)),  // West Virginia South
    Conic(4801, 21, Dm(-90, 0), Dm(45, 10), Dm(45, 34), Dm(46, 46)),  // Wisconsin North
    Conic(4802, 21, Dm(-90, 0), Dm(43, 50), Dm(44, 15), Dm(45, 30)),  // Wisconsin Central
    Conic(4803, 21, Dm(-90, 0), Dm(42, 0), Dm(42, 44), Dm(44, 4)),  // Wisconsin South
    Tm(4901, 23, Dm(-105, 10), Dm(40, 40), 17000),  // Wyoming East
    Tm(4902, 23, Dm(-107, 20), Dm(40, 40), 17000),  // Wyoming East Central
    Tm(4903, 23, Dm(-108, 45), Dm(40, 40), 17000),  // Wyoming West Central
    Tm(4904, 23, Dm(-110, 5), Dm(40, 40), 17000),  // Wyoming West
    Tm(5002, 20, Dm(-142, 0), Dm(54, 0), 10000),  // Alaska 2
    Tm(5003, 20, Dm(-146, 0), Dm(54, 0), 10000),  // Alaska 3
    Tm(5004, 20, Dm(-150, 0), Dm(54, 0), 10000),  // Alaska 4
    Tm(5005, 20, Dm(-154, 0), Dm(54, 0), 10000),  // Alaska 5
    Tm(5006, 20, Dm(-158, 0), Dm(54, 0), 10000),  // Alaska 6
    Tm(5007, 20, Dm(-162, 0), Dm(54, 0), 10000),  // Alaska 7
    Tm(5008, 20, Dm(-166, 0), Dm(54, 0), 10000),  // Alaska 8
    Tm(5009, 20, Dm(-170, 0), Dm(54, 0), 10000),  // Alaska 9
    Conic(5010, 20, Dm(-176, 0), Dm(51, 0), Dm(51, 50), Dm(53, 50)),  // Alaska 10
    Tm(5101, 22, Dm(-155, 30), Dm(18, 50), 30000),  // Hawaii 1
    Tm(5102, 22, Dm(-156, 40), Dm(20, 20), 30000),  // Hawaii 2
    Tm(5103, 22, Dm(-158, 0), Dm(21, 10), 100000),  // Hawaii 3
    Tm(5104, 22, Dm(-159, 30), Dm(21, 50), 100000),  // Hawaii 4
    Tm(5105, 22, Dm(-160, 10), Dm(21, 40), 0),  // Hawaii 5
    Conic(5201, 22, Dm(-66, 26), Dm(17, 50), Dm(18, 2), Dm(18, 26)),  // Puerto Rico & Virgin Islands
    Conic(5202, 22, Dm(-66, 26), Dm(17, 50), Dm(18, 2), Dm(18, 26), 30480.06096012192),  // Virgin Islands St. Croix
};
// clang-format on
static_assert(std::size(kRows) == 131);
static_assert(CountZones(kRows, Algorithm::TransverseMercator) == 57);
static_assert(CountZones(kRows, Algorithm::LambertConic) == 74);

}  // namespace

constinit const std::span<const ZoneRow> kStatePlane27 = kRows;

}  // namespace kavrel
