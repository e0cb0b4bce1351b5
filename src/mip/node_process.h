// node_process.h -- what happens at one node
#pragma once
#include "mip/mip_state.h"

// Bounds, LP and status of the node, its own basis and bound changes. 0 or a code.
[[nodiscard]] int process_node(SearchWorker *worker, TreeNode **node);
// An empty NodeLPResult for the node, of the worker's if it has one. 0 or OUT_OF_MEMORY.
[[nodiscard]] int node_open_result(SearchWorker *worker, TreeNode *node);
// Adds the node's iterations and the worker's work to those of the search.
void count_work(SearchWorker *worker, NodeData *data);
// Behind branching: log, totals, global bound, pseudo-costs; the node is released. 0 or a code.
[[nodiscard]] int finish_node(SearchWorker *worker, TreeNode *node);
