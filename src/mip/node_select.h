// node_select.h -- which node a worker processes next
#pragma once
#include "mip/mip_state.h"

// The next node, taken out of the worker's active list (refilled from the heap when it is empty), or null: none is open.
// Nodes of the list that are far from it go back to the heap, or are freed when they are cut off. 0 or OUT_OF_MEMORY.
[[nodiscard]] int select_node(SearchWorker *worker, TreeNode **node);
// Adds a node to the active list of the worker. 0 or OUT_OF_MEMORY.
[[nodiscard]] int activate_node(SearchWorker *worker, TreeNode *node);
// The global lower bound from the heap and all workers' lists.
void update_global_bound(MIPState *state);
// All nodes of the worker's lists go to the heap, as at the end of a call. 0 or OUT_OF_MEMORY.
[[nodiscard]] int put_back_nodes(SearchWorker *worker);
