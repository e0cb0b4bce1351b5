// search_loop.cpp -- the tree, node by node
//
// Method   Choose a node, process it, branch, finish it, test for the end. One worker runs here on the caller's thread.
#include "mip/accept.h"
#include "mip/branch.h"
#include "mip/node_heuristics.h"
#include "mip/node_process.h"
#include "mip/node_select.h"
#include "mip/search.h"
#include "mip/search_callback.h"

namespace
{
// Bounds decide before anything is solved.
int settle_by_bound(const MIPState *state, NodeData *data)
{
    if (data->LowerBound >= UNDEFINED_VALUE) return NODE_INFEASIBLE;
    return data->LowerBound >= state->Pool.PruneValue ? NODE_CUTOFF : NODE_UNSOLVED;
}

// The basis in which the node's LP has ended is what its children start from.
int save_basis(SearchWorker *worker, TreeNode *node)
{
    NodeData *data = node->Data;
    if (data->Basis.Full || worker->LpNode != node->Number) return 0; // assigned alike
    data->Basis.Full = record_create<NodeBasis>();
    if (!data->Basis.Full) return OUT_OF_MEMORY;
    data->LPRows = simplex_num_rows(worker->Lp.simplex);
    return simplex_save_basis(worker->Lp.simplex, data->Basis.Full);
}

int divide(SearchWorker *worker, TreeNode **node)
{
    Children children;
    TRY(array_grow(&worker->Active, worker->Active.size + 2)); // nothing may lose a child
    const int code = branch_node(worker, node, BranchMode::DIVIDE, &children);
    for (int k = 0; k < children.Count; k++) array_push(&worker->Active, children.Node[k]);
    TRY(code);
    return children.Count > 0 ? save_basis(worker, *node) : 0;
}

bool is_open(const TreeNode *node)
{
    return node->Data->Status == NODE_FRACTIONAL || node->Data->Status == NODE_FAILED;
}

// A node that a limit has stopped is processed again by the next call.
int put_back(SearchWorker *worker, TreeNode *node)
{
    node->Data->Status = NODE_UNSOLVED;
    worker->Current = nullptr;
    count_work(worker, node->Data);
    return activate_node(worker, node);
}
} // namespace

namespace
{
int work_on_node(SearchWorker *worker, TreeNode **node)
{
    MIPState *state = worker->State;
    NodeData *data = (*node)->Data;
    data->Status = settle_by_bound(state, data);
    if (data->Status == NODE_UNSOLVED) TRY(process_node(worker, node));
    TRY(node_callback(worker, *node));
    if ((*node)->Parent) TRY(node_heuristics(worker, *node, HeurStage::NODE)); // root: done
    // Branching may find bounds with which the LP becomes integral, and a point that is not exact may be branched on.
    for (bool again = true; again;) {
        if ((*node)->Data->Status == NODE_INTEGRAL) TRY(accept_node(worker, node));
        again = is_open(*node);
        if (again) TRY(divide(worker, node));
        again = again && (*node)->Children == 0 && (*node)->Data->Status == NODE_INTEGRAL;
    }
    worker->Current = *node;
    return 0;
}

// After an error. A node with children goes with the last of them.
void abandon(SearchWorker *worker, TreeNode *node)
{
    MIPState *state = worker->State;
    worker->Current = nullptr;
    if (node->Children == 0)
        (void)node_release(node, &state->Store, &state->Root, RELEASE_FREE); // cannot fail
}

// The next node, or *none.
int process_next(SearchWorker *worker, bool *none)
{
    TreeNode *node = nullptr;
    int code = select_node(worker, &node);
    *none = !node;
    if (!node) return code;
    if (!code) code = work_on_node(worker, &node);
    if (code) {
        abandon(worker, node);
        return code;
    }
    return node->Data->Status == NODE_STOPPED ? put_back(worker, node)
                                              : finish_node(worker, node);
}
} // namespace

int search_tree(MIPState *state)
{
    while (check_status(state) == RUNNING) {
        if (restart_is_due(state)) {
            state->Restart.Wanted = true;
            return 0;
        }
        bool none = false;
        TRY(process_next(state->Workers.data[0], &none));
        if (none) break;
        if (state->IncumbentGone) TRY(search_begin_anew(state));
    }
    return 0;
}
