// node_heuristics.h -- the heuristics (heur/heur.h) as the search calls them
#pragma once
#include "heur/heur.h"
#include "mip/mip_state.h"

// At a fractional node whose LP has just been solved. A point that is found may cut the node off, which its status then
// says. 0 or a code.
[[nodiscard]] int node_heuristics(SearchWorker *worker, TreeNode *node, HeurStage stage);
// A better point next to a new incumbent x, in work that does not depend on the tree. *better: null, or the point; it is
// valid until the next call. 0 or OUT_OF_MEMORY.
[[nodiscard]] int search_improve(MIPState *state, const double *x, const double **better);
