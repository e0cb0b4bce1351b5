// lp_auxiliary.h -- a start basis for a large model from a smaller problem
#pragma once
#include "lp/lp_start.h"

struct AuxiliaryStart {
    Array<int> statuses;   // [numvars + numconstrs] start basis, or empty
    double iterations = 0; // spent on it
    double work = 0;
};
// Decides by size and shape, for a start from scratch with the method of `run`; `done` iterations have been spent
// before. Leaves the start empty where it does not pay or a limit stops it. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_auxiliary_start(const ModelBody *body, TVXenv *env, const LpStart &run,
                                     double done, AuxiliaryStart *start);
