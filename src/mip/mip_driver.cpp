// mip_driver.cpp -- mip_solve: the solve of a mixed-integer program, around its search
//
// Method   1  Parameters: a copy of the caller's environment with the presets of MIPFocus.
//          2  A search that a limit has stopped is continued if nothing has changed that its tree depends on.
//          3  Else presolve reduces the body, and a search for what is left runs; without anything left presolve has
//             found the solution.
//          4  Status, bounds, counts and solutions of the search become the result.
#include "body/quality.h"
#include "body/row_activity.h"
#include "body/signs.h"
#include "env/callback.h"
#include "mip/mip_run.h"
#include "mip/mip_start.h"
#include "mip/search_callback.h"
#include "mip/search_log.h"
#include "mip/sub_mip.h"
#include "runtime/clock.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int PROBING_MUCH = 2; // the presolve level of Presolve 2

// Values of parameters on which a tree depends: with others it is not continued.
SearchBasis basis_of(const TVXenv *env)
{
    return {env->Cutoff,   env->FeasibilityTol,         env->IntFeasTol, env->OptimalityTol,
            env->Presolve, env->TARV_PAR_DUALREDUCTION, env->MIPFocus};
}

bool can_continue(const MipSolve *mip, const ModelBody *body, const TVXenv *env)
{
    return mip->search && mip->body == body && mip->basis == basis_of(env);
}

// ---- Results ----

int open_result(MipSolve *mip)
{
    record_free(mip->result);
    mip->result = record_create<MipResult>();
    if (!mip->result) return OUT_OF_MEMORY;
    mip->result->objval = turned(mip->body->sense, UNDEFINED_VALUE);
    mip->result->objbound = -mip->result->objval;
    return 0;
}

int copy_best(const MipSolve *mip, const SolutionPool *pool)
{
    MipResult *result = mip->result;
    const ModelBody *body = mip->body;
    const int n = body->numvars;
    const SolutionEntry *best = pool_best(pool);
    TRY(array_copy(&result->x, best->Full, n));
    const int64_t others = pool->Entries.size - 1;
    TRY(array_resize(&result->others, others * n));
    for (int64_t k = 0; k < others; k++)
        std::copy_n(pool->Entries.data[k + 1].Full, n, result->others.data + k * n);
    result->other_count = static_cast<int>(others);
    RowActivity rows;
    TRY(row_activity(body, result->x.data, &rows));
    TRY(array_resize(&result->slack, body->numconstrs));
    for (int i = 0; i < body->numconstrs; i++)
        result->slack.data[i] = turned(
            row_sign(body, i), static_cast<double>(body->rhs.data[i] - rows.sum.data[i]));
    long double objective = body->objcon;
    for (int j = 0; j < n; j++)
        objective += static_cast<long double>(body->obj.data[j]) * result->x.data[j];
    result->objval = turned(body->sense, static_cast<double>(objective));
    result->has_solution = 1;
    return 0;
}

// A status that presolve or the search gives for the reduced model, for the model: reductions that keep only an optimum
// leave infeasible and unbounded open.
int status_for_model(const MipSolve *mip, int status)
{
    if (mip->result->has_solution && status == TVX_INFEASIBLE) return TVX_OPTIMAL;
    if (mip->env->Presolve == 0 || !mip->env->TARV_PAR_DUALREDUCTION) return status;
    if (status != TVX_INFEASIBLE && status != TVX_INF_OR_UNBD) return status;
    return objective_is_bounded(mip->env, mip->body) ? TVX_INFEASIBLE : TVX_INF_OR_UNBD;
}

int mip_status_of(PresolveStatus status)
{
    switch (status) {
    case PRESOLVE_INFEASIBLE:
        return TVX_INFEASIBLE;
    case PRESOLVE_UNBOUNDED:
        return TVX_UNBOUNDED;
    case PRESOLVE_TIME_LIMIT:
        return TVX_TIME_LIMIT;
    case PRESOLVE_INTERRUPTED:
        return TVX_INTERRUPTED;
    default:
        return TVX_INF_OR_UNBD;
    }
}

int publish(MipSolve *mip, const MIPState *state)
{
    MipResult *result = mip->result;
    const int sense = mip->body->sense;
    result->node_count = state->Nodes;
    result->iter_count = state->Iterations + state->SubIterations;
    result->sol_count = static_cast<int>(state->Pool.Entries.size);
    result->thread_count = static_cast<int>(state->Workers.size);
    result->objbound = turned(sense, search_bound(state, true));
    result->objval = turned(sense, UNDEFINED_VALUE);
    if (pool_best(&state->Pool)) TRY(copy_best(mip, &state->Pool));
    result->status = status_for_model(mip, state->Status);
    return 0;
}

// ---- The search ----

bool has_entries(const double *start, int n)
{
    for (int j = 0; j < n; j++)
        if (start[j] < START_UNDEFINED) return true;
    return false;
}

int load_start(MIPState *state, const double *start)
{
    bool accepted = false;
    const ModelBody *body = space_outermost(state->Space);
    if (!has_entries(start, body->numvars)) return 0;
    TRY(offer_start(state, start, SolutionSource::START, &accepted));
    if (accepted)
        TVXmsg(state->Env, "\nLoaded MIP start with objective %g\n\n",
               body->sense * state->Pool.Incumbent);
    else
        TVXmsg(state->Env, "\nMIP start did not produce a feasible solution\n\n");
    return 0;
}

int start_search(MipSolve *mip, TVXenv *env, PresolveResult *presolved, const double *start)
{
    SearchOrder order;
    const ModelBody *reduced = presolve_reduced(presolved);
    if (env->TARV_PAR_WRITEPREMODEL && mip->write_reduced)
        mip->write_reduced(reduced, mip->env);
    if (env->Presolve != 0)
        TVXmsg(env, "Presolved: %d rows, %d columns, %d nonzeros\n", reduced->numconstrs,
               reduced->numvars, reduced->numnz);
    TRY(space_create(mip->body, presolved, &order.Space));
    order.Env = env;
    order.Cutoff =
        env->Cutoff < UNDEFINED_VALUE ? mip->body->sense * env->Cutoff : UNDEFINED_VALUE;
    TRY(search_create(order, &mip->search));
    if (start) TRY(load_start(mip->search, start));
    return mip_run(&mip->search);
}

// Presolve has left nothing: its solution is the only candidate.
int take_presolved(MipSolve *mip, const TVXenv *env, const PresolveResult *presolved)
{
    MipResult *result = mip->result;
    const ModelBody *body = mip->body;
    SolutionPool pool;
    double *x = static_cast<double *>(
        MemAlloc(sizeof(double) * static_cast<size_t>(std::max(1, body->numvars))));
    if (!x) return OUT_OF_MEMORY;
    postsolve_primal(presolved, nullptr, x);
    TRY(pool_insert(&pool, {0, 0, SolutionSource::NODE_LP, nullptr, x}));
    const int code = copy_best(mip, &pool);
    pool_free(&pool);
    TRY(code);
    result->objbound = result->objval;
    result->sol_count = 1;
    result->status = TVX_OPTIMAL;
    const double cutoff = body->sense * env->Cutoff;
    if (env->Cutoff < UNDEFINED_VALUE && body->sense * result->objval >= cutoff) {
        TRY(open_result(mip));
        mip->result->status = TVX_CUTOFF;
        return 0;
    }
    presolved_callback(mip->env, result, body);
    return 0;
}

constexpr double COMPONENT_NODES = 500;

// A part of the model that presolve has found to be separate (ComponentSolver).
int solve_component(void *context, const ModelBody *body, double *x, bool *solved)
{
    SubMipOrder order;
    order.Body = body;
    order.Env = static_cast<TVXenv *>(context);
    order.NodeLimit = COMPONENT_NODES;
    order.Gap = 0;
    SubMipOutcome outcome;
    TRY(sub_mip_run(order, &outcome));
    *solved = outcome.Found && outcome.Complete;
    if (*solved) std::copy_n(outcome.X.data, body->numvars, x);
    return 0;
}

int presolve_and_search(MipSolve *mip, TVXenv *env, const double *start)
{
    PresolveResult *presolved = nullptr;
    PresolveStatus status = PRESOLVE_OK;
    double work = 0;
    const int level = mip->env->Presolve == 2 ? PROBING_MUCH : env->TARV_PAR_PREPROBE;
    const ComponentSolver components = {solve_component, env};
    TRY(presolve_mip(mip->body, env, level, &presolved, &status, &work, &components));
    if (status != PRESOLVE_OK) {
        mip->result->status = status_for_model(mip, mip_status_of(status));
        return 0;
    }
    const ModelBody *reduced = presolve_reduced(presolved);
    if (reduced && reduced->numvars > 0) {
        TRY(start_search(mip, env, presolved, start));
        return publish(mip, mip->search);
    }
    const int code = take_presolved(mip, env, presolved);
    presolve_free(presolved);
    return code;
}
} // namespace

void mip_drop_search(MipSolve *mip)
{
    search_free(mip->search);
    mip->search = nullptr;
}

void mip_drop(MipSolve *mip)
{
    mip_drop_search(mip);
    record_free(mip->result);
    mip->result = nullptr;
}

namespace
{
int solve(MipSolve *mip, TVXenv *env, const double *start, bool continued)
{
    TRY(open_result(mip));
    if (!continued) return presolve_and_search(mip, env, start);
    search_set_env(mip->search, env);
    TRY(mip_run(&mip->search));
    return publish(mip, mip->search);
}
} // namespace

int mip_solve(MipSolve *mip, const ModelBody *body, TVXenv *env, const double *start)
{
    const double began = WallClock();
    const bool continued = can_continue(mip, body, env);
    if (!continued) mip_drop_search(mip);
    mip->body = body;
    mip->env = env;
    mip->basis = basis_of(env);
    TVXenv *own = nullptr;
    TRY(env_variant(&own, env));
    mip_focus_apply(own);
    const int code = solve(mip, own, start, continued);
    if (code && mip->result) mip->result->status = TVX_INTERRUPTED;
    if (code) mip_drop_search(mip);
    if (mip->search) search_set_env(mip->search, env); // `own` goes
    if (mip->result) mip->result->run_time = WallClock() - began;
    env_free(own);
    return code;
}
