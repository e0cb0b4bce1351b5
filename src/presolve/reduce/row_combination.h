// row_combination.h -- add a multiple of an equation to another row
#pragma once
#include "presolve/work.h"

// Row target := row target + factor * equation. Entries that cancel go; fill comes from the free nodes, of which there
// must be enough. own: a column that the equation has and the target has not, or -1. 0 or OUT_OF_MEMORY.
[[nodiscard]] int combine_rows(PresolveWork *w, int target, int equation, double factor,
                               int own);
