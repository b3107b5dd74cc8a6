// The ellipsoids that datums are measured on.
#pragma once

#include <array>
#include <cstddef>

namespace kavrel {

struct Ellipsoid {
    double semiMajorAxisMetres = 0.0;
    double e2 = 0.0;  // first eccentricity, squared

    bool operator==(const Ellipsoid&) const = default;
};

// Indexed by the ellipsoid row of a datum. The digits are kept as they were entered: several rows
// have only an axis (no datum refers to them), and e2 is not to be recomputed from a flattening.
inline constexpr std::array<Ellipsoid, 37> kEllipsoids = {{
    {0.0, 0.0},                        // 0: none
    {6377563.396, 0.00667054},         // 1: Airy 1830
    {6377340.189, 0.00667054015},      // 2: Airy modified
    {6378135.0, 0.0},                  // 3
    {6378160.0, 0.006694541855},       // 4: Australian National
    {6377397.155, 0.006674372230614},  // 5: Bessel 1841
    {6377397.155, 0.0},                // 6
    {6377483.865, 0.00667437223},      // 7: Bessel 1841, Namibia
    {6378206.4, 0.006768658},          // 8: Clarke 1866
    {6378249.145, 0.00680351128},      // 9: Clarke 1880
    {6377276.345, 0.00663784663},      // 10: Everest and its variants, to 15
    {6377304.063, 0.0066378663},       // 11
    {6377301.243, 0.00663784607},      // 12
    {6377295.664, 0.0},                // 13
    {6377309.613, 0.00663784607},      // 14
    {6377298.556, 0.00663784663},      // 15
    {6378166.0, 0.0},                  // 16
    {6378150.0, 0.0},                  // 17
    {6378155.0, 0.00669342162},        // 18: Fischer 1960 modified
    {6378160.0, 0.0},                  // 19
    {6378140.0, 0.0},                  // 20
    {6378137.0, 0.006694380023011},    // 21: GRS 80
    {6378200.0, 0.00669342162},        // 22: Helmert 1906
    {6378270.0, 0.00672267002},        // 23: Hough
    {6378160.0, 0.00669460908},        // 24: Indonesian 1974
    {6378388.0, 0.006722670022},       // 25: International 1924
    {6378157.5, 0.0},                  // 26
    {6378245.0, 0.00669342162},        // 27: Krassovsky 1940
    {6370997.0, 0.0},                  // 28: a sphere
    {6378136.0, 0.006694385},          // 29
    {6378160.0, 0.00669454185},        // 30: South American 1969
    {6378165.0, 0.0},                  // 31
    {6378145.0, 0.0},                  // 32
    {6378135.0, 0.00669431778},        // 33: WGS 72
    {6378137.0, 0.006694379990197},    // 34: WGS 84
    {6378249.2, 0.00680348764},        // 35: Clarke 1880 (IGN)
    {6377492.018, 0.006674373},        // 36: Bessel modified, Norway
}};

inline constexpr std::size_t kInternational1924 = 25;

}  // namespace kavrel
