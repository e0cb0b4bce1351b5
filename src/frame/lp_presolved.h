// lp_presolved.h -- the part of an LP solve that works on a reduced model
#pragma once
#include "frame/model.h"

// What it leaves for the solve of the model itself.
struct LpStart {
    bool final = false; // model->status is final, there is nothing more to solve
    const int *vstat_cols = nullptr,
              *vstat_rows = nullptr; // start basis in `statuses`, or null
    Array<int> statuses;
};
// Presolves, solves what is left and comes back, if the parameters and the start want it; else start stays empty.
// 0 or a code.
[[nodiscard]] int lp_presolved(TVXmodel *model, int method, LpStart *start);
