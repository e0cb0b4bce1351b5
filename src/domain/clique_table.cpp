// clique_table.cpp -- the record CliqueTable, and the test whether two literals are adjacent
#include "domain/clique_parts.h"
#include "runtime/record.h"
#include <algorithm>

namespace
{
constexpr int64_t FIRST_SLOTS = 64; // a power of two

// Place of a key, or of the empty slot where it belongs.
int64_t slot_of(const Array<uint64_t> &slots, uint64_t key)
{
    const uint64_t mask = static_cast<uint64_t>(slots.size - 1);
    uint64_t hash = key * 0x9e3779b97f4a7c15u; // Fibonacci hashing
    hash ^= hash >> 32;
    uint64_t at = hash & mask;
    while (slots.data[at] != 0 && slots.data[at] != key) at = (at + 1) & mask;
    return static_cast<int64_t>(at);
}

int grow_slots(CliqueTable *t)
{
    Array<uint64_t> slots;
    TRY(array_assign<uint64_t>(&slots, 2 * t->EdgeSlot.size, 0));
    for (const uint64_t key : t->EdgeSlot)
        if (key != 0) slots.data[slot_of(slots, key)] = key;
    t->EdgeSlot = static_cast<Array<uint64_t> &&>(slots);
    return 0;
}

int allocate(CliqueTable *t)
{
    const int64_t literals = 2 * int64_t{t->NumCols};
    TRY(lists_create(&t->Neighbours, literals));
    TRY(lists_create(&t->CliquesOf, literals));
    TRY(array_assign<int64_t>(&t->Beg, 1, 0));
    TRY(array_assign<uint64_t>(&t->EdgeSlot, FIRST_SLOTS, 0));
    TRY(array_assign<char>(&t->IsFixed, literals, 0));
    return array_assign<char>(&t->Mark, literals, 0);
}
} // namespace

int clique_table_create(CliqueTable **out, int n_cols, int64_t entry_limit)
{
    *out = nullptr;
    CliqueTable *t = record_create<CliqueTable>();
    if (!t) return OUT_OF_MEMORY;
    t->NumCols = n_cols;
    t->EntryLimit = entry_limit;
    if (const int error = allocate(t)) {
        clique_table_free(t);
        return error;
    }
    *out = t;
    return 0;
}

void clique_table_free(CliqueTable *t)
{
    record_free(t);
}

bool clique_has_edge(const CliqueTable *t, int u, int v)
{
    return t->EdgeSlot.data[slot_of(t->EdgeSlot, edge_key(u, v))] != 0;
}

int clique_store_edge(CliqueTable *t, int u, int v)
{
    if (2 * (t->NumEdges + 1) > t->EdgeSlot.size) TRY(grow_slots(t));
    TRY(lists_reserve(&t->Neighbours, u));
    TRY(lists_reserve(&t->Neighbours, v));
    const uint64_t key = edge_key(u, v);
    t->EdgeSlot.data[slot_of(t->EdgeSlot, key)] = key;
    lists_push(&t->Neighbours, u, v);
    lists_push(&t->Neighbours, v, u);
    t->NumEdges++;
    return 0;
}

int clique_store(CliqueTable *t, const int *literals, int count)
{
    TRY(array_grow(&t->Lit, t->Lit.size + count));
    TRY(array_grow(&t->Beg, t->Beg.size + 1));
    for (int k = 0; k < count; k++) TRY(lists_reserve(&t->CliquesOf, literals[k]));
    const int c = clique_count(t);
    array_append_n(&t->Lit, literals, count, 0);
    array_push(&t->Beg, t->Lit.size);
    for (int k = 0; k < count; k++) lists_push(&t->CliquesOf, literals[k], c);
    return 0;
}

void clique_swap_cliques(CliqueTable *t, CliqueTable *from)
{
    std::swap(t->EdgeSlot, from->EdgeSlot);
    std::swap(t->NumEdges, from->NumEdges);
    std::swap(t->Neighbours, from->Neighbours);
    std::swap(t->Beg, from->Beg);
    std::swap(t->Lit, from->Lit);
    std::swap(t->CliquesOf, from->CliquesOf);
}

bool clique_adjacent(const CliqueTable *t, int u, int v, int64_t *effort)
{
    if (u == v) return false;
    ++*effort;
    if (clique_has_edge(t, u, v)) return true;
    if (t->CliquesOf.Size.data[u] > t->CliquesOf.Size.data[v]) std::swap(u, v);
    const int *list = lists_at(&t->CliquesOf, u), *other = lists_at(&t->CliquesOf, v);
    const int *const other_end = other + t->CliquesOf.Size.data[v];
    const int count = t->CliquesOf.Size.data[u];
    for (int k = 0; k < count; k++) { // both ascend
        ++*effort;
        other = std::lower_bound(other, other_end, list[k]);
        if (other == other_end) return false;
        if (*other == list[k]) return true;
    }
    return false;
}

#ifdef TVX_DEBUG
int clique_table_check(const CliqueTable *t)
{
    int wrong = 0;
    int64_t edges = 0, places = 0;
    for (int u = 0; u < 2 * t->NumCols; u++) {
        const int *list = lists_at(&t->Neighbours, u);
        for (int k = 0; k < t->Neighbours.Size[u]; k++)
            wrong += !clique_has_edge(t, u, list[k]);
        edges += t->Neighbours.Size[u];
        const int *cliques = lists_at(&t->CliquesOf, u);
        for (int k = 0; k < t->CliquesOf.Size[u]; k++) {
            const int *lit = clique_literals(t, cliques[k]);
            wrong += !std::binary_search(lit, lit + clique_size(t, cliques[k]), u);
            wrong += k > 0 && cliques[k] <= cliques[k - 1];
        }
        places += t->CliquesOf.Size[u];
        wrong += t->Mark[u] != 0;
        wrong += !t->Infeasible && t->IsFixed[u] && t->IsFixed[literal_not(u)];
    }
    int64_t fixed = 0;
    for (const char is_fixed : t->IsFixed) fixed += is_fixed;
    wrong += edges != 2 * t->NumEdges;
    wrong += places != t->Lit.size || t->Beg[clique_count(t)] != t->Lit.size;
    wrong += fixed != t->Fixed.size;
    wrong += t->Lit.size + t->NumEdges > t->EntryLimit;
    return wrong;
}
#endif
