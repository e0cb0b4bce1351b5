// dual_bounds.h -- between the parts of the reduction by bounds on duals
#pragma once
#include "presolve/bound_propagation.h"

// given[j]: bits 1 << Side of the bounds of column j that all can be left out together (dispensable_bounds.cpp).
[[nodiscard]] int dispensable_bounds(PresolveWork *w, Array<char> *given);
