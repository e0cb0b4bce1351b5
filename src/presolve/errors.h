// errors.h -- error estimates of the numbers in the presolve record
//
// Problem     Substitutions give sums that are partly or wholly rounding errors. Besides, the data have limited
//             accuracy: a point that violates the rows by DataErr counts as feasible, and a multiple of a row has a
//             multiple of that error.
// Method      For each right-hand side, cost and bound the largest error that went into it is kept: the rounding of
//             each term, and the errors of the numbers it was computed from, times their factors. The largest error and
//             not the sum of errors, which would overestimate strongly since errors have both signs; ERROR_MARGIN
//             allows for the difference. For coefficients the size of the largest term of their sum is kept instead,
//             from which the error follows; most coefficients are original data and have none.
// Use         A number within its error counts as zero. Tests for infeasibility and unboundedness add the error to
//             their tolerance. A substitution is refused if it would cause errors above the tolerances.
// Cost        A few operations per number that changes, none for those that do not.
// Literature  J. H. Wilkinson, "Rounding Errors in Algebraic Processes", 1963 (running error analysis).
#pragma once
#include "presolve/work.h"
#include <algorithm>
#include <cmath>

// rounding error of one operation, relative to its largest term
static constexpr double ROUNDING_UNIT = 1e-15;
// assumed ratio of a sum of errors to the largest of them
static constexpr double ERROR_MARGIN = 10;
// The size of the terms of an entry is kept if it is this many times the entry.
static constexpr double KEPT_SIZE = 10;

inline void raise_to(double *error, double at_least)
{
    if (at_least > *error) *error = at_least;
}

// ---- errors to allow for ----
inline double rhs_error(const PresolveWork *w, int i)
{
    return ERROR_MARGIN * w->RhsErr.data[i];
}
inline double cost_error(const PresolveWork *w, int j)
{
    return ERROR_MARGIN * w->ObjErr.data[j];
}
// Costs up to this count as zero: `little`, or with integers, whose solutions are not improved after postsolve, none but
// errors.
inline double no_cost(const PresolveWork *w, int j, double little)
{
    return (w->IsMip ? 0 : little) + cost_error(w, j);
}
inline double bound_error(const PresolveWork *w, int j)
{
    return ERROR_MARGIN * w->BoundErr.data[j];
}

// ---- coefficients ----
// Size of the terms that entry p was computed from.
inline double size_of_entry(const PresolveWork *w, int p)
{
    const double value = std::fabs(w->Nodes.data[p].value);
    return w->HasSizes ? std::max(value, w->EntrySize.data[p]) : value;
}
inline void set_entry_size(PresolveWork *w, int p, double size)
{
    const bool matters = size > KEPT_SIZE * std::fabs(w->Nodes.data[p].value);
    if (!matters && !w->HasSizes) return;
    w->EntrySize.data[p] = matters ? size : 0;
    w->HasSizes = true;
}

// ---- errors after changes ----
// For Rhs[i] += a term of this size with this error.
inline void add_to_rhs_error(PresolveWork *w, int i, double size, double error)
{
    raise_to(&w->RhsErr.data[i], std::max(ROUNDING_UNIT * size, error));
}
inline void add_to_cost_error(PresolveWork *w, int j, double size, double error)
{
    raise_to(&w->ObjErr.data[j], std::max(ROUNDING_UNIT * size, error));
}
// For a bound of column j from row i, in which it has the entry a and the other terms have this size.
inline void bound_from_row(PresolveWork *w, int i, int j, double a, double size)
{
    raise_to(&w->BoundErr.data[j],
             std::max(ROUNDING_UNIT * size, w->RhsErr.data[i]) / std::fabs(a));
}

// True if the column of entry p may be substituted out through its row: the growth of the errors, by the largest
// entries of the column (col_largest) and of the row (row_largest) over the pivot, keeps those of the row and of the
// cost within the tolerances, and no entry is mostly a rounding error. Cost: O(length of row and column).
bool errors_allow(const PresolveWork *w, int p, double col_largest, double row_largest);
