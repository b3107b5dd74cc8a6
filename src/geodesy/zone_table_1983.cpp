#include "geodesy/zone_table.h"

namespace kavrel {
namespace {

constexpr std::uint8_t kNad83 = 19;

consteval ZoneRow Tm(std::int16_t zone, std::int16_t longitude, std::int16_t latitude,
                     std::int32_t scaleReduction, double falseEastingMetres,
                     double falseNorthingMetres = 0.0) {
    return {zone,
            kNad83,
            Algorithm::TransverseMercator,
            longitude,
            latitude,
            0,
            0,
            scaleReduction,
            falseEastingMetres,
            falseNorthingMetres};
}

consteval ZoneRow Conic(std::int16_t zone, std::int16_t longitude, std::int16_t latitude,
                        std::int16_t parallel1, std::int16_t parallel2, double falseEastingMetres,
                        double falseNorthingMetres = 0.0) {
    return {zone,      kNad83, Algorithm::LambertConic, longitude,          latitude, parallel1,
            parallel2, 0,      falseEastingMetres,      falseNorthingMetres};
}

// Zone, longitude and latitude of the origin, N of the scale factor 1 - 1/N or two parallels, false
// easting and northing. Source: US National Geodetic Survey, State Plane Coordinate System of
// 1983, compared zone by zone with the EPSG registry. Zone 5001 is officially an oblique Mercator;
// here it is the transverse Mercator that agrees with it at its centre.
// clang-format off
constexpr ZoneRow kRows[] = {
    Tm(101, Dm(-85, 50), Dm(30, 30), 25000, 200000.0),  // Alabama East
    Tm(102, Dm(-87, 30), Dm(30, 0), 15000, 600000.0),  // Alabama West
    Tm(201, Dm(-110, 10), Dm(31, 0), 10000, 213360.0),  // Arizona East
    Tm(202, Dm(-111, 55), Dm(31, 0), 10000, 213360.0),  // Arizona Central
    Tm(203, Dm(-113, 45), Dm(31, 0), 15000, 213360.0),  // Arizona West
    Conic(301, Dm(-92, 0), Dm(34, 20), Dm(34, 56), Dm(36, 14), 400000.0),  // Arkansas North
    Conic(302, Dm(-92, 0), Dm(32, 40), Dm(33, 18), Dm(34, 46), 400000.0, 400000.0),  // Arkansas South
    Conic(401, Dm(-122, 0), Dm(39, 20), Dm(40, 0), Dm(41, 40), 2000000.0, 500000.0),  // California I
    Conic(402, Dm(-122, 0), Dm(37, 40), Dm(38, 20), Dm(39, 50), 2000000.0, 500000.0),  // California II
    Conic(403, Dm(-120, 30), Dm(36, 30), Dm(37, 4), Dm(38, 26), 2000000.0, 500000.0),  // California III
    Conic(404, Dm(-119, 0), Dm(35, 20), Dm(36, 0), Dm(37, 15), 2000000.0, 500000.0),  // California IV
    Conic(405, Dm(-118, 0), Dm(33, 30), Dm(34, 2), Dm(35, 28), 2000000.0, 500000.0),  // California V
    Conic(406, Dm(-116, 15), Dm(32, 10), Dm(32, 47), Dm(33, 53), 2000000.0, 500000.0),  // California VI
    Conic(501, Dm(-105, 30), Dm(39, 20), Dm(39, 43), Dm(40, 47), 914401.8289, 304800.6096),  // Colorado North
    Conic(502, Dm(-105, 30), Dm(37, 50), Dm(38, 27), Dm(39, 45), 914401.8289, 304800.6096),  // Colorado Central
    Conic(503, Dm(-105, 30), Dm(36, 40), Dm(37, 14), Dm(38, 26), 914401.8289, 304800.6096),  // Colorado South
    Conic(600, Dm(-72, 45), Dm(40, 50), Dm(41, 12), Dm(41, 52), 304800.6096, 152400.3048),  // Connecticut
    Tm(700, Dm(-75, 25), Dm(38, 0), 200000, 200000.0),  // Delaware
    Tm(901, Dm(-81, 0), Dm(24, 20), 17000, 200000.0),  // Florida East
    Tm(902, Dm(-82, 0), Dm(24, 20), 17000, 200000.0),  // Florida West
    Conic(903, Dm(-84, 30), Dm(29, 0), Dm(29, 35), Dm(30, 45), 600000.0),  // Florida North
    Tm(1001, Dm(-82, 10), Dm(30, 0), 10000, 200000.0),  // Georgia East
    Tm(1002, Dm(-84, 10), Dm(30, 0), 10000, 700000.0),  // Georgia West
    Tm(1101, Dm(-112, 10), Dm(41, 40), 19000, 200000.0),  // Idaho East
    Tm(1102, Dm(-114, 0), Dm(41, 40), 19000, 500000.0),  // Idaho Central
    Tm(1103, Dm(-115, 45), Dm(41, 40), 15000, 800000.0),  // Idaho West
    Tm(1201, Dm(-88, 20), Dm(36, 40), 40000, 300000.0),  // Illinois East
    Tm(1202, Dm(-90, 10), Dm(36, 40), 17000, 700000.0),  // Illinois West
    Tm(1301, Dm(-85, 40), Dm(37, 30), 30000, 100000.0, 250000.0),  // Indiana East
    Tm(1302, Dm(-87, 5), Dm(37, 30), 30000, 900000.0, 250000.0),  // Indiana West
    Conic(1401, Dm(-93, 30), Dm(41, 30), Dm(42, 4), Dm(43, 16), 1500000.0, 1000000.0),  // Iowa North
    Conic(1402, Dm(-93, 30), Dm(40, 0), Dm(40, 37), Dm(41, 47), 500000.0),  // Iowa South
    Conic(1501, Dm(-98, 0), Dm(38, 20), Dm(38, 43), Dm(39, 47), 400000.0),  // Kansas North
    Conic(1502, Dm(-98, 30), Dm(36, 40), Dm(37, 16), Dm(38, 34), 400000.0, 400000.0),  // Kansas South
    Conic(1601, Dm(-84, 15), Dm(37, 30), Dm(37, 58), Dm(38, 58), 500000.0),  // Kentucky North
    Conic(1602, Dm(-85, 45), Dm(36, 20), Dm(36, 44), Dm(37, 56), 500000.0, 500000.0),  // Kentucky South
    Conic(1701, Dm(-92, 30), Dm(30, 30), Dm(31, 10), Dm(32, 40), 1000000.0),  // Louisiana North
    Conic(1702, Dm(-91, 20), Dm(28, 30), Dm(29, 18), Dm(30, 42), 1000000.0),  // Louisiana South
    Conic(1703, Dm(-91, 20), Dm(25, 30), Dm(26, 10), Dm(27, 50), 1000000.0),  // Louisiana Offshore
    Tm(1801, Dm(-68, 30), Dm(43, 40), 10000, 300000.0),  // Maine East
    Tm(1802, Dm(-70, 10), Dm(42, 50), 30000, 900000.0),  // Maine West
    Conic(1900, Dm(-77, 0), Dm(37, 40), Dm(38, 18), Dm(39, 27), 400000.0),  // Maryland
    Conic(2001, Dm(-71, 30), Dm(41, 0), Dm(41, 43), Dm(42, 41), 200000.0, 750000.0),  // Massachusetts Mainland
    Conic(2002, Dm(-70, 30), Dm(41, 0), Dm(41, 17), Dm(41, 29), 500000.0),  // Massachusetts Island
    Conic(2111, Dm(-87, 0), Dm(44, 47), Dm(45, 29), Dm(47, 5), 8000000.0),  // Michigan North
    Conic(2112, Dm(-84, 22), Dm(43, 19), Dm(44, 11), Dm(45, 42), 6000000.0),  // Michigan Central (Lambert)
    Conic(2113, Dm(-84, 22), Dm(41, 30), Dm(42, 6), Dm(43, 40), 4000000.0),  // Michigan South
    Conic(2201, Dm(-93, 6), Dm(46, 30), Dm(47, 2), Dm(48, 38), 800000.0, 100000.0),  // Minnesota North
    Conic(2202, Dm(-94, 15), Dm(45, 0), Dm(45, 37), Dm(47, 3), 800000.0, 100000.0),  // Minnesota Central
    Conic(2203, Dm(-94, 0), Dm(43, 0), Dm(43, 47), Dm(45, 13), 800000.0, 100000.0),  // Minnesota South
    Tm(2301, Dm(-88, 50), Dm(29, 30), 20000, 300000.0),  // Mississippi East
    Tm(2302, Dm(-90, 20), Dm(29, 30), 20000, 700000.0),  // Mississippi West
    Tm(2401, Dm(-90, 30), Dm(35, 50), 15000, 250000.0),  // Missouri East
    Tm(2402, Dm(-92, 30), Dm(35, 50), 15000, 500000.0),  // Missouri Central
    Tm(2403, Dm(-94, 30), Dm(36, 10), 17000, 850000.0),  // Missouri West
    Conic(2500, Dm(-109, 30), Dm(44, 15), Dm(45, 0), Dm(49, 0), 600000.0),  // Montana
    Conic(2600, Dm(-100, 0), Dm(39, 50), Dm(40, 0), Dm(43, 0), 500000.0),  // Nebraska
    Tm(2701, Dm(-115, 35), Dm(34, 45), 10000, 200000.0, 8000000.0),  // Nevada East
    Tm(2702, Dm(-116, 40), Dm(34, 45), 10000, 500000.0, 6000000.0),  // Nevada Central
    Tm(2703, Dm(-118, 35), Dm(34, 45), 10000, 800000.0, 4000000.0),  // Nevada West
    Tm(2800, Dm(-71, 40), Dm(42, 30), 30000, 300000.0),  // New Hampshire
    Tm(2900, Dm(-74, 30), Dm(38, 50), 10000, 150000.0),  // New Jersey
    Tm(3001, Dm(-104, 20), Dm(31, 0), 11000, 165000.0),  // New Mexico East
    Tm(3002, Dm(-106, 15), Dm(31, 0), 10000, 500000.0),  // New Mexico Central
    Tm(3003, Dm(-107, 50), Dm(31, 0), 12000, 830000.0),  // New Mexico West
    Tm(3101, Dm(-74, 30), Dm(38, 50), 10000, 150000.0),  // New York East
    Tm(3102, Dm(-76, 35), Dm(40, 0), 16000, 250000.0),  // New York Central
    Tm(3103, Dm(-78, 35), Dm(40, 0), 16000, 350000.0),  // New York West
    Conic(3104, Dm(-74, 0), Dm(40, 10), Dm(40, 40), Dm(41, 2), 300000.0),  // New York Long Island
    Conic(3200, Dm(-79, 0), Dm(33, 45), Dm(34, 20), Dm(36, 10), 609601.22),  // North Carolina
    Conic(3301, Dm(-100, 30), Dm(47, 0), Dm(47, 26), Dm(48, 44), 600000.0),  // North Dakota North
    Conic(3302, Dm(-100, 30), Dm(45, 40), Dm(46, 11), Dm(47, 29), 600000.0),  // North Dakota South
    Conic(3401, Dm(-82, 30), Dm(39, 40), Dm(40, 26), Dm(41, 42), 600000.0),  // Ohio North
    Conic(3402, Dm(-82, 30), Dm(38, 0), Dm(38, 44), Dm(40, 2), 600000.0),  // Ohio South
    Conic(3501, Dm(-98, 0), Dm(35, 0), Dm(35, 34), Dm(36, 46), 600000.0),  // Oklahoma North
    Conic(3502, Dm(-98, 0), Dm(33, 20), Dm(33, 56), Dm(35, 14), 600000.0),  // Oklahoma South
    Conic(3601, Dm(-120, 30), Dm(43, 40), Dm(44, 20), Dm(46, 0), 2500000.0),  // Oregon North
    Conic(3602, Dm(-120, 30), Dm(41, 40), Dm(42, 20), Dm(44, 0), 1500000.0),  // Oregon South
    Conic(3701, Dm(-77, 45), Dm(40, 10), Dm(40, 53), Dm(41, 57), 600000.0),  // Pennsylvania North
    Conic(3702, Dm(-77, 45), Dm(39, 20), Dm(39, 56), Dm(40, 58), 600000.0),  // Pennsylvania South
    Tm(3800, Dm(-71, 30), Dm(41, 5), 160000, 100000.0),  // Rhode Island
    Conic(3900, Dm(-81, 0), Dm(31, 50), Dm(32, 30), Dm(34, 50), 609600.0),  // South Carolina
    Conic(4001, Dm(-100, 0), Dm(43, 50), Dm(44, 25), Dm(45, 41), 600000.0),  // South Dakota North
    Conic(4002, Dm(-100, 20), Dm(42, 20), Dm(42, 50), Dm(44, 24), 600000.0),  // South Dakota South
    Conic(4100, Dm(-86, 0), Dm(34, 20), Dm(35, 15), Dm(36, 25), 600000.0),  // Tennessee
    Conic(4201, Dm(-101, 30), Dm(34, 0), Dm(34, 39), Dm(36, 11), 200000.0, 1000000.0),  // Texas North
    Conic(4202, Dm(-98, 30), Dm(31, 40), Dm(32, 8), Dm(33, 58), 600000.0, 2000000.0),  // Texas North Central
    Conic(4203, Dm(-100, 20), Dm(29, 40), Dm(30, 7), Dm(31, 53), 700000.0, 3000000.0),  // Texas Central
    Conic(4204, Dm(-99, 0), Dm(27, 50), Dm(28, 23), Dm(30, 17), 600000.0, 4000000.0),  // Texas South Central
    Conic(4205, Dm(-98, 30), Dm(25, 40), Dm(26, 10), Dm(27, 50), 300000.0, 5000000.0),  // Texas South
    Conic(4301, Dm(-111, 30), Dm(40, 20), Dm(40, 43), Dm(41, 47), 500000.0, 1000000.0),  // Utah North
    Conic(4302, Dm(-111, 30), Dm(38, 20), Dm(39, 1), Dm(40, 39), 500000.0, 2000000.0),  // Utah Central
    Conic(4303, Dm(-111, 30), Dm(36, 40), Dm(37, 13), Dm(38, 21), 500000.0, 3000000.0),  // Utah South
    Tm(4400, Dm(-72, 30), Dm(42, 30), 28000, 500000.0),  // Vermont
    Conic(4501, Dm(-78, 30), Dm(37, 40), Dm(38, 2), Dm(39, 12), 3500000.0, 2000000.0),  // Virginia North
    Conic(4502, Dm(-78, 30), Dm(36, 20), Dm(36, 46), Dm(37, 58), 3500000.0, 1000000.0),  // Virginia South
    Conic(4601, Dm(-120, 50), Dm(47, 0), Dm(47, 30), Dm(48, 44), 500000.0),  // Washington North
    Conic(4602, Dm(-120, 30), Dm(45, 20), Dm(45, 50), Dm(47, 20), 500000.0),  // Washington South
    Conic(4701, Dm(-79, 30), Dm(38, 30), Dm(39, 0), Dm(40, 15), 600000.0),  // West Virginia North
    Conic(4702, Dm(-81, 0), Dm(37, 0), Dm(37, 29), Dm(38, 53), 600000.0),  // West Virginia South
    Conic(4801, Dm(-90, 0), Dm(45, 10), Dm(45, 34), Dm(46, 46), 600000.0),  // Wisconsin North
    Conic(4802, Dm(-90, 0), Dm(43, 50), Dm(44, 15), Dm(45, 30), 600000.0),  // Wisconsin Central
    Conic(4803, Dm(-90, 0), Dm(42, 0), Dm(42, 44), Dm(44, 4), 600000.0),  // Wisconsin South
    Tm(4901, Dm(-105, 10), Dm(40, 30), 16000, 200000.0),  // Wyoming East
    Tm(4902, Dm(-107, 20), Dm(40, 30), 16000, 400000.0, 100000.0),  // Wyoming East Central
    Tm(4903, Dm(-108, 45), Dm(40, 30), 16000, 600000.0),  // Wyoming West Central
    Tm(4904, Dm(-110, 5), Dm(40, 30), 16000, 800000.0, 100000.0),  // Wyoming West
    Tm(5001, Dm(-133, 40), Dm(57, 0), 10000, 818676.7344011232, 575097.6888751927),  // Alaska 1
    Tm(5002, Dm(-142, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 2
    Tm(5003, Dm(-146, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 3
    Tm(5004, Dm(-150, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 4
    Tm(5005, Dm(-154, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 5
    Tm(5006, Dm(-158, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 6
    Tm(5007, Dm(-162, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 7
    Tm(5008, Dm(-166, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 8
    Tm(5009, Dm(-170, 0), Dm(54, 0), 10000, 500000.0),  // Alaska 9
    Conic(5010, Dm(-176, 0), Dm(51, 0), Dm(51, 50), Dm(53, 50), 1000000.0),  // Alaska 10
    Tm(5101, Dm(-155, 30), Dm(18, 50), 30000, 500000.0),  // Hawaii 1
    Tm(5102, Dm(-156, 40), Dm(20, 20), 30000, 500000.0),  // Hawaii 2
    Tm(5103, Dm(-158, 0), Dm(21, 10), 100000, 500000.0),  // Hawaii 3
    Tm(5104, Dm(-159, 30), Dm(21, 50), 100000, 500000.0),  // Hawaii 4
    Tm(5105, Dm(-160, 10), Dm(21, 40), 0, 500000.0),  // Hawaii 5
    Conic(5200, Dm(-66, 26), Dm(17, 50), Dm(18, 2), Dm(18, 26), 200000.0, 200000.0),  // Puerto Rico & Virgin Islands
};
// clang-format on
static_assert(std::size(kRows) == 123);
static_assert(CountZones(kRows, Algorithm::TransverseMercator) == 55);
static_assert(CountZones(kRows, Algorithm::LambertConic) == 68);

}  // namespace

constinit const std::span<const ZoneRow> kStatePlane83 = kRows;

}  // namespace kavrel
