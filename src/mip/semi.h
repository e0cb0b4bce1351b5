// semi.h -- values of semi-continuous columns, and of integers that are whole within the tolerance only
#pragma once
#include "presolve/presolve.h"
#include <algorithm>
#include <cmath>

// Distance to the nearest allowed value: 0, or one of [lower, upper].
inline double semi_violation(const SemiColumn &semi, double x)
{
    const double inside = std::clamp(x, semi.lower, semi.upper);
    return std::min(std::fabs(x), std::fabs(x - inside));
}

// For a branch on a variable whose value is whole within the tolerance: a value in the middle of the integers around it,
// so that the two sides exclude the values between them. A value that rounding errors have put beyond a bound of the
// variable (lower < upper) gets one within the bounds: else one side would be empty, and the other one all there is.
inline double near_integer(double x, double lower, double upper)
{
    const double whole = std::round(x), middle = x < whole ? whole - 0.5 : whole + 0.5;
    return std::clamp(middle, lower + 0.5, upper - 0.5);
}
