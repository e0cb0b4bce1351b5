// primal_end.cpp -- what it means that the primal simplex finds no column, no row or no pivot
//
// Problem     No column to enter: the phase is optimal, if its prices are right. No row: the LP is unbounded, if the
//             factors are right. Neither holds for sure with updated factors, perturbed bounds, or columns set aside.
// Method      First possible causes of a wrong conclusion are removed, one at a time: fresh factors, no perturbation,
//             no share of the true costs in phase 1. An end counts when it is proved; else the column is set aside, or
//             the dual simplex continues.
// Out         Status, or RefacReason: the run goes on after a refresh.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
// columns set aside before the run ends with SIMPLEX_SWITCH
constexpr int MAX_REJECTED = 50;

// Smallest OptTol when an infeasibility is to be proved.
constexpr double TIGHTEST_TOL = 1e-9;

// factor on OptTol when an infeasibility could not be proved
constexpr double TIGHTEN = 1e-2;

// Phase 1 is optimal and rows are still infeasible.
template<class R> void end_phase1(sopt *s, swork<R> *w)
{
    if (s->Perturbed) {
        primal_remove_perturbation(s);
        s->PerturbAllowed = 0;
        s->RefacReason = REFAC_CLEAN;
        return;
    }
    if (primal_classify(s, w) == 0) { // bound flips made the last row feasible
        s->RefacReason = REFAC_CLEAN;
        return;
    }
    SVec<R> *y = &w->Rho;
    svec_clear(y);
    for (int i = 0; i < s->NumRows; i++)
        if (w->Primal->RowState.data[i] != ROW_FEASIBLE)
            svec_add(y, i, R(w->Primal->RowState.data[i]));
    Btran(&w->Lu, y, SOLVE_COSTS, Keep::NO);
    if (proves_infeasible(s, w)) {
        s->Status = SIMPLEX_INFEASIBLE;
    } else if (
        s->OptTol >
        TIGHTEST_TOL) { // reduced costs within the tolerance may still reduce infeasibility
        if (!s->TightProof) s->UsualOptTol = s->OptTol;
        s->OptTol = std::max(TIGHTEST_TOL, TIGHTEN * s->OptTol);
        s->TightProof = 1;
        primal_list_reset(s, w);
    } else {
        s->Status = SIMPLEX_SWITCH;
    }
}

template<class R> void end_phase2(sopt *s, swork<R> *w)
{
    if (!s->Perturbed) {
        s->Status = SIMPLEX_OPTIMAL;
        return;
    }
    primal_remove_perturbation(s);
    compute_primal(s, w);
    if (primal_classify(s, w) == 0) {
        s->Status = SIMPLEX_OPTIMAL;
        return;
    }
    // dual feasible: a few steps of the dual, if it leaves costs alone
    s->Status = SIMPLEX_SWITCH;
    s->PerturbAllowed = 0;
}

// The composite objective of phase 1 is optimal at an infeasible point: from now on only infeasibility is minimised.
template<class R> void drop_phase_costs(sopt *s, popt<R> *p)
{
    p->CostWeight = 0;
    s->RefacReason = REFAC_CLEAN;
}

// The column is not chosen again before the next refresh.
template<class R> void set_column_aside(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    p->ColRejected.data[p->PivotCol] = 1;
    primal_set_merit(s, w, p->PivotCol);
    if (++p->Rejected > MAX_REJECTED) s->Status = SIMPLEX_SWITCH;
}
} // namespace

template<class R> void primal_no_column(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (w->Lu.NumUpdates > 0 && (p->Rejected > 0 || p->Phase1 || wants_confirmation(s))) {
        s->RefacReason = REFAC_CLEAN;
    } else if (p->Rejected > 0) {
        s->Status = SIMPLEX_SWITCH;
    } else if (p->Phase1 && p->CostWeight > 0) {
        drop_phase_costs(s, p);
    } else if (p->Phase1) {
        end_phase1(s, w);
    } else {
        end_phase2(s, w);
    }
}

template<class R> void primal_no_row(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (w->Lu.NumUpdates > 0) {
        s->RefacReason = REFAC_CONFIRM;
    } else if (p->Phase1 && p->CostWeight > 0) {
        drop_phase_costs(s, p);
    } else if (p->Phase1 && s->Superbasics > 0) {
        primal_settle_superbasic(s, w);
    } else if (p->Phase1) { // a rounding error: the sum of infeasibilities is bounded below
        set_column_aside(s, w);
    } else if (s->Perturbed) {
        primal_remove_perturbation(s);
        s->PerturbAllowed = 0;
        s->RefacReason = REFAC_START;
    } else if (proves_unbounded(s, w, p->PivotCol, p->Direction)) {
        s->Status = SIMPLEX_UNBOUNDED;
    } else {
        set_column_aside(s, w);
    }
}

template<class R> void primal_reject_column(sopt *s, swork<R> *w)
{
    s->NumericCount++;
    if (w->Lu.NumUpdates > 0) {
        distrust_factors(s);
        return;
    }
    if (s->Superbasics > 0) {
        primal_settle_superbasic(s, w);
        return;
    }
    set_column_aside(s, w);
}

#define INSTANTIATE(R)                                                                     \
    template void primal_no_column<R>(sopt *, swork<R> *);                                 \
    template void primal_no_row<R>(sopt *, swork<R> *);                                    \
    template void primal_reject_column<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
