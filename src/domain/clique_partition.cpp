// clique_partition.cpp -- a set of literals in groups of which at most one is true
//
// Method   The first literal left opens the clique of its table entries that holds most of those left, or the first edge.
// Cost     The sizes of at most CLIQUES_TRIED cliques and NEIGHBOURS_TRIED edges a literal.
#include "domain/clique_parts.h"

namespace
{
constexpr int CLIQUES_TRIED = 50,
              NEIGHBOURS_TRIED = 500; // a literal; some are in thousands

int members_left(const CliqueTable *t, int c, const int *place)
{
    const int *lit = clique_literals(t, c);
    int left = 0;
    for (int p = 0; p < clique_size(t, c); p++) left += place[lit[p]] > 0;
    return left;
}

// The clique of u with most literals left, -1 when no other one is left in any.
int best_clique(const CliqueTable *t, int u, const int *place, int64_t *effort)
{
    const int *list = lists_at(&t->CliquesOf, u);
    int best = -1, most = 1;
    for (int k = 0; k < t->CliquesOf.Size.data[u] && k < CLIQUES_TRIED; k++) {
        const int left = members_left(t, list[k], place);
        *effort += clique_size(t, list[k]);
        if (left <= most) continue;
        most = left;
        best = list[k];
    }
    return best;
}

void take(int literal, int g, int *group, int *place)
{
    if (place[literal] <= 0) return;
    group[place[literal] - 1] = g;
    place[literal] = 0;
}

void take_neighbour(const CliqueTable *t, int u, int g, int *group, int *place,
                    int64_t *effort)
{
    const int *list = lists_at(&t->Neighbours, u);
    for (int k = 0; k < t->Neighbours.Size.data[u] && k < NEIGHBOURS_TRIED; k++) {
        ++*effort;
        if (place[list[k]] > 0) return take(list[k], g, group, place);
    }
}
} // namespace

int clique_partition(const CliqueTable *t, const int *literals, int count, int *group,
                     int *place, int64_t *effort)
{
    int groups = 0;
    for (int k = 0; k < count; k++) place[literals[k]] = k + 1;
    for (int k = 0; k < count; k++) {
        const int u = literals[k];
        if (place[u] == 0) continue;
        const int best = best_clique(t, u, place, effort), g = groups++;
        take(u, g, group, place);
        if (best < 0) {
            take_neighbour(t, u, g, group, place, effort);
            continue;
        }
        const int *lit = clique_literals(t, best);
        for (int p = 0; p < clique_size(t, best); p++) take(lit[p], g, group, place);
    }
    return groups;
}
