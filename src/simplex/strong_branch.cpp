// strong_branch.cpp -- strong branching: short dual runs from one optimal basis, with one changed bound each
//
// Problem     For many candidates and both directions: tighten a bound, re-solve for a few iterations, return the
//             objective or a lower bound of it.
// Method      The optimal basis stays dual feasible, so the dual simplex continues from it: only one basic variable is
//             infeasible. Updates of the factors are recorded and undone (lu_journal.cpp); basis and vectors are copied
//             back. There is no perturbation and no confirmation on fresh factors, since the dual bound is valid at
//             every dual feasible basis. If the basis at the end is not dual feasible for the true costs, or if reduced
//             costs of the wrong sign within the tolerance put the objective too high, the primal simplex continues
//             within the same limit.
// Invariant   Between probes the record is as it was at open, except for the order inside rows of the row copy, and
//             that of the positions after a probe that factored.
// Cost        A probe: its iterations, and O(n + m) for the copies; a factorisation if it factored itself.
// Literature  D. Applegate, R. Bixby, V. Chvatal, W. Cook, "Finding cuts in the TSP", 1995.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
template<class R> struct KeptState {
    Array<int> VStat;       // [NumVars]
    Array<int> BasisHead;   // [m]
    Array<R> Cbar;          // [NumVars]
    Array<R> Bbar, Weights; // [m]
    Array<char> Reference;  // [NumVars] with Devex
    int PricingCur = 0, PricingFinal = 0, FreeCount = 0;
    double FrameworkWork = 0;
};
} // namespace

struct StrongBranch {
    sopt *Record = nullptr;
    SimplexCounters Counters; // of the record, as they were at open
    LiveState Live = LIVE_NO; // likewise
    bool WeightsKept = false; // weights of the last dual run belong to the basis
    double Optimum = 0;       // the objective without any branching, as simplex_objective
    KeptState<double> Double;
    KeptState<long double> Extended;
};

namespace
{
template<class R> KeptState<R> *kept(StrongBranch *b);

template<> KeptState<double> *kept<double>(StrongBranch *b)
{
    return &b->Double;
}

template<> KeptState<long double> *kept<long double>(StrongBranch *b)
{
    return &b->Extended;
}

template<class R> int keep(StrongBranch *b, const swork<R> *w)
{
    const sopt *s = b->Record;
    const dopt<R> *d = w->Dual;
    KeptState<R> *k = kept<R>(b);
    TRY(array_copy(&k->VStat, s->VStat.data, s->NumVars));
    TRY(array_copy(&k->BasisHead, s->BasisHead.data, s->NumRows));
    TRY(array_copy(&k->Cbar, w->Cbar.data, s->NumVars));
    TRY(array_copy(&k->Bbar, w->Bbar.data, s->NumRows));
    TRY(array_copy(&k->Weights, d->Weights.data, s->NumRows));
    TRY(array_copy(&k->Reference, d->Reference.data, s->NumVars));
    k->PricingCur = d->PricingCur;
    k->PricingFinal = d->PricingFinal;
    k->FreeCount = d->FreeCount;
    k->FrameworkWork = d->FrameworkWork;
    return 0;
}

// The columns that the probe has moved in or out of the row copy go back.
template<class R> void restore_row_copy(sopt *s, int branched)
{
    if (s->BaseLost) {
        row_copy_partition(s);
        return;
    }
    const auto settle = [s](int j) {
        const int status = s->VStat.data[j];
        if (status < 0 && status != AT_FIXED)
            row_copy_insert(s, j);
        else
            row_copy_remove(s, j);
    };
    for (int64_t k = 0; k < s->Path.size; k++) {
        settle(s->Path.data[k].Entered);
        settle(s->Path.data[k].Left);
    }
    settle(branched);
}

// The factors of the kept basis were replaced. A new factorisation may put its variables into other positions, which
// the kept vectors then follow. 0 or a code.
template<class R> int factor_again(sopt *s, swork<R> *w, KeptState<R> *k)
{
    s->Probing = 0; // this is the basis itself
    const int repairs = s->SingularCount, code = Refactor(s, w);
    s->Probing = 1;
    if (code) return code;
    // Back to the basis, without factors.
    if (s->SingularCount > repairs || !has_factor(s, w)) {
        std::copy_n(k->VStat.data, s->NumVars, s->VStat.data);
        std::copy_n(k->BasisHead.data, s->NumRows, s->BasisHead.data);
        row_copy_partition(s);
        w->Lu.NeedBasis = 1;
        return 0;
    }
    SVec<R> *old = &w->Work;
    for (Array<R> *values : {&k->Bbar, &k->Weights}) {
        svec_clear(old);
        std::copy_n(values->data, s->NumRows, old->Value.data);
        for (int r = 0; r < s->NumRows; r++)
            values->data[r] = old->Value.data[k->VStat.data[s->BasisHead.data[r]]];
        old->Count = -1;
        svec_clear(old);
    }
    std::copy_n(s->VStat.data, s->NumVars, k->VStat.data);
    std::copy_n(s->BasisHead.data, s->NumRows, k->BasisHead.data);
    return 0;
}

template<class R> int bring_back(StrongBranch *b, swork<R> *w, int branched)
{
    sopt *s = b->Record;
    dopt<R> *d = w->Dual;
    KeptState<R> *k = kept<R>(b);
    std::copy_n(k->VStat.data, s->NumVars, s->VStat.data);
    std::copy_n(k->BasisHead.data, s->NumRows, s->BasisHead.data);
    if (s->Perturbed || s->Method == METHOD_PRIMAL) dual_remove_perturbation(s);
    // the primal simplex shifts bounds
    if (s->Method == METHOD_PRIMAL) dual_set_true_bounds(s);
    restore_row_copy<R>(s, branched);
    int code = 0;
    if (s->BaseLost)
        code = factor_again(s, w, k); // without memory the next solve factors
    else if (w->Lu.Journal)
        lu_journal_undo(&w->Lu);
    w->FactorAge = s->BasisAge;
    std::copy_n(k->Cbar.data, s->NumVars, w->Cbar.data);
    std::copy_n(k->Bbar.data, s->NumRows, w->Bbar.data);
    std::copy_n(k->Weights.data, s->NumRows, d->Weights.data);
    if (d->PricingCur == PRICE_DEVEX || k->PricingCur == PRICE_DEVEX)
        std::copy_n(k->Reference.data, s->NumVars, d->Reference.data);
    d->PricingCur = k->PricingCur;
    d->PricingFinal = k->PricingFinal;
    d->FreeCount = k->FreeCount;
    d->FrameworkWork = k->FrameworkWork;
    if (d->Rejected > 0)
        for (int i = 0; i < s->NumRows; i++) d->RowRejected.data[i] = 0;
    d->Rejected = 0;
    const double limit = s->IterLimit;
    *static_cast<SimplexCounters *>(s) = b->Counters;
    s->IterLimit = limit;
    s->Status = SIMPLEX_OPTIMAL;
    set_basic_bounds(s);
    dual_list_reset(s, w);
    return code;
}

// The bounds of a variable in a branch, in units of the working LP.
struct Tightened {
    int Var;
    double Lower, Upper;
};

// The column would keep an upper bound only: it is probed with the other sign.
bool keeps_upper_only(const sopt *s, int j, BranchSide side)
{
    const bool from_above = (side == BranchSide::DOWN) == (s->ColScale.data[j] > 0);
    return from_above && !has_lower(s, s->Lower.data[j]);
}

template<class R> void turn_column(StrongBranch *b, swork<R> *w, int j)
{
    sopt *s = b->Record;
    KeptState<R> *k = kept<R>(b);
    live_negate(s, w, j);
    k->Cbar.data[j] = -k->Cbar.data[j];
    if (is_basic(s, j)) k->Bbar.data[s->VStat.data[j]] = -k->Bbar.data[s->VStat.data[j]];
}

Tightened tighten(const sopt *s, int j, BranchSide side, double bound)
{
    Tightened branch = {j, s->Lower.data[j], s->Upper.data[j]};
    const double scale = s->ColScale.data[j], limit = bound / scale;
    if ((side == BranchSide::DOWN) == (scale > 0))
        branch.Upper = std::min(branch.Upper, limit);
    else
        branch.Lower = std::max(branch.Lower, limit);
    return branch;
}

template<class R> int run(sopt *s, swork<R> *w, const Tightened &branch, double limit)
{
    s->Probing = 1;
    s->BaseLost = 0;
    s->Path.size = 0;
    TRY(lu_journal_begin(&w->Lu));
    svec_clear(&w->Work);
    live_set_bounds(s, w, branch.Var, branch.Lower, branch.Upper);
    live_move_values(s, w);
    live_begin(s, w, limit);
    s->PerturbAllowed = 0;
    s->RefacReason = REFAC_NONE;
    s->CutoffFrom = has_cutoff(s) ? s->Cutoff * s->ObjScale : HUGE_VAL;
    return dual_pivots(s, w);
}

// The optimum is a lower bound in every branch; the only one if the value is not finite.
double at_least_optimum(const StrongBranch *b, double value)
{
    return std::isfinite(value) ? std::max(b->Optimum, value) : b->Optimum;
}

// Lower bound of the objective in the branch from the current basis. The dual objective is none where a reduced cost
// has the wrong sign within the tolerance.
template<class R> double safe_bound(const StrongBranch *b, swork<R> *w)
{
    sopt *s = b->Record;
    double bound = dual_bound(s, w);
    if (s->Perturbed) bound = std::max(bound, dual_bound_true_costs(s, w));
    return at_least_optimum(b, bound + s->ObjOffset);
}

// The outcome of a probe; bound is the safe bound of its dual run.
BranchOutcome conclude(const StrongBranch *b, double value, double bound)
{
    const sopt *s = b->Record;
    switch (s->Status) {
    case SIMPLEX_INFEASIBLE:
    case SIMPLEX_CUTOFF:
        return {s->Status, b->Optimum, s->NPvt};
    case SIMPLEX_OPTIMAL:
        if (!std::isfinite(value)) return {SIMPLEX_NUMERIC, bound, s->NPvt};
        return {bound - s->ObjOffset > s->Cutoff ? SIMPLEX_CUTOFF : SIMPLEX_OPTIMAL,
                at_least_optimum(b, value - dual_visible_error(s) / s->ObjScale), s->NPvt};
    case SIMPLEX_ITERATION_LIMIT:
    case SIMPLEX_TIME_LIMIT:
    case SIMPLEX_INTERRUPTED:
        return {s->Status, bound, s->NPvt};
    default:
        return {SIMPLEX_NUMERIC, bound, s->NPvt};
    }
}

template<class R>
int solve_branch(StrongBranch *b, swork<R> *w, const Tightened &branch, double limit,
                 BranchOutcome *outcome)
{
    sopt *s = b->Record;
    TRY(run(s, w, branch, limit));
    if (s->Status == SIMPLEX_OPTIMAL && live_tighten_signs(s, w))
        s->Status = SIMPLEX_SWITCH;
    double bound = b->Optimum;
    switch (s->Status) {
    case SIMPLEX_SWITCH:
        bound = safe_bound(b, w);
        s->BaseLost = 1; // the primal simplex updates the factors in place
        TRY(live_run_primal(s, w));
        break;
    case SIMPLEX_ITERATION_LIMIT:
    case SIMPLEX_TIME_LIMIT:
    case SIMPLEX_INTERRUPTED:
        bound = safe_bound(b, w);
        break;
    case SIMPLEX_OPTIMAL:
        if (s->DualObj > s->Cutoff * s->ObjScale) bound = safe_bound(b, w);
        break;
    default:
        break;
    }
    *outcome = conclude(b, true_objective(s, w) + s->ObjOffset, bound);
    return 0;
}

template<class R>
int probe(StrongBranch *b, swork<R> *w, const Tightened &branch, double limit,
          BranchOutcome *outcome)
{
    sopt *s = b->Record;
    const double lower = s->Lower.data[branch.Var], upper = s->Upper.data[branch.Var];
    const int code = solve_branch(b, w, branch, limit, outcome);
    s->Lower.data[branch.Var] = s->WorkLower.data[branch.Var] = lower;
    s->Upper.data[branch.Var] = s->WorkUpper.data[branch.Var] = upper;
    const int back = bring_back(b, w, branch.Var);
    return code ? code : back;
}

template<class R> int open(StrongBranch *b, swork<R> *w)
{
    sopt *s = b->Record;
    if (!w->Dual) TRY(dopt_create(s, &w->Dual));
    s->PerturbAllowed = 0;
    s->Status = SIMPLEX_RUNNING;
    s->StartNorms.size = 0; // they belong to the start basis of the last run
    b->WeightsKept = dual_weights_kept(s, w->Dual);
    if (s->Live == LIVE_NO) {
        dual_weights_start(s, w);
        row_copy_partition(s);
    }
    s->Live = LIVE_FRESH;
    for (int i = 0; i < s->NumRows; i++) w->Dual->RowRejected.data[i] = 0;
    w->Dual->Rejected = w->Dual->FreeCount = 0;
    for (int j = 0; j < s->NumVars; j++) w->Dual->FreeCount += s->VStat.data[j] == AT_FREE;
    s->Status = SIMPLEX_OPTIMAL;
    set_basic_bounds(s);
    dual_set_objective(s, w);
    b->Counters.DualObj = s->DualObj;
    b->Counters.DualObjSum = s->DualObjSum;
    b->Counters.SignError = s->SignError;
    b->Counters.SignOpen = s->SignOpen;
    b->Counters.ValueSize = s->ValueSize;
    return keep(b, w);
}

double value_of(const sopt *s, int j)
{
    if (!is_basic(s, j)) return nonbasic_value(s, j);
    const int r = s->VStat.data[j];
    return s->Quad ? static_cast<double>(s->Extended->Bbar.data[r])
                   : s->Double->Bbar.data[r];
}
} // namespace

int strong_branch_open(sopt *s, StrongBranch **out)
{
    *out = nullptr;
    // Values and reduced costs may be those of another basis, or rows were appended since.
    if (s->Live == LIVE_STALE || (s->Live && s->Status != SIMPLEX_OPTIMAL)) {
        ResolveCall call;
        if (has_cutoff(s)) call.Cutoff = s->Cutoff + s->ObjOffset;
        ResolveOutcome outcome;
        TRY(simplex_resolve(s, call, &outcome));
        // after the primal simplex the record is stale
        if (outcome.Status == SIMPLEX_OPTIMAL && s->Live != LIVE_FRESH)
            TRY(simplex_resolve(s, call, &outcome));
        if (outcome.Status != SIMPLEX_OPTIMAL || s->Live != LIVE_FRESH) return 0;
    }
    assert(s->Status == SIMPLEX_OPTIMAL && simplex_has_factor(s));
    void *block = MemAllocZero(1, sizeof(StrongBranch));
    if (!block) return OUT_OF_MEMORY;
    StrongBranch *b = static_cast<StrongBranch *>(block);
    *b = StrongBranch{};
    b->Record = s;
    b->Optimum = simplex_objective(s);
    b->Counters = *s;
    b->Live = s->Live;
    s->Running = 0; // no callbacks during probes
    if (s->Live == LIVE_NO) sopt_take_cutoff(s);
    const int code = s->Quad ? open(b, s->Extended) : open(b, s->Double);
    if (code)
        strong_branch_close(b);
    else
        *out = b;
    return code;
}

namespace
{
int probe_column(StrongBranch *branch, int j, BranchSide side, double bound, double limit,
                 BranchOutcome *outcome)
{
    sopt *s = branch->Record;
    const double x = value_of(s, j);
    const Tightened t = tighten(s, j, side, bound);
    const bool crossed = bounds_exclude(s, j, t.Lower, t.Upper),
               kept_in = x >= t.Lower - s->FeasTol && x <= t.Upper + s->FeasTol;
    if (!simplex_has_factor(s)) { // the basis itself proved singular
        *outcome = {SIMPLEX_NUMERIC, branch->Optimum, 0};
        return 0;
    }
    if (crossed || kept_in) {
        *outcome = {crossed ? SIMPLEX_INFEASIBLE : SIMPLEX_OPTIMAL, branch->Optimum, 0};
        return 0;
    }
    return s->Quad ? probe(branch, s->Extended, t, limit, outcome)
                   : probe(branch, s->Double, t, limit, outcome);
}

void turn_column(StrongBranch *b, int j)
{
    sopt *s = b->Record;
    s->Quad ? turn_column(b, s->Extended, j) : turn_column(b, s->Double, j);
}
} // namespace

int strong_branch_probe(StrongBranch *branch, int j, BranchSide side, double bound,
                        double iteration_limit, BranchOutcome *outcome)
{
    const bool turned = keeps_upper_only(branch->Record, j, side);
    if (turned) turn_column(branch, j);
    const int code = probe_column(branch, j, side, bound, iteration_limit, outcome);
    if (turned) turn_column(branch, j); // exactly as before
    return code;
}

void strong_branch_close(StrongBranch *branch)
{
    if (!branch) return;
    sopt *s = branch->Record;
    *static_cast<SimplexCounters *>(s) = branch->Counters;
    s->Status = SIMPLEX_OPTIMAL;
    s->Probing = 0;
    s->Live = branch->Live;
    if (s->Live && !simplex_has_factor(s)) s->Live = LIVE_STALE;
    if (branch->WeightsKept)
        s->Quad ? dual_weights_keep(s, s->Extended) : dual_weights_keep(s, s->Double);
    *branch = StrongBranch{};
    MemFree(branch);
}
