// node_process.cpp -- the processing of one node: bounds, propagation, LP, reduced costs
//
// Method   1  The worker's bounds become those of the node, propagated; most infeasible nodes end here.
//          2  The LP is solved with the changed bounds, up to the value from which the node is cut off.
//          3  Reduced costs tighten bounds of integer variables, and these are propagated. When that cuts off the LP
//             solution, the LP is solved once more.
// Bounds found in step 3 become changes of the node, so that its descendants have them whatever the worker does between.
#include "mip/node_process.h"
#include "mip/node_lp.h"
#include <algorithm>
#include <cmath>

namespace
{
// Reduced costs are trusted from this multiple of OptimalityTol on, and from this share of the gap.
constexpr double TRUSTED_COST = 10, SHARE_OF_GAP = 1e-9;

// Steps that reduced costs allow are rounded down with this margin.
constexpr double STEP_MARGIN = 1e-6;

// The bound that the reduced cost d of nonbasic column j leaves, within `gap` of the LP objective.
bool tighten_by_cost(Domain *bounds, int j, double d, double gap)
{
    const double lower = bounds->Lower.data[j], upper = bounds->Upper.data[j];
    const double step = std::floor(gap / std::fabs(d) + STEP_MARGIN);
    if (step >= upper - lower) return false;
    if (d > 0)
        domain_tighten(bounds, j, BoundSide::UPPER, lower + step,
                       {ReasonKind::REDUCED_COST, -1});
    else
        domain_tighten(bounds, j, BoundSide::LOWER, upper - step,
                       {ReasonKind::REDUCED_COST, -1});
    return true;
}

// Integer columns whose reduced cost leaves less than their range. Their number.
int tighten_by_costs(SearchWorker *worker, double bound)
{
    const MIPState *state = worker->State;
    const sopt *lp = worker->Lp.simplex;
    Domain *bounds = worker->Bounds;
    const double gap = state->Pool.PruneValue - bound;
    const double least =
        std::max(TRUSTED_COST * state->Env->OptimalityTol, SHARE_OF_GAP * gap);
    int tightened = 0;
    for (int j = 0; j < state->Body->numvars && !bounds->Infeasible; j++) {
        if (!state->IsInteger.data[j] || bounds->Lower.data[j] == bounds->Upper.data[j] ||
            simplex_is_basic(lp, j))
            continue;
        const double d = simplex_reduced_cost(lp, j);
        if (std::fabs(d) > least) tightened += tighten_by_cost(bounds, j, d, gap);
    }
    return tightened;
}

// Changes behind `mark` on the trail: those of integer columns become the node's. *moved: the LP solution violates one.
int keep_changes(SearchWorker *worker, int64_t mark, TreeNode **node, bool *moved)
{
    const Domain *bounds = worker->Bounds;
    worker->Deltas.size = 0;
    for (int64_t k = mark; k < bounds->Trail.size; k++) {
        const TrailEntry &entry = bounds->Trail.data[k];
        const double x = simplex_value(worker->Lp.simplex, entry.Col);
        const double tolerance = worker->State->Env->FeasibilityTol;
        const bool lower = entry.Side == BoundSide::LOWER;
        if (lower ? x < entry.New - tolerance : x > entry.New + tolerance) *moved = true;
        if (entry.Reason.Kind != ReasonKind::REDUCED_COST) continue; // follows from others
        TRY(array_append(&worker->Deltas, {lower ? '>' : '<', entry.Col, entry.New}));
    }
    return node_add_deltas(node, worker->Deltas.data,
                           static_cast<int>(worker->Deltas.size));
}

int tighten_node(SearchWorker *worker, TreeNode **node)
{
    MIPState *state = worker->State;
    NodeData *data = (*node)->Data;
    if (state->Pool.PruneValue >= UNDEFINED_VALUE || !state->Env->TARV_PAR_DUALREDUCTION)
        return 0;
    const int64_t mark = domain_mark(worker->Bounds);
    if (tighten_by_costs(worker, data->Result->Bound) == 0) return 0;
    TRY(worker_propagate(worker));
    if (worker->Bounds->Infeasible) {
        data->Status = NODE_CUTOFF;
        return 0;
    }
    bool moved = false;
    TRY(keep_changes(worker, mark, node, &moved));
    return moved ? node_solve_lp(worker, *node) : 0;
}
} // namespace

int node_open_result(SearchWorker *worker, TreeNode *node)
{
    NodeData *data = node->Data;
    if (!data->Result && worker->Spare) {
        data->Result = worker->Spare;
        worker->Spare = nullptr;
        data->Result->Kind = 0; // what the last node has left is not true of this one
        data->Result->Iterations = 0;
        data->Result->GainsValid = false;
    }
    if (!data->Result) data->Result = record_create<NodeLPResult>();
    return data->Result ? 0 : OUT_OF_MEMORY;
}

int process_node(SearchWorker *worker, TreeNode **node)
{
    NodeData *data = (*node)->Data;
    TRY(node_open_result(worker, *node));
    bool feasible = false;
    TRY(worker_move_to(worker, *node, &feasible));
    if (!feasible) {
        data->Status = NODE_INFEASIBLE;
        return 0;
    }
    TRY(node_solve_lp(worker, *node));
    if (data->Status == NODE_FRACTIONAL) TRY(tighten_node(worker, node));
    return 0;
}
