// merged_columns.h -- merging of two parallel columns
#pragma once
#include "presolve/work.h"

// Column q = f * column p, with cost c_q = f c_p: x_p + f x_q replaces x_p, and q is removed. Does nothing if their
// bounds are too large. 0 or OUT_OF_MEMORY.
[[nodiscard]] int merge_columns(PresolveWork *w, int p, int q, double f);

// Bounds of x_p and x_q, with x_q = value(q) / f.
struct MergedPair {
    double lb_p, ub_p, lb_q, ub_q, f;
};
// The column of the two that is at a bound, and the bound.
enum class Split { NONE = 0, Q_LOWER = -1, Q_UPPER = -2, P_LOWER = -3, P_UPPER = -4 };
// Finds x_p and x_q with x_p + f x_q = sum, one of them at a bound and the other within its bounds (NONE: no bound at
// all, then x_q = 0). INF: bounds of this size are absent.
Split split_merged_columns(const MergedPair *pair, double INF, double sum, double *x_p,
                           double *x_q);
