// node_heuristics.cpp -- the heuristics as the search calls them: what they get of it, and what they may ask for
#include "mip/node_heuristics.h"
#include "mip/accept.h"
#include "mip/node_lp.h"
#include "mip/node_select.h"
#include "mip/search.h"
#include "mip/search_log.h"
#include "mip/sub_mip.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double ROOT_SHARE =
    0.025; // of Heuristics, above which they run after the first LP
constexpr double LOOKED_FOR = 1e-6; // largest violation of a row that they leave

// Made when first needed, as many searches need none.
int make_state(MIPState *state)
{
    if (state->Heur) return 0;
    HeurModel model;
    model.Body = state->Body;
    model.Rows = state->Rows;
    model.IsInteger = state->IsInteger.data;
    model.Semis = state->Semis;
    model.NumSemis = state->NumSemis;
    model.RowTolerance = std::min(LOOKED_FOR, state->Env->FeasibilityTol);
    return heur_create(model, &state->Heur);
}

MIPState *state_of(void *owner)
{
    return static_cast<SearchWorker *>(owner)->State;
}

int try_point(void *owner, const double *x, bool *improved)
{
    Acceptance outcome = Acceptance::INFEASIBLE;
    const int code =
        accept_solution(state_of(owner), x, SolutionSource::HEURISTIC, &outcome);
    *improved = outcome == Acceptance::IMPROVED;
    return code;
}

bool goes_on(void *owner)
{
    return check_status(state_of(owner)) == RUNNING;
}

double sum(const double *work)
{
    double total = 0;
    for (int phase = 0; phase < WORK_PHASES; phase++) total += work[phase];
    return total;
}

double gap_closed(const MIPState *state)
{
    const double gap = state->Pool.Incumbent - state->RootObjective;
    if (state->Pool.Incumbent >= UNDEFINED_VALUE || gap <= 0) return 0;
    return (search_bound(state, false) - state->RootObjective) / gap;
}

HeurCall call_of(SearchWorker *worker, const NodeData *data, HeurStage stage)
{
    MIPState *state = worker->State;
    HeurCall call;
    call.Stage = stage;
    call.Nodes = state->Nodes;
    call.X = worker->Values.data;
    call.Objective = data->LPObjective;
    call.Bounds = worker->Bounds;
    call.PruneValue = &state->Pool.PruneValue;
    call.Incumbent = &state->Pool.Incumbent;
    call.Share = state->Env->Heuristics;
    call.GapClosed = gap_closed(state);
    call.SearchWork = search_work(state) + sum(worker->Work);
    call.HeurWork = state->Work[WORK_HEURISTICS] + worker->Work[WORK_HEURISTICS];
    call.Env = state->Env;
    call.Search = {worker, try_point, goes_on};
    return call;
}

// Rounding to the nearest integers leaves an objective that is good enough. Costs the candidates only.
bool is_promising(const MIPState *state, const NodeData *data)
{
    double objective = data->LPObjective;
    for (const BranchCandidate &c : data->Result->Candidates)
        objective += state->Body->obj.data[c.Var] * (std::floor(c.Value + 0.5) - c.Value);
    return objective < state->Pool.PruneValue;
}

bool is_due(const MIPState *state, const NodeData *data, HeurStage stage)
{
    if (stage == HeurStage::ROOT_PASS) return state->Env->Heuristics > ROOT_SHARE;
    return stage == HeurStage::ROOT_END || heur_is_due(state->Nodes) ||
           is_promising(state, data);
}
} // namespace

int node_heuristics(SearchWorker *worker, TreeNode *node, HeurStage stage)
{
    MIPState *state = worker->State;
    NodeData *data = node->Data;
    if (data->Status != NODE_FRACTIONAL || state->Env->Heuristics <= 0 ||
        !is_due(state, data, stage))
        return 0;
    TRY(make_state(state));
    if (stage != HeurStage::NODE) update_global_bound(state); // for the log
    node_get_x(worker, worker->Values.data);
    const HeurCall call = call_of(worker, data, stage);
    const int code = stage == HeurStage::NODE ? HeurNode(state->Heur, call)
                                              : HeurRoot(state->Heur, call);
    worker->Work[WORK_HEURISTICS] += heur_take_work(state->Heur);
    if (data->LowerBound >= state->Pool.PruneValue) data->Status = NODE_CUTOFF;
    return code;
}

int search_improve(MIPState *state, const double *x, const double **better)
{
    *better = nullptr;
    if (state->Env->Heuristics <= 0) return 0;
    TRY(make_state(state));
    const ModelBody *body = state->Body;
    *better = heur_improve(state->Heur, body->lb.data, body->ub.data, x);
    return 0;
}
