// optimize.h -- one solve, behind TVXoptimize
#pragma once
#include "model/model.h"

// Updates and solves the model, without opening and closing steps of TVXoptimize. 0 or a code; after OUT_OF_MEMORY the
// status is TVX_LOADED. A limit or an infeasible model is an end like any other.
[[nodiscard]] int optimize_run(TVXmodel *model);
