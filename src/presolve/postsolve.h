// postsolve.h -- the point on its way back, and the undoing of each kind of record
#pragma once
#include "presolve/work.h"

// A point of the model as it was when the record on top of the stack had just been pushed: variables first, rows behind
// them. Dual-side entries and statuses of what is not live mean nothing yet.
// Or a direction, along which points or duals move for ever. It has no constants: costs, values, right-hand sides and
// finite bounds count as zero. A direction of duals is a proof of infeasibility, with d = -A^T y and y <= 0 for
// inequalities; x means nothing then. A direction of points has no duals. Neither has statuses.
struct PostPoint {
    int n, m;
    double *x;   // [n + m] values; slacks of rows are only valid where a record says so
    double *d;   // [n + m] reduced costs, then duals
    int *status; // [n + m] >= 0 basic, -1 lower, -2 upper, -3 free; null without a basis
    double INF;
    double constants = 1; // factor of all constants: 1 for a point, 0 for a direction
};
// A bound as the point sees it.
inline double bound_of(const PostPoint *point, double bound)
{
    return bound <= -point->INF || bound >= point->INF ? bound : point->constants * bound;
}

// Undoes the records from this one on, the newest. A PresolveStatus of the limits.
[[nodiscard]] int undo_all(const UndoRecord *undo, PostPoint *point, LimitWatch *watch);

// Undoes one record. Each stands in the file of its reduction.
void undo_fix(const UndoRecord *undo, PostPoint *point);             // fix.cpp
void undo_substitute(const UndoRecord *undo, PostPoint *point);      // substitute.cpp
void undo_slack_column(const UndoRecord *undo, PostPoint *point);    // column_singleton.cpp
void undo_dominated(const UndoRecord *undo, PostPoint *point);       // dominated.cpp
void undo_merge_cols(const UndoRecord *undo, PostPoint *point);      // merged_columns.cpp
void undo_parallel_rows(const UndoRecord *undo, PostPoint *point);   // duplicate_rows.cpp
void undo_bound_transfer(const UndoRecord *undo, PostPoint *point);  // doubleton_rows.cpp
void undo_singleton_row(const UndoRecord *undo, PostPoint *point);   // singleton_rows.cpp
void undo_forcing_row(const UndoRecord *undo, PostPoint *point);     // forcing_rows.cpp
void undo_free_to_slack(const UndoRecord *undo, PostPoint *point);   // free_to_slack.cpp
void undo_row_combination(const UndoRecord *undo, PostPoint *point); // row_combination.cpp
