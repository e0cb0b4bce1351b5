// search_callback.cpp -- calls of the caller's function during a search, and the answers to its questions
#include "mip/search_callback.h"
#include "env/callback.h"
#include "env/limits.h"
#include "mip/mip_start.h"
#include "mip/node_lp.h"
#include "mip/search_log.h"
#include "mip/user_rows.h"
#include <algorithm>

namespace
{
// What the caller's function may ask about.
struct Moment {
    MIPState *State;
    SearchWorker *Worker; // of the node, or null
    TreeNode *Node;       // or null
};

double in_callers_sense(const MIPState *state, double value)
{
    return state->Body->sense * value;
}

int put(void *result, double value)
{
    *static_cast<double *>(result) = value;
    return 0;
}

int put(void *result, int value)
{
    *static_cast<int *>(result) = value;
    return 0;
}

int relaxation_status(const NodeData *data)
{
    if (data->Result && data->Result->Kind == TVX_OPTIMAL) return TVX_OPTIMAL;
    return data->Status == NODE_CUTOFF       ? TVX_CUTOFF
           : data->Status == NODE_INFEASIBLE ? TVX_INFEASIBLE
                                             : TVX_LOADED;
}

int node_values(const Moment *moment, double *result)
{
    const NodeData *data = moment->Node->Data;
    if (!data->Result || data->Result->Kind != TVX_OPTIMAL)
        return TVX_ERROR_DATA_NOT_AVAILABLE;
    Array<double> x;
    TRY(array_resize(&x, moment->State->Body->numvars));
    node_get_x(moment->Worker, x.data);
    return space_map_back(moment->State->Space, x.data, result);
}

int answer_counts(const MIPState *state, int what, void *result)
{
    switch (what) {
    case TVX_CB_MIP_OBJECTIVE:
    case TVX_CB_SOLUTION_BEST:
    case TVX_CB_NODE_BEST:
    case TVX_CB_SOLUTION_OBJECTIVE:
        return put(result, in_callers_sense(state, state->Pool.Incumbent));
    case TVX_CB_MIP_BOUND:
    case TVX_CB_SOLUTION_BOUND:
    case TVX_CB_NODE_BOUND:
        return put(result, in_callers_sense(state, search_bound(state, true)));
    case TVX_CB_MIP_NODES:
    case TVX_CB_SOLUTION_NODES:
    case TVX_CB_NODE_NODES:
        return put(result, state->Nodes);
    case TVX_CB_MIP_SOLUTIONS:
    case TVX_CB_SOLUTION_COUNT:
    case TVX_CB_NODE_SOLUTIONS:
        return put(result, state->Pool.Count);
    case TVX_CB_MIP_CUTS:
        return put(result, row_count(&state->UserRows));
    case TVX_CB_MIP_OPEN_NODES:
        return put(result, open_nodes(state));
    case TVX_CB_MIP_ITERATIONS:
        return put(result, state->Iterations);
    default:
        return TVX_ERROR_CALLBACK;
    }
}

int answer(const void *solver, int what, void *result)
{
    const Moment *moment = static_cast<const Moment *>(solver);
    const MIPState *state = moment->State;
    if (what == TVX_CB_SOLUTION_VALUES) {
        const SolutionEntry *best = pool_best(&state->Pool);
        if (!best) return TVX_ERROR_DATA_NOT_AVAILABLE;
        std::copy_n(best->Full, space_outermost(state->Space)->numvars,
                    static_cast<double *>(result));
        return 0;
    }
    if (what == TVX_CB_NODE_STATUS)
        return moment->Node ? put(result, relaxation_status(moment->Node->Data))
                            : TVX_ERROR_CALLBACK;
    if (what == TVX_CB_NODE_VALUES)
        return moment->Node ? node_values(moment, static_cast<double *>(result))
                            : TVX_ERROR_CALLBACK;
    return answer_counts(state, what, result);
}

// A solution that presolve alone has found: no search is there to be asked.
struct Presolved {
    const MipResult *Result;
    const ModelBody *Body;
};

int answer_presolved(const void *solver, int what, void *result)
{
    const Presolved *moment = static_cast<const Presolved *>(solver);
    const double none = moment->Body->sense * UNDEFINED_VALUE;
    switch (what) {
    case TVX_CB_SOLUTION_VALUES:
        std::copy_n(moment->Result->x.data, moment->Body->numvars,
                    static_cast<double *>(result));
        return 0;
    case TVX_CB_SOLUTION_OBJECTIVE:
        return put(result, moment->Result->objval);
    case TVX_CB_SOLUTION_BEST:
        return put(result, -none);
    case TVX_CB_SOLUTION_BOUND:
        return put(result, none);
    case TVX_CB_SOLUTION_NODES:
        return put(result, 0.0);
    case TVX_CB_SOLUTION_COUNT:
        return put(result, 1);
    default:
        return TVX_ERROR_CALLBACK;
    }
}

int take_point(const void *solver, const double *x)
{
    const Moment *moment = static_cast<const Moment *>(solver);
    bool accepted = false;
    return offer_start(moment->State, x, SolutionSource::HEURISTIC, &accepted);
}

// The incumbent is none, should the row cut it off.
int take_row(const void *solver, const CallbackRow &row)
{
    const Moment *moment = static_cast<const Moment *>(solver);
    return moment->Node ? add_user_row(moment->State, row) : TVX_ERROR_CALLBACK;
}

void call(int where, const Moment &moment)
{
    if (moment.State->Recursive) return;
    callback_poll(moment.State->Env, where, {&moment, answer, take_point, take_row});
}
} // namespace

void log_callback(MIPState *state)
{
    call(TVX_WHERE_MIP, {state, nullptr, nullptr});
}

void solution_callback(MIPState *state)
{
    call(TVX_WHERE_SOLUTION, {state, nullptr, nullptr});
}

namespace
{
bool has_point(const TreeNode *node)
{
    return node->Data->Status == NODE_INTEGRAL || node->Data->Status == NODE_FRACTIONAL;
}

// A row that excludes a point with all integers whole is no consequence of the model, but a part of it that presolve has
// not seen.
void warn_of_lazy_row(MIPState *state)
{
    const TVXenv *env = state->Env;
    if (state->LazyWarned || (env->Presolve == 0 && !env->TARV_PAR_DUALREDUCTION)) return;
    state->LazyWarned = true;
    TVXmsg(state->Env, "Warning: a cut excludes an integer solution of the model; for lazy "
                       "constraints set Presolve=0 and TARV_PAR_DUALREDUCTION=0\n");
}
} // namespace

void presolved_callback(TVXenv *env, const MipResult *result, const ModelBody *body)
{
    const Presolved moment = {result, body};
    callback_poll(env, TVX_WHERE_SOLUTION, {&moment, answer_presolved, nullptr, nullptr});
}

// No number of rounds ends this: a point that the function has not let pass must not be accepted. Each round cuts off the
// point of the last one, and limits stop it.
int node_callback(SearchWorker *worker, TreeNode *node)
{
    for (;;) {
        const int before = row_count(&worker->State->UserRows);
        call(TVX_WHERE_NODE, {worker->State, worker, node});
        if (row_count(&worker->State->UserRows) == before || !has_point(node)) return 0;
        if (new_rows_hold(worker, before)) return 0;
        if (node->Data->Status == NODE_INTEGRAL) warn_of_lazy_row(worker->State);
        TRY(node_solve_lp(worker, node)); // which takes the new rows first
        if (!has_point(node)) return 0;
        if (limits_reached(worker->State->Env)) {
            node->Data->Status = NODE_STOPPED;
            return 0;
        }
    }
}
