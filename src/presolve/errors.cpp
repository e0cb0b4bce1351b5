// errors.cpp -- whether a substitution would make errors that tolerances do not hide
#include "presolve/errors.h"

namespace
{
// feasibility tolerances: rows of the model enlarged ten thousand times
constexpr double MOST_RHS_ERROR = 10;
constexpr double MOST_COST_ERROR = 1; // optimality tolerances
// size of an entry's terms over the pivot: nine digits are left
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
