// elimination.h -- lines (rows or columns) that are linear combinations of others
#pragma once
#include "presolve/axis.h"
#include "presolve/claim.h"

// Processes a line that seems to be the sum of these multiples of other lines; it may remove that line. A
// PresolveEnd or OUT_OF_MEMORY.
using DependentHandler = int (*)(PresolveWork *w, int line, const LineTerm *terms,
                                 int count);

// Looks for dependent ones among lines[0 .. count) (reordered), as long as the effort stays below the limit. A
// PresolveEnd or OUT_OF_MEMORY.
[[nodiscard]] int dependent_lines(PresolveWork *w, Axis axis, int *lines, int count,
                                  double work_limit, DependentHandler handle);
