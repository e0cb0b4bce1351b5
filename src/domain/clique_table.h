// clique_table.h -- CliqueTable, sets of literals of which at most one is true
//
// Storage  Cliques of two literals (edges) stand in a hash set and as lists of neighbours; longer ones behind each other
//          in one array, with a list of their numbers per literal. Numbers stay as they are until clique_table_clean.
// Edges    Two literals are adjacent when a stored edge or clique holds both.
// Results  Adding a clique can show that literals are false or two literals equal. The table notes these in Fixed and
//          Equal; nothing is applied to a model here, that is the caller's. An added clique that holds literals known to
//          be false is stored without them.
// Order    Everything follows the order of the calls and of literals: no order by address or by hash.
// Sharing  Routines that take a const table may run in several threads at once.
#pragma once
#include "domain/bounds.h"
#include "domain/int_lists.h"

struct PropagationRows;

// Two literals with the same value. First has the smaller column and is even.
struct LiteralPair {
    int First, Second;
};

struct CliqueTable {
    int NumCols = 0;
    // Edges.
    Array<uint64_t>
        EdgeSlot; // [power of two] key of an edge, 0: empty; at most half are in use
    int64_t NumEdges = 0;
    IntLists Neighbours; // [2 NumCols] literals that form an edge with this one
    // Cliques of three and more.
    Array<int64_t> Beg; // [cliques + 1]
    Array<int> Lit;     // by clique, ascending
    IntLists CliquesOf; // [2 NumCols] cliques that hold this literal, ascending
    int64_t EntryLimit =
        0; // of literals in Lit and edges together; what would exceed it is left out
    // What has been shown.
    Array<int> Fixed;         // literals that are false, each once
    Array<char> IsFixed;      // [2 NumCols] 1: is in Fixed
    Array<LiteralPair> Equal; // may hold a pair twice
    bool Infeasible = false;  // a literal and its negation are false
    int64_t Effort = 0; // literals and cliques looked at while building, deterministic
    // Scratch of the routines that change the table.
    Array<int> Work;  // [largest clique so far]
    Array<char> Mark; // [2 NumCols] zero between calls
};

inline int clique_count(const CliqueTable *t)
{
    return static_cast<int>(t->Beg.size - 1);
}
inline int clique_size(const CliqueTable *t, int c)
{
    return static_cast<int>(t->Beg.data[c + 1] - t->Beg.data[c]);
}
inline const int *clique_literals(const CliqueTable *t, int c)
{
    return t->Lit.data + t->Beg.data[c];
}

// An empty table. A sensible entry_limit is 2 entries of the model + 1000000. 0 or OUT_OF_MEMORY; *out is null then.
[[nodiscard]] int clique_table_create(CliqueTable **out, int n_cols, int64_t entry_limit);
void clique_table_free(CliqueTable *t); // null is ignored

// Are two literals adjacent? Adds the cliques looked at to *effort. Cost: the shorter list of cliques, with a search in
// the longer one
bool clique_adjacent(const CliqueTable *t, int u, int v, int64_t *effort);

// ---- clique_add.cpp: 0 or OUT_OF_MEMORY, after which the table may only be freed ----
// At most one of these literals is true. They may be in any order, twice, and with their negations.
[[nodiscard]] int clique_table_add(CliqueTable *t, const int *literals, int count);
// A literal is false.
[[nodiscard]] int clique_table_fix(CliqueTable *t, int literal);
// Fixed grows by what its literals imply. Cost: O(entries)
[[nodiscard]] int clique_table_close(CliqueTable *t);

// ---- clique_rows.cpp ----
// A row sum over k of Val[k] x_Col[k] <= Side.
struct CliqueRow {
    int Count; // entries
    const int *Col;
    const double *Val;
    double Side;
    double Tolerance; // by which a point may exceed the side
};
// Adds the cliques of a row under these bounds; columns with integer values and bounds 0 and 1 are literals. At most
// ten times as many literals as the row has are added. 0 or OUT_OF_MEMORY. Cost: O(n log n) for n literals
[[nodiscard]] int clique_table_add_row(CliqueTable *t, const CliqueRow *row,
                                       const double *lower, const double *upper,
                                       const char *is_integer);
// The same for both sides of all rows.
[[nodiscard]] int clique_table_add_rows(CliqueTable *t, const PropagationRows *rows,
                                        const double *lower, const double *upper);

// ---- clique_equal.cpp ----
// Literals that imply each other, by the strongly connected components of all implications; pairs go to Equal.
// 0 or OUT_OF_MEMORY. Cost: O(entries)
[[nodiscard]] int clique_table_find_equal(CliqueTable *t);

// ---- clique_remap.cpp ----
// What became of a column: its literal in the new model, or one of these.
enum ColumnImage { IMAGE_GONE = -1, IMAGE_ZERO = -2, IMAGE_ONE = -3 };
// A table for other columns: image[j] is the literal of the new model that has the value of column j (odd for x = 1 - y),
// or a ColumnImage; what is fixed or gone disappears with what follows from it. Equal and Fixed of the new table hold only
// what adding shows. 0 or OUT_OF_MEMORY; *out is null then.
[[nodiscard]] int clique_table_remap(const CliqueTable *t, const int *image, int n_cols,
                                     CliqueTable **out);
// The table without fixed literals, which stay in Fixed. Numbers of cliques change. 0 or OUT_OF_MEMORY, with the table
// as it was.
[[nodiscard]] int clique_table_clean(CliqueTable *t);

// ---- clique_merge.cpp ----
// Sets of literals, each of which is a clique (rows of set packing, or cliques of the table).
struct LiteralSets {
    Array<int64_t> Beg; // [sets + 1]
    Array<int> Lit;     // ascending in a set, all different
};
// Extends sets by literals adjacent to all their members, shortest sets first, and finds those inside others:
// inside_of[s] is the set whose extension holds set s, or -1. In `out` are all sets with their extension, empty where
// inside_of >= 0. Stops extending after `effort` steps or `entries` new literals. 0 or OUT_OF_MEMORY.
[[nodiscard]] int clique_merge(const CliqueTable *t, const LiteralSets *sets,
                               int64_t effort, int64_t entries, LiteralSets *out,
                               Array<int> *inside_of);
// The same for the cliques of the table itself, which then are those that remain; edges too, when they are in no longer
// one. 0 or OUT_OF_MEMORY, with the table as it was.
[[nodiscard]] int clique_table_merge(CliqueTable *t, int64_t effort, int64_t entries);
// Groups literals[0 .. count), all different, in cliques: group[k] is the group of literal k, counted from 0 in the
// order of their first members. Earlier literals choose first, the clique that holds most of those left. Returns the
// number of groups. `place` [2 NumCols] is zero before and after. Adds to *effort.
int clique_partition(const CliqueTable *t, const int *literals, int count, int *group,
                     int *place, int64_t *effort);

#ifdef TVX_DEBUG
int clique_table_check(const CliqueTable *t); // number of broken invariants
#endif
