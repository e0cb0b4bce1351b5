// column_replace.h -- replacement of a column by a multiple of a binary one
#pragma once
#include "presolve/work.h"

// x_j = offset + factor x_z holds in each feasible point, for all values of x_z, and keeps x_j integral if it is integer.
struct ColumnReplacement {
    int col, by;
    double offset, factor;
};
// Column without flags, with a factor that the tolerances allow.
bool may_replace(const PresolveWork *w, const ColumnReplacement &r);
// Replaces and removes the column. Its entries at most become entries of the other one: the caller has made room for them
// (room_for_fill). 0 or OUT_OF_MEMORY.
[[nodiscard]] int replace_column(PresolveWork *w, const ColumnReplacement &r);
