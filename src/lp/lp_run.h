// lp_run.h -- one run of the simplex within an LP solve
#pragma once
#include "lp/lp_start.h"

// Which body, and in which record.
struct LpTarget {
    const ModelBody *body;
    sopt **simplex;
    bool cutoff; // the Cutoff of the environment is one for this body
};
// Runs the simplex on the target (the model, its dual, or a reduced form of either) from the statuses of `start`
// [n + m of the body], or when they are empty from the record, or from scratch. Iterations go on from those of
// lp->result; those spent here on others than the model itself are added to it, and their work to lp->work. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int lp_run(LpSolve *lp, const LpTarget &target, const LpStart &start);
// The model itself.
inline LpTarget lp_own_target(LpSolve *lp)
{
    return {lp->body, &lp->simplex, true};
}
