// clique_table.h -- CliqueTable, sets of literals of which at most one is true
//
// Storage  Cliques of two literals (edges) stand in a hash set and as lists of neighbours; longer ones behind each other
//          in one array, with a list of their numbers per literal. A clique number stays as it is until
//          clique_table_clean.
// Edges    Two literals are adjacent when they are in a common clique, or when they are a column and its negation.
// Results  Adding a clique can show that literals are false or two literals equal. The table notes these in Fixed and
//          Equal; nothing is applied to a model here, that is the caller's.
// Order    Everything follows the order of the calls and of literals: no order by address or by hash.
#pragma once
#include "domain/bounds.h"
#include "domain/int_lists.h"

// Two literals with the same value.
struct LiteralPair {
    int First, Second; // First has the smaller column, and is even
};

struct CliqueTable {
    int NumCols = 0;
    // Edges.
    Array<uint64_t> EdgeSlot; // [power of two] key of an edge, 0: empty
    int64_t NumEdges = 0;
    IntLists Neighbours; // [2 NumCols] literals that form an edge with this one
    // Cliques of three and more.
    Array<int64_t> Beg; // [cliques + 1]
    Array<int> Lit;     // by clique, ascending
    Array<char> Dead;   // [cliques] removed, its literals stay until the next cleaning
    IntLists CliquesOf; // [2 NumCols] cliques that hold this literal, ascending
    int64_t EntryLimit =
        0; // of Lit and Neighbours together; what would exceed it is left out
    // What has been shown.
    Array<int> Fixed;         // literals that are false, each once
    Array<char> IsFixed;      // [2 NumCols] 1: is in Fixed
    Array<LiteralPair> Equal; // pairs of equal literals
    bool Infeasible = false;  // a literal and its negation are false
    int64_t Effort = 0;       // literals and cliques looked at, deterministic
    Array<int> Work;          // scratch of the routine that adds
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

// An empty table; entry_limit bounds its memory. 0 or OUT_OF_MEMORY; *out is null then.
[[nodiscard]] int clique_table_create(CliqueTable **out, int n_cols, int64_t entry_limit);
void clique_table_free(CliqueTable *t); // null is ignored
