// search_root.cpp -- the root node
//
// Method   The bounds are propagated, the LP is solved, reduced costs are kept for fixing, and the rules of branching are
//          chosen by what the LP was like. Branching then runs in test mode: it makes no children, but the sides that it
//          closes tighten bounds of the whole search, and the LP is solved again, until that changes nothing.
#include "mip/accept.h"
#include "mip/branch.h"
#include "mip/node_heuristics.h"
#include "mip/node_lp.h"
#include "mip/node_process.h"
#include "mip/search.h"
#include "mip/search_bounds.h"
#include "mip/search_log.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int TEST_ROUNDS = 100;

// ---- The budget of strong branching ----
constexpr int ONE_STEP = 1;                       // iterations: the first step only
constexpr int MANY = 1000, SOME = 501, FEW = 100; // fractional variables
constexpr int SMALL_RATIO = 5, MEDIUM_RATIO = 10, LARGE_RATIO = 30;
constexpr int ROWS_PER_ITERATION = 10, EXTRA_ITERATIONS = 10;
constexpr int FOCUS_BOUND = 2, FOCUS_DEEP = 3, LESS_BOUND = 3, LESS_DEEP = 10;

int fractionals_for_budget(const MIPState *state)
{
    switch (state->Env->MIPFocus) {
    case FOCUS_BOUND:
        return state->RootFractionals / LESS_BOUND;
    case FOCUS_DEEP:
        return state->RootFractionals / LESS_DEEP;
    default:
        return state->RootFractionals;
    }
}

// Iterations of one side, by the iterations that the root took and the number of variables to probe.
int strong_branch_budget(const MIPState *state, double root_iterations)
{
    const int v = fractionals_for_budget(state);
    const double ratio =
        std::trunc((std::trunc(state->Body->numconstrs / ROWS_PER_ITERATION) +
                    root_iterations + EXTRA_ITERATIONS) /
                   (v + 1));
    if (v > MANY) return ONE_STEP;
    if (v < FEW) return NO_BUDGET;
    if ((ratio < MEDIUM_RATIO && v >= SOME) || ratio < SMALL_RATIO) return ONE_STEP;
    return ratio > LARGE_RATIO ? NO_BUDGET : static_cast<int>(ratio);
}

// What the first LP says.
int after_lp(SearchWorker *worker, NodeData *data)
{
    MIPState *state = worker->State;
    state->RootObjective = state->LastRootObjective = data->LPObjective;
    state->RootFractionals = std::max(0, data->Result->Fractionals);
    data->Estimate = data->LPObjective;
    state->Costs.Budget =
        strong_branch_budget(state, state->RootIterations - state->Restart.RootIterations);
    TRY(keep_reduced_costs(worker, data->Result->Bound));
    return fix_by_reduced_costs(state);
}

// Branching in test mode, as long as it tightens global bounds.
int test_branching(SearchWorker *worker, TreeNode **root)
{
    MIPState *state = worker->State;
    for (int round = 0; round < TEST_ROUNDS; round++) {
        if ((*root)->Data->Status != NODE_FRACTIONAL || check_status(state) != RUNNING)
            break;
        periodic_log_line(state);
        const int64_t before = state->GlobalChanges.size;
        TRY(branch_node(worker, root, BranchMode::TEST, nullptr));
        if (state->GlobalChanges.size == before) break;
    }
    return 0;
}

int process_root(SearchWorker *worker, TreeNode **root)
{
    bool feasible = false;
    TRY(node_open_result(worker, *root));
    TRY(worker_move_to(worker, *root, &feasible));
    if (!feasible) {
        (*root)->Data->Status = NODE_INFEASIBLE;
        return 0;
    }
    TRY(settle_root_bounds(worker));
    TRY(root_solve_lp(worker, *root));
    if ((*root)->Data->Status == NODE_FRACTIONAL || (*root)->Data->Status == NODE_INTEGRAL)
        TRY(after_lp(worker, (*root)->Data));
    TRY(node_heuristics(worker, *root, HeurStage::ROOT_PASS));
    if ((*root)->Data->Status == NODE_FRACTIONAL) TRY(test_branching(worker, root));
    return node_heuristics(worker, *root, HeurStage::ROOT_END);
}
// A root that the tree cannot begin with.
void settle(MIPState *state, NodeData *data)
{
    if (data->Status == NODE_INFEASIBLE) data->LowerBound = UNDEFINED_VALUE;
    if (state->RootIterations >= 0 || data->Status == NODE_INFEASIBLE) return;
    const int kind = data->Result ? data->Result->Kind : TVX_NUMERIC;
    if (check_status(state) == RUNNING)
        state->Status = data->Status == NODE_STOPPED ? kind : TVX_NUMERIC;
}
} // namespace

// The root stays open: the tree begins with it, and its LP then needs no pivot.
int search_root(MIPState *state)
{
    SearchWorker *worker = state->Workers.data[0];
    // After a call that a limit has stopped before the tree the root waits in the heap.
    TreeNode *root = worker->Active.size > 0 ? worker->Active.data[--worker->Active.size]
                                             : store_pop(&state->Store);
    worker->Current = root;
    const int code = process_root(worker, &root);
    state->Root = root;
    worker->Current = nullptr;
    array_push(&worker->Active, root); // it has been there
    NodeData *data = root->Data;
    count_work(worker, data);
    if (!code) settle(state, data);
    return code;
}
