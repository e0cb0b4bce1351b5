// lp_driver.cpp -- the route of a linear program: what to start from, which method, what to publish
//
// Method      1  A model that is solved and unchanged is not solved again; only its closing lines are.
//             2  After a limit or an interruption the live simplex record continues.
//                A row that no point satisfies makes the model infeasible without a solve.
//             3  Else the start is the caller's basis if one was set since the last solve, the live
//                record, the basis that an update carried over, or nothing.
//                Where a limit has stopped a solve with presolve, on the reduced model or on the way back, it
//                goes on there; where it has stopped the run on the model itself, without presolve.
//             4  Without a basis to start from, presolve reduces the model (lp_presolved.cpp). The simplex
//                solves what is left, and the way back gives a basis of the model.
//             5  The simplex solves the model itself, from that basis usually without an iteration.
//                An answer that is not sure is sought in other ways (lp_secure.cpp).
//             6  Results are published as lp_result, and the closing lines say how it ended.
// Invariant   A status other than TVX_LOADED stands for what simplex and lp_result hold. Out of memory
//             leaves the status at TVX_LOADED, and neither.
#include "api/optimize.h"
#include "api/optimize_log.h"
#include "attributes/attributes.h"
#include "body/row_kind.h"
#include "body/signs.h"
#include "lp/lp_presolved.h"
#include "lp/lp_secure.h"
#include "model/warm_start.h"
#include "presolve/presolve.h"
#include "runtime/clock.h"
#include "simplex/simplex.h"

static bool already_solved(const TVXmodel *model)
{
    if (!model->simplex || !model->lp_result) return false;
    const int status = model->status;
    return status >= TVX_OPTIMAL && status <= TVX_UNBOUNDED &&
           status == simplex_status(model->simplex);
}

static void drop_simplex(TVXmodel *model)
{
    simplex_free(model->simplex);
    model->simplex = nullptr;
}

// The start that counts is the most recent one: after each solve the warm start is dropped, so that
// one which a caller has set stands only when it is newer than the simplex record.
static void choose_start(TVXmodel *model)
{
    if (model->simplex && simplex_is_tuned(model->simplex)) { // its way was for one solve
        const WarmStart *newer = warm_start_usable(model);
        if (!newer || newer->kind != WARM_CHECKED) warm_start_from_simplex(model);
        drop_simplex(model);
    }
    if (!model->simplex)
        return; // the warm start, if there is one, is loaded by the simplex
    const WarmStart *given = warm_start_usable(model);
    if (given && given->kind == WARM_CHECKED)
        drop_simplex(model);
    else
        warm_start_drop(model);
}

// An empty result in place of any earlier one. 0 or OUT_OF_MEMORY.
static int open_result(TVXmodel *model)
{
    attributes_clear_solution(model);
    model->status = TVX_LOADED;
    if (!model->lp_result)
        model->lp_result = static_cast<LpResult *>(MemAllocZero(1, sizeof(LpResult)));
    if (!model->lp_result) return OUT_OF_MEMORY;
    *model->lp_result = LpResult{};
    return 0;
}

static int choose_method(TVXenv *env)
{
    if (env->LPMethod < 2) return env->LPMethod;
    TVXmsg(env, "Warning: barrier is not available, using dual simplex\n");
    return METHOD_DUAL;
}

// The simplex on the model itself, which may also repair a solution that violates the tolerances only after unscaling.
static int run_simplex(TVXmodel *model, const Array<int> *statuses)
{
    TVXenv *env = model->env;
    const int unscaled_check = env->TARV_PAR_UNSCALEDVIO;
    if (unscaled_check == -2) env->TARV_PAR_UNSCALEDVIO = -1;
    const int method = statuses->size > 0 ? METHOD_BY_START : choose_method(env);
    const int code = lp_secure(model, method, statuses);
    env->TARV_PAR_UNSCALEDVIO = unscaled_check;
    return code;
}

static void publish(TVXmodel *model, double start)
{
    LpResult *result = model->lp_result;
    sopt *simplex = model->simplex;
    result->runtime = WallClock() - start;
    attributes_clear_solution(model); // what a callback has asked for during the solve
    if (!simplex) return;
    result->objval = turned(model->body->sense, simplex_objective(simplex));
    result->itercount = simplex_iterations(simplex);
    model->node_count += simplex_take_work(simplex);
    simplex_log_final(simplex);
}

// A row that no point satisfies settles the model, whatever else it holds.
static bool has_impossible_row(TVXmodel *model)
{
    const ModelBody *body = model->body;
    const int i = find_row(body, RowKind::IMPOSSIBLE);
    if (i < 0) return false;
    char buffer[DEFAULT_NAME_LENGTH];
    TVXmsg(model->env, "Warning: constraint %s has the infinite right-hand side %g\n",
           constr_name(body, i, buffer), turned(row_sign(body, i), body->rhs[i]));
    return true;
}

// Where the last solve was stopped by a limit or an interruption, and this one goes on.
enum class Stopped { NOWHERE, IN_PRESOLVED, ON_MODEL };

static Stopped where_stopped(const TVXmodel *model)
{
    const WarmStart *given = warm_start_usable(model);
    if (!is_limit(model->status) ||
        (given && given->kind == WARM_CHECKED)) // set since then
        return Stopped::NOWHERE;
    if (lp_can_resume(model) && model->env->Presolve != 0) return Stopped::IN_PRESOLVED;
    return model->simplex ? Stopped::ON_MODEL : Stopped::NOWHERE;
}

static int find_start(TVXmodel *model, Stopped stopped, LpStart *start)
{
    if (has_impossible_row(model)) {
        model->status = TVX_INFEASIBLE;
        start->final = true;
    } else if (stopped == Stopped::ON_MODEL) { // presolve would begin anew each time
        presolve_drop(model);
    } else {
        return lp_presolved(model, choose_method(model->env),
                            stopped == Stopped::IN_PRESOLVED, start);
    }
    return 0;
}

// A solve that a callback has stopped with a code of its own leaves results like any other that was
// interrupted; TVXoptimize finds the code in the environment.
static int solve(TVXmodel *model, double start)
{
    const Stopped stopped = where_stopped(model);
    TRY(open_result(model));
    choose_start(model);
    model->node_count = 0;
    if (model->simplex) (void)simplex_take_work(model->simplex); // of earlier solves
    LpStart basis;
    TRY(find_start(model, stopped, &basis));
    if (basis.final)
        drop_simplex(model);
    else
        TRY(run_simplex(model, &basis.statuses));
    if (!is_limit(model->status)) presolve_drop(model); // nothing goes on from there
    publish(model, start);
    if (model->simplex) warm_start_drop(model);
    if (model->status == TVX_INF_OR_UNBD && objective_is_bounded(model->env, model->body))
        model->status = TVX_INFEASIBLE;
    return 0;
}

// A fresh factor for queries to come. That the old one cannot be replaced costs only speed.
static int refresh_factor(TVXmodel *model)
{
    if (!model->env->TARV_PAR_SIMPLEXENDFAC) return 0;
    return simplex_refactor(model) == OUT_OF_MEMORY ? OUT_OF_MEMORY : 0;
}

// Nothing that a solve has left unfinished is used again.
static void abandon(TVXmodel *model)
{
    drop_simplex(model);
    model_free_results(model);
    model->status = TVX_LOADED;
}

int lp_driver(TVXmodel *model)
{
    const double start = WallClock();
    const int code = already_solved(model) ? refresh_factor(model) : solve(model, start);
    const double iterations = model->lp_result ? model->lp_result->itercount : 0;
    if (code == OUT_OF_MEMORY) abandon(model);
    if (model->env->quiet_solve) return code;
    log_lp_effort(model, iterations, start);
    if (code == OUT_OF_MEMORY) TVXmsg(model->env, "Out of memory\n");
    const int outcome = log_lp_outcome(model);
    if (outcome == OUT_OF_MEMORY) abandon(model);
    return code ? code : outcome;
}
