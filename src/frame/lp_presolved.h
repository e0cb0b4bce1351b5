// lp_presolved.h -- the part of an LP solve that works on a reduced model
#pragma once
#include "frame/model.h"

// What it leaves for the solve of the model itself.
struct LpStart {
    bool final = false;  // model->status is final, there is nothing more to solve
    Array<int> statuses; // [numvars + numconstrs] start basis, or empty
};
// Presolves, solves what is left and comes back, if the parameters and the start want it; else the start stays empty. A
// solve that a limit has stopped continues on the reduced model. 0 or a code.
bool lp_can_resume(
    const TVXmodel *model); // a limit has stopped a reduced model, which is there
[[nodiscard]] int lp_presolved(TVXmodel *model, int method, bool resume, LpStart *start);
