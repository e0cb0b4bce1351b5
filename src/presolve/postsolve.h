// postsolve.h -- the point during postsolve, and the postsolve step of each kind of record
#pragma once
#include "presolve/work.h"

// A point of the model as it was when the record on top of the stack was pushed: variables first, then rows. Dual
// values, reduced costs and statuses of rows and columns that are not live yet are undefined.
// Or a ray of points or of dual values. For a ray all constants count as zero: costs, values, right-hand sides and
// finite bounds. A ray of dual values is a proof of infeasibility, with d = -A^T y and y <= 0 for inequalities; x is
// undefined then. A ray of points has no dual values. Neither has statuses.
struct PostPoint {
    int n, m;
    double *
        x; // [n + m] values; slacks of rows are only valid where a record says so. Without d [n]
    double *d;   // [n + m] reduced costs, then duals; null: values of columns only
    int *status; // [n + m] >= 0 basic, -1 lower, -2 upper, -3 free; null without a basis
    double INF;
    double constants = 1; // factor on all constants: 1 for a point, 0 for a ray
};
// A bound: for a ray 0 in place of a finite bound.
inline double bound_of(const PostPoint *point, double bound)
{
    return bound <= -point->INF || bound >= point->INF ? bound : point->constants * bound;
}

// Undoes all records, beginning with this one, the newest. A PresolveEnd of the limits.
[[nodiscard]] int undo_all(const UndoRecord *undo, PostPoint *point, LimitWatch *watch);

// Each undoes one record; it is in the file of its reduction.
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
void undo_column_shift(const UndoRecord *undo, PostPoint *point);    // column_shift.cpp
