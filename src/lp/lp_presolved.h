// lp_presolved.h -- the part of an LP solve that works on a reduced model
#pragma once
#include "lp/lp_start.h"

// Presolves, solves what is left and maps the basis back, if the parameters and the start want it: the start is then a
// basis of the model. From LpFrom::FORM it goes on there. *final: lp->status is final, there is nothing more to solve.
// lp->form holds what the next solve can go on from. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_presolved(LpSolve *lp, LpStart *start, bool *final);
