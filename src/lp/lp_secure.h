// lp_secure.h -- a sure answer from the simplex
#pragma once
#include "lp/lp_start.h"

// Runs the simplex on the model as lp_run does, and again in other ways while the answer is not sure: lp->status and
// lp->simplex hold the best one. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_secure(LpSolve *lp, const LpStart &start);
