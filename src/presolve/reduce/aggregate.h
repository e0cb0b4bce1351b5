// aggregate.h -- the stages of pre_aggregate, and their common elimination step
#pragma once
#include "presolve/work.h"

// ---- aggregate_eliminate.cpp ----
// Largest absolute value of the entries of a row or a column.
double largest_in_row(const PresolveWork *w, int i);
double largest_in_col(const PresolveWork *w, int j);
// *there: `fill` nodes are free; compresses the matrix if that helps. A PresolveEnd of the limits.
[[nodiscard]] int room_for_fill(PresolveWork *w, int64_t fill, bool *there);
// Adds multiples of the row of entry p to the objective and all other rows such that the column of p is eliminated from
// them, but does not delete its entries there. Needs (length of row - 1) * (length of column - 1) free nodes.
void eliminate_from_others(PresolveWork *w, int p);
// Then deletes these entries and recomputes activities that lost digits by cancellation.
void drop_from_others(PresolveWork *w, int p);
void sum_anew_if_lost(PresolveWork *w, int i);
// Both, with the undo record of a substitution; row and column are removed. 0 or OUT_OF_MEMORY.
[[nodiscard]] int substitute_out(PresolveWork *w, int p);
// For many columns that are substituted by one column k, each through a doubleton equation: while k is mapped (IndexB,
// Flag), the column of entry p is substituted through its row, whose other entry q is in k, in time proportional to the
// length of that column. New entries of k are added at the head of its list.
void map_column(PresolveWork *w, int k);
void unmap_column(PresolveWork *w, int k);
[[nodiscard]] int substitute_by_mapped(PresolveWork *w, int p, int q);

// ---- aggregate.cpp ----
// Sides of column j with a finite bound that the rows do not imply.
enum { LOWER_MATTERS = 1, UPPER_MATTERS = 2 };
int bounds_that_matter(const PresolveWork *w, int j);

// ---- doubleton_rows.cpp, free_to_slack.cpp: stages, which stop when the effort AggregateWork reaches most_work ----
[[nodiscard]] int aggregate_doubletons(PresolveWork *w, double most_work);
[[nodiscard]] int free_to_slack(PresolveWork *w, double most_work);
