// dual_bounds.h -- common declarations of dual_bounds.cpp and dispensable_bounds.cpp
#pragma once
#include "presolve/bound_propagation.h"

// given[j]: bits 1 << Side of the bounds of column j that can all be removed together (dispensable_bounds.cpp).
[[nodiscard]] int dispensable_bounds(PresolveWork *w, Array<char> *given);
