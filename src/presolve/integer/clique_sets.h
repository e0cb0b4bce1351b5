// clique_sets.h -- the rows of the presolve record that say no more than that at most one of some literals is true
#pragma once
#include "domain/clique_table.h"
#include "presolve/work.h"

struct RowCliques {
    LiteralSets Sets; // literals of each row, ascending
    Array<int> Rows;  // [sets] row
    Array<int> SetOf; // [NumRows] set of a row, or -1
};
// Inequalities, and equations that say that exactly one is true. A PresolveEnd of the limits or OUT_OF_MEMORY.
[[nodiscard]] int row_cliques(PresolveWork *w, RowCliques *cliques);
