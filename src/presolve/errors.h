// errors.h -- how far the numbers of the presolve record may be off
//
// Problem     Substitutions leave sums of which a part, or all, is rounding. And the model itself is known only so well:
//             a point that violates its rows by DataErr counts as feasible, and a multiple of a row multiplies that too.
// Method      Beside each right-hand side, cost and bound stands about the largest error that went into it: the rounding
//             of each term, and the errors of what it was made from, times their factors. The largest and not the sum:
//             errors have both signs, and a bound on their sum would soon say nothing. ERROR_MARGIN makes up for that.
//             For coefficients the size of the largest term of their sum is kept instead, from which the error follows;
//             most are as given and have none.
// Use         A number within its error is zero. Tests that end a model add the error to their tolerance. A substitution
//             is refused when it would make an error that tolerances no longer hide.
// Cost        A few operations per number that changes, none for those that do not.
// Literature  J. H. Wilkinson, "Rounding Errors in Algebraic Processes", 1963 (running error analysis).
#pragma once
#include "presolve/work.h"
#include <algorithm>
#include <cmath>

static constexpr double ROUNDING_UNIT = 1e-15; // of one operation, against its largest term
static constexpr double ERROR_MARGIN = 10;     // sums of errors over the largest of them
// times an entry, from which the size of its terms is remembered
static constexpr double KEPT_SIZE = 10;

inline void raise_to(double *error, double at_least)
{
    if (at_least > *error) *error = at_least;
}

// ---- what may be allowed for ----
inline double rhs_error(const PresolveWork *w, int i)
{
    return ERROR_MARGIN * w->RhsErr.data[i];
}
inline double cost_error(const PresolveWork *w, int j)
{
    return ERROR_MARGIN * w->ObjErr.data[j];
}
inline double bound_error(const PresolveWork *w, int j)
{
    return ERROR_MARGIN * w->BoundErr.data[j];
}

// ---- coefficients ----
// Size of the terms that made entry p.
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

// ---- what changes make of errors ----
// Rhs[i] += a term of this size that is off by `error`.
inline void add_to_rhs_error(PresolveWork *w, int i, double size, double error)
{
    raise_to(&w->RhsErr.data[i], std::max(ROUNDING_UNIT * size, error));
}
inline void add_to_cost_error(PresolveWork *w, int j, double size, double error)
{
    raise_to(&w->ObjErr.data[j], std::max(ROUNDING_UNIT * size, error));
}
// A bound of column j comes from row i, whose entry there is a and whose other terms have this size.
inline void bound_from_row(PresolveWork *w, int i, int j, double a, double size)
{
    raise_to(&w->BoundErr.data[j],
             std::max(ROUNDING_UNIT * size, w->RhsErr.data[i]) / std::fabs(a));
}

// Whether the column of entry p may leave through its row: the largest entries of the column (col_largest) and of the row
// (row_largest) over the pivot do not enlarge the errors of the row and of the cost beyond tolerances, and no entry is
// mostly rounding. Cost: O(length of row and column).
bool errors_allow(const PresolveWork *w, int p, double col_largest, double row_largest);
