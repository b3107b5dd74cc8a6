#!/usr/bin/env python3
"""Makes the expected values of the geodesy's tests: tests/data/geodesy/{grids,shifts}.csv.

Nothing here uses the library's own code. Sources of the numbers:
  projections   PROJ's cct, fed with the grids' parameters as typed here
  state planes  PROJ's cct, fed with the EPSG registry's parameters of each zone (projinfo); of grid
                30 only the false easting is replaced, as that grid does in every zone
  Danish grids  PROJ's cct for the plane, then the agency's polynomials summed in exact fractions;
                the coefficients are read from src/geodesy/danish_polynomials.cpp as text
  datum shifts  the shift's own formulas (sequential lines, ten rounds) in 50 digits (mpmath),
                since no other tool knows them

Needs proj-bin and python3-mpmath. Run without arguments from anywhere.
"""

import math
import pathlib
import random
import re
import subprocess
from fractions import Fraction

import mpmath

ROOT = pathlib.Path(__file__).resolve().parent.parent
DATA = ROOT / "tests" / "data" / "geodesy"

# Number: (a, e2, DX, DY, DZ, RX, RY, RZ, S)
DATUMS = {
    1: (6378137.0, 0.006694379990197, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0),
    2: (6378137.0, 0.006694380023011, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0),
    3: (6377563.396, 0.00667054, 375.0, -111.0, 431.0, 0.0, 0.0, 0.0, 0.0),
    4: (6377397.155, 0.006674372230614, 674.374, 15.056, 405.346, 0.0, 0.0, 0.0, 0.0),
    5: (6377397.155, 0.006674372230614, 414.1055246174, 41.3265500042, 603.0582474221, -4.14572099457242e-06, 1.03813997378438e-05, -3.40471549964131e-05, 0.0),
    6: (6377340.189, 0.00667054015, 482.53, -130.596, 564.557, -5.05175855716137e-06, -1.03750127757441e-06, -3.05917432780117e-06, 8.15e-06),
    7: (6378388.0, 0.006722670022, -90.7, -106.1, -119.2, 1.982887955738e-05, 1.05689382481879e-06, -5.09054365165013e-06, 1.37e-06),
    8: (6378388.0, 0.006722670022, -192.986, 13.673, -39.309, -1.98725127886799e-06, -1.42205548943049e-05, 1.30322765619054e-05, 4.3e-07),
    9: (6378135.0, 0.00669431778, 0.0, 0.0, 4.5, 0.0, 0.0, 2.68586779334683e-06, 2.19e-07),
    10: (6378160.0, 0.006694541855, -116.0, -50.47, 141.69, 1.11507146655193e-06, 1.89077335632719e-06, 1.6677590630168e-06, 9.83e-08),
    11: (6378137.0, 0.006694380023011, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0),
    12: (6377397.155, 0.006674372230614, 577.326, 90.129, 463.919, 2.49029395438724e-05, 7.14712328691678e-06, 2.56805806883721e-05, 2.4232e-06),
    13: (6378388.0, 0.006722670022, 59.47, -5.04, 187.44, 2.27862430121482e-06, -4.84813681109536e-07, 4.96449209456165e-06, -4.5993e-06),
    14: (6378137.0, 0.006694380023011, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0),
    15: (6378249.2, 0.00680348764, -168.0, -60.0, 320.0, 0.0, 0.0, 0.0, 0.0),
    16: (6378388.0, 0.006722670022, -99.1, 53.3, -112.5, 2.03136932384896e-06, -4.02395355320915e-06, 9.13873788891475e-06, -1e-06),
    17: (6378388.0, 0.006722670022, -89.5, -93.8, -123.1, 0.0, 0.0, -7.56309342530876e-07, 1.2e-06),
    18: (6377397.155, 0.006674372230614, 582.0, 105.0, 414.0, 5.04206228353917e-06, 1.69684788388338e-06, -1.49322613781737e-05, 8.3e-06),
    19: (6378137.0, 0.006694380023011, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0),
    20: (6378206.4, 0.006768658, -5.0, 135.0, 172.0, 0.0, 0.0, 0.0, 0.0),
    21: (6378206.4, 0.006768658, -9.0, 161.0, 179.0, 0.0, 0.0, 0.0, 0.0),
    22: (6378206.4, 0.006768658, -8.0, 160.0, 176.0, 0.0, 0.0, 0.0, 0.0),
    23: (6378206.4, 0.006768658, -8.0, 159.0, 175.0, 0.0, 0.0, 0.0, 0.0),
    24: (6377397.155, 0.006674372230614, 565.0, 49.9, 465.8, -1.982887955738e-06, 1.74532925199433e-06, -9.06116769993723e-06, 4.08e-06),
    25: (6378388.0, 0.006722670022, -104.1, -49.1, -9.9, 4.70754084357359e-06, -1.41420150779652e-05, 3.46156968312209e-06, -1.168e-05),
    26: (6377492.018, 0.006674373, 278.3, 93.0, 474.5, 3.82469513027313e-05, 2.42406840554768e-07, -3.20461843213403e-05, 6.21e-06),
    27: (6378388.0, 0.006722670022, -81.0703, -89.3603, -115.7526, 2.35076457696392e-06, 1.18100612718283e-07, 2.00329861171271e-06, -5.40645e-07),
}


def ellipsoid(datum):
    # repr: the shortest text that reads back as the same double.
    return f"+a={DATUMS[datum][0]!r} +es={DATUMS[datum][1]!r}"


# Grid: (datum, projection, south, north, west, east). {z} is 6 * zone - 183.
UTM = "+proj=tmerc +lon_0={z} +k=0.9996 +x_0=500000"
SOUTH = UTM + " +y_0=10000000"
LAMBERT = "+proj=lcc +lon_0=2.337229167"
NGO = "+proj=tmerc +lat_0=58 +k=1 +lon_0="
# PROJ has no turned cone. A turn by omega equals a central meridian moved by omega / n.
BELGIAN_MERIDIAN = 4.356939722 + 29.2985 / 3600 / 0.771642186523
GRIDS = {
    1: (1, UTM, 0, 84, None, None),
    2: (1, SOUTH, -80, 0, None, None),
    3: (3, "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000",
        50, 61, -7, 2),
    4: (6, "+proj=tmerc +lat_0=53.5 +lon_0=-8 +k=1.000035 +x_0=200000 +y_0=250000", 51, 56, -11, -5),
    5: (2, "+proj=tmerc +lat_0=53.5 +lon_0=-8 +k=0.99982 +x_0=600000 +y_0=750000", 51, 56, -11, -5),
    6: (5, "+proj=tmerc +lon_0=15.808277778 +x_0=1500000", 55, 69, 11, 24),
    7: (4, "+proj=somerc +lat_0=46.952405556 +lon_0=7.439583333 +x_0=600000 +y_0=200000",
        45, 48, 5, 11),
    8: (4, "+proj=somerc +lat_0=46.952405556 +lon_0=7.439583333 +x_0=2600000 +y_0=1200000",
        45, 48, 5, 11),
    9: (7, "+proj=tmerc +lon_0=21 +x_0=1500000", 59, 70, 19, 23),
    10: (7, "+proj=tmerc +lon_0=24 +x_0=2500000", 59, 70, 22, 26),
    11: (7, "+proj=tmerc +lon_0=27 +x_0=3500000", 59, 70, 19, 32),
    12: (7, "+proj=tmerc +lon_0=30 +x_0=4500000", 59, 70, 28, 32),
    13: (2, UTM, 0, 84, None, None),
    14: (8, "+proj=tmerc +lat_0=49.833333333 +lon_0=6.166666667 +x_0=80000 +y_0=100000",
         49, 51, 5, 7),
    15: (10, SOUTH, -45, -9, None, None),
    16: (11, SOUTH, -45, -9, None, None),
    17: (12, "+proj=tmerc +lon_0=10.333333333 +x_0=150000 +y_0=-5000000", 46, 49, 9, 12),
    18: (12, "+proj=tmerc +lon_0=13.333333333 +x_0=450000 +y_0=-5000000", 46, 49, 11, 15),
    19: (12, "+proj=tmerc +lon_0=16.333333333 +x_0=750000 +y_0=-5000000", 46, 49, 14, 18),
    20: (14, "+proj=tmerc +lon_0=173 +k=0.9996 +x_0=1600000 +y_0=10000000", -48, -34, 166, 179),
    21: (13, "+proj=nzmg", -47, -34, 167, 179),
    22: (16, f"+proj=lcc +lat_0=90 +lon_0={BELGIAN_MERIDIAN!r} +lat_1=49.833333333 "
         "+lat_2=51.166666667 +x_0=150000.01 +y_0=5400088.44", 49, 52, 2, 7),
    23: (15, LAMBERT + " +lat_0=49.5 +lat_1=48.598522778 +lat_2=50.395911667 +x_0=600000 "
         "+y_0=200000", 48, 51.5, -5, 8),
    24: (15, LAMBERT + " +lat_0=46.8 +lat_1=45.898918889 +lat_2=47.696014444 +x_0=600000 "
         "+y_0=200000", 45, 48.5, -5, 8),
    25: (15, LAMBERT + " +lat_0=44.1 +lat_1=43.199291389 +lat_2=44.996093889 +x_0=600000 "
         "+y_0=200000", 42, 46, -2, 8),
    26: (15, LAMBERT + " +lat_0=42.165 +lat_1=41.560387778 +lat_2=42.767663333 +x_0=234.358 "
         "+y_0=185861.369", 41, 43.5, 8, 10),
    27: (2, "+proj=lcc +lon_0=3 +lat_0=46.5 +lat_1=44 +lat_2=49 +x_0=700000 +y_0=6600000",
         41, 52, -5, 10),
    28: (17, UTM, 34, 72, None, None),
    32: (22, UTM, 10, 70, None, None),
    33: (19, UTM, 10, 70, None, None),
    34: (24, "+proj=sterea +lat_0=52.156160556 +lon_0=5.387638889 +k=0.9999079 +x_0=155000 "
         "+y_0=463000", 50, 54, 3, 8),
    35: (25, "+proj=tmerc +lon_0=9 +k=0.9996 +x_0=1500000", 36, 47, 6, 12),
    36: (25, "+proj=tmerc +lon_0=15 +k=0.9996 +x_0=2520000", 36, 47, 12, 19),
    37: (26, NGO + "6.05625", 58, 64, 4, 8),
    38: (26, NGO + "8.389583333", 58, 64, 6, 11),
    39: (26, NGO + "10.722916667", 58, 66, 9, 13),
    40: (26, NGO + "13.222916667", 60, 68, 11, 15),
    41: (26, NGO + "16.889583333", 64, 70, 14, 19),
    42: (26, NGO + "20.889583333", 66, 71, 18, 23),
    43: (26, NGO + "24.889583333", 68, 72, 22, 27),
    44: (26, NGO + "29.05625", 68, 72, 27, 32),
    45: (15, LAMBERT + " +lat_0=46.8 +lat_1=45.898918889 +lat_2=47.696014444 +x_0=600000 "
         "+y_0=2200000", 41, 52, -5, 10),
    46: (15, LAMBERT + " +lat_0=47 +lat_1=45 +lat_2=49 +x_0=600000 +y_0=600000", 41, 52, -5, 10),
    47: (27, UTM, 54, 58, 6, 18),
    50: (2, "+proj=tmerc +lon_0=15.80316 +k=1.00000496 +x_0=118467.6688 +y_0=-6366206.3789",
         56, 59, 13, 18),
    51: (5, "+proj=tmerc +lon_0=13.558277778 +x_0=1500000", 55, 66, 10, 17),
}
POINTS_PER_GRID = 10
# Half the parameters' last printed digit on both sides.
TOLERANCE = 0.0001
CONIC_TOLERANCE = 0.0002  # the Belgian meridian above is as good as its n

# Zone: EPSG code of its definition.
STATE_PLANE_27 = {
    101: 26729, 102: 26730, 201: 26748, 202: 26749, 203: 26750, 301: 26751, 302: 26752,
    401: 26741, 402: 26742, 403: 26743, 404: 26744, 405: 26745, 406: 26746, 407: 26799,
    501: 26753, 502: 26754, 503: 26755, 600: 26756, 700: 26757, 901: 26758, 902: 26759,
    903: 26760, 1001: 26766, 1002: 26767, 1101: 26768, 1102: 26769, 1103: 26770, 1201: 26771,
    1202: 26772, 1301: 26773, 1302: 26774, 1401: 26775, 1402: 26776, 1501: 26777, 1502: 26778,
    1601: 26779, 1602: 26780, 1701: 26781, 1702: 26782, 1703: 32099, 1801: 26783, 1802: 26784,
    1900: 26785, 2001: 26786, 2002: 26787, 2101: 5623, 2102: 5624, 2103: 5625, 2111: 6966,
    2112: 6201, 2113: 6202, 2201: 26791, 2202: 26792, 2203: 26793, 2301: 26794, 2302: 26795,
    2401: 26796, 2402: 26797, 2403: 26798, 2501: 32001, 2502: 32002, 2503: 32003, 2601: 32005,
    2602: 32006, 2701: 32007, 2702: 32008, 2703: 32009, 2800: 32010, 2900: 32011, 3001: 32012,
    3002: 32013, 3003: 32014, 3101: 32015, 3102: 32016, 3103: 32017, 3104: 4456, 3200: 32019,
    3301: 32020, 3302: 32021, 3401: 32022, 3402: 32023, 3501: 32024, 3502: 32025, 3601: 32026,
    3602: 32027, 3701: 32028, 3702: 4455, 3800: 32030, 3901: 32031, 3902: 32033, 4001: 32034,
    4002: 32035, 4100: 2204, 4201: 32037, 4202: 32038, 4203: 32039, 4204: 32040, 4205: 32041,
    4301: 32042, 4302: 32043, 4303: 32044, 4400: 32045, 4501: 32046, 4502: 32047, 4601: 32048,
    4602: 32049, 4701: 32050, 4702: 32051, 4801: 32052, 4802: 32053, 4803: 32054, 4901: 32055,
    4902: 32056, 4903: 32057, 4904: 32058, 5002: 26732, 5003: 26733, 5004: 26734, 5005: 26735,
    5006: 26736, 5007: 26737, 5008: 26738, 5009: 26739, 5010: 26740, 5101: 3561, 5102: 3562,
    5103: 3563, 5104: 3564, 5105: 3565, 5201: 3991, 5202: 3992,
}
STATE_PLANE_83 = {
    101: 26929, 102: 26930, 201: 26948, 202: 26949, 203: 26950, 301: 26951, 302: 26952,
    401: 26941, 402: 26942, 403: 26943, 404: 26944, 405: 26945, 406: 26946, 501: 26953,
    502: 26954, 503: 26955, 600: 26956, 700: 26957, 901: 26958, 902: 26959, 903: 26960,
    1001: 26966, 1002: 26967, 1101: 26968, 1102: 26969, 1103: 26970, 1201: 26971, 1202: 26972,
    1301: 26973, 1302: 26974, 1401: 26975, 1402: 26976, 1501: 26977, 1502: 26978, 1601: 2205,
    1602: 26980, 1701: 26981, 1702: 26982, 1703: 32199, 1801: 26983, 1802: 26984, 1900: 26985,
    2001: 26986, 2002: 26987, 2111: 26988, 2112: 26989, 2113: 26990, 2201: 26991, 2202: 26992,
    2203: 26993, 2301: 26994, 2302: 26995, 2401: 26996, 2402: 26997, 2403: 26998, 2500: 32100,
    2600: 32104, 2701: 32107, 2702: 32108, 2703: 32109, 2800: 32110, 2900: 32111, 3001: 32112,
    3002: 32113, 3003: 32114, 3101: 32111, 3102: 32116, 3103: 32117, 3104: 32118, 3200: 32119,
    3301: 32120, 3302: 32121, 3401: 32122, 3402: 32123, 3501: 32124, 3502: 32125, 3601: 32126,
    3602: 32127, 3701: 32128, 3702: 32129, 3800: 32130, 3900: 32133, 4001: 32134, 4002: 32135,
    4100: 32136, 4201: 32137, 4202: 32138, 4203: 32139, 4204: 32140, 4205: 32141, 4301: 32142,
    4302: 32143, 4303: 32144, 4400: 32145, 4501: 32146, 4502: 32147, 4601: 32148, 4602: 32149,
    4701: 32150, 4702: 32151, 4801: 32152, 4802: 32153, 4803: 32154, 4901: 32155, 4902: 32156,
    4903: 32157, 4904: 32158, 5001: 26931, 5002: 26932, 5003: 26933, 5004: 26934, 5005: 26935,
    5006: 26936, 5007: 26937, 5008: 26938, 5009: 26939, 5010: 26940, 5101: 26961, 5102: 26962,
    5103: 26963, 5104: 26964, 5105: 26965, 5200: 32161,
}
WESTERN_27 = {
    201, 202, 203, 301, 302, 401, 402, 403, 404, 405, 406, 407, 501, 502, 503, 1101, 1102, 1103,
    1401, 1402, 1501, 1502, 2501, 2502, 2503, 2601, 2602, 2701, 2702, 2703, 3001, 3002, 3003,
    3301, 3302, 3501, 3502, 3601, 3602, 4001, 4002, 4201, 4202, 4203, 4204, 4205, 4301, 4302,
    4303, 4601, 4602, 4901, 4902, 4903, 4904,
}
# Scale factors that replace EPSG's: Rhode Island's is 1 - 1/160000, rounded there to 5 mm; Michigan's
# conic zones have one that stands for an enlarged ellipsoid, which grid 30 has no room for.
SCALES = {3800: 0.99999375, 2111: 1.0, 2112: 1.0, 2113: 1.0}
STATE_PLANE_TOLERANCE = 0.001  # EPSG rounds the other scale factors to half a millimetre at most
# Here EPSG has an oblique Mercator, which the grid replaces by the transverse one at its centre.
ALASKA_1 = ("+proj=tmerc +lat_0=57 +lon_0=-133.66666666666667 +k=0.9999 +x_0=818676.7344011232 "
            "+y_0=575097.6888751927")


def cct(operation, points):
    """Projects (latitude, longitude) pairs in degrees; returns (easting, northing) as texts."""
    lines = "".join(f"{lon} {lat} 0 0\n" for lat, lon in points)
    out = subprocess.run(["cct", "-d", "6", *operation.split()], input=lines, text=True,
                         capture_output=True, check=True).stdout
    results = [tuple(line.split()[:2]) for line in out.splitlines()]
    assert len(results) == len(points) and "*" not in out, operation
    return results


def degrees(value):
    return f"{value:.9f}"


def plain_grids(rng):
    for grid, (datum, projection, south, north, west, east) in GRIDS.items():
        zoned = "{z}" in projection
        for _ in range(POINTS_PER_GRID):
            if west is None:
                lon = rng.uniform(-180, 180)
            else:
                lon = rng.uniform(west, east)
            lat = degrees(rng.uniform(south, north))
            zone = min(math.floor((lon + 180) / 6) + 1, 60) if zoned else 0
            operation = f"{projection.format(z=6 * zone - 183)} {ellipsoid(datum)}"
            easting, northing = cct(operation, [(lat, degrees(lon))])[0]
            tolerance = CONIC_TOLERANCE if grid == 22 else TOLERANCE
            yield grid, zone or "", datum, lat, degrees(lon), easting, northing, tolerance, "PROJ"


def strips(rng):
    for _ in range(POINTS_PER_GRID + 10):
        zone = rng.randint(1, 10)
        lat, lon = degrees(rng.uniform(47, 55)), degrees(3 * zone + rng.uniform(-1.45, 1.45))
        operation = (f"+proj=tmerc +lon_0={3 * zone} +x_0={500000 + 1000000 * zone} "
                     f"{ellipsoid(18)}")
        easting, northing = cct(operation, [(lat, lon)])[0]
        yield 29, zone, 18, lat, lon, easting, northing, TOLERANCE, "PROJ"


def epsg_operation(code, zone, datum, false_easting):
    text = subprocess.run(["projinfo", "-q", "-o", "PROJ", f"EPSG:{code}"], text=True,
                          capture_output=True, check=True).stdout
    kept = [word for word in text.split()
            if re.match(r"\+(proj|lat_\d|lon_0|k|k_0|x_0|y_0)=", word)]
    if false_easting is not None:
        kept = [word for word in kept if not word.startswith("+x_0=")] + [f"+x_0={false_easting}"]
    if zone in SCALES:
        kept = [word for word in kept if not word.startswith("+k")] + [f"+k_0={SCALES[zone]}"]
    return " ".join(kept) + " " + ellipsoid(datum)


def datum_of_27(zone):
    if 5001 < zone <= 5010:
        return 20
    if zone > 5100:
        return 22
    return 23 if zone in WESTERN_27 else 21


def state_planes(rng):
    zones = [(30, zone, datum_of_27(zone), code, 152400.30480061)
             for zone, code in STATE_PLANE_27.items()]
    zones += [(31, zone, 19, code, None) for zone, code in STATE_PLANE_83.items()]
    for grid, zone, datum, code, false_easting in zones:
        source = f"EPSG:{code} by PROJ"
        if (grid, zone) == (31, 5001):
            operation, source = f"{ALASKA_1} {ellipsoid(19)}", "PROJ"
        else:
            operation = epsg_operation(code, zone, datum, false_easting)
        origin = {k: float(v) for k, v in re.findall(r"\+(lat_0|lon_0)=(\S+)", operation)}
        for _ in range(2 if zone < 5000 else 3):
            lat = degrees(origin["lat_0"] + rng.uniform(0.2, 3))
            lon = degrees(origin["lon_0"] + rng.uniform(-1.5, 1.5))
            easting, northing = cct(operation, [(lat, lon)])[0]
            yield (grid, zone, datum, lat, lon, easting, northing, STATE_PLANE_TOLERANCE,
                   source)


def danish_sets():
    """Coefficients and origins by name, from the table's text."""
    text = (ROOT / "src" / "geodesy" / "danish_polynomials.cpp").read_text()
    arrays = {}
    for degree, name, body in re.findall(
            r"CoefficientCount\((\d+)\)> (\w+) = \{(.*?)\};", text, re.S):
        numbers = iter(Fraction(x) for x in re.findall(r"[-+.\de]+", body))
        arrays[name] = [(i, j, next(numbers)) for i in range(int(degree), -1, -1)
                        for j in range(int(degree) - i, -1, -1)]
    origins = re.findall(r"\.origin = \{\.eastingMetres = ([\d.]+), \.northingMetres = ([\d.]+)\}.*?"
                         r"\.northing = (\w+),", text, re.S)
    return arrays, {name: (Fraction(e), Fraction(n)) for e, n, name in origins}


def danish(rng):
    arrays, origins = danish_sets()
    areas = [(48, 1, "kJyllandToGrid", 55.2, 57.2, 8.6, 10.3),
             (48, 2, "kSjaellandToGrid", 55.0, 56.0, 11.4, 12.4),
             (49, "", "kBornholmToGrid", 55.02, 55.28, 14.72, 15.12)]
    for grid, zone, name, south, north, west, east in areas:
        for _ in range(POINTS_PER_GRID):
            lat, lon = degrees(rng.uniform(south, north)), degrees(rng.uniform(west, east))
            plane = cct(f"{UTM.format(z=9)} {ellipsoid(27)}", [(lat, lon)])[0]
            e0, n0 = origins[name + "Northing"]
            de, dn = Fraction(plane[0]) - e0, Fraction(plane[1]) - n0
            easting, northing = (
                float(sum(c * dn**i * de**j for i, j, c in arrays[name + output]))
                for output in ("Easting", "Northing"))
            yield (grid, zone, 27, lat, lon, f"{easting:.6f}", f"{northing:.6f}", TOLERANCE,
                   "PROJ and fractions")


def shift(lat, lon, height, source, target):
    """The datum shift in mpmath numbers, as it is defined."""
    mp = mpmath
    a, e2, dx, dy, dz, rx, ry, rz, s = map(mp.mpf, DATUMS[source])
    n = a / mp.sqrt(1 - e2 * mp.sin(lat)**2)
    x = (n + height) * mp.cos(lat) * mp.cos(lon)
    y = (n + height) * mp.cos(lat) * mp.sin(lon)
    z = (n * (1 - e2) + height) * mp.sin(lat)
    if any((dx, dy, dz, rx, ry, rz, s)):
        x = (x - rz * y + ry * z) * (1 + s) + dx
        y = (rz * x + y - rx * z) * (1 + s) + dy
        z = (rx * y - ry * x + z) * (1 + s) + dz
    a, e2, dx, dy, dz, rx, ry, rz, s = map(mp.mpf, DATUMS[target])
    if any((dx, dy, dz, rx, ry, rz, s)):
        u, v, w = x - dx, y - dy, z - dz
        x = (u + rz * v - ry * w) / (1 + s)
        y = (rx * w - rz * x + v) / (1 + s)
        z = (ry * x - rx * y + w) / (1 + s)
    p = mp.sqrt(x * x + y * y)
    phi = mp.atan2(z, (1 - e2) * p)
    for _ in range(10):
        n = a / mp.sqrt(1 - e2 * mp.sin(phi)**2)
        phi = mp.atan2(z + e2 * n * mp.sin(phi), p)
    return phi, mp.atan2(y, x), p / mp.cos(phi) - n


def shifts(rng):
    pairs = [(5, 1), (1, 5), (6, 1), (7, 12), (8, 25), (1, 10), (12, 18), (16, 24), (26, 27),
             (27, 26), (25, 9), (13, 17), (3, 1), (1, 15), (1, 2), (2, 1), (20, 23), (4, 19)]
    for source, target in pairs:
        heights = [0.0, -60.0, rng.uniform(0, 9000), 2.0e7]
        for height in heights:
            for south, north in ((-89.9, -10), (-10, 10), (10, 80), (80, 89.99)):
                lat = math.radians(rng.uniform(south, north))
                lon = math.radians(rng.uniform(-180, 180))
                values = shift(mpmath.mpf(lat), mpmath.mpf(lon), mpmath.mpf(height), source, target)
                yield (source, target, repr(lat), repr(lon), repr(height),
                       *(mpmath.nstr(v, 20) for v in values))


def write(name, head, rows):
    lines = [f"# Made by tools/{pathlib.Path(__file__).name}, which says from what.", head]
    lines += [",".join(str(field) for field in row) for row in rows]
    (DATA / name).write_text("\n".join(lines) + "\n")
    print(f"{name}: {len(lines) - 2} rows")


def main():
    mpmath.mp.dps = 50
    DATA.mkdir(parents=True, exist_ok=True)
    rng = random.Random(19871026)
    rows = [row for part in (plain_grids, strips, state_planes, danish) for row in part(rng)]
    write("grids.csv", "grid,zone,grid_datum,latitude,longitude,easting,northing,tolerance_m,source",
          sorted(rows, key=lambda row: row[0]))
    write("shifts.csv", "from,to,latitude,longitude,height,to_latitude,to_longitude,to_height",
          shifts(rng))


if __name__ == "__main__":
    main()
