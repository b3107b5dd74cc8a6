// Hyperbolic functions, since devices do not offer them. Relative error below 1e-15, small
// arguments included.
#pragma once

namespace kavrel {

struct SinhCosh {
    double sinh;
    double cosh;
};

SinhCosh SinhCoshOf(double x);
double Sinh(double x);
double Asinh(double x);
double Atanh(double x);  // -1 < x < 1

}  // namespace kavrel
