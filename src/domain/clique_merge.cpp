// clique_merge.cpp -- larger cliques for smaller ones, and those that lie inside others
//
// Problem     Rows of set packing often are parts of larger cliques: x + y <= 1, y + z <= 1, x + z <= 1 say less than
//             x + y + z <= 1.
// Method      Shortest sets first. The literals adjacent to the member with the fewest cliques are tested with all other
//             members and with those already taken. Then the members that each other set has in common with the result
//             are counted: one that has all of them there lies inside.
// Invariant   inside_of names a set that was extended before; that one may itself be found inside a later extension, but
//             with all that it holds. Following inside_of therefore ends at a set that stays, and contains the first.
// Cost        Bounded by the effort and the entries that the caller allows, after O(entries).
// Literature  T. Achterberg, R. E. Bixby, Z. Gu, E. Rothberg, D. Weninger, "Presolve reductions in mixed integer
//             programming", INFORMS J. Computing 32, 2020, section 5.4.
#include "domain/clique_parts.h"
#include <algorithm>

namespace
{
struct Merge {
    const CliqueTable *t;
    const LiteralSets *Sets;
    int NumSets;
    IntLists SetsOf;    // [literals] sets that hold it, with their extension
    Array<int> Size;    // [sets] with extension
    Array<int> Hits;    // [sets] members of the present set; zero between sets
    Array<char> Mark;   // [literals] 1: in the present set, or seen; zero between sets
    Array<int> Members; // of the present set
    Array<int> Seen;    // literals adjacent to one member
    int64_t Effort;
    int64_t LastEffort; // the limits
    int64_t EntriesLeft;
};

int prepare(Merge *m)
{
    const int64_t literals = 2 * int64_t{m->t->NumCols};
    TRY(lists_create(&m->SetsOf, literals));
    TRY(array_resize(&m->Size, m->NumSets));
    TRY(array_assign(&m->Hits, m->NumSets, 0));
    TRY(array_assign<char>(&m->Mark, literals, 0));
    TRY(array_reserve(&m->Members, literals));
    TRY(array_reserve(&m->Seen, literals));
    for (int s = 0; s < m->NumSets; s++) {
        m->Size[s] = static_cast<int>(m->Sets->Beg[s + 1] - m->Sets->Beg[s]);
        for (int64_t p = m->Sets->Beg[s]; p < m->Sets->Beg[s + 1]; p++) {
            TRY(lists_reserve(&m->SetsOf, m->Sets->Lit[p]));
            lists_push(&m->SetsOf, m->Sets->Lit[p], s);
        }
    }
    return 0;
}

int degree(const CliqueTable *t, int u)
{
    return t->Neighbours.Size.data[u] + t->CliquesOf.Size.data[u];
}

// Literals adjacent to the member that has the fewest cliques, without members.
void find_candidates(Merge *m)
{
    int rarest = m->Members[0];
    for (const int u : m->Members)
        if (degree(m->t, u) < degree(m->t, rarest)) rarest = u;
    m->Seen.size = 0;
    clique_each_adjacent(m->t, rarest, &m->Effort, [m](int v) {
        if (m->Mark.data[v]) return true;
        m->Mark.data[v] = 1;
        array_push(&m->Seen, v);
        return m->Effort < m->LastEffort;
    });
    for (const int v : m->Seen) m->Mark.data[v] = 0;
}

bool fits(Merge *m, int v)
{
    for (const int u : m->Members)
        if (!clique_adjacent(m->t, u, v, &m->Effort)) return false;
    return true;
}

// Members grows; members are marked.
void extend(Merge *m)
{
    find_candidates(m);
    for (const int v : m->Seen) {
        if (m->Effort >= m->LastEffort || m->EntriesLeft <= 0) break;
        if (!fits(m, v)) continue;
        array_push(&m->Members, v);
        m->Mark.data[v] = 1;
        m->EntriesLeft--;
    }
}

// Sets with all their members in set s, which is present.
void find_inside(Merge *m, int s, int *inside_of)
{
    for (const int u : m->Members) {
        const int *list = lists_at(&m->SetsOf, u);
        const int count = m->SetsOf.Size.data[u];
        m->Effort += count;
        for (int k = 0; k < count; k++) {
            const int other = list[k];
            if (++m->Hits.data[other] == m->Size.data[other] && other != s &&
                inside_of[other] < 0)
                inside_of[other] = s;
        }
    }
    for (const int u : m->Members) {
        const int *list = lists_at(&m->SetsOf, u);
        for (int k = 0; k < m->SetsOf.Size.data[u]; k++) m->Hits.data[list[k]] = 0;
    }
}

int merge_set(Merge *m, int s, int *inside_of)
{
    const int64_t begin = m->Sets->Beg[s];
    const int size = m->Size[s];
    m->Members.size = 0;
    array_append_n(&m->Members, m->Sets->Lit.data + begin, size, 0);
    for (const int u : m->Members) m->Mark.data[u] = 1;
    extend(m);
    for (const int u : m->Members) m->Mark.data[u] = 0;
    for (int64_t k = size; k < m->Members.size; k++) {
        TRY(lists_reserve(&m->SetsOf, m->Members[k]));
        lists_push(&m->SetsOf, m->Members[k], s);
    }
    m->Size[s] = static_cast<int>(m->Members.size);
    find_inside(m, s, inside_of);
    return 0;
}

// The sets that stay, from the lists of their literals, which ascend.
int collect(const Merge *m, const int *inside_of, LiteralSets *out)
{
    TRY(array_assign<int64_t>(&out->Beg, int64_t{m->NumSets} + 1, 0));
    int64_t total = 0;
    for (int s = 0; s < m->NumSets; s++) {
        out->Beg[s] = total;
        total += inside_of[s] < 0 ? m->Size[s] : 0;
    }
    out->Beg[m->NumSets] = total;
    TRY(array_resize(&out->Lit, total));
    Array<int64_t> next;
    TRY(array_copy(&next, out->Beg.data, m->NumSets));
    for (int u = 0; u < 2 * m->t->NumCols; u++) {
        const int *list = lists_at(&m->SetsOf, u);
        for (int k = 0; k < m->SetsOf.Size.data[u]; k++)
            if (inside_of[list[k]] < 0) out->Lit[next[list[k]]++] = u;
    }
    return 0;
}

// All edges and cliques of the table as sets.
int sets_of_table(const CliqueTable *t, LiteralSets *sets)
{
    TRY(array_copy(&sets->Beg, t->Beg.data, t->Beg.size));
    TRY(array_copy(&sets->Lit, t->Lit.data, t->Lit.size));
    TRY(array_reserve(&sets->Beg, t->Beg.size + t->NumEdges));
    TRY(array_reserve(&sets->Lit, t->Lit.size + 2 * t->NumEdges));
    for (int u = 0; u < 2 * t->NumCols; u++) {
        const int *list = lists_at(&t->Neighbours, u);
        for (int k = 0; k < t->Neighbours.Size[u]; k++) {
            if (list[k] < u) continue;
            array_push(&sets->Lit, u);
            array_push(&sets->Lit, list[k]);
            array_push(&sets->Beg, sets->Lit.size);
        }
    }
    return 0;
}

// Sets of two and more as the edges and cliques of a table.
int store_sets(CliqueTable *t, const LiteralSets *sets)
{
    for (int64_t s = 0; s + 1 < sets->Beg.size; s++) {
        const int *lit = sets->Lit.data + sets->Beg[s];
        const int size = static_cast<int>(sets->Beg[s + 1] - sets->Beg[s]);
        if (size == 2) TRY(clique_store_edge(t, lit[0], lit[1]));
        if (size > 2) TRY(clique_store(t, lit, size));
    }
    return 0;
}
} // namespace

int clique_merge(const CliqueTable *t, const LiteralSets *sets, int64_t effort,
                 int64_t entries, LiteralSets *out, Array<int> *inside_of)
{
    const int n_sets = static_cast<int>(sets->Beg.size - 1);
    Merge m = {t, sets, n_sets, {}, {}, {}, {}, {}, {}, 0, effort, entries};
    Array<int> order;
    TRY(prepare(&m));
    TRY(array_assign(inside_of, n_sets, -1));
    TRY(array_resize(&order, n_sets));
    for (int s = 0; s < n_sets; s++) order[s] = s;
    std::sort(order.begin(), order.end(), [&m](int a, int b) {
        return m.Size[a] < m.Size[b] || (m.Size[a] == m.Size[b] && a < b);
    });
    for (const int s : order) {
        if (m.Effort >= m.LastEffort) break;
        if ((*inside_of)[s] < 0 && m.Size[s] > 0) TRY(merge_set(&m, s, inside_of->data));
    }
    return collect(&m, inside_of->data, out);
}

int clique_table_merge(CliqueTable *t, int64_t effort, int64_t entries)
{
    LiteralSets sets, merged;
    Array<int> inside_of;
    TRY(sets_of_table(t, &sets));
    const int64_t room = t->EntryLimit - t->Lit.size - t->NumEdges;
    TRY(clique_merge(t, &sets, effort, std::min(entries, room), &merged, &inside_of));
    CliqueTable *to = nullptr;
    TRY(clique_table_create(&to, t->NumCols, t->EntryLimit));
    int error = store_sets(to, &merged);
    if (!error) clique_swap_cliques(t, to);
    clique_table_free(to);
    return error;
}
