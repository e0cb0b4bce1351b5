// mip.h -- the face of this room: the solve of one mixed-integer program
#pragma once
#include "body/body.h"
#include "body/quality.h"

struct MipResult {
    int status = 0;
    int has_solution = 0;
    Array<double> x;     // [numvars]
    Array<double> slack; // [numconstrs]
    double objval = 0;
    double objbound = 0;
    double node_count = 0;
    double run_time = 0;
    double iter_count = 0;
    int bar_iter_count = 0;
    int sol_count = 0;
    int thread_count = 0;
    Quality quality;
};

// Presets of MIPFocus in an environment of its own for one solve (mip_focus.cpp). A preset changes a parameter only where
// it still has its default, so that what a caller has chosen stands.
void mip_focus_apply(TVXenv *env);
// Solves a body with integers, semi-continuous variables or SOS constraints. 0 or a code, with its text recorded; *result
// is null where there is none.
[[nodiscard]] int mip_solve(const ModelBody *body, TVXenv *env, MipResult **result);
// The closing lines; `error` is the code with which the solve ended. 0 or OUT_OF_MEMORY (mip_log.cpp).
[[nodiscard]] int mip_log_result(TVXenv *env, const ModelBody *body, MipResult *result,
                                 int error);
