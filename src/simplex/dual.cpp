// dual.cpp -- the dual simplex method
//
// Problem     Solve the working LP from a basis by pivots that keep it dual feasible.
// Method      Bounded dual simplex: steepest edge pricing of the rows, bound flipping ratio test, Forrest-Tomlin
//             updates. Phase 1 is the box problem (dual_start.cpp). Costs are perturbed against stalling; when the
//             perturbed problem is solved, the perturbation is removed, and if the basis is then not dual feasible the
//             primal simplex continues.
// Out         Status: see the table in sopt_states.h.
// Invariant   Between refreshes Bbar, Cbar, merits and weights belong to the basis; nonbasics are at working bounds.
// Literature  A. Koberstein, The dual simplex method, techniques for a fast and stable implementation, Paderborn 2005.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
// A stored weight below this share of the exact one is too small: the row is chosen again.
constexpr double WEIGHT_TRUST = 0.25;
constexpr int MAX_REJECTED = 20;  // rows set aside before the run ends with SIMPLEX_SWITCH
constexpr int PRICING_PERIOD = 3; // factorisations between reviews of the pricing

// Update limit m^0.65: pivot rows are sparse only with few row etas. Against 0.7 it saved 1 % of the work on Netlib and
// 3 % on the Kennington models.
constexpr double UPDATES_POWER = 0.65;

constexpr int CYCLE_HITS = 30; // repetitions after which a cycle is assumed

// Refactorisation changes positions: the weights are carried over by variable.
template<class R> int refactor_with_weights(sopt *s, swork<R> *w)
{
    const bool usable = s->RefacReason == REFAC_VALUES || w->Lu.NumUpdates == 0;
    if (has_factor(s, w) && usable) return 0;
    dual_weights_save(s, w);
    const int repairs = s->SingularCount;
    TRY(Refactor(s, w));
    dual_weights_restore(s, w);
    if (s->SingularCount > repairs) row_copy_partition(s);
    return 0;
}

// Boxed nonbasics move to the bound that their reduced cost asks for. In phase 2 the costs of other nonbasics with a
// reduced cost of the wrong sign are shifted.
template<class R> void make_dual_feasible(sopt *s, swork<R> *w)
{
    const R tol = R(s->OptTol);
    dual_place_nonbasics(s, w);
    if (s->BoxPhase) return;
    for (int j = 0; j < s->NumVars; j++) {
        const int status = s->VStat.data[j];
        const R dj = w->Cbar.data[j];
        if (status == AT_LOWER && dj < -tol) dual_shift_cost(s, w, j, R(0));
        if (status == AT_FREE && std::abs(dj) > tol) dual_shift_cost(s, w, j, R(0));
    }
}

// Cycle detection: in a cycle one variable enters repeatedly after the same number of iterations. The entering variable
// to watch is chosen at a refresh, at least m iterations after the last choice.
template<class R> void watch_start(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const double age = s->NPvt - d->CycleIter;
    if (age <= s->NumRows) return;
    if (d->CycleHits > CYCLE_HITS) {
        s->Status = SIMPLEX_SWITCH;
    } else if (d->CycleHits == 0 || d->CycleVar < 0 || age > 2.0 * s->NumRows) {
        d->CycleIter = s->NPvt;
        d->CycleVar = d->PivotCol;
        d->CycleLen = d->CycleHits = 0;
    }
}

template<class R> void watch_pivot(const sopt *s, dopt<R> *d)
{
    if (d->PivotCol != d->CycleVar) return;
    const double age = s->NPvt - d->CycleIter;
    if (d->CycleLen == 0)
        d->CycleLen = age;
    else if (std::fmod(age, d->CycleLen) == 0)
        d->CycleHits++;
}

// Fresh factors, values and reduced costs.
template<class R> int refresh(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    if (s->NumFactor % PRICING_PERIOD == 0) dual_change_pricing(s, w);
    TRY(refactor_with_weights(s, w));
    if (s->Status != SIMPLEX_RUNNING) return 0;
    compute_dual(s, w);
    make_dual_feasible(s, w);
    dual_perturb_stalled(s, w);
    row_copy_partition(s);
    compute_primal(s, w);
    judge_residuals(s, w);
    if (stall_look(s, w) == STALL_PERTURB) dual_perturb_costs(s, w);
    if (s->Status != SIMPLEX_RUNNING) return 0;
    for (int i = 0; i < s->NumRows; i++) d->RowRejected.data[i] = 0;
    d->Rejected = 0;
    dual_list_reset(s, w);
    s->RefacReason = REFAC_NONE;
    simplex_self_check(s, w, CheckPoint::FACTORED, -1);
    if (tracks_objective(s)) dual_set_objective(s, w);
    if (has_cutoff(s) && !s->BoxPhase && (s->Perturbed || s->DualObj > s->CutoffFrom))
        dual_test_cutoff(s, w);
    return 0;
}

// Starts phase 2 from a dual feasible basis.
template<class R> void begin_phase2(sopt *s)
{
    s->BoxPhase = 0;
    dual_set_true_bounds(s);
    s->RefacReason = REFAC_CLEAN;
}

// The box problem is solved. Its basis is dual feasible for the LP, or the LP is not dual feasible.
template<class R> void end_box_phase(sopt *s, swork<R> *w)
{
    const R tol = R(s->OptTol);
    bool infeasible = false;
    for (int j = 0; j < s->NumVars && !infeasible; j++) {
        if (is_basic(s, j) || has_upper(s, s->Upper.data[j])) continue;
        const R dj = w->Cbar.data[j];
        infeasible = dj < -tol || (!has_lower(s, s->Lower.data[j]) && dj > tol);
    }
    if (!infeasible) {
        begin_phase2<R>(s);
    } else if (s->Perturbed) {
        s->PerturbAllowed = 0;
        dual_remove_perturbation(s);
        s->RefacReason = REFAC_CLEAN;
    } else {
        s->Status = SIMPLEX_SWITCH; // unbounded or infeasible: the primal simplex decides
    }
}

// Phase 2 has no infeasible row: optimal for the costs in force.
template<class R> void end_phase2(sopt *s, swork<R> *w)
{
    bool feasible = true;
    if (s->Perturbed && !dual_remove_shifts(s, w, &feasible)) {
        dual_remove_perturbation(s);
        compute_dual(s, w);
        if (tracks_objective(s)) dual_set_objective(s, w);
        feasible = measure_infeasibility(s, w).DualCount == 0;
    }
    s->Status = feasible ? SIMPLEX_OPTIMAL : SIMPLEX_SWITCH;
}

// No row is eligible. Infeasible rows may have been set aside, and updated factors may be inaccurate.
template<class R> void no_row(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    if (w->Lu.NumUpdates > 0 && (d->Rejected > 0 || wants_confirmation(s))) {
        s->RefacReason = REFAC_CLEAN;
    } else if (d->Rejected > 0) {
        s->Status = SIMPLEX_SWITCH;
    } else if (dual_is_noisy(s)) {
        s->RefacReason = REFAC_VALUES;
    } else if (s->BoxPhase) {
        end_box_phase(s, w);
    } else {
        end_phase2(s, w);
    }
}

// The row is not chosen again before the next refresh.
template<class R> void set_row_aside(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    d->RowRejected.data[d->PivotRow] = 1;
    dual_set_merit(s, w, d->PivotRow);
    if (++d->Rejected > MAX_REJECTED) s->Status = SIMPLEX_SWITCH;
}

// The ratio test found no entering variable. Either the LP is infeasible, or entries blocked that were ignored as
// rounding errors. True if the ratio test succeeds with such smaller entries.
template<class R> bool no_column(sopt *s, swork<R> *w)
{
    const bool fresh = w->Lu.NumUpdates == 0;
    const bool sure = fresh || !wants_confirmation(s);
    if (!s->BoxPhase && sure &&
        ((s->Live && proves_simply(s, w)) || proves_infeasible(s, w))) {
        s->Status = SIMPLEX_INFEASIBLE;
    } else if (!fresh) {
        s->RefacReason = REFAC_CONFIRM;
    } else {
        R largest = 0;
        for (int k = 0; k < w->RowCount; k++)
            largest = std::max(largest, std::abs(w->RowVal.data[k]));
        if (dual_ratio(s, w, noise_share(w) * largest)) return true;
        // No pivot. In the box problem this is a rounding error, as every variable is boxed; in phase 2 infeasibility
        // could not be proved.
        set_row_aside(s, w);
    }
    return false;
}

// Chooses the leaving row and computes Rho. A steepest edge weight that proves too small is corrected and the choice
// repeated.
template<class R> bool choose_row(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    for (;;) {
        const int r = d->PivotRow = price_list_best(&d->Rows);
        if (r < 0) return false;
        svec_unit(&w->Rho, r, R(1));
        Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
        if (d->PricingCur == PRICE_STEEPEST) {
            const R stored = d->Weights.data[r];
            const R norm = d->Weights.data[r] = dual_true_weight(w);
            if (stored < R(WEIGHT_TRUST) * norm) {
                dual_set_merit(s, w, r);
                continue;
            }
        }
        const R x = w->Bbar.data[r];
        d->Delta = x < R(s->BasicLower.data[r]) ? x - R(s->BasicLower.data[r])
                                                : x - R(s->BasicUpper.data[r]);
        return true;
    }
}

// The pivot is unreliable: refactorisation, or another row if the factors are fresh.
template<class R> void reject_pivot(sopt *s, swork<R> *w)
{
    s->NumericCount++;
    if (w->Lu.NumUpdates > 0)
        distrust_factors(s);
    else
        set_row_aside(s, w);
}

// The FTRANs of a step: entering column, bound flips, and B^-1 rho for steepest edge.
template<class R> void step_ftrans(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    load_column(s, d->PivotCol, &w->Alpha);
    FtranTask<R> tasks[MAX_FTRANS] = {{&w->Alpha, SOLVE_COLUMN, Keep::YES}};
    int count = 1;
    if (d->PricingCur == PRICE_STEEPEST) {
        svec_copy(&w->Tau, &w->Rho);
        tasks[count++] = {&w->Tau, SOLVE_NORM, Keep::VALUES};
    }
    if (d->FlipCount > 0) {
        dual_load_flips(s, w);
        tasks[count++] = {&w->Work, SOLVE_FLIPS, Keep::NO};
    }
    const double before = w->Lu.WorkUnits;
    FtranJoint(&w->Lu, tasks, count);
    if (d->PricingCur == PRICE_STEEPEST) d->NormWork += (w->Lu.WorkUnits - before) / count;
}

// Computes the entering column and the step lengths. False if the pivots from row and column differ too much.
template<class R> bool compute_step(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int r = d->PivotRow, q = d->PivotCol;
    step_ftrans(s, w);
    simplex_self_check(s, w, CheckPoint::COLUMN, q);
    d->AlphaCol = w->Alpha.Value.data[r];
    const R gap = std::abs(std::abs(d->AlphaRow) - std::abs(d->AlphaCol));
    if (std::abs(d->AlphaCol) < R(s->ZeroTol) ||
        gap > R(s->BigTol) * (1 + std::abs(d->AlphaCol)) ||
        gap > R(0.1) * std::abs(d->AlphaCol)) {
        reject_pivot(s, w);
        return false;
    }
    const R dq = w->Cbar.data[q];
    const int status = s->VStat.data[q];
    if (status == AT_FREE || (status == AT_LOWER && dq < 0) ||
        (status == AT_UPPER && dq > 0)) {
        if (dq != R(0)) dual_shift_cost(s, w, q, R(0));
    }
    d->ThetaDual = w->Cbar.data[q] / d->AlphaRow;
    return true;
}

// Updates values, reduced costs, weights, basis and factors. 0 or OUT_OF_MEMORY.
template<class R> int apply_step(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int r = d->PivotRow, q = d->PivotCol;
    dual_apply_flips(s, w);
    const bool to_lower = d->Delta < 0;
    const R bound = R(to_lower ? s->BasicLower.data[r] : s->BasicUpper.data[r]);
    d->ThetaPrimal = (w->Bbar.data[r] - bound) / d->AlphaCol;
    dual_update_weights(s, w);
    if (std::abs(w->Cbar.data[q]) < R(s->OptTol)) s->DegenCount++;
    dual_update_values(s, w);
    const int leaving = s->BasisHead.data[r];
    const bool fixed = s->WorkLower.data[leaving] == s->WorkUpper.data[leaving];
    if (s->VStat.data[q] == AT_FREE) d->FreeCount--;
    swap_basis(s, r, q, fixed ? AT_FIXED : to_lower ? AT_LOWER : AT_UPPER);
    dual_set_merit(s, w, r);
    s->NPvt++;
    s->Work++;
    watch_pivot(s, d);
    if (s->Probing) TRY(array_append(&s->Path, PivotRecord{q, leaving}));
    s->RefacReason = UpdateFactor(&w->Lu, r, d->AlphaCol);
    if (s->RefacReason == REFAC_NONE) simplex_self_check(s, w, CheckPoint::UPDATED, -1);
    if (s->RefacReason == REFAC_NONE && wants_refactor(s, w)) s->RefacReason = REFAC_FILL;
    if (s->DualObj > s->CutoffFrom && !s->BoxPhase) dual_test_cutoff(s, w);
    return 0;
}

// One pivot, or a decision that asks for a refresh or ends the run. 0 or OUT_OF_MEMORY.
template<class R> int iterate(sopt *s, swork<R> *w)
{
    if (!choose_row(s, w)) {
        no_row(s, w);
        return 0;
    }
    const double before = s->WorkUnits;
    compute_row(s, w);
    w->Dual->RowWork += s->WorkUnits - before;
    if (!dual_ratio(s, w, pivot_floor(w)) && !no_column(s, w)) return 0;
    return compute_step(s, w) ? apply_step(s, w) : 0;
}

bool has_free_nonbasics(const sopt *s)
{
    for (int j = 0; j < s->NumCols; j++)
        if (!is_basic(s, j) && !has_lower(s, s->Lower.data[j])) return true;
    return false;
}

// Box problem of a stopped run: nonbasics with a reduced cost of zero return to the bound at which the run had left
// them.
void place_as_stopped(sopt *s)
{
    for (int j = 0; j < s->StoppedUpper.size; j++)
        if (s->StoppedUpper.data[j] && !is_basic(s, j)) s->VStat.data[j] = AT_UPPER;
}

// Prepares costs, bounds and phase for the basis at hand.
template<class R> int setup(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    d->CycleVar = -1;
    d->CycleHits = 0;
    d->CycleIter = s->NPvt;
    s->MaxUpdates = std::min(s->MaxUpdates, update_limit(s, UPDATES_POWER));
    dual_set_true_bounds(s);
    dual_remove_perturbation(s);
    const bool goes_on = sopt_take_up_stop(s);
    if (!has_factor(s, w) || w->Lu.NumUpdates > 0) TRY(Refactor(s, w));
    if (s->Status != SIMPLEX_RUNNING) return 0;
    // A continued run may be in the box problem, whose pivots may take free variables out of the basis again.
    if (!goes_on && has_free_nonbasics(s)) {
        compute_dual(s, w);
        TRY(dual_enter_free(s, w));
        if (s->Status != SIMPLEX_RUNNING) return 0;
        if (w->Lu.NumUpdates > 0) TRY(Refactor(s, w));
        if (s->Status != SIMPLEX_RUNNING) return 0;
    }
    dual_weights_start(s, w);
    if (s->Status != SIMPLEX_RUNNING) return 0;
    compute_dual(s, w);
    // With a cutoff costs are perturbed only after a stall, since the dual bound is then reached later.
    if (s->PerturbAllowed && !goes_on && !s->NearOptimal && !has_cutoff(s))
        dual_perturb_start(s, w);
    s->BoxPhase = dual_place_nonbasics(s, w) > 0;
    if (s->BoxPhase) dual_set_box_bounds(s);
    if (s->BoxPhase && goes_on) place_as_stopped(s);
    s->RefacReason = REFAC_START;
    return 0;
}

template<class R> void write_log(sopt *s, swork<R> *w)
{
    if (!log_is_due(s)) return;
    const Infeasibility inf = measure_infeasibility(s, w);
    log_iteration(s, true_objective(s, w), inf.PrimalSum, inf.DualSum);
}
} // namespace

template<class R> int dual_pivots(sopt *s, swork<R> *w)
{
    while (s->Status == SIMPLEX_RUNNING) {
        if (s->RefacReason != REFAC_NONE) {
            watch_start(s, w);
            if (s->Status != SIMPLEX_RUNNING) break;
            TRY(refresh(s, w));
            if (s->Status != SIMPLEX_RUNNING) break;
            write_log(s, w);
        }
        if (limit_reached(s)) break;
        TRY(iterate(s, w));
        stall_count_pass(s);
    }
    return 0;
}

template<class R> int DualRun(sopt *s, swork<R> *w)
{
    if (!w->Dual) TRY(dopt_create(s, &w->Dual));
    TRY(setup(s, w));
    if (s->Status != SIMPLEX_RUNNING) return 0; // there are no complete weights to keep
    TRY(dual_pivots(s, w));
    dual_weights_keep(s, w);
    return 0;
}

#define INSTANTIATE(R)                                                                     \
    template int dual_pivots<R>(sopt *, swork<R> *);                                       \
    template int DualRun<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
