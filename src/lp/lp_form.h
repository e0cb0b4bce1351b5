// lp_form.h -- which form of a linear model is presolved and solved: the model or its dual
#pragma once
#include "presolve/presolve.h"

struct LpForm {
    TVXmodel *model = nullptr; // the model itself, or its dual, which this record owns
    bool presolved = false;    // presolve has run on it, with this status
    int status = 0;
    LpClaim claim; // behind a status without optimum
};
// By PreDual and the shape; PreDual 2 presolves both, on two threads, and compares. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_form_choose(TVXmodel *model, LpForm *form);
// Makes the optimal basis of the reduced model of a form one that the way back can use. 0 or a code.
[[nodiscard]] int lp_form_prepare(const TVXmodel *form);
// The basis of a presolved form [numvars + numconstrs] that its reduced model (null when nothing is left) has come to;
// of an optimal one it is optimal, of another one it may lack or exceed basic entries. OUT_OF_MEMORY, or what
// postsolve_lp returns.
[[nodiscard]] int lp_form_basis(const TVXmodel *form, PostsolveLimits limits,
                                Array<int> *statuses);
void lp_form_free(LpForm *form, const TVXmodel *model); // a dual that was made
