// node_finish.cpp -- the end of a node: totals, log, pseudo-costs, and what is kept of it
#include "mip/node_process.h"
#include "mip/node_select.h"
#include "mip/search_log.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double KNOWN_PRUNE_VALUE = 5e99; // beyond it there is no cutoff

bool is_closed(int status)
{
    return status == NODE_INFEASIBLE || status == NODE_CUTOFF;
}

// The gain that the branch to this node has brought; 0: nothing to learn.
double gain_of(MIPState *state, const NodeData *data)
{
    if (!is_closed(data->Status)) return data->LPObjective - data->ParentObjective;
    if (state->Pool.PruneValue >= KNOWN_PRUNE_VALUE) return 0;
    const double gain = state->Pool.PruneValue - data->ParentObjective;
    if (state->Costs.MeanGain == 0) state->Costs.MeanGain = gain; // 0: not set
    return gain;
}

void learn(MIPState *state, const TreeNode *node)
{
    const NodeData *data = node->Data;
    const bool solved = data->Status == NODE_INTEGRAL || data->Status == NODE_FRACTIONAL ||
                        is_closed(data->Status);
    if (data->BranchVar < 0 || !solved || data->ParentObjective <= -UNDEFINED_VALUE) return;
    const double x = data->BranchValue;
    const double step = data->BranchSense == '<' ? std::floor(x) - x : std::ceil(x) - x;
    if (std::fabs(step) < state->Env->IntFeasTol) return; // says nothing about a unit
    pseudo_update(&state->Costs, data->BranchVar, step, gain_of(state, data));
}

// A fractional node without children: cut off by now, or nothing was found to divide it by, and its bound stays.
void close_undivided(MIPState *state, NodeData *data)
{
    if (data->LowerBound < state->Pool.PruneValue)
        state->LostBound = std::min(state->LostBound, data->LowerBound);
    data->Status = NODE_CUTOFF;
}

// The record of results goes to the next node.
void keep_result(SearchWorker *worker, NodeData *data)
{
    if (worker->Spare) return;
    worker->Spare = data->Result;
    data->Result = nullptr;
}
} // namespace

void count_work(SearchWorker *worker, NodeData *data)
{
    MIPState *state = worker->State;
    if (data->Result) {
        state->Iterations += data->Result->Iterations;
        data->Result->Iterations = 0;
    }
    state->Iterations += worker->ProbeIterations;
    worker->ProbeIterations = 0;
    for (int phase = 0; phase < WORK_PHASES; phase++) {
        state->Work[phase] += worker->Work[phase];
        worker->Work[phase] = 0;
    }
}

int finish_node(SearchWorker *worker, TreeNode *node)
{
    MIPState *state = worker->State;
    NodeData *data = node->Data;
    const bool branched = node->Children > 0;
    if (!branched && data->Status == NODE_FRACTIONAL) close_undivided(state, data);
    count_work(worker, data);
    worker->Current = nullptr;
    update_global_bound(state);
    node_log_line(state, node);
    state->Nodes++;
    learn(state, node);
    keep_result(worker, data);
    return node_release(node, &state->Store, &state->Root,
                        branched ? RELEASE_BRANCHED : RELEASE_FREE);
}
