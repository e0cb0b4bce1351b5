// search_callback.h -- the moments at which the caller's function is called during a search
#pragma once
#include "mip/mip_state.h"

void log_callback(MIPState *state);      // a line of the log has been printed
void solution_callback(MIPState *state); // there is a new incumbent
// A solution that presolve alone has found.
void presolved_callback(TVXenv *env, const MipResult *result, const ModelBody *body);
// A node has been solved; before its point is accepted or branched on, as the function may hand in rows. Then its LP is
// solved with them. 0 or a code.
[[nodiscard]] int node_callback(SearchWorker *worker, TreeNode *node);
