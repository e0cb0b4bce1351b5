// primal.cpp -- the primal simplex method
//
// Problem     Solve the working LP from a basis by steps that do not increase its infeasibility, or, once feasible, its
//             objective.
// Method      Phase 1 minimises the sum of infeasibilities with a long-step ratio test; phase 2 keeps feasibility
//             (Harris test). Devex prices with reduced costs updated from the pivot row. On stalling, bounds move
//             outwards; when the relaxed problem is done, the true bounds return, and if the basis is then not feasible
//             the dual method finishes.
// Out         Status 2, 3, 5, a limit, or SIMPLEX_SWITCH when the dual has to go on.
// Invariant   Between refreshes: Bbar, Cbar (of the phase), RowState and merits belong to the basis.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr double TIGHT_MARKOWITZ = 0.5;
constexpr double STALL_SHARE =
    0.7;                           // degenerate share of the iterations since the last look
constexpr double STALL_LEAST = 30; // iterations needed for a judgement
constexpr int MAX_REJECTED = 50;   // columns set aside before the run gives up
constexpr double TIGHTEST_TOL =
    1e-9; // of reduced costs when an infeasibility is to be proved
constexpr double TIGHTEN = 1e-2;
constexpr double PRICE_TRUST =
    1e-3; // relative gap between stored and recomputed reduced cost

// True bounds back; nonbasics that stood at moved bounds return with them.
void remove_perturbation(sopt *s)
{
    std::copy_n(s->Lower.data, s->NumVars, s->WorkLower.data);
    std::copy_n(s->Upper.data, s->NumVars, s->WorkUpper.data);
    s->Perturbed = 0;
}

// Small infeasibilities that rounding brought into phase 2 are bridged by moving the bound.
template<class R> void shift_infeasible_bounds(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    for (int i = 0; i < s->NumRows; i++) {
        const int state = p->RowState.data[i], j = s->BasisHead.data[i];
        if (state == ROW_FEASIBLE) continue;
        double *bound = state == ROW_BELOW ? &s->WorkLower.data[j] : &s->WorkUpper.data[j];
        *bound = static_cast<double>(w->Bbar.data[i]);
        p->RowState.data[i] = ROW_FEASIBLE;
    }
    set_basic_bounds(s);
    s->Perturbed = std::max(s->Perturbed, 1);
}

// Reduced costs of the phase at hand.
template<class R> void compute_phase_dual(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (!p->Phase1) {
        compute_dual_for(s, w, s->Cost.data, w->Cbar.data);
        return;
    }
    double *cost = p->PhaseCost.data;
    for (int i = 0; i < s->NumRows; i++) cost[s->BasisHead.data[i]] = p->RowState.data[i];
    compute_dual_for(s, w, cost, w->Cbar.data);
    for (int i = 0; i < s->NumRows; i++) cost[s->BasisHead.data[i]] = 0;
}

template<class R> bool stalled(sopt *s, popt<R> *p)
{
    const double pivots = s->NPvt - p->StallIter;
    if (pivots < STALL_LEAST) return false;
    const bool yes = s->DegenCount - p->StallStart > STALL_SHARE * pivots;
    p->StallIter = s->NPvt;
    p->StallStart = s->DegenCount;
    return yes;
}

template<class R> int refresh(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int repairs = s->SingularCount;
    if (!has_factor(s, w) || w->Lu.NumUpdates > 0) TRY(Refactor(s, w));
    if (s->Status != SIMPLEX_RUNNING) return 0;
    if (s->SingularCount > repairs) row_copy_partition(s);
    if (s->PerturbAllowed && s->Perturbed < 3 && stalled(s, p)) primal_perturb(s, w);
    compute_primal(s, w);
    const bool was_feasible = !p->Phase1 && s->RefacReason != REFAC_START;
    const int infeasible = primal_classify(s, w);
    if (infeasible > 0 && was_feasible && s->PerturbAllowed) {
        shift_infeasible_bounds(s, w);
    } else {
        p->Phase1 = infeasible > 0;
    }
    if (!p->Phase1 && s->TightProof) { // feasible after all: the caller's tolerance again
        s->OptTol = s->Env->OptimalityTol;
        s->TightProof = 0;
    }
    compute_phase_dual(s, w);
    std::fill_n(p->ColRejected.data, s->NumVars, char(0));
    p->Rejected = 0;
    primal_list_reset(s, w);
    s->RefacReason = REFAC_NONE;
    return 0;
}

// No column improves phase 1, and rows are still infeasible.
template<class R> void end_phase1(sopt *s, swork<R> *w)
{
    if (s->Perturbed) {
        remove_perturbation(s);
        s->PerturbAllowed = 0;
        s->RefacReason = REFAC_CLEAN;
        return;
    }
    if (primal_classify(s, w) == 0) { // flips alone have made the last row feasible
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
    } else if (s->OptTol >
               TIGHTEST_TOL) { // reduced costs that were taken for zero still matter
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
    remove_perturbation(s);
    compute_primal(s, w);
    s->Status = primal_classify(s, w) == 0 ? SIMPLEX_OPTIMAL : SIMPLEX_SWITCH;
}

template<class R> void no_column(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (w->Lu.NumUpdates > 0) {
        s->RefacReason = REFAC_CLEAN;
    } else if (p->Rejected > 0) {
        s->Status = SIMPLEX_SWITCH;
    } else if (p->Phase1) {
        end_phase1(s, w);
    } else {
        end_phase2(s, w);
    }
}

template<class R> void no_row(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (w->Lu.NumUpdates > 0) {
        s->RefacReason = REFAC_CONFIRM;
    } else if (p->Phase1) {
        p->ColRejected.data[p->PivotCol] =
            1; // rounding: the sum of infeasibilities is bounded below
        primal_set_merit(s, w, p->PivotCol);
        p->Rejected++;
    } else if (s->Perturbed) {
        remove_perturbation(s);
        s->PerturbAllowed = 0;
        s->RefacReason = REFAC_START;
    } else {
        s->Status = SIMPLEX_UNBOUNDED;
    }
}

template<class R> void reject_column(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    s->NumericCount++;
    if (w->Lu.NumUpdates > 0) {
        s->RefacReason = REFAC_PIVOT;
        s->MarkowitzTol =
            std::max(s->MarkowitzTol, std::min(TIGHT_MARKOWITZ, 4 * s->MarkowitzTol));
        return;
    }
    p->ColRejected.data[p->PivotCol] = 1;
    primal_set_merit(s, w, p->PivotCol);
    if (++p->Rejected > MAX_REJECTED) s->Status = SIMPLEX_SWITCH;
}

// The reduced cost of the entering column from its FTRAN; false when the stored one was wrong.
template<class R> bool check_price(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int q = p->PivotCol;
    R exact = p->Phase1 ? R(0) : R(s->Cost.data[q]);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R cost =
            p->Phase1 ? R(p->RowState.data[i]) : R(s->Cost.data[s->BasisHead.data[i]]);
        exact -= cost * w->Alpha.Value.data[i];
    }
    const R stored = w->Cbar.data[q];
    w->Cbar.data[q] = exact;
    if (stored * exact > 0 && std::abs(exact) > R(s->OptTol)) return true;
    if (w->Lu.NumUpdates > 0 &&
        std::abs(stored - exact) > R(PRICE_TRUST) * (1 + std::abs(stored)))
        s->RefacReason = REFAC_CLEAN;
    primal_set_merit(s, w, q);
    return false;
}

template<class R> bool choose_column(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    while (s->RefacReason == REFAC_NONE) {
        p->PivotCol = price_list_best(&p->Columns);
        if (p->PivotCol < 0) return false;
        load_column(s, w, p->PivotCol, &w->Alpha);
        Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::YES);
        if (check_price(s, w)) {
            p->Direction = w->Cbar.data[p->PivotCol] < 0 ? 1 : -1;
            return true;
        }
    }
    return true;
}

// The entering variable runs to its other bound.
template<class R> void apply_flip(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int q = p->PivotCol;
    primal_move_basics(s, w);
    s->VStat.data[q] = p->Direction > 0 ? AT_UPPER : AT_LOWER;
    primal_apply_cost_change(s, w);
    primal_set_merit(s, w, q);
    s->NPvt++;
    s->Work++;
}

// Moves the bound at which the leaving variable stops, so that a step within the tolerance does not go backwards.
template<class R> void shift_blocking_bound(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (p->Step >= 0) return;
    p->Step = 0;
    const int j = s->BasisHead.data[p->PivotRow];
    double *bound = p->ToUpper ? &s->WorkUpper.data[j] : &s->WorkLower.data[j];
    *bound = static_cast<double>(w->Bbar.data[p->PivotRow]);
    s->Perturbed = std::max(s->Perturbed, 1);
}

template<class R> void update_reduced_costs(sopt *s, swork<R> *w, R theta, int leaving)
{
    const int q = w->Primal->PivotCol;
    for (int k = 0; k < w->RowCount; k++) {
        const int j = w->RowInd.data[k];
        w->Cbar.data[j] -= theta * w->RowVal.data[k];
        primal_set_merit(s, w, j);
    }
    w->Cbar.data[leaving] -= theta;
    w->Cbar.data[q] = R(0);
}

template<class R> void apply_pivot(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int r = p->PivotRow, q = p->PivotCol, leaving = s->BasisHead.data[r];
    const R pivot = w->Alpha.Value.data[r];
    if (p->Step <= R(s->FeasTol)) s->DegenCount++;
    const R entering_value = R(nonbasic_value(s, q)) + R(p->Direction) * p->Step;
    w->Cbar.data[leaving] = R(0);
    primal_move_basics(s, w);
    primal_apply_cost_change(s, w);

    svec_unit(&w->Rho, r, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
    compute_row(s, w);
    primal_update_weights(s, w, pivot);
    update_reduced_costs(s, w, w->Cbar.data[q] / pivot, leaving);

    const bool fixed = s->WorkLower.data[leaving] == s->WorkUpper.data[leaving];
    swap_basis(s, w, r, q, fixed ? AT_FIXED : p->ToUpper ? AT_UPPER : AT_LOWER);
    w->Bbar.data[r] = entering_value;
    p->RowState.data[r] = ROW_FEASIBLE;
    primal_set_merit(s, w, q);
    primal_set_merit(s, w, leaving);
    s->NPvt++;
    s->Work++;
    s->RefacReason = UpdateFactor(&w->Lu, r, pivot);
    if (s->RefacReason == REFAC_NONE && wants_refactor(s, w)) s->RefacReason = REFAC_FILL;
}

template<class R> void iterate(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (!choose_column(s, w)) {
        no_column(s, w);
        return;
    }
    if (s->RefacReason != REFAC_NONE) return;
    switch (primal_ratio(s, w)) {
    case RATIO_UNBOUNDED:
        no_row(s, w);
        return;
    case RATIO_FLIP:
        apply_flip(s, w);
        return;
    case RATIO_PIVOT:
        break;
    }
    if (std::abs(w->Alpha.Value.data[p->PivotRow]) < R(s->PivotTol)) {
        reject_column(s, w);
        return;
    }
    if (!p->Phase1) shift_blocking_bound(s, w);
    apply_pivot(s, w);
}

template<class R> int setup(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    std::copy_n(s->Cost.data, s->NumVars, s->WorkCost.data);
    remove_perturbation(s);
    s->BoxPhase = 0;
    settle_nonbasics(s);
    row_copy_partition(s);
    primal_reset_weights(s, w);
    p->Phase1 = 1;
    p->StallIter = s->NPvt;
    p->StallStart = s->DegenCount;
    s->RefacReason = REFAC_START;
    return 0;
}

template<class R> void write_log(sopt *s, swork<R> *w)
{
    if (!log_is_due(s)) return;
    const Infeasibility inf = measure_infeasibility(s, w);
    log_iteration(s, true_objective(s, w), inf.PrimalSum,
                  w->Primal->Phase1 ? 0 : inf.DualSum);
}
} // namespace

template<class R> int popt_create(const sopt *s, popt<R> **out)
{
    *out = nullptr;
    void *block = MemAllocZero(1, sizeof(popt<R>));
    if (!block) return OUT_OF_MEMORY;
    popt<R> *p = *out = static_cast<popt<R> *>(block);
    *p = popt<R>{};
    TRY(array_resize(&p->Weights, s->NumVars));
    TRY(array_resize(&p->Reference, s->NumVars));
    TRY(price_list_alloc(&p->Columns, s->NumVars));
    TRY(array_resize(&p->RowState, s->NumRows));
    TRY(array_assign(&p->PhaseCost, s->NumVars, 0.0));
    TRY(svec_alloc(&p->CostChange, s->NumRows));
    TRY(svec_alloc(&p->Change, s->NumRows));
    TRY(array_resize(&p->BreakStep, 2 * int64_t{s->NumRows}));
    TRY(array_resize(&p->BreakRow, 2 * int64_t{s->NumRows}));
    return array_assign(&p->ColRejected, s->NumVars, char(0));
}

template<class R> void popt_free(popt<R> **p)
{
    if (!*p) return;
    **p = popt<R>{};
    MemFree(*p);
    *p = nullptr;
}

template<class R> int PrimalRun(sopt *s, swork<R> *w)
{
    if (!w->Primal) TRY(popt_create(s, &w->Primal));
    TRY(setup(s, w));
    while (s->Status == SIMPLEX_RUNNING) {
        if (s->RefacReason != REFAC_NONE) {
            TRY(refresh(s, w));
            if (s->Status != SIMPLEX_RUNNING) break;
            write_log(s, w);
        }
        if (limit_reached(s)) break;
        iterate(s, w);
    }
    return 0;
}

template int PrimalRun<double>(sopt *, swork<double> *);
template int PrimalRun<long double>(sopt *, swork<long double> *);
template void popt_free<double>(popt<double> **);
template void popt_free<long double>(popt<long double> **);
