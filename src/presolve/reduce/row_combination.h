// row_combination.h -- add a multiple of an equation to another row
#pragma once
#include "presolve/work.h"

// Row target := row target + factor * equation. Entries that cancel are deleted; there must be enough free nodes for
// the fill. own: a column that is in the equation and not in the target, or -1. 0 or OUT_OF_MEMORY.
[[nodiscard]] int combine_rows(PresolveWork *w, int target, int equation, double factor,
                               int own);
