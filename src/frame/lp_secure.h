// lp_secure.h -- a sure answer from the simplex
#pragma once
#include "frame/model.h"

// Runs the simplex on the model as lp_run does, from `statuses` or what the model holds, and again in other ways while the
// answer is not sure. 0, OUT_OF_MEMORY, or the code of a callback.
[[nodiscard]] int lp_secure(TVXmodel *model, int method, const Array<int> *statuses);
