// parallel_equations.h -- equations that are parallel but for a column of their own
#pragma once
#include "presolve/duplicates.h"

// Takes the equation `base` off the row `l` of its class, when numbers allow it: of both there remains what is outside
// of the class's vector. A PresolveStatus or OUT_OF_MEMORY.
[[nodiscard]] int take_off(PresolveWork *w, const DupLine *base, const DupLine *l);
