// search.h -- a search from its creation to its result
//
// search_create.cpp   the record, its structures, its workers
// search_root.cpp     the root node
// search_loop.cpp     the tree, node by node
// search_restart.cpp  a search that goes on with a smaller body
// search_check.cpp    when a search ends
#pragma once
#include "mip/mip_state.h"

// A search for the body of `space`, which it takes over (also on failure), in environment `env`, with the structures that
// presolve has found. 0 or a code; *out is null on failure.
struct SearchOrder {
    SearchSpace *Space = nullptr;
    TVXenv *Env = nullptr;
    bool Recursive = false; // a search inside another one, or for a start: silent
    bool Again = false;     // after a restart: what the log has told is not told again
    double Cutoff = 1e100;  // minimisation form
};
[[nodiscard]] int search_create(const SearchOrder &order, MIPState **out);
void search_free(MIPState *state);                 // null is ignored
void search_set_env(MIPState *state, TVXenv *env); // for the next call

// The root node: LP, bounds, first branching decisions; it is open afterwards, or closed. 0 or a code.
[[nodiscard]] int search_root(MIPState *state);
// Nodes of the tree until the search ends. 0 or a code.
[[nodiscard]] int search_tree(MIPState *state);
// Solutions that violate rows from callbacks are dropped, and the tree begins anew at the root. 0 or OUT_OF_MEMORY.
[[nodiscard]] int search_begin_anew(MIPState *state);
// Nothing better than the incumbent is left: all nodes go.
void search_close(MIPState *state);
// True when the search should go on with a smaller body; then that. 0 or a code: *search can only be freed then.
bool restart_is_due(MIPState *state);
[[nodiscard]] int search_restart(MIPState **search);
// The termination test: RUNNING to go on. Stores what it finds.
int check_status(MIPState *state);
