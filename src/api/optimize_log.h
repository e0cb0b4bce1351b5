// optimize_log.h -- the lines that a solve prints at its beginning and end
#pragma once
#include "model/model.h"

void log_model_size(TVXmodel *model);
// "Solved in ..." or "Stopped in ...", with the seconds since `start`.
void log_lp_effort(TVXmodel *model, double iterations, double start);
// What the status means. Under TVX_OPTIMAL with warnings when the unscaled solution violates the
// tolerances. 0 or OUT_OF_MEMORY of the measuring.
[[nodiscard]] int log_lp_outcome(TVXmodel *model);
// The closing lines of a MIP; `error` is the code with which its solve ended. 0 or OUT_OF_MEMORY.
[[nodiscard]] int log_mip_epilogue(TVXmodel *model, int error);
