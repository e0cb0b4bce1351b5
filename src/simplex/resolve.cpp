// resolve.cpp -- re-solves of a live record after changes of bounds
//
// Problem     The LP of a node differs from the last one in a few bounds. Its cost should be that of its pivots.
// Method      A bound of a nonbasic variable moves the variable, and all moves together change the basic values by one
//             sparse FTRAN; a bound of a basic variable changes one merit. Reduced costs stay, but for a variable that
//             was fixed: its reduced cost is computed from the multipliers. The basis stays dual feasible, as a boxed
//             variable goes to the bound that its reduced cost asks for, so the dual simplex continues. Results need no
//             fresh factors; those come when updates have become too many. If shifted costs led to a basis that is not
//             dual feasible for the true costs, or reduced costs of the wrong sign within the tolerance put the
//             objective too high, the primal simplex continues; numeric trouble leads to SimplexOptimize.
// Invariant   LIVE_FRESH (resolve.h).
// Cost        The pivots, one FTRAN, the columns of the changed variables.
#include "simplex/dual.h"
#include "simplex/primal.h"
#include <algorithm>
#include <cmath>

namespace
{
// DualObj is computed anew when more than this multiple of it was added: rounding errors and those of the terms are
// then within 1e-9 of it.
constexpr double SUM_TRUST = 1000;

// A smaller tolerance aims at this share of the visible error by wrong signs; one step reduces it to LEAST_STEP at
// most.
constexpr double AIM = 0.5, LEAST_STEP = 0.1;

constexpr int SIGN_ROUNDS = 4; // further runs of the primal simplex, tolerances reduced

constexpr int CLEAN_ROUNDS = 5; // solves that may follow an unclean point
} // namespace

template<class R> void live_begin(sopt *s, swork<R> *w, double iteration_limit)
{
    dopt<R> *d = w->Dual;
    s->Status = SIMPLEX_RUNNING;
    s->Method = METHOD_DUAL;
    s->IterLimit = iteration_limit;
    s->EndFactor = 0;
    if (s->RefacReason != REFAC_FILL) s->RefacReason = REFAC_NONE;
    if (s->TightProof) s->OptTol = s->UsualOptTol;
    s->TightProof = 0;
    s->NPvt = s->IterBase = 0;
    s->LastPerturbIter = 0;
    s->LastDegenCount = s->DegenCount;
    sopt_forget_trouble(s);
    s->Proof = PROOF_NONE;
    s->Stall = StallGuard{};
    stall_reset(s);
    d->CycleVar = -1;
    d->CycleHits = 0;
    d->CycleIter = 0;
    if (d->Rejected == 0) return;
    for (int i = 0; i < s->NumRows; i++) d->RowRejected.data[i] = 0;
    d->Rejected = 0;
    dual_list_reset(s, w);
}

template<class R> bool live_tighten_signs(sopt *s, swork<R> *w)
{
    if (dual_visible_error(s) == 0) return false; // as last counted, too large at most
    dual_count_signs(s, w);
    const double error = dual_visible_error(s), least = tolerance_floor(s);
    if (error == 0 || s->OptTol <= least) return false;
    const double share = std::max(LEAST_STEP, AIM * dual_error_limit(s) / error);
    s->OptTol = std::max(least, share * s->OptTol);
    return true;
}

// The basis of the dual run is not optimal for the true costs: the primal simplex continues, with a popt of its own,
// since that of the record belongs to the last primal run. It runs again as long as reduced costs of the wrong sign
// matter.
template<class R> int live_run_primal(sopt *s, swork<R> *w)
{
    popt<R> *other = w->Primal;
    w->Primal = nullptr;
    s->Method = METHOD_PRIMAL;
    s->PerturbAllowed = 1;
    int code = 0;
    for (int round = 0; code == 0 && round <= SIGN_ROUNDS; round++) {
        s->Status = SIMPLEX_RUNNING;
        code = PrimalRun(s, w);
        if (code || s->Status != SIMPLEX_OPTIMAL || !has_factor(s, w)) break;
        compute_dual(s, w); // the primal simplex does not keep all reduced costs
        dual_set_objective(s, w);
        if (round == SIGN_ROUNDS || !live_tighten_signs(s, w)) break;
    }
    popt_free(&w->Primal);
    w->Primal = other;
    return code;
}

namespace
{
// Bounds of a change in units of the working LP.
struct WorkingBounds {
    double Lower, Upper;
};

WorkingBounds working_bounds(const sopt *s, const BoundChange &change)
{
    const double scale = s->ColScale.data[change.Var], size = std::fabs(scale);
    double lower = working_bound(s, change.Lower), upper = working_bound(s, change.Upper);
    if (std::fabs(lower) < s->Infinity) lower /= size;
    if (std::fabs(upper) < s->Infinity) upper /= size;
    if (scale < 0) {
        std::swap(lower, upper);
        lower = -lower;
        upper = -upper;
    }
    return {lower, upper};
}

template<class R> void apply_changes(sopt *s, swork<R> *w, const ResolveCall &call)
{
    svec_clear(&w->Work);
    for (int k = 0; k < call.NumChanges; k++) {
        const int j = call.Changes[k].Var;
        WorkingBounds b = working_bounds(s, call.Changes[k]);
        if (!has_lower(s, b.Lower) && has_upper(s, b.Upper)) { // only an upper bound
            live_negate(s, w, j);
            b = {-b.Upper, s->Infinity};
        }
        live_set_bounds(s, w, j, b.Lower, b.Upper);
    }
    if (s->Live == LIVE_FRESH) live_move_values(s, w);
}

// Costs, bounds and phase of an ordinary run no longer apply: those of the LP itself count again.
template<class R> void take_true_lp(sopt *s)
{
    dual_set_true_bounds(s);
    dual_remove_perturbation(s);
    s->BoxPhase = 0;
    s->Live = LIVE_STALE;
}

// Numeric trouble: an ordinary run from this basis, with all its remedies. 0 or a code.
int recover(sopt *s, double limit, double cutoff)
{
    SimplexCall call;
    call.Method = METHOD_DUAL;
    call.Cutoff = false;
    call.Limit = limit;
    call.Inner = true;
    const SimplexCounters before = *s;
    const double tolerance = s->Tuning.Tolerance;
    s->Tuning.Tolerance = std::min({tolerance, s->FeasTol, s->OptTol});
    const int code = simplex_run(s, call);
    s->Tuning.Tolerance = tolerance;
    if (code) return code;
    const int status = s->Status;
    TRY(simplex_go_live(s));
    s->NPvt += before.NPvt;
    s->Cutoff = cutoff;
    s->FeasTol = std::min(s->FeasTol, before.FeasTol);
    s->OptTol = std::min(s->OptTol, before.OptTol);
    s->Status = status;
    return 0;
}

bool is_final(int status)
{
    return status == SIMPLEX_OPTIMAL || status == SIMPLEX_INFEASIBLE ||
           status == SIMPLEX_UNBOUNDED || status == SIMPLEX_CUTOFF ||
           status == SIMPLEX_ITERATION_LIMIT || status == SIMPLEX_TIME_LIMIT ||
           status == SIMPLEX_INTERRUPTED;
}

// Lower bound of the optimum, as simplex_objective; -UNDEFINED_VALUE: none. Cbar belongs to the basis and WorkCost.
template<class R> double lower_bound(sopt *s, swork<R> *w)
{
    if (s->BoxPhase) return -UNDEFINED_VALUE;
    double bound = dual_bound(s, w);
    if (s->Perturbed && has_factor(s, w))
        bound = std::max(bound, dual_bound_true_costs(s, w));
    return std::isfinite(bound) ? bound + s->ObjOffset : -UNDEFINED_VALUE;
}

// *bound: a lower bound known when a limit stops the primal simplex.
template<class R> int run(sopt *s, swork<R> *w, double *bound)
{
    const bool stale = s->Live == LIVE_STALE || dual_is_noisy(s);
    if (stale && s->RefacReason == REFAC_NONE) s->RefacReason = REFAC_VALUES;
    s->CutoffFrom =
        s->Live == LIVE_FRESH && has_cutoff(s) ? s->Cutoff * s->ObjScale : HUGE_VAL;
    s->Live = LIVE_FRESH;
    if (s->RefacReason == REFAC_NONE && s->DualObj > s->CutoffFrom) dual_test_cutoff(s, w);
    TRY(dual_pivots(s, w));
    if (s->Status == SIMPLEX_OPTIMAL && live_tighten_signs(s, w))
        s->Status = SIMPLEX_SWITCH;
    if (s->Status != SIMPLEX_SWITCH) return 0;
    *bound = lower_bound(s, w);
    dual_weights_save(s, w); // the primal simplex changes positions
    TRY(live_run_primal(s, w));
    dual_weights_restore(s, w);
    take_true_lp<R>(s);
    return 0;
}

// The objective of the basis. DualObj has rounding errors of the terms that were added.
template<class R> double optimum(sopt *s, swork<R> *w)
{
    if (s->Live != LIVE_FRESH) return true_objective(s, w) + s->ObjOffset;
    if (s->DualObjSum > SUM_TRUST * (1 + std::fabs(s->DualObj))) dual_set_objective(s, w);
    return s->DualObj / s->ObjScale + s->ObjOffset;
}

// An optimum above the cutoff is told as CUTOFF if a bound proves it: where a reduced cost has the wrong sign within
// the tolerance, there are points below the value.
template<class R> void judge_cutoff(sopt *s, swork<R> *w, ResolveOutcome *out)
{
    if (s->Status != SIMPLEX_OPTIMAL || out->Value - s->ObjOffset <= s->Cutoff) return;
    const double bound = lower_bound(s, w);
    if (bound - s->ObjOffset <= s->Cutoff) return;
    out->Status = s->Status = SIMPLEX_CUTOFF;
    out->Value = out->Bound = bound;
}

int solve_with_trouble(sopt *s, const ResolveCall &call, ResolveOutcome *out)
{
    const double cutoff = s->Cutoff;
    TRY(recover(s, call.Iterations - s->NPvt, cutoff));
    if (!is_final(s->Status)) {
        // perhaps because tolerances were reduced, or the basis is singular
        s->FeasTol = s->Env->FeasibilityTol;
        s->OptTol = s->Env->OptimalityTol;
        if (!simplex_has_factor(s)) start_slack_basis(s);
        TRY(recover(s, call.Iterations - s->NPvt, cutoff));
    }
    const int status = is_final(s->Status) ? s->Status : SIMPLEX_NUMERIC;
    *out = {status, -UNDEFINED_VALUE, -UNDEFINED_VALUE, s->NPvt};
    if (status == SIMPLEX_OPTIMAL) out->Value = out->Bound = simplex_objective(s);
    s->Quad ? judge_cutoff(s, s->Extended, out) : judge_cutoff(s, s->Double, out);
    return 0;
}

template<class R>
int resolve(sopt *s, swork<R> *w, const ResolveCall &call, ResolveOutcome *out)
{
    live_begin(s, w, call.Iterations);
    s->Cutoff = call.Cutoff < UNDEFINED_VALUE ? call.Cutoff - s->ObjOffset : HUGE_VAL;
    if (s->Crossed > 0) {
        s->Status = SIMPLEX_INFEASIBLE;
        *out = {SIMPLEX_INFEASIBLE, UNDEFINED_VALUE, UNDEFINED_VALUE, 0};
        return 0;
    }
    double value = -UNDEFINED_VALUE;
    TRY(run(s, w, &value));
    if (!is_final(s->Status)) return solve_with_trouble(s, call, out);
    if (s->Status == SIMPLEX_OPTIMAL)
        value = optimum(s, w);
    else if (s->Status == SIMPLEX_CUTOFF)
        value = s->CutoffBound + s->ObjOffset;
    else if (s->Status != SIMPLEX_INFEASIBLE && s->Live == LIVE_FRESH)
        value = lower_bound(s, w);
    *out = {s->Status, value, value, s->NPvt};
    if (s->Status == SIMPLEX_OPTIMAL) out->Bound -= dual_visible_error(s) / s->ObjScale;
    judge_cutoff(s, w, out);
    s->Obj = out->Value - s->ObjOffset;
    if (!has_factor(s, w)) s->Live = LIVE_STALE; // the last update failed
    return 0;
}

template<class R> int go_live(sopt *s, swork<R> *w)
{
    if (!w->Dual) TRY(dopt_create(s, &w->Dual));
    s->Running = 0; // no callbacks
    s->IterLimit = HUGE_VAL;
    s->EndFactor = 0;
    s->Cutoff = HUGE_VAL;
    s->Stopped = 0; // what a limit left belongs to other bounds and rows
    s->Status = SIMPLEX_RUNNING;
    take_true_lp<R>(s);
    if (!has_factor(s, w)) TRY(Refactor(s, w));
    if (has_factor(s, w))
        dual_weights_start(s, w);
    else // singular, and may not be repaired
        std::fill_n(w->Dual->Weights.data, s->NumRows, R(1));
    s->StartNorms.size = 0; // they belonged to the start basis of the last run
    return 0;
}

template<class R> int clean(sopt *s, swork<R> *w, CleanOutcome *outcome)
{
    const int repairs = s->SingularCount;
    if (w->Lu.NumUpdates > 0 || !has_factor(s, w)) {
        dual_weights_save(s, w);
        TRY(Refactor(s, w));
        dual_weights_restore(s, w);
    }
    bool optimal =
        s->Status == SIMPLEX_OPTIMAL && s->SingularCount == repairs && has_factor(s, w);
    s->Live = LIVE_STALE;
    if (optimal) {
        finish_values(s, w);
        const Infeasibility inf = measure_infeasibility(s, w);
        bool primal = false;
        optimal = !tighten_tolerances(s, measure_violations(s, w), &primal) &&
                  inf.PrimalCount == 0 && inf.DualCount == 0;
        s->Obj = true_objective(s, w);
    }
    s->Unclean = optimal ? 0 : s->Unclean + 1;
    *outcome = optimal                     ? CleanOutcome::OPTIMAL
               : s->Unclean > CLEAN_ROUNDS ? CleanOutcome::VIOLATED
                                           : CleanOutcome::SOLVE_AGAIN;
    return 0;
}

// The tolerance is one of the working LP. For integer variables it has to be small in units of the body, too: a value
// beyond a bound by more than IntFeasTol would look fractional.
void fit_tolerance(sopt *s)
{
    double largest = 1;
    for (int j = 0; j < s->NumCols && s->Body->vtypes.size > 0; j++)
        if (s->Body->vtypes.data[j] != 'C') largest = std::max(largest, user_unit(s, j));
    s->FeasTol =
        std::min(s->FeasTol, std::max(tolerance_floor(s), s->Env->IntFeasTol / largest));
}
} // namespace

int simplex_go_live(sopt *s)
{
    assert(s->HasBasis);
    TRY(array_resize(&s->QueryVar, s->NumVars));
    TRY(array_resize(&s->QueryVal, s->NumVars));
    fit_tolerance(s);
    s->Crossed = 0;
    for (int j = 0; j < s->NumCols; j++) s->Crossed += live_crosses(s, j);
    return s->Quad ? go_live(s, s->Extended) : go_live(s, s->Double);
}

int simplex_resolve(sopt *s, const ResolveCall &call, ResolveOutcome *outcome)
{
    assert(s->Live != LIVE_NO);
    if (call.NumChanges > 0 || call.Basis) s->Unclean = 0;
    if (call.Basis && !live_is_near(s, *call.Basis)) s->Live = LIVE_STALE;
    s->Quad ? apply_changes(s, s->Extended, call) : apply_changes(s, s->Double, call);
    if (call.Basis) TRY(live_load_basis(s, *call.Basis));
    return s->Quad ? resolve(s, s->Extended, call, outcome)
                   : resolve(s, s->Double, call, outcome);
}

void simplex_change_cost(sopt *s, int j, double cost)
{
    s->Cost.data[j] = s->WorkCost.data[j] = cost * s->ColScale.data[j] * s->ObjScale;
    s->Live = LIVE_STALE;
    s->Status = SIMPLEX_RUNNING;
    s->Unclean = 0;
}

int simplex_clean(sopt *s, CleanOutcome *outcome)
{
    return s->Quad ? clean(s, s->Extended, outcome) : clean(s, s->Double, outcome);
}

#define INSTANTIATE(R)                                                                     \
    template void live_begin<R>(sopt *, swork<R> *, double);                               \
    template bool live_tighten_signs<R>(sopt *, swork<R> *);                               \
    template int live_run_primal<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
