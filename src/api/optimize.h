// optimize.h -- the drivers behind TVXoptimize
//
// optimize_run -> lp_driver or mip_driver -> the solvers. Drivers decide and call; they are the only
// code that knows every solver. A limit or an infeasible model is an end like any other: the
// code is 0 and the model's status tells.
#pragma once
#include "model/model.h"

// Opens a call that solves, or works as long as a solve: the model is busy (the caller ends that), TimeLimit counts from
// `now`, and what has stopped an earlier call is forgotten.
void optimize_open(TVXmodel *model, double now);
// Updates and solves the model, without opening and closing steps of TVXoptimize: also the entry for
// a solve nested in another one. 0 or a code; after OUT_OF_MEMORY the status is TVX_LOADED.
[[nodiscard]] int optimize_run(TVXmodel *model);
// Solves a model without integers, semi-continuous variables and SOS constraints.
[[nodiscard]] int lp_driver(TVXmodel *model);
// Solves a model with them.
[[nodiscard]] int mip_driver(TVXmodel *model);

// ---- interrupt.cpp ----
// A solve opens, its stop flag cleared: a signal that has come since TVXsetsignal stops it.
void interrupt_begin(TVXmodel *model);
// After a solve, or before the model goes, signals mean what they meant before TVXsetsignal.
void interrupt_end(TVXmodel *model);

// ---- mip_focus.cpp ----
// Parameters that MIPFocus presets for one solve, as they were before.
static constexpr int FOCUS_INTS = 6, FOCUS_DOUBLES = 3;
struct MipFocusSaved {
    int ints[FOCUS_INTS];
    double doubles[FOCUS_DOUBLES];
};
MipFocusSaved mip_focus_apply(TVXenv *env);
void mip_focus_restore(TVXenv *env, const MipFocusSaved &saved);

// A limit or an interruption: the solve can go on.
inline bool is_limit(int status)
{
    return status == TVX_ITERATION_LIMIT || status == TVX_TIME_LIMIT ||
           status == TVX_INTERRUPTED;
}

// ---- lp_credible.cpp ----
// Is the solution of an optimal model finite, and does it miss no constraint grossly? 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_credible(TVXmodel *model, bool *credible);
// Does the point of the simplex hold in the model, to the tolerance or to rounding? 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_point_holds(TVXmodel *model, bool *holds);

// ---- lp_bounded.cpp ----
// No objective value can run away within the bounds alone: a model that is infeasible or unbounded
// is then infeasible.
bool objective_is_bounded(const TVXenv *env, const ModelBody *body);
