// search_bounds.cpp -- bounds found on the way: those of the whole search, and those of a node
#include "mip/search_bounds.h"

namespace
{
constexpr double MEANINGFUL = 1e-6; // a smaller step is none
}

int search_tighten(MIPState *state, const BoundDelta &delta)
{
    double *bound =
        delta.Sense == '<' ? &state->Upper.data[delta.Var] : &state->Lower.data[delta.Var];
    const double gain = delta.Sense == '<' ? *bound - delta.Value : delta.Value - *bound;
    if (gain <= MEANINGFUL) return 0;
    *bound = delta.Value;
    return array_append(&state->GlobalChanges, delta);
}

int tighten_node_bounds(SearchWorker *worker, TreeNode **node)
{
    MIPState *state = worker->State;
    const bool root = !(*node)->Parent;
    const int count = static_cast<int>(worker->Deltas.size);
    for (const BoundDelta &delta : worker->Deltas) {
        if (root) TRY(search_tighten(state, delta));
        tighten_by_delta(worker->Bounds, delta, ReasonKind::DECISION);
    }
    if (!root) TRY(node_add_deltas(node, worker->Deltas.data, count));
    TRY(worker_propagate(worker));
    if (worker->Bounds->Infeasible) (*node)->Data->Status = NODE_INFEASIBLE;
    return 0;
}

int settle_root_bounds(SearchWorker *worker)
{
    const Domain *bounds = worker->Bounds;
    for (int64_t k = 0; k < bounds->Trail.size; k++) {
        const TrailEntry &entry = bounds->Trail.data[k];
        const bool lower = entry.Side == BoundSide::LOWER;
        if (!worker->State->IsInteger.data[entry.Col])
            continue; // wider by tolerances than what the rows say
        TRY(search_tighten(worker->State, {lower ? '>' : '<', entry.Col,
                                           lower ? bounds->Lower.data[entry.Col]
                                                 : bounds->Upper.data[entry.Col]}));
    }
    return 0;
}

int fixed_columns(const MIPState *state)
{
    int count = 0;
    for (int j = 0; j < state->Body->numvars; j++)
        count += state->Lower.data[j] == state->Upper.data[j] && // bounds that have met
                 state->Body->lb.data[j] < state->Body->ub.data[j];
    return count;
}
