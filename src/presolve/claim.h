// claim.h -- what ends a model, with the reasons as a vector over the model as it stands
//
// A reduction that finds that the model has no feasible point, or no least value, returns through one of these. Each
// gives the status to return, PRESOLVE_INFEASIBLE or PRESOLVE_UNBOUNDED, or OUT_OF_MEMORY. The witness (InfeasRow,
// InfeasCol) is the caller's to set. Where nobody wants a proof none is made.
#pragma once
#include "presolve/work.h"
#include <initializer_list>

struct BoundPropagation;

struct LineTerm {
    int line; // row or column
    double factor;
};

// These multiples of live rows contradict the bounds of their columns. Signs are those of duals: for inequalities <= 0.
[[nodiscard]] int claim_infeasible(PresolveWork *w, std::initializer_list<LineTerm> rows);
// Row i less the sum of these multiples of rows leaves sign * (less than nothing).
[[nodiscard]] int claim_row_sum(PresolveWork *w, int i, const LineTerm *rows, int count,
                                int sign);
// Moving live columns by these steps meets no bound and no row, and gains.
[[nodiscard]] int claim_unbounded(PresolveWork *w, std::initializer_list<LineTerm> cols);
// So does moving column j by `sign`, and those of the sum that it is against it.
[[nodiscard]] int claim_col_sum(PresolveWork *w, int j, const LineTerm *cols, int count,
                                int sign);
// A contradiction of propagated bounds, on points or on duals.
[[nodiscard]] int claim_propagated(PresolveWork *w, BoundPropagation *p);

// The proof in terms of the model itself, through the undo stack. A PresolveStatus of the limits, or OUT_OF_MEMORY.
[[nodiscard]] int claim_finish(PresolveWork *w, int status, LpClaim *claim);
