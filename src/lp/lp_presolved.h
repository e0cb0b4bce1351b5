// lp_presolved.h -- the part of an LP solve that works on a reduced model
#pragma once
#include "model/model.h"

// What it leaves for the solve of the model itself.
struct LpStart {
    bool final = false;  // model->status is final, there is nothing more to solve
    Array<int> statuses; // [numvars + numconstrs] start basis, or empty
};
// A limit has stopped the last solve on its reduced model, or on the way back from there, and both are still there.
bool lp_can_resume(const TVXmodel *model);
// Presolves, solves what is left and comes back, if the parameters and the start want it; else the start stays empty.
// With `resume` it goes on where lp_can_resume says. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_presolved(TVXmodel *model, int method, bool resume, LpStart *start);
