// search_bounds.h -- bounds found on the way: those of the whole search, and those of a node
#pragma once
#include "mip/mip_state.h"

inline void tighten_by_delta(Domain *bounds, const BoundDelta &delta, ReasonKind kind)
{
    domain_tighten(bounds, delta.Var,
                   delta.Sense == '<' ? BoundSide::UPPER : BoundSide::LOWER, delta.Value,
                   {kind, -1});
}
// A bound that holds for the whole search. Workers take it at their next node. 0 or OUT_OF_MEMORY.
[[nodiscard]] int search_tighten(MIPState *state, const BoundDelta &delta);
// The worker's Deltas hold for the node, the current one of the worker: at the root for the whole search, else they become
// changes of the node. The Domain gets them, propagated; its infeasibility closes the node. 0 or OUT_OF_MEMORY.
[[nodiscard]] int tighten_node_bounds(SearchWorker *worker, TreeNode **node);
// At the root: what the Domain has found holds for the whole search. 0 or OUT_OF_MEMORY.
[[nodiscard]] int settle_root_bounds(SearchWorker *worker);
// Columns whose bounds have met since the search was made.
int fixed_columns(const MIPState *state);
