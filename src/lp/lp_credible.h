// lp_credible.h -- looks at the point of the simplex in the user's units
#pragma once
#include "lp/lp.h"

// Is the solution of an optimal model finite, and does it miss no constraint grossly? 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_credible(const LpSolve *lp, bool *credible);
// Does the point of the simplex hold in the model, to the tolerance or to rounding? 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_point_holds(const LpSolve *lp, bool *holds);
