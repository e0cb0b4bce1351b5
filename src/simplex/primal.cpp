// primal.cpp -- the primal simplex method
//
// Problem     Solve the working LP from a basis by steps that do not increase the sum of infeasibilities (phase 1) or
//             the objective (phase 2).
// Method      Phase 1 minimises the sum of infeasibilities with a long-step ratio test; phase 2 keeps feasibility
//             (Harris ratio test). Columns are priced by steepest edge or Devex weights with reduced costs updated from
//             the pivot row, or by partial pricing. In a stall bounds are perturbed outwards; when the perturbed
//             problem is solved, the true bounds are restored, and if the basis is then not primal feasible the dual
//             simplex continues.
// Out         Status: see the table in sopt_states.h.
// Invariant   Between refreshes: Bbar, Cbar (of the phase), RowState and merits belong to the basis.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
// Largest true cost in phase 1; the cost of an infeasibility is 1.
constexpr double COST_SHARE = 0.1;

// update limit on models with few rows (updates_are_cheap)
constexpr int FEW_ROWS_UPDATES = 100;

// Relative difference up to which a small pivot from the row confirms that from the column.
constexpr double SMALL_PIVOT_GAP = 1e-3;

// Relative difference of stored and recomputed reduced cost from which a refresh is asked for.
constexpr double PRICE_TRUST = 1e-3;

// Reduced costs of the current phase.
template<class R> void compute_phase_dual(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (!p->Phase1) {
        compute_dual_for(s, w, s->Cost.data, w->Cbar.data);
        return;
    }
    double *cost = p->PhaseCost.data;
    for (int j = 0; j < s->NumCols; j++) cost[j] = p->CostWeight * s->Cost.data[j];
    for (int i = 0; i < s->NumRows; i++) cost[s->BasisHead.data[i]] += p->RowState.data[i];
    compute_dual_for(s, w, cost, w->Cbar.data);
    std::fill_n(cost, s->NumVars, 0.0);
}

// Applies the remedies of the stall guard: the share of the true costs in phase 1 becomes 0, or bounds are perturbed.
template<class R> void break_stall(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const StallRemedy remedy = stall_look(s, w);
    if (remedy == STALL_COSTS) p->CostWeight = 0;
    if (remedy != STALL_PERTURB) return;
    p->PerturbPasses = 0;
    primal_perturb(s, w);
    primal_classify(s, w);
}

template<class R> int refresh(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int repairs = s->SingularCount;
    primal_end_cycle(s, w);
    if (!has_factor(s, w) || w->Lu.NumUpdates > 0) TRY(Refactor(s, w));
    if (s->Status != SIMPLEX_RUNNING) return 0;
    if (s->SingularCount > repairs) row_copy_partition(s);
    compute_primal(s, w);
    if (s->PerturbAllowed && primal_stalled(s, p)) primal_perturb(s, w);
    const bool was_feasible = !p->Phase1 && s->RefacReason != REFAC_START;
    const int infeasible = primal_classify(s, w);
    const bool bridged = infeasible > 0 && was_feasible && s->PerturbAllowed &&
                         primal_shift_infeasible(s, w);
    p->Phase1 = infeasible > 0 && !bridged;
    if (!p->Phase1 && s->TightProof) { // feasible after all
        s->OptTol = s->UsualOptTol;
        s->TightProof = 0;
    }
    break_stall(s, w);
    if (s->Status != SIMPLEX_RUNNING) return 0;
    compute_phase_dual(s, w);
    judge_residuals(s, w);
    std::fill_n(p->ColRejected.data, s->NumVars, char(0));
    p->Rejected = 0;
    primal_review_pricing(s, w);
    if (s->Status != SIMPLEX_RUNNING) return 0;
    if (p->PricingCur == PRICE_PARTIAL)
        primal_partial_refresh(s, w);
    else
        primal_list_reset(s, w);
    s->RefacReason = REFAC_NONE;
    simplex_self_check(s, w, CheckPoint::FACTORED, -1);
    return 0;
}

// True if the pivot computed from the row agrees with the small one from the column.
template<class R> bool confirm_small_pivot(sopt *s, swork<R> *w)
{
    const popt<R> *p = w->Primal;
    const R a = w->Alpha.Value.data[p->PivotRow];
    svec_unit(&w->Rho, p->PivotRow, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
    return std::abs(column_dot(s, p->PivotCol, w->Rho.Value.data) - a) <=
           R(SMALL_PIVOT_GAP) * std::abs(a);
}

// False if the stored reduced cost of the entering column is wrong; it is corrected.
template<class R> bool check_price(sopt *s, swork<R> *w)
{
    const int q = w->Primal->PivotCol;
    const R stored = w->Cbar.data[q], exact = primal_exact_cbar(s, w);
    w->Cbar.data[q] = exact;
    if (stored * exact > 0 && std::abs(exact) > R(s->OptTol)) return true;
    if (w->Lu.NumUpdates > 0 &&
        std::abs(stored - exact) > R(PRICE_TRUST) * (1 + std::abs(stored)))
        s->RefacReason = REFAC_CLEAN;
    // Partial pricing would compute the same wrong value again: the column is set aside until the next refresh.
    if (w->Primal->PricingCur == PRICE_PARTIAL) w->Primal->ColRejected.data[q] = 1;
    primal_set_merit(s, w, q);
    return false;
}

template<class R> bool choose_column(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    while (s->RefacReason == REFAC_NONE) {
        p->PivotCol = p->PricingCur == PRICE_PARTIAL ? primal_partial_choose(s, w)
                                                     : price_list_best(&p->Columns);
        if (p->PivotCol < 0) return false;
        load_column(s, p->PivotCol, &w->Alpha);
        Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::YES);
        if (check_price(s, w)) {
            p->Direction = w->Cbar.data[p->PivotCol] < 0 ? 1 : -1;
            return true;
        }
    }
    return true;
}

// Bound flip: the entering variable moves to its other bound (a free superbasic to zero).
template<class R> void apply_flip(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int q = p->PivotCol;
    primal_move_basics(s, w);
    const bool towards_bound = p->Direction > 0 ? has_upper(s, s->WorkUpper.data[q])
                                                : has_lower(s, s->WorkLower.data[q]);
    if (is_superbasic(s, q)) s->Superbasics--;
    s->VStat.data[q] = !towards_bound ? AT_FREE : p->Direction > 0 ? AT_UPPER : AT_LOWER;
    s->SuperVal.data[q] = 0;
    if (p->PricingCur == PRICE_PARTIAL)
        primal_partial_costs(s, w);
    else
        primal_apply_cost_change(s, w);
    primal_set_merit(s, w, q);
    s->NPvt++;
    s->Work++;
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

// With few rows and many columns the passes over the matrix in a refresh cost more than solves with many etas.
template<class R> bool updates_are_cheap(const sopt *s, const swork<R> *w)
{
    const double u = w->Lu.NumUpdates;
    return u < std::min(FEW_ROWS_UPDATES, w->Lu.MaxMoves) &&
           u * u * s->NumRows < 2.0 * s->ColBeg.data[s->NumCols];
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
    if (p->PricingCur == PRICE_PARTIAL) {
        primal_partial_costs(s, w);
        svec_unit(&w->Rho, r, R(1));
        Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
        primal_partial_pivot(s, w, pivot);
    } else {
        primal_apply_cost_change(s, w);
        svec_unit(&w->Rho, r, R(1));
        Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
        compute_row(s, w);
        primal_update_weights(s, w, pivot);
        update_reduced_costs(s, w, w->Cbar.data[q] / pivot, leaving);
    }
    const bool fixed = s->WorkLower.data[leaving] == s->WorkUpper.data[leaving];
    if (is_superbasic(s, q)) s->Superbasics--;
    swap_basis(s, r, q, fixed ? AT_FIXED : p->ToUpper ? AT_UPPER : AT_LOWER);
    w->Bbar.data[r] = entering_value;
    p->RowState.data[r] = ROW_FEASIBLE;
    primal_set_merit(s, w, q);
    primal_set_merit(s, w, leaving);
    s->NPvt++;
    s->Work++;
    s->RefacReason = UpdateFactor(&w->Lu, r, pivot);
    if (s->RefacReason == REFAC_NONE) simplex_self_check(s, w, CheckPoint::UPDATED, -1);
    if (s->RefacReason == REFAC_NONE && wants_refactor(s, w) && !updates_are_cheap(s, w))
        s->RefacReason = REFAC_FILL;
}

template<class R> void iterate(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    p->PivotCol = -1;
    if (s->Superbasics > 0) primal_choose_superbasic(s, w);
    if (p->PivotCol < 0 && !choose_column(s, w)) {
        primal_no_column(s, w);
        return;
    }
    if (s->RefacReason != REFAC_NONE) return;
    switch (primal_ratio(s, w)) {
    case RATIO_UNBOUNDED:
        primal_no_row(s, w);
        return;
    case RATIO_FLIP:
        apply_flip(s, w);
        return;
    case RATIO_PIVOT:
        break;
    }
    if (p->PivotRow < 0) { // values are not finite
        s->Status = SIMPLEX_NUMERIC;
        return;
    }
    if (std::abs(w->Alpha.Value.data[p->PivotRow]) < R(s->PivotTol) &&
        (w->Lu.NumUpdates > 0 || !confirm_small_pivot(s, w))) {
        primal_reject_column(s, w);
        return;
    }
    if (!p->Phase1) primal_shift_blocking(s, w);
    apply_pivot(s, w);
}

// Weight of the true costs in phase 1, so that it finds a feasible point with a good objective.
double phase1_cost_weight(const sopt *s)
{
    double largest = 0;
    for (int j = 0; j < s->NumCols; j++)
        largest = std::max(largest, std::fabs(s->Cost.data[j]));
    return largest > 0 ? COST_SHARE / largest : 0;
}

template<class R> int setup(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    std::copy_n(s->Cost.data, s->NumVars, s->WorkCost.data);
    primal_remove_perturbation(s);
    s->BoxPhase = 0;
    const bool goes_on = sopt_take_up_stop(s);
    settle_nonbasics(s);
    primal_count_superbasics(s, w);
    row_copy_partition(s);
    primal_choose_pricing(s, w);
    if (!goes_on) {
        p->CostWeight = phase1_cost_weight(s);
        p->PerturbSize = s->Env->PerturbValue;
        p->PerturbPasses = 0;
    }
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
        stall_count_pass(s);
    }
    popt<R> *p = w->Primal;
    const bool exact = p->PricingCur == PRICE_STEEPEST || p->PricingCur == PRICE_QUICK;
    p->WeightAge = exact && !p->NewWeights ? s->BasisAge : -1;
    p->WeightPivots = s->Pivots;
    return 0;
}

template int PrimalRun<double>(sopt *, swork<double> *);
template int PrimalRun<long double>(sopt *, swork<long double> *);
