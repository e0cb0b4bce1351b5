// root_lp.cpp -- the first LP relaxation of a search
//
// Method   The LP driver solves it (lp/lp.h), by default with its simplex directly on the body, which presolve has
//          reduced already. From then on the simplex record is live.
#include "mip/node_lp.h"
#include "runtime/clock.h"

namespace
{
constexpr int MANY_ROWS =
    5; // times the columns: the LP driver then looks for a better form

constexpr int LP_AUTOMATIC = -1, LP_NO_PRESOLVE = 0, LP_PRESOLVE = 1; // values of Presolve

bool wants_lp_presolve(const MIPState *state)
{
    const TVXenv *env = state->Env;
    return env->Presolve == 2 || env->PreDual == 1 ||
           state->Body->numconstrs > MANY_ROWS * int64_t{state->Body->numvars};
}

// The environment of the worker's LP while the root is solved: its log is that of the search.
int make_env(SearchWorker *worker)
{
    const MIPState *state = worker->State;
    env_free(worker->LpEnv);
    worker->LpEnv = nullptr;
    TRY(env_variant(&worker->LpEnv, state->Env));
    TVXenv *env = worker->LpEnv;
    env_write_no_files(env);
    env->Presolve = wants_lp_presolve(state) ? LP_AUTOMATIC : LP_NO_PRESOLVE;
    env->LPMethod = state->Env->RootMethod;
    env->Cutoff = UNDEFINED_VALUE;
    env->TARV_PAR_WRITEPREMODEL = 0;
    if (state->Recursive || state->Again) env->OutputFlag = 0;
    return 0;
}

int run(SearchWorker *worker, double *iterations)
{
    LpGiven given;
    given.root = true;
    TRY(lp_solve(&worker->Lp, worker->State->Body, worker->LpEnv, given));
    *iterations += worker->Lp.result->itercount;
    worker->Work[WORK_ROOT_LP] += worker->Lp.work;
    return 0;
}

// Numeric trouble may end with another form of the LP. An LP without an optimum is solved on the body itself, for a
// record with a basis.
int solve(SearchWorker *worker, double *iterations)
{
    TRY(run(worker, iterations));
    const int status = worker->Lp.status;
    const bool open =
        status == TVX_INF_OR_UNBD || (status == TVX_UNBOUNDED && !worker->Lp.simplex);
    if (status != TVX_NUMERIC && !open) return 0;
    lp_drop(&worker->Lp);
    worker->LpEnv->Presolve = open ? LP_NO_PRESOLVE : LP_PRESOLVE;
    return run(worker, iterations);
}

// A limit that is no final result leaves the record where the next call goes on.
NodeStatus status_of(int status)
{
    switch (status) {
    case TVX_OPTIMAL:
        return NODE_FRACTIONAL; // until the candidates are known
    case TVX_INFEASIBLE:
        return NODE_INFEASIBLE;
    case TVX_ITERATION_LIMIT:
    case TVX_TIME_LIMIT:
    case TVX_INTERRUPTED:
        return NODE_STOPPED;
    default:
        return NODE_FAILED;
    }
}

int go_live(SearchWorker *worker)
{
    TVXenv *env = worker->LpEnv;
    env->OutputFlag = 0;
    env->quiet_solve = 1;
    TRY(simplex_go_live(worker->Lp.simplex));
    return 0;
}

void log_root(const MIPState *state, double objective, double iterations, double seconds)
{
    if (state->Recursive || state->Again) return;
    TVXmsg(state->Env, "\nRoot relaxation: objective %.6e, %.0f iterations, %.2f seconds\n",
           state->Body->sense * objective, iterations, seconds);
}
} // namespace

int root_solve_lp(SearchWorker *worker, TreeNode *node)
{
    MIPState *state = worker->State;
    NodeData *data = node->Data;
    const double start = WallClock();
    double iterations = 0;
    TRY(make_env(worker));
    TRY(solve(worker, &iterations));
    data->Result->Iterations += iterations;
    data->Result->Kind = worker->Lp.status;
    data->Status = status_of(worker->Lp.status);
    const bool unbounded = worker->Lp.status == TVX_UNBOUNDED;
    if (data->Status != NODE_FRACTIONAL && !unbounded) return 0;
    TRY(go_live(worker));
    state->RootIterations = state->Restart.RootIterations + iterations;
    if (unbounded) return 0;
    log_root(state, simplex_objective(worker->Lp.simplex), iterations, WallClock() - start);
    return node_solve_lp(
        worker, node); // without a pivot: with what propagation has found, and the cutoff
}
