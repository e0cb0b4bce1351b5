// branch_sets.h -- branch sets, and the choice between single variables, SOS constraints and sets
#pragma once
#include "mip/branch.h"

// Finds the branch sets of the body: rows "exactly one of these binaries", whose members drive rows of their own.
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int find_branch_sets(MIPState *state);
// An SOS constraint or a set with a better score than `best`, that of the best candidate, becomes the choice.
void choose_set(const SearchWorker *worker, const NodeLPResult *result, double best,
                BranchChoice *choice);
// The children of a set, as of an SOS constraint of type 1. 0 or OUT_OF_MEMORY.
[[nodiscard]] int make_set_children(SearchWorker *worker, TreeNode *node, int set,
                                    Children *children);
