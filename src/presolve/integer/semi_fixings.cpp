// semi_fixings.cpp -- semi-continuous columns whose bounds decide between zero and the range of other values
//
// Method      Let the range be [SemiLb, SemiUb], cut to the working bounds of the column. If 0 is outside of the working
//             bounds the column takes values of the range only; if the range is empty it is 0; if the range contains 0
//             the column is continuous. In each case it becomes an ordinary column.
// Postsolve   None, but that of fixing a column at 0.
// Tolerances  A range that begins within the feasibility tolerance of 0 counts as containing it: every value between is
//             then an accepted value of the model. One that is empty by less than that is not empty.
// Cost        O(semi-continuous columns + entries of those whose bounds change)
#include "presolve/errors.h"
#include <algorithm>

namespace
{
struct Range {
    double lb, ub;
};

int no_longer_semi(PresolveWork *w, int k)
{
    const int j = w->SemiCols.data[k];
    w->ColFlags.data[j] &= ~COL_IS_SEMI;
    w->SemiCols.data[k] = -1;
    mark_col(w, j);
    mark_rows_of_col(w, j);
    return 0;
}

int take_range(PresolveWork *w, int k, const Range &range)
{
    const int j = w->SemiCols.data[k];
    // bounds that cross by less than the tolerance meet
    const double lb = range.lb <= range.ub ? range.lb : 0.5 * (range.lb + range.ub);
    const double ub = range.lb <= range.ub ? range.ub : lb;
    w->BoundsChanged += w->Lb.data[j] != lb || w->Ub.data[j] != ub; // copied
    change_bounds(w, j, lb, ub);
    return no_longer_semi(w, k);
}

int take_zero(PresolveWork *w, int k)
{
    const int j = w->SemiCols.data[k];
    TRY(no_longer_semi(w, k));
    w->BoundsChanged++;
    return fix_column(w, j, 0, STATUS_BY_SIGN);
}

int settle(PresolveWork *w, int k)
{
    const int j = w->SemiCols.data[k];
    const double zero = w->FeasTol + bound_error(w, j);
    const Range range = {std::max(w->SemiLb.data[k], w->Lb.data[j]),
                         std::min(w->SemiUb.data[k], w->Ub.data[j])};
    const bool may_be_zero = w->Lb.data[j] <= zero && w->Ub.data[j] >= -zero;
    if (range.lb > range.ub + 2 * zero) {
        if (may_be_zero) return take_zero(w, k);
        w->InfeasCol = j;
        return END_INFEASIBLE;
    }
    if (!may_be_zero) return take_range(w, k, range);
    if (range.lb > w->FeasTol || range.ub < -w->FeasTol) return 0;
    return no_longer_semi(w, k);
}
} // namespace

int pre_semi_fixings(PresolveWork *w)
{
    for (int k = 0; k < w->NumSemi; k++) {
        if (w->SemiCols.data[k] < 0) continue;
        TRY(check_limits(w, 1));
        TRY(settle(w, k));
    }
    return 0;
}
