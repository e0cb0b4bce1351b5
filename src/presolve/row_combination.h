// row_combination.h -- add a multiple of an equation to another row
#pragma once
#include "presolve/postsolve.h"

// Row target := row target + factor * equation. Entries that cancel go; fill comes from the free nodes, of which there
// must be enough. own: a column that the equation has and the target has not, or -1. 0 or OUT_OF_MEMORY.
[[nodiscard]] int combine_rows(PresolveWork *w, int target, int equation, double factor,
                               int own);

// Entries of row i into the record, which has room for them.
void record_row(const PresolveWork *w, int i, UndoRecord *undo);
// Makes the slack of equation i, whose entries the record holds, nonbasic where the record allows it: at most one column
// of it is basic, namely undo->col, which stands alone in row `single` (or -1), undo->factor times as large there.
void release_slack(const UndoRecord *undo, int i, int single, PostPoint *point);
