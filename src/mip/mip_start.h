// mip_start.h -- points that callers give: complete or in part
#pragma once
#include "mip/mip_state.h"

static constexpr double START_UNDEFINED = 1e100; // entries from here on are not given

// Completes a point of the caller's body [its numvars] by a recursive search with the given entries fixed, and offers the
// result. *accepted: it has become the incumbent. 0 or a code.
[[nodiscard]] int offer_start(MIPState *state, const double *start, SolutionSource source,
                              bool *accepted);
