// user_rows.h -- rows that the caller's function hands in at nodes
//
// They are part of the model from then on, whether they cut off integer points (lazy constraints) or not: every LP has
// them, and no point that violates one is accepted.
#pragma once
#include "env/callback.h"
#include "mip/mip_state.h"

// A row over the caller's variables. An incumbent that violates it is dropped, with the tree that it has pruned. 0,
// OUT_OF_MEMORY, or TVX_ERROR_CALLBACK where presolve leaves no such row.
[[nodiscard]] int add_user_row(MIPState *state, const CallbackRow &row);
// Rows that the worker's LP does not have yet. 0 or a code.
[[nodiscard]] int append_user_rows(SearchWorker *worker);
// True if a point satisfies all rows from callbacks: x [columns] of the searched body, full of the caller's.
bool user_rows_hold(const MIPState *state, const double *x);
bool callers_rows_hold(const MIPState *state, const double *full);
// True if the point [columns of the searched body] satisfies the rows from `first` on.
bool new_rows_hold(const SearchWorker *worker, int first);
