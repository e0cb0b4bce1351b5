// primal_update.cpp -- update of basic values, phase-1 costs and reduced costs in a primal simplex iteration
#include "simplex/primal.h"
#include <algorithm>

namespace
{
template<class R> signed char state_of(const sopt *s, const swork<R> *w, int i)
{
    const R x = w->Bbar.data[i], tol = R(s->FeasTol);
    if (x < R(s->BasicLower.data[i]) - tol) return ROW_BELOW;
    if (x > R(s->BasicUpper.data[i]) + tol) return ROW_ABOVE;
    return ROW_FEASIBLE;
}
} // namespace

template<class R> int primal_classify(sopt *s, swork<R> *w)
{
    int infeasible = 0;
    for (int i = 0; i < s->NumRows; i++) {
        w->Primal->RowState.data[i] = state_of(s, w, i);
        infeasible += w->Primal->RowState.data[i] != ROW_FEASIBLE;
    }
    return infeasible;
}

template<class R> void primal_move_basics(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const R step = R(p->Direction) * p->Step;
    const R *__restrict alpha = w->Alpha.Value.data;
    R *__restrict bbar = w->Bbar.data;
    svec_clear(&p->CostChange);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        bbar[i] -= step * alpha[i];
        if (!p->Phase1) continue;
        // The leaving variable will be at a bound: its phase-1 cost becomes zero.
        const signed char state =
            i == p->PivotRow ? static_cast<signed char>(ROW_FEASIBLE) : state_of(s, w, i);
        const int change = state - p->RowState.data[i];
        p->RowState.data[i] = state;
        if (change != 0) svec_add(&p->CostChange, i, R(change));
    }
}

// d -= (A I)^T B^-T (cost change), in the basis before the pivot; reduced costs of basic variables stay zero.
template<class R> void primal_apply_cost_change(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (p->CostChange.Count == 0) return;
    const int q = p->PivotCol;
    svec_copy(&w->Rho, &p->CostChange);
    Btran(&w->Lu, &w->Rho, SOLVE_COSTS, Keep::NO);
    compute_row(s, w);
    for (int k = 0; k < w->RowCount; k++) {
        const int j = w->RowInd.data[k];
        w->Cbar.data[j] -= w->RowVal.data[k];
        if (j != q) primal_set_merit(s, w, j);
    }
}

#define INSTANTIATE(R)                                                                     \
    template int primal_classify<R>(sopt *, swork<R> *);                                   \
    template void primal_move_basics<R>(sopt *, swork<R> *);                               \
    template void primal_apply_cost_change<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
