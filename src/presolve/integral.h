// integral.h -- rounding of values and bounds of integer columns
//
// Problem     A bound of an integer column from a row, a x <= rest, is rest / a rounded down; but a value above an integer
//             by a rounding error, or a point that violates the row by no more than its tolerance, must not be lost.
// Method      An integer counts as within the bound if it violates the row by no more than the tolerance, and is above
//             the bound by no more than IntTol: a row with tiny entries does not open the way to other integers.
#pragma once
#include "presolve/errors.h"

// What is added to a bound from row i with entry a before it is rounded down.
inline double integer_spare(const PresolveWork *w, int i, double a, double bound)
{
    const double by_row = (w->FeasTol + rhs_error(w, i)) / std::fabs(a);
    return std::min(w->IntTol, by_row) + ROUNDING_UNIT * std::fabs(bound);
}
// True if the row is violated beyond its tolerance by every integer that the rounded bound excludes.
inline bool rounding_is_certain(const PresolveWork *w, int i, double a)
{
    return w->FeasTol + rhs_error(w, i) <= w->IntTol * std::fabs(a);
}
// A bound of column j from row i with entry a, rounded if the column is integer.
inline double lower_from_row(const PresolveWork *w, int i, int j, double a, double bound)
{
    if (!is_integer(w, j)) return bound;
    return std::ceil(bound - integer_spare(w, i, a, bound)) + 0.0;
}
inline double upper_from_row(const PresolveWork *w, int i, int j, double a, double bound)
{
    if (!is_integer(w, j)) return bound;
    return std::floor(bound + integer_spare(w, i, a, bound)) + 0.0;
}
