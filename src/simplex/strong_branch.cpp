// strong_branch.cpp -- strong branching: short dual runs from one optimal basis, with one changed bound each
//
// Problem     For many candidates and both directions: tighten a bound, re-solve for a few iterations, return the
//             objective or a lower bound of it.
// Method      The optimal basis stays dual feasible, so the dual simplex continues from it: only one basic variable is
//             infeasible. Basis, values, weights and factors are saved once and copied back after each probe, which is
//             cheaper than a refactorisation. There is no perturbation and no confirmation on fresh factors, since the
//             dual bound is valid at every dual feasible basis. If shifted costs led to a basis that is not dual
//             feasible for the true costs, the primal simplex continues within the same limit.
// Invariant   Between probes the record is as it was at open, except for the order inside rows of the row copy.
// Cost        A probe: its iterations, and O(n + m + entries of the factors).
// Literature  D. Applegate, R. Bixby, V. Chvatal, W. Cook, "Finding cuts in the TSP", 1995.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
template<class R> struct KeptState {
    lufact<R> Lu;           // see lu_keep
    Array<int> VStat;       // [NumVars]
    Array<int> BasisHead;   // [m]
    Array<R> Cbar;          // [NumVars]
    Array<R> Bbar, Weights; // [m]
    Array<char> Reference;  // [NumVars]
    int PricingCur = 0, PricingFinal = 0, FreeCount = 0;
    double FrameworkWork = 0;
};
} // namespace

struct StrongBranch {
    sopt *Record = nullptr;
    SimplexCounters Counters; // of the record, as they were at open
    TVXenv *Outer = nullptr;  // environment of the record before open and after close
    TVXenv *Inner = nullptr;  // environment during the probes; owned
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
    TRY(lu_keep(&w->Lu, &k->Lu));
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

template<class R> void bring_back(StrongBranch *b, swork<R> *w)
{
    sopt *s = b->Record;
    dopt<R> *d = w->Dual;
    KeptState<R> *k = kept<R>(b);
    const bool factored = s->NumFactor != b->Counters.NumFactor;
    lu_go_back(&k->Lu, factored ? LuParts::ALL : LuParts::UPDATED, &w->Lu);
    w->FactorAge = s->BasisAge;
    std::copy_n(k->VStat.data, s->NumVars, s->VStat.data);
    std::copy_n(k->BasisHead.data, s->NumRows, s->BasisHead.data);
    std::copy_n(k->Cbar.data, s->NumVars, w->Cbar.data);
    std::copy_n(k->Bbar.data, s->NumRows, w->Bbar.data);
    std::copy_n(k->Weights.data, s->NumRows, d->Weights.data);
    std::copy_n(k->Reference.data, s->NumVars, d->Reference.data);
    d->PricingCur = k->PricingCur;
    d->PricingFinal = k->PricingFinal;
    d->FreeCount = k->FreeCount;
    d->FrameworkWork = k->FrameworkWork;
    if (d->Rejected > 0)
        for (int i = 0; i < s->NumRows; i++) d->RowRejected.data[i] = 0;
    d->Rejected = 0;
    if (s->Perturbed || s->Method == METHOD_PRIMAL) dual_remove_perturbation(s);
    // the primal simplex shifts bounds
    if (s->Method == METHOD_PRIMAL) dual_set_true_bounds(s);
    *static_cast<SimplexCounters *>(s) = b->Counters;
    s->Status = SIMPLEX_OPTIMAL;
    set_basic_bounds(s);
    row_copy_partition(s);
}

// The bounds of j in a branch, in units of the working LP. A free variable that gets an upper bound also gets a lower
// bound far away, because the working LP has no variables with only an upper bound.
struct Tightened {
    int Var;
    double Lower, Upper; // before the probe
};

Tightened tighten(sopt *s, int j, BranchSide side, double bound)
{
    double *lower = &s->Lower.data[j], *upper = &s->Upper.data[j];
    const Tightened saved = {j, *lower, *upper};
    const double scale = s->ColScale.data[j], limit = bound / scale;
    const bool from_above = (side == BranchSide::DOWN) == (scale > 0);
    if (from_above)
        *upper = std::min(*upper, limit);
    else
        *lower = std::max(*lower, limit);
    if (from_above && !has_lower(s, *lower)) *lower = -s->Infinity / 2;
    s->WorkLower.data[j] = *lower;
    s->WorkUpper.data[j] = *upper;
    return saved;
}

void loosen(sopt *s, const Tightened &saved)
{
    s->Lower.data[saved.Var] = s->WorkLower.data[saved.Var] = saved.Lower;
    s->Upper.data[saved.Var] = s->WorkUpper.data[saved.Var] = saved.Upper;
}

// A nonbasic variable moves with its bound; a free one goes to its new bound.
template<class R> void place_nonbasic(sopt *s, swork<R> *w, const Tightened &old)
{
    const int j = old.Var;
    int *status = &s->VStat.data[j];
    if (s->Lower.data[j] == s->Upper.data[j]) { // assigned alike
        *status = AT_FIXED;
        row_copy_remove(s, j);
    } else if (*status == AT_FREE) {
        w->Dual->FreeCount--;
        *status = s->Upper.data[j] < old.Upper ? AT_UPPER : AT_LOWER;
    }
    compute_primal(s, w);
}

template<class R> int run(sopt *s, swork<R> *w, const Tightened &old)
{
    if (is_basic(s, old.Var))
        set_basic_bounds(s);
    else
        place_nonbasic(s, w, old);
    s->Status = SIMPLEX_RUNNING;
    s->RefacReason = REFAC_NONE;
    s->Method = METHOD_DUAL;
    s->NPvt = s->IterBase = 0;
    s->Stall = StallGuard{};
    stall_reset(s);
    w->Dual->CycleVar = -1;
    w->Dual->CycleHits = 0;
    w->Dual->CycleIter = 0;
    dual_list_reset(s, w);
    return dual_pivots(s, w);
}

// The optimum is a lower bound in every branch; the only one if the value is not finite.
double at_least_optimum(const StrongBranch *b, double value)
{
    return std::isfinite(value) ? std::max(b->Optimum, value) : b->Optimum;
}

// Lower bound of the objective in the branch from the current basis: its dual objective, minus the possible gain by
// reduced costs of the wrong sign that removed cost shifts have left.
template<class R> double safe_bound(const StrongBranch *b, swork<R> *w)
{
    sopt *s = b->Record;
    if (s->Perturbed) {
        dual_remove_perturbation(s);
        compute_dual(s, w);
    }
    long double gain = 0;
    for (int j = 0; j < s->NumVars; j++) {
        const int status = s->VStat.data[j];
        if (status >= 0 || status == AT_FIXED) continue;
        const double d = static_cast<double>(w->Cbar.data[j]),
                     wrong = status == AT_LOWER   ? -d
                             : status == AT_UPPER ? d
                                                  : std::fabs(d);
        if (wrong <= s->OptTol) continue;
        const double lower = s->Lower.data[j], upper = s->Upper.data[j];
        if (!has_lower(s, lower) || !has_upper(s, upper)) return b->Optimum;
        gain += wrong * (static_cast<long double>(upper) - lower);
    }
    const double bound = true_objective(s, w) - static_cast<double>(gain) / s->ObjScale;
    return at_least_optimum(b, bound + s->ObjOffset);
}

// The basis of the dual run is not optimal for the true costs: the primal simplex continues, with a popt of its own,
// since that of the record belongs to the last primal run.
template<class R> int run_primal(sopt *s, swork<R> *w)
{
    popt<R> *other = w->Primal;
    w->Primal = nullptr;
    s->Status = SIMPLEX_RUNNING;
    s->Method = METHOD_PRIMAL;
    s->PerturbAllowed = 1;
    const int code = PrimalRun(s, w);
    popt_free(&w->Primal);
    w->Primal = other;
    return code;
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
        value = at_least_optimum(b, value);
        return {value - s->ObjOffset > s->Cutoff ? SIMPLEX_CUTOFF : SIMPLEX_OPTIMAL, value,
                s->NPvt};
    case SIMPLEX_ITERATION_LIMIT:
    case SIMPLEX_TIME_LIMIT:
    case SIMPLEX_INTERRUPTED:
        return {s->Status, bound, s->NPvt};
    default:
        return {SIMPLEX_NUMERIC, bound, s->NPvt};
    }
}

template<class R>
int solve_branch(StrongBranch *b, swork<R> *w, const Tightened &old, BranchOutcome *outcome)
{
    sopt *s = b->Record;
    TRY(run(s, w, old));
    double bound = b->Optimum;
    switch (s->Status) {
    case SIMPLEX_SWITCH:
        bound = safe_bound(b, w);
        TRY(run_primal(s, w));
        break;
    case SIMPLEX_ITERATION_LIMIT:
    case SIMPLEX_TIME_LIMIT:
    case SIMPLEX_INTERRUPTED:
        bound = safe_bound(b, w);
        break;
    default:
        break;
    }
    *outcome = conclude(b, true_objective(s, w) + s->ObjOffset, bound);
    return 0;
}

template<class R>
int probe(StrongBranch *b, swork<R> *w, const Tightened &old, BranchOutcome *outcome)
{
    const int code = solve_branch(b, w, old, outcome);
    loosen(b->Record, old);
    bring_back(b, w);
    return code;
}

template<class R> int open(StrongBranch *b, swork<R> *w)
{
    sopt *s = b->Record;
    if (!w->Dual) TRY(dopt_create(s, &w->Dual));
    s->PerturbAllowed = 0;
    s->Status = SIMPLEX_RUNNING;
    s->StartNorms.size = 0; // they belong to the start basis of the last run
    b->WeightsKept = dual_weights_kept(s, w->Dual);
    dual_weights_start(s, w);
    for (int i = 0; i < s->NumRows; i++) w->Dual->RowRejected.data[i] = 0;
    w->Dual->Rejected = w->Dual->FreeCount = 0;
    for (int j = 0; j < s->NumVars; j++) w->Dual->FreeCount += s->VStat.data[j] == AT_FREE;
    s->Status = SIMPLEX_OPTIMAL;
    set_basic_bounds(s);
    row_copy_partition(s);
    return keep(b, w);
}

double value_of(const sopt *s, int j)
{
    if (!is_basic(s, j)) return nonbasic_value(s, j);
    const int r = s->VStat.data[j];
    return s->Quad ? static_cast<double>(s->Extended->Bbar.data[r])
                   : s->Double->Bbar.data[r];
}

int make_env(StrongBranch *b)
{
    b->Outer = b->Record->Env;
    TRY(env_inner(&b->Inner, b->Outer));
    b->Inner->TARV_PAR_SIMPLEXENDFAC = 0;
    b->Record->Env = b->Inner;
    return 0;
}
} // namespace

int strong_branch_open(sopt *s, StrongBranch **out)
{
    assert(s->Status == SIMPLEX_OPTIMAL && simplex_has_fresh_factor(s));
    *out = nullptr;
    void *block = MemAllocZero(1, sizeof(StrongBranch));
    if (!block) return OUT_OF_MEMORY;
    StrongBranch *b = static_cast<StrongBranch *>(block);
    *b = StrongBranch{};
    b->Record = s;
    b->Optimum = simplex_objective(s);
    b->Counters = *s;
    s->Running = 0; // no callbacks during probes
    sopt_take_cutoff(s);
    int code = make_env(b);
    if (!code) code = s->Quad ? open(b, s->Extended) : open(b, s->Double);
    if (code)
        strong_branch_close(b);
    else
        *out = b;
    return code;
}

int strong_branch_probe(StrongBranch *branch, int j, BranchSide side, double bound,
                        double iteration_limit, BranchOutcome *outcome)
{
    sopt *s = branch->Record;
    const double x = value_of(s, j);
    const Tightened old = tighten(s, j, side, bound);
    const double lower = s->Lower.data[j], upper = s->Upper.data[j];
    const bool crossed = lower - upper > s->FeasTol,
               kept_in = x >= lower - s->FeasTol && x <= upper + s->FeasTol;
    if (crossed || kept_in) {
        loosen(s, old);
        *outcome = {crossed ? SIMPLEX_INFEASIBLE : SIMPLEX_OPTIMAL, branch->Optimum, 0};
        return 0;
    }
    branch->Inner->IterationLimit = iteration_limit;
    return s->Quad ? probe(branch, s->Extended, old, outcome)
                   : probe(branch, s->Double, old, outcome);
}

void strong_branch_close(StrongBranch *branch)
{
    if (!branch) return;
    sopt *s = branch->Record;
    s->Env = branch->Outer;
    env_free(branch->Inner);
    *static_cast<SimplexCounters *>(s) = branch->Counters;
    s->Status = SIMPLEX_OPTIMAL;
    if (branch->WeightsKept)
        s->Quad ? dual_weights_keep(s, s->Extended) : dual_weights_keep(s, s->Double);
    *branch = StrongBranch{};
    MemFree(branch);
}
