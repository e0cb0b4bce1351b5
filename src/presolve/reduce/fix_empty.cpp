// fix_empty.cpp -- columns without entries are fixed at the bound that their cost asks for
//
// A cost within its error counts as zero, so that it neither determines the bound nor makes the model unbounded. That no
// row holds the column is a dual argument: a callback of a search may hand in rows that do. With
// TARV_PAR_DUALREDUCTION 0 the columns of a model with integers stay.
#include "presolve/claim.h"
#include "presolve/errors.h"

namespace
{
constexpr double CLOSED = 1e-10;

int fix_empty_column(PresolveWork *w, int j)
{
    const double cost = w->Obj.data[j], zero = w->OptTol + cost_error(w, j);
    if ((cost > zero && !has_lb(w, j)) || (cost < -zero && !has_ub(w, j))) {
        w->InfeasCol = j;
        return claim_unbounded(w, {{j, cost > 0 ? -1.0 : 1.0}});
    }
    const double none = w->IsMip ? 0 : w->OptTol;
    if (cost > none && has_lb(w, j)) return fix_at_lower(w, j);
    if (cost < -none && has_ub(w, j)) return fix_at_upper(w, j);
    if (has_lb(w, j)) return fix_at_lower(w, j);
    return has_ub(w, j) ? fix_at_upper(w, j) : fix_column(w, j, 0, -3);
}
} // namespace

int fix_column_if_empty(PresolveWork *w, int j)
{
    if (w->IsMip && !w->Env->TARV_PAR_DUALREDUCTION) return 0;
    return w->ColCnt.data[j] == 0 && w->ColFlags.data[j] == 0 ? fix_empty_column(w, j) : 0;
}

int pre_fix_empty(PresolveWork *w)
{
    for (int j = 0; j < w->NumCols; j++) {
        TRY(check_limits(w, 1));
        if (!is_live_col(w, j)) continue;
        if (w->Lb.data[j] > w->Ub.data[j] - CLOSED) TRY(fix_by_range(w, j));
        if (is_live_col(w, j)) TRY(fix_column_if_empty(w, j));
    }
    return 0;
}
