// lp_form.h -- which form of a linear model is presolved and solved: the model or its dual
#pragma once
#include "frame/model.h"

struct LpForm {
    TVXmodel *model = nullptr; // the model itself, or its dual, which this record owns
    bool presolved = false;    // presolve has run on it, with this status
    int status = 0;
};
// By PreDual and the shape; PreDual 2 presolves both, on two threads, and compares. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_form_choose(TVXmodel *model, LpForm *form);
void lp_form_free(LpForm *form, const TVXmodel *model); // a dual that was made
