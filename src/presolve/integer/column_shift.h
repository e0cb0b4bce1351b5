// column_shift.h -- replacement of a column by a shifted and scaled one
#pragma once
#include "presolve/work.h"

struct ColumnShift {
    double offset, factor; // x = offset + factor x'
    double lb, ub;         // of x'
};
// Replaces column j. 0 or OUT_OF_MEMORY.
[[nodiscard]] int shift_column(PresolveWork *w, int j, const ColumnShift &shift);
