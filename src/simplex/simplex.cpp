// simplex.cpp -- SimplexOptimize, the entry point of the simplex
//
// Problem     Solve the LP relaxation of a body from a given basis, a start point, or slacks.
// Method      Dual and primal simplex work in turn on one record: after SIMPLEX_SWITCH the other method continues from
//             the basis, after numeric trouble the same method in extended precision. An optimum is then measured in
//             user units. If scaling hides violations, or violations within the tolerances may change the objective
//             visibly, tolerances are tightened and the run continues from the same basis ("polish").
// In, out     The record; its Status.
#include "simplex/simplex.h"
#include "runtime/clock.h"
#include "simplex/sopt.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int MAX_SWITCHES = 20; // changes of method before the run ends in numeric trouble

constexpr int MAX_POLISH = 4; // rounds of tighter tolerances

// violations after tightening aim at this share of their limit
constexpr double POLISH_SHARE = 0.5;

// of the limit: rounding may not carry the measure of the user beyond it
constexpr double LIMIT_ROOM = 0.999;

// Limits of UserViolation::ObjectiveError: users compare six digits of an objective.
constexpr double OBJECTIVE_ERROR_LIMIT = 1e-7; // above this tolerances are tightened

constexpr double OBJECTIVE_ERROR_VISIBLE = 1e-6; // above this users would see it

constexpr double STRICT_MARKOWITZ = 0.9; // Markowitz tolerance after a restart

// A basis is nearly optimal if it has at most this share of the rows as infeasibilities, or at most NEAR_LEAST.
constexpr double NEAR_SHARE = 0.02;

constexpr int NEAR_LEAST = 5;

template<class R> int run_method(sopt *s, swork<R> *w)
{
    if (s->InfeasCheckNeeded) sopt_check_bounds(s);
    if (s->Status != SIMPLEX_RUNNING) return 0;
    return s->Method == METHOD_DUAL ? DualRun(s, w) : PrimalRun(s, w);
}

int run_live(sopt *s)
{
    return s->Quad ? run_method(s, s->Extended) : run_method(s, s->Double);
}

bool may_use_quad(const sopt *s)
{
    return s->Quad == 0 && s->Env->Quad == -1;
}

// After numeric trouble: continue from the same basis in extended precision. Happens once in a run.
int go_extended(sopt *s)
{
    TVXmsg(s->Env, "Warning: switch to quad precision\n");
    TRY(switch_precision(s, 1));
    s->SwitchCount = s->NumericCount = 0;
    s->Status = SIMPLEX_RUNNING;
    return 0;
}

// If the start basis is optimal no method runs: its perturbation would only leave the optimal basis. 0 or a code.
template<class R> int keep_optimal(sopt *s, swork<R> *w)
{
    if (s->InfeasCheckNeeded) sopt_check_bounds(s);
    const bool stale =
        !has_factor(s, w) || (s->Env->TARV_PAR_SIMPLEXENDFAC && w->Lu.NumUpdates > 0);
    if (s->Status == SIMPLEX_RUNNING && stale) TRY(Refactor(s, w));
    if (s->Status != SIMPLEX_RUNNING || s->Superbasics > 0) return 0;
    finish_values(s, w);
    const Infeasibility inf = measure_infeasibility(s, w);
    const int count = inf.PrimalCount + inf.DualCount;
    if (count == 0) s->Status = SIMPLEX_OPTIMAL;
    if (s->MethodByStart && inf.PrimalCount == 0) s->Method = METHOD_PRIMAL;
    if (s->MethodByStart && inf.DualCount == 0) s->Method = METHOD_DUAL;
    if (count > std::max<double>(NEAR_LEAST, NEAR_SHARE * s->NumRows)) s->NearOptimal = 0;
    return 0;
}

int keep_optimal(sopt *s)
{
    return s->Quad ? keep_optimal(s, s->Extended) : keep_optimal(s, s->Double);
}

// Status SIMPLEX_SWITCH: the other method continues. With TARV_PAR_PRIMDUALSWITCH <= 0 the dual simplex first tries
// again itself, without perturbation.
void hand_over(sopt *s)
{
    s->Status = SIMPLEX_RUNNING;
    const bool stay = s->Method == METHOD_DUAL && s->SwitchCount == 0 &&
                      s->Env->TARV_PAR_PRIMDUALSWITCH <= 0 && s->Stall.Taken < STALL_SWITCH;
    if (!stay) s->Method = s->Method == METHOD_DUAL ? METHOD_PRIMAL : METHOD_DUAL;
    if (++s->SwitchCount > 2 || stay) s->PerturbAllowed = 0;
    if (s->SwitchCount > MAX_SWITCHES) s->Status = SIMPLEX_NUMERIC;
}

// Status SIMPLEX_RESTART: start again from slacks with strict pivots in the factors.
void restart(sopt *s)
{
    s->MarkowitzTol = STRICT_MARKOWITZ;
    start_slack_basis(s);
    row_copy_partition(s);
    s->SwitchCount = 0;
    s->Status = SIMPLEX_RUNNING;
}

// Until one method ends with a final status.
int run_methods(sopt *s)
{
    for (;;) {
        TRY(run_live(s));
        if (s->Status == SIMPLEX_SWITCH) hand_over(s);
        if (s->Status == SIMPLEX_RESTART) restart(s);
        if ((s->Status == SIMPLEX_NUMERIC || s->Status == SIMPLEX_NEED_QUAD) &&
            may_use_quad(s))
            TRY(go_extended(s));
        if (s->Status == SIMPLEX_NEED_QUAD) s->Status = SIMPLEX_NUMERIC;
        if (s->Status != SIMPLEX_RUNNING) return 0;
    }
}

UserViolations violations(const sopt *s)
{
    return s->Quad ? measure_violations(s, s->Extended) : measure_violations(s, s->Double);
}

void finish_live(sopt *s)
{
    if (s->Quad)
        finish_values(s, s->Extended);
    else
        finish_values(s, s->Double);
}

// Reduces one tolerance to `wish`. False if it is that low already, or at its floor.
bool tighten(const sopt *s, double *tol, double wish)
{
    wish = std::max(wish, tolerance_floor(s));
    if (wish >= *tol) return false;
    *tol = wish;
    return true;
}

// Reduces one tolerance so that the violations above their limits would have counted as infeasibilities.
bool tighten_for(const sopt *s, double *tol, double limit, const UserViolation &v)
{
    double wish = HUGE_VAL;
    if (v.Largest > LIMIT_ROOM * limit) wish = POLISH_SHARE * v.Working * limit / v.Largest;
    if (v.ObjectiveError > OBJECTIVE_ERROR_LIMIT)
        wish =
            std::min(wish, POLISH_SHARE * *tol * OBJECTIVE_ERROR_LIMIT / v.ObjectiveError);
    return tighten(s, tol, wish);
}

} // namespace

bool tighten_tolerances(sopt *s, const UserViolations &v, bool *primal)
{
    *primal = tighten_for(s, &s->FeasTol, s->Env->FeasibilityTol, v.Primal);
    const bool dual = tighten_for(s, &s->OptTol, s->Env->OptimalityTol, v.Dual);
    return *primal || dual;
}

namespace
{
// Another run from the current basis.
int run_again(sopt *s, SimplexMethod method)
{
    s->Status = SIMPLEX_RUNNING;
    s->Method = method;
    s->PerturbAllowed = 0;
    TRY(run_methods(s));
    finish_live(s);
    return 0;
}

// Restores the optimal basis with these statuses.
int take_up(sopt *s, const int *statuses)
{
    for (int j = 0; j < s->NumVars; j++) {
        s->VStat.data[j] = statuses[j];
        if (is_basic(s, j)) s->BasisHead.data[statuses[j]] = j;
    }
    s->BasisAge++;
    row_copy_partition(s);
    s->Status = SIMPLEX_RUNNING;
    return keep_optimal(s);
}

// Further runs with tighter tolerances, as the file head says. If they end without an optimum (also because of a
// limit), the last optimum within the caller's tolerances is restored.
int polish(sopt *s)
{
    const double tol_feas = s->FeasTol, tol_opt = s->OptTol;
    Array<int> acceptable;
    for (int round = 0; round < MAX_POLISH && s->Status == SIMPLEX_OPTIMAL; round++) {
        const UserViolations v = violations(s);
        if (acceptable.size == 0 && v.Primal.Largest <= s->Env->FeasibilityTol &&
            v.Dual.Largest <= s->Env->OptimalityTol)
            TRY(array_copy(&acceptable, s->VStat.data, s->NumVars));
        bool primal = false;
        if (!tighten_tolerances(s, v, &primal)) return 0;
        TRY(run_again(s, primal ? METHOD_DUAL : METHOD_PRIMAL));
    }
    if (s->Status == SIMPLEX_OPTIMAL) return 0;
    if (acceptable.size == 0 && s->Status != SIMPLEX_NUMERIC) return 0;
    s->FeasTol = tol_feas;
    s->OptTol = tol_opt;
    s->SwitchCount = s->NumericCount = 0;
    if (acceptable.size == 0) return run_again(s, METHOD_DUAL);
    TRY(take_up(s, acceptable.data));
    return s->Status == SIMPLEX_OPTIMAL ? 0 : run_again(s, METHOD_DUAL);
}

int solve(sopt *s)
{
    TRY(keep_optimal(s));
    if (s->Status == SIMPLEX_RUNNING) {
        if (!limit_reached(s)) {
            TRY(run_methods(s));
            TRY(sopt_keep_stop(s));
        }
        finish_live(s);
    } else {
        s->Stopped = 0;
    }
    const bool look = s->Env->TARV_PAR_UNSCALEDVIO != 0;
    return s->Status == SIMPLEX_OPTIMAL && look ? polish(s) : 0;
}

// Creates or refreshes the record, with tolerances and counters for a new run.
int prepare_record(sopt **record, const ModelBody *body, TVXenv *env,
                   const SimplexCall &call, const SimplexTuning &tuning)
{
    if (!*record) TRY(sopt_create(body, env, tuning, record));
    sopt *s = *record;
    s->Env = env;
    sopt_refresh(s, call);
    const int wish = s->Tuning.Extended ? 1 : s->Env->Quad;
    if (wish == 0 && s->Quad == 1) TVXmsg(s->Env, "Switch to double precision\n");
    return switch_precision(s, wish == 1 || (wish == -1 && s->Quad));
}

// Start basis: given, that of the record, or slacks, which a crash may then improve.
int prepare_basis(sopt *s, const SimplexCall &call, bool *from_slacks)
{
    s->StartNorms.size = 0;
    if (call.Statuses) {
        *from_slacks = !start_from_statuses(s, call.Statuses);
        if (call.Norms && !*from_slacks)
            TRY(array_copy(&s->StartNorms, call.Norms, s->NumVars));
    } else if (s->HasBasis) {
        settle_nonbasics(s);
    } else {
        *from_slacks = true;
    }
    if (*from_slacks) start_slack_basis(s);
    if (*from_slacks || call.Statuses) s->Stopped = 0;
    row_copy_partition(s);
    return 0;
}

// A run that a limit stopped continues with the method that was running.
SimplexMethod choose_method(const sopt *s, SimplexMethod method)
{
    if (s->Superbasics > 0) return METHOD_PRIMAL;
    if (s->Stopped && s->AskedMethod == method) return s->StoppedMethod;
    if (method != METHOD_AUTO && method != METHOD_BY_START) return method;
    return s->Env->LPMethod == METHOD_PRIMAL ? METHOD_PRIMAL : METHOD_DUAL;
}

int optimize(sopt **record, const ModelBody *body, TVXenv *env, const SimplexCall &call,
             const SimplexTuning &tuning)
{
    TRY(prepare_record(record, body, env, call, tuning));
    sopt *s = *record;
    bool from_slacks = false;
    TRY(prepare_basis(s, call, &from_slacks));
    if (call.X) start_from_point(s, call.X, call.Slack);
    s->Method = choose_method(s, call.Method);
    if (s->AskedMethod != call.Method) s->Stopped = 0;
    s->AskedMethod = call.Method;
    s->MethodByStart = call.Method == METHOD_BY_START && s->Superbasics == 0;
    if (from_slacks && (s->Method == METHOD_DUAL || !call.X)) {
        TRY(s->Method == METHOD_DUAL ? crash_equations(s) : primal_start(s));
        row_copy_partition(s);
    }
    s->NearOptimal = !from_slacks;
    TRY(solve(s));
    s->Obj = s->Quad ? true_objective(s, s->Extended) : true_objective(s, s->Double);
    s->Quad ? simplex_self_check(s, s->Extended, CheckPoint::FINISHED, -1)
            : simplex_self_check(s, s->Double, CheckPoint::FINISHED, -1);
    if (s->Status == SIMPLEX_OPTIMAL && s->Obj > s->Cutoff) s->Status = SIMPLEX_CUTOFF;
    return 0;
}

int run_in(sopt **record, const ModelBody *body, TVXenv *env, const SimplexCall &call,
           const SimplexTuning &tuning)
{
    const int error = optimize(record, body, env, call, tuning);
    if (call.Total && *record) *call.Total = simplex_iterations(*record);
    if (error) { // the record may be incomplete
        simplex_free(*record);
        *record = nullptr;
    }
    return error;
}
} // namespace

int simplex_run(sopt *s, const SimplexCall &call)
{
    return optimize(&s, s->Body, s->Env, call, s->Tuning);
}

int SimplexOptimize(sopt **record, const ModelBody *body, TVXenv *env,
                    const SimplexCall &call)
{
    return run_in(record, body, env, call, SimplexTuning{});
}

int SimplexRepeat(sopt **record, const ModelBody *body, TVXenv *env,
                  const SimplexCall &call, const SimplexTuning &tuning)
{
    simplex_free(*record);
    *record = nullptr;
    return run_in(record, body, env, call, tuning);
}

namespace
{
template<class R> double price_sum(const sopt *s, const swork<R> *w)
{
    double sum = 0;
    for (int j = 0; j < s->NumVars; j++)
        if (!is_basic(s, j))
            sum += std::fabs(static_cast<double>(w->Cbar.data[j])) / user_unit(s, j);
    return sum / s->ObjScale;
}

double moved_by_widening(const sopt *s)
{
    if (s->Tuning.Widen <= 0) return 0;
    const double price = s->Quad ? price_sum(s, s->Extended) : price_sum(s, s->Double);
    return s->Tuning.Widen * price / (1 + std::fabs(s->Obj + s->ObjOffset));
}
} // namespace

SimplexAssessment simplex_assess(const sopt *s)
{
    SimplexAssessment a;
    a.Limited = s->LimitedFarkas;
    if (s->Status == SIMPLEX_NUMERIC) return a;
    const bool narrow =
        s->Status == SIMPLEX_INFEASIBLE && s->Proof == PROOF_FARKAS && !s->WidenedProof;
    a.Level = narrow ? Confidence::NARROW : Confidence::SURE;
    // With TARV_PAR_UNSCALEDVIO off, optimality of the scaled model is enough.
    const bool optimal = s->Status == SIMPLEX_OPTIMAL && s->Env->TARV_PAR_UNSCALEDVIO != 0;
    const bool unbounded = s->Status == SIMPLEX_UNBOUNDED && s->Proof == PROOF_RAY;
    a.ByRay = unbounded;
    if (!optimal && !unbounded) return a;
    const UserViolations v = violations(s);
    a.Excess = v.Primal.Largest / s->Env->FeasibilityTol;
    if (optimal) {
        a.Moved = moved_by_widening(s);
        a.Excess = std::max(a.Excess, v.Dual.Largest / s->Env->OptimalityTol);
        a.ObjectiveError = std::max(v.Primal.ObjectiveError, v.Dual.ObjectiveError) /
                           OBJECTIVE_ERROR_VISIBLE;
    }
    if (a.Excess > 1) a.Level = Confidence::UNSURE;
    return a;
}

void simplex_set_env(sopt *s, TVXenv *env)
{
    s->Env = env;
}

void simplex_declare(sopt *s, int status)
{
    s->Status = status;
}

bool simplex_is_tuned(const sopt *s)
{
    const SimplexTuning &t = s->Tuning, usual;
    return t.Scale != usual.Scale || t.Extended || t.Tolerance != usual.Tolerance ||
           t.Markowitz != 0 || t.Widen != 0;
}

void simplex_count_on(sopt *s, double iterations)
{
    s->IterBase = iterations - s->NPvt;
}
