// clique_parts.h -- what the files of CliqueTable share; not for other folders
#pragma once
#include "domain/clique_table.h"
#include <cstdint>

// ---- clique_table.cpp ----
inline uint64_t edge_key(int u, int v) // never 0: u != v
{
    const uint64_t small = static_cast<uint64_t>(u < v ? u : v);
    const uint64_t large = static_cast<uint64_t>(u < v ? v : u);
    return large << 32 | small;
}
bool clique_has_edge(const CliqueTable *t, int u, int v); // stored as an edge
// Stores an edge that is not there; a clique of three and more literals, ascending. 0 or OUT_OF_MEMORY.
[[nodiscard]] int clique_store_edge(CliqueTable *t, int u, int v);
[[nodiscard]] int clique_store(CliqueTable *t, const int *literals, int count);
// The edges and cliques of `from` replace those of `t`, which go there.
void clique_swap_cliques(CliqueTable *t, CliqueTable *from);

// Calls visit(v) for each literal v adjacent to u, some of them several times, until it returns false. Adds what was
// looked at to *effort.
template<class Visit>
void clique_each_adjacent(const CliqueTable *t, int u, int64_t *effort, Visit visit)
{
    const int *list = lists_at(&t->Neighbours, u);
    const int n_edges = t->Neighbours.Size.data[u];
    *effort += n_edges + 1;
    for (int k = 0; k < n_edges; k++)
        if (!visit(list[k])) return;
    const int *cliques = lists_at(&t->CliquesOf, u);
    for (int k = 0; k < t->CliquesOf.Size.data[u]; k++) {
        const int *lit = clique_literals(t, cliques[k]);
        const int size = clique_size(t, cliques[k]);
        *effort += size;
        for (int p = 0; p < size; p++)
            if (lit[p] != u && !visit(lit[p])) return;
    }
}
