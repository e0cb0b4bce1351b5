// lp_run.h -- one run of the simplex within an LP solve
#pragma once
#include "model/model.h"

// Runs the simplex on `form` (the model, its dual, or a reduced form of either) from `statuses` [numvars + numconstrs of
// form], or when they are empty from what the form holds, or from scratch. Iterations go on from those of
// model->lp_result; those spent here on other models than `model` are added to it, and their work to model->node_count.
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_run(TVXmodel *model, TVXmodel *form, int method,
                         const Array<int> *statuses);
