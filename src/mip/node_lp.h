// node_lp.h -- the LP relaxation of a node
#pragma once
#include "mip/mip_state.h"

// Solves the LP with the bounds of the worker's Domain, from the basis of the node, of its parent, or the live one if it
// is that of the parent. Status, objective, bound and candidates of the node are set. 0 or a code.
[[nodiscard]] int node_solve_lp(SearchWorker *worker, TreeNode *node);
// The LP of the node again, after it was solved with other bounds; candidates stay. 0 or a code.
[[nodiscard]] int node_restore_lp(SearchWorker *worker, TreeNode *node);
// The first solve of the LP at all, by the method that parameters ask for; prints its lines. 0 or a code.
[[nodiscard]] int root_solve_lp(SearchWorker *worker, TreeNode *node);
// Candidates and violated SOS constraints of the LP solution, which is live. 0 or OUT_OF_MEMORY.
[[nodiscard]] int node_find_candidates(SearchWorker *worker, NodeLPResult *result);
// The LP solution, which is live: x [columns].
void node_get_x(const SearchWorker *worker, double *x);
