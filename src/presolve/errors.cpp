// errors.cpp -- tests whether a substitution keeps errors within the tolerances
#include "presolve/errors.h"

namespace
{
// Largest error of a right-hand side in feasibility tolerances: that of a row multiplied by ten thousand.
constexpr double MOST_RHS_ERROR = 10;
constexpr double MOST_COST_ERROR = 1; // largest error of a cost in optimality tolerances
// Largest size of the terms of an entry over the pivot: nine digits are left.
constexpr double MOST_LOST = 1e6;
} // namespace

bool errors_allow(const PresolveWork *w, int p, double col_largest, double row_largest)
{
    const PresolveNode &pivot = w->Nodes.data[p];
    const double a = std::fabs(pivot.value);
    if (w->RhsErr.data[pivot.row] * col_largest > MOST_RHS_ERROR * w->FeasTol * a ||
        w->ObjErr.data[pivot.col] * row_largest > MOST_COST_ERROR * w->OptTol * a)
        return false;
    if (!w->HasSizes) return true;
    double size = 0;
    for (int q = first_in_row(w, pivot.row); q >= 0; q = next_in_row(w, q))
        size = std::max(size, w->EntrySize.data[q]);
    for (int q = first_in_col(w, pivot.col); q >= 0; q = next_in_col(w, q))
        size = std::max(size, w->EntrySize.data[q]);
    return size <= MOST_LOST * a;
}
