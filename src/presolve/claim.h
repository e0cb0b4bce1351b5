// claim.h -- claims of reductions that the model is infeasible or unbounded, with a proof for the current model
//
// A reduction that finds the model infeasible or unbounded returns the result of one of these routines:
// END_INFEASIBLE, END_UNBOUNDED, or OUT_OF_MEMORY. The caller sets the witness (InfeasRow, InfeasCol). A
// proof is computed only if the caller of presolve asked for it.
#pragma once
#include "presolve/work.h"
#include <initializer_list>

struct BoundPropagation;

struct LineTerm {
    int line; // row or column
    double factor;
};

// The sum of these multiples of live rows contradicts the bounds of their columns. Signs as of dual values: <= 0 for
// inequalities.
[[nodiscard]] int claim_infeasible(PresolveWork *w, std::initializer_list<LineTerm> rows);
// Row i minus the sum of these multiples of rows, times sign, is a contradiction.
[[nodiscard]] int claim_row_sum(PresolveWork *w, int i, const LineTerm *rows, int count,
                                int sign);
// Moving live columns by these steps violates no bound and no row and improves the objective.
[[nodiscard]] int claim_unbounded(PresolveWork *w, std::initializer_list<LineTerm> cols);
// The same for moving column j by `sign` and the columns of the combination that equals it in the opposite direction.
[[nodiscard]] int claim_col_sum(PresolveWork *w, int j, const LineTerm *cols, int count,
                                int sign);
// A contradiction of propagated bounds, of the primal or the dual system.
[[nodiscard]] int claim_propagated(PresolveWork *w, BoundPropagation *p);

// Maps the proof to the original model through the undo stack. A PresolveEnd of the limits, or OUT_OF_MEMORY.
[[nodiscard]] int claim_finish(PresolveWork *w, int status, LpClaim *claim);
