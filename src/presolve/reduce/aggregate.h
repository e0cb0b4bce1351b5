// aggregate.h -- the stages of pre_aggregate, and the elimination they share
#pragma once
#include "presolve/work.h"

// ---- aggregate_eliminate.cpp ----
// Largest absolute value of the entries of a row or a column.
double largest_in_row(const PresolveWork *w, int i);
double largest_in_col(const PresolveWork *w, int j);
// Whether `fill` nodes are free; compresses when that would help. A PresolveStatus of the limits.
[[nodiscard]] int room_for_fill(PresolveWork *w, int64_t fill, bool *there);
// Adds multiples of the row of entry p to the objective and all other rows such that the column of p would leave them;
// its entries there stay. Needs room for (length of row - 1) * (length of column - 1) nodes.
void eliminate_from_others(PresolveWork *w, int p);
// Then these entries go, and activities that lost digits on the way are summed anew.
void drop_from_others(PresolveWork *w, int p);
void sum_anew_if_lost(PresolveWork *w, int i);
// All of this with the record of a substitution; afterwards row and column are gone. 0 or OUT_OF_MEMORY.
[[nodiscard]] int substitute_out(PresolveWork *w, int p);
// For many columns that go into one column k, each through an equation of the two: while k is mapped (IndexB, Flag),
// entry p goes by its row's other entry q, in k, at the cost of the length of its column. New entries of k stand at the
// head of its list.
void map_column(PresolveWork *w, int k);
void unmap_column(PresolveWork *w, int k);
[[nodiscard]] int substitute_by_mapped(PresolveWork *w, int p, int q);

// ---- aggregate.cpp ----
// Sides of column j that matter: a bound is there and the rows do not imply it.
enum { LOWER_MATTERS = 1, UPPER_MATTERS = 2 };
int bounds_that_matter(const PresolveWork *w, int j);

// ---- doubleton_rows.cpp, free_to_slack.cpp: stages, which stop when the account of effort reaches most_work ----
[[nodiscard]] int aggregate_doubletons(PresolveWork *w, double most_work);
[[nodiscard]] int free_to_slack(PresolveWork *w, double most_work);
