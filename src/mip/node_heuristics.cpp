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
// Of the work so far, for a search inside; and what it may always take, some hundredths of a second.
constexpr double SHARE_WITH_INCUMBENT = 0.5, SMALL_WORK = 1e6;
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

double sum(const double *work)
{
    double total = 0;
    for (int phase = 0; phase < WORK_PHASES; phase++) total += work[phase];
    return total;
}

// As much work as the search has done so far, half of that with an incumbent, within what is left of the limit.
int search_inside(void *owner, const double *lower, const double *upper, bool *improved,
                  double *work)
{
    const SearchWorker *worker = static_cast<SearchWorker *>(owner);
    MIPState *state = worker->State;
    const double done = search_work(state) + sum(worker->Work);
    const double share = state->Pool.Incumbent < UNDEFINED_VALUE ? SHARE_WITH_INCUMBENT : 1;
    const double left = std::max(0.0, state->Env->TARV_PAR_VTIMELIMIT - done);
    const SubMipLimits limits = {1.0 * state->Env->SubMIPNodes,
                                 std::min(left, std::max(SMALL_WORK, share * done))};
    SubMipResult result;
    const int code = RunSubMip(state, lower, upper, limits, &result);
    *improved = result.Objective < UNDEFINED_VALUE;
    *work = result.Work;
    return code;
}

double branch_difference(void *owner, int j)
{
    const GainEstimate gains = pseudo_estimate(&state_of(owner)->Costs, j, 0.5);
    return std::fabs(gains.Down - gains.Up);
}

bool goes_on(void *owner)
{
    return check_status(state_of(owner)) == RUNNING;
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
    const bool inside = state->Env->TARV_PAR_SUBMIP != 0;
    call.Search = {worker, try_point, inside ? nullptr : search_inside, branch_difference,
                   goes_on};
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
