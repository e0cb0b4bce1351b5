// simplex.cpp -- SimplexOptimize, the one entry to the simplex
//
// Problem     Bring model->body to a final status from whatever start there is.
// Method      Dual and primal run in turn on one record: SIMPLEX_SWITCH hands the basis to the other method, numeric
//             trouble to the same method in extended precision. An optimum is then looked at in the user's units: when
//             scaling hides violations there, or violations within the tolerance stand for a visible part of the
//             objective, tolerances are tightened and the run goes on from the same basis.
// In, out     The record model->simplex; model->status.
#include "simplex/simplex.h"
#include "model/warm_start.h"
#include "runtime/clock.h"
#include "simplex/sopt.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int MAX_SWITCHES = 20; // changes of method before the run ends in numeric trouble
constexpr int MAX_POLISH = 4;    // rounds of tighter tolerances
constexpr double TOLERANCE_FLOOR = 1e-9, EXTENDED_FLOOR = 1e-13; // of tightened tolerances
constexpr double POLISH_SHARE = 0.5; // aim below the limit, not at it
constexpr double LIMIT_ROOM =
    0.999; // of the limit: rounding may not carry the measure of the user beyond it
// Share of the objective that violations may stand for (UserViolation::Worth): users compare six digits.
constexpr double WORTH_LIMIT = 1e-7; // above this tolerances are tightened
constexpr double WORTH_SEEN = 1e-6;  // above this users would see it

constexpr double STRICT_MARKOWITZ = 0.9; // pivots in the factors after a restart
// A basis is nearly optimal with no more infeasibilities than this share of the rows, or NEAR_LEAST if that is more.
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

// Numeric trouble: the same basis in extended precision, once.
int go_extended(sopt *s)
{
    TVXmsg(s->Env, "Warning: switch to quad precision\n");
    TRY(switch_precision(s, 1));
    s->SwitchCount = s->NumericCount = 0;
    s->Status = SIMPLEX_RUNNING;
    return 0;
}

// A basis that is optimal stays: the perturbation of a run would only lead away from it. 0 or a code.
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

// A method hands over. Where the caller does not want it, the dual first goes on itself, without perturbation.
void hand_over(sopt *s)
{
    s->Status = SIMPLEX_RUNNING;
    const bool stay = s->Method == METHOD_DUAL && s->SwitchCount == 0 &&
                      s->Env->TARV_PAR_PRIMDUALSWITCH <= 0 && s->Stall.Taken < STALL_SWITCH;
    if (!stay) s->Method = s->Method == METHOD_DUAL ? METHOD_PRIMAL : METHOD_DUAL;
    if (++s->SwitchCount > 2 || stay) s->PerturbAllowed = 0;
    if (s->SwitchCount > MAX_SWITCHES) s->Status = SIMPLEX_NUMERIC;
}

// From slacks again, with pivots as strict as they can be.
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

// Tightens one tolerance by what is asked. False when it is low enough already or cannot go lower.
bool tighten(const sopt *s, double *tol, double wish)
{
    wish = std::max(wish, s->Quad ? EXTENDED_FLOOR : TOLERANCE_FLOOR);
    if (wish >= *tol) return false;
    *tol = wish;
    return true;
}

// So that what is above its limit would not have passed.
bool tighten_for(const sopt *s, double *tol, double limit, const UserViolation &v)
{
    double wish = HUGE_VAL;
    if (v.Largest > LIMIT_ROOM * limit) wish = POLISH_SHARE * v.Working * limit / v.Largest;
    if (v.Worth > WORTH_LIMIT)
        wish = std::min(wish, POLISH_SHARE * *tol * WORTH_LIMIT / v.Worth);
    return tighten(s, tol, wish);
}

// Another run from the basis at hand.
int run_again(sopt *s, int method)
{
    s->Status = SIMPLEX_RUNNING;
    s->Method = method;
    s->PerturbAllowed = 0;
    TRY(run_methods(s));
    finish_live(s);
    return 0;
}

// The optimal basis with these statuses once more.
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

// Tighter tolerances where violations matter. An optimum within the caller's tolerances that is lost thereby is taken
// up again, also when a limit stops the way to a better one.
int polish(sopt *s)
{
    const double tol_feas = s->FeasTol, tol_opt = s->OptTol;
    Array<int> acceptable;
    for (int round = 0; round < MAX_POLISH && s->Status == SIMPLEX_OPTIMAL; round++) {
        const UserViolations v = violations(s);
        if (acceptable.size == 0 && v.Primal.Largest <= s->Env->FeasibilityTol &&
            v.Dual.Largest <= s->Env->OptimalityTol)
            TRY(array_copy(&acceptable, s->VStat.data, s->NumVars));
        const bool primal = tighten_for(s, &s->FeasTol, s->Env->FeasibilityTol, v.Primal),
                   dual = tighten_for(s, &s->OptTol, s->Env->OptimalityTol, v.Dual);
        if (!primal && !dual) return 0;
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

// The record for this model, with tolerances and counters for a new run.
int prepare_record(TVXmodel *model, const SimplexTuning &tuning)
{
    const bool fresh = !model->simplex;
    if (fresh) TRY(sopt_create(model, tuning, &model->simplex));
    sopt *s = model->simplex;
    sopt_refresh(s);
    const int wish = s->Tuning.Extended ? 1 : s->Env->Quad;
    if (wish == 0 && s->Quad == 1) TVXmsg(s->Env, "Switch to double precision\n");
    return switch_precision(s, wish == 1 || (wish == -1 && s->Quad));
}

// What a run starts from: a basis or a point, or null. Scratch: from nothing else then.
struct Start {
    const int *vstat_cols = nullptr, *vstat_rows = nullptr;
    const double *x = nullptr, *slack = nullptr;
    bool scratch = false;
};

// A start basis: given, live, stored with the model, or made of slacks, which a crash may then improve.
int prepare_basis(TVXmodel *model, const Start &start, bool *from_slacks)
{
    sopt *s = model->simplex;
    s->StartNorms.size = 0;
    if (start.vstat_cols && start.vstat_rows) {
        Array<int> statuses;
        TRY(array_resize(&statuses, s->NumVars));
        std::copy_n(start.vstat_cols, s->NumCols, statuses.data);
        std::copy_n(start.vstat_rows, s->NumRows, statuses.data + s->NumCols);
        *from_slacks = !start_from_statuses(s, statuses.data);
    } else if (s->HasBasis) {
        settle_nonbasics(s);
    } else {
        const WarmStart *warm = start.scratch ? nullptr : warm_start_usable(model);
        *from_slacks = !warm || !start_from_statuses(s, warm->statuses.data);
        if (!*from_slacks && warm->norms.size == s->NumVars)
            TRY(array_copy(&s->StartNorms, warm->norms.data, s->NumVars));
    }
    if (*from_slacks) start_slack_basis(s);
    if (*from_slacks || start.vstat_cols) s->Stopped = 0;
    row_copy_partition(s);
    return 0;
}

// A run that a limit stopped goes on by the method that was running.
int choose_method(const TVXmodel *model, int method)
{
    const sopt *s = model->simplex;
    if (s->Superbasics > 0) return METHOD_PRIMAL;
    if (s->Stopped && s->AskedMethod == method) return s->StoppedMethod;
    if (method != METHOD_AUTO && method != METHOD_BY_START) return method;
    return model->env->LPMethod == METHOD_PRIMAL ? METHOD_PRIMAL : METHOD_DUAL;
}

// Nothing to do: the record holds the final result of this very problem.
bool is_solved(const TVXmodel *model, int method)
{
    const sopt *s = model->simplex;
    if (!s || model->status != s->Status || s->InfeasCheckNeeded) return false;
    if (method >= 0 && method != s->Method) return false;
    if (s->Env->TARV_PAR_SIMPLEXENDFAC && !simplex_has_fresh_factor(s)) return false;
    return s->Status == SIMPLEX_OPTIMAL || s->Status == SIMPLEX_INFEASIBLE ||
           s->Status == SIMPLEX_UNBOUNDED;
}

int optimize(TVXmodel *model, int method, const Start &start, const SimplexTuning &tuning)
{
    TRY(prepare_record(model, tuning));
    sopt *s = model->simplex;
    bool from_slacks = false;
    TRY(prepare_basis(model, start, &from_slacks));
    if (start.x) start_from_point(s, start.x, start.slack);
    s->Method = choose_method(model, method);
    if (s->AskedMethod != method) s->Stopped = 0;
    s->AskedMethod = method;
    s->MethodByStart = method == METHOD_BY_START && s->Superbasics == 0;
    if (from_slacks && (s->Method == METHOD_DUAL || !start.x)) {
        TRY(s->Method == METHOD_DUAL ? crash_equations(s) : primal_start(s));
        row_copy_partition(s);
    }
    s->NearOptimal = !from_slacks;
    TRY(solve(s));
    s->Obj = s->Quad ? true_objective(s, s->Extended) : true_objective(s, s->Double);
    s->Quad ? simplex_self_check(s, s->Extended, CheckPoint::FINISHED, -1)
            : simplex_self_check(s, s->Double, CheckPoint::FINISHED, -1);
    if (s->Status == SIMPLEX_OPTIMAL && s->Obj > s->Cutoff) s->Status = SIMPLEX_CUTOFF;
    model->status = s->Status;
    return 0;
}
} // namespace

static void drop(TVXmodel *model)
{
    simplex_free(model->simplex);
    model->simplex = nullptr;
}

int SimplexOptimize(TVXmodel *model, int method, const int *vstat_cols,
                    const int *vstat_rows, const double *x_start, const double *slack_start)
{
    if (!vstat_cols && !x_start && is_solved(model, method)) return 0;
    const Start start = {vstat_cols, vstat_rows, x_start, slack_start};
    const int error = optimize(model, method, start, SimplexTuning{});
    if (error) drop(model); // parts of the record may be half built
    return error;
}

int SimplexRepeat(TVXmodel *model, int method, const int *statuses,
                  const SimplexTuning &tuning)
{
    drop(model);
    Start start;
    start.vstat_cols = statuses;
    start.vstat_rows = statuses ? statuses + model->body->numvars : nullptr;
    start.scratch = true;
    const int error = optimize(model, method, start, tuning);
    if (error) drop(model);
    return error;
}

template<class R> static double price_sum(const sopt *s, const swork<R> *w)
{
    double sum = 0;
    for (int j = 0; j < s->NumVars; j++)
        if (!is_basic(s, j))
            sum += std::fabs(static_cast<double>(w->Cbar.data[j])) / user_unit(s, j);
    return sum / s->ObjScale;
}

static double moved_by_widening(const sopt *s)
{
    if (s->Tuning.Widen <= 0) return 0;
    const double price = s->Quad ? price_sum(s, s->Extended) : price_sum(s, s->Double);
    return s->Tuning.Widen * price / (1 + std::fabs(s->Obj + s->ObjOffset));
}

SimplexAssessment simplex_assess(const sopt *s)
{
    SimplexAssessment a;
    a.Near = s->NearFarkas;
    if (s->Status == SIMPLEX_NUMERIC) return a;
    const bool narrow =
        s->Status == SIMPLEX_INFEASIBLE && s->Proof == PROOF_FARKAS && !s->WideProof;
    a.Foot = narrow ? Footing::NARROW : Footing::SURE;
    // Where the caller asks for no look at an optimum in his units, what the scaled model allows will do.
    const bool optimal = s->Status == SIMPLEX_OPTIMAL && s->Env->TARV_PAR_UNSCALEDVIO != 0;
    const bool unbounded = s->Status == SIMPLEX_UNBOUNDED && s->Proof == PROOF_RAY;
    a.ByRay = unbounded;
    if (!optimal && !unbounded) return a;
    const UserViolations v = violations(s);
    a.Excess = v.Primal.Largest / s->Env->FeasibilityTol;
    if (optimal) {
        a.Moved = moved_by_widening(s);
        a.Excess = std::max(a.Excess, v.Dual.Largest / s->Env->OptimalityTol);
        a.Worth = std::max(v.Primal.Worth, v.Dual.Worth) / WORTH_SEEN;
    }
    if (a.Excess > 1) a.Foot = Footing::UNSURE;
    return a;
}

void simplex_declare(TVXmodel *model, int status)
{
    model->status = model->simplex->Status = status;
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
