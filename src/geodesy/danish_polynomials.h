// The polynomials of the old Danish systems, and where they hold.
#pragma once

#include <span>

#include "geodesy/points.h"

namespace kavrel {

// A pair of polynomials in two variables, counted from an origin. Outside the box of its input it
// explodes.
struct DanishPolynomial {
    int degree;
    PlanePoint origin;
    PlanePoint southWest;
    PlanePoint northEast;
    std::span<const double> northing;  // coefficients, highest powers first
    std::span<const double> easting;
};

struct DanishPolynomialPair {
    DanishPolynomial toGrid;    // from the transverse Mercator plane to the system
    DanishPolynomial fromGrid;  // and back
};

extern const DanishPolynomialPair kJyllandPolynomials;
extern const DanishPolynomialPair kSjaellandPolynomials;
extern const DanishPolynomialPair kBornholmPolynomials;

}  // namespace kavrel
