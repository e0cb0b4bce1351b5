// lp_secure.h -- a sure answer from the simplex
#pragma once
#include "model/model.h"

// Runs the simplex on the model as lp_run does, from `statuses` or what the model holds, and again in other ways while
// the answer is not sure. 0 or OUT_OF_MEMORY. When a callback asks for a stop by a code of its own, this returns 0 with
// status TVX_INTERRUPTED: the code stands in env->callback_code, and TVXoptimize returns it.
[[nodiscard]] int lp_secure(TVXmodel *model, int method, const Array<int> *statuses);
