// accept.h -- solutions of a search: how a point becomes the incumbent
#pragma once
#include "mip/mip_state.h"

enum class Acceptance {
    IMPROVED,   // it is the new incumbent
    NOT_BETTER, // its objective is not below PruneValue
    INFEASIBLE, // it violates the model
    LOST // feasible for the searched body, but what postsolve makes of it is not for the caller's
};
// Checks a point of the searched body [columns], with integer columns rounded, and makes it the incumbent if it is one.
// 0 or a code.
[[nodiscard]] int accept_solution(MIPState *state, const double *x, SolutionSource source,
                                  Acceptance *outcome);
// The same for a point of the caller's body [its numvars].
[[nodiscard]] int accept_callers_point(MIPState *state, const double *full,
                                       SolutionSource source, Acceptance *outcome);
// The point of the searched body that stands for a point of the caller's, owned by the caller of this function; or null:
// there is none, or it does not satisfy the body. 0 or OUT_OF_MEMORY.
[[nodiscard]] int crush_point(const MIPState *state, const double *full, double **x);
// The point where the LP of an integral node has ended: with whole integers, by a solve with these fixed if rounding alone
// violates rows. The node's status tells what is left of it: nothing, or candidates to branch on. 0 or a code.
[[nodiscard]] int accept_node(SearchWorker *worker, TreeNode **node);
// PruneValue for the incumbent and Cutoff; nodes that are cut off leave the heap, and reduced costs fix variables.
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int apply_incumbent(MIPState *state);
