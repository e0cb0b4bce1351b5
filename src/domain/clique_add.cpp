// clique_add.cpp -- a clique enters the table, and what follows at once from it
//
// Problem     At most one of the literals u_1 .. u_k is true. Which literals are false, which are equal?
// Method      A literal that stands twice is false. Beside a literal and its negation, of which one is true, all others
//             are false. Then for every member z the literals adjacent to not z: a member u among them is adjacent to z
//             and to not z, so it is false; where not u is among them, u and z cannot both be false, so u = not z and all
//             other members are false.
// Limit       The second part ends after CHECKS_PER_LITERAL steps a literal plus CHECKS_MORE: what it misses is also found
//             by the strongly connected components, but for some fixings.
// Cost        O(k log k) and the steps of the second part.
// Literature  A. Atamturk, G. L. Nemhauser, M. W. P. Savelsbergh, "Conflict graphs in solving integer programming
//             problems", EJOR 121, 2000.
#include "domain/clique_parts.h"
#include <algorithm>

namespace
{
constexpr int64_t CHECKS_PER_LITERAL = 20, CHECKS_MORE = 1000;

// Notes that all members but two are false.
int fix_all_but(CliqueTable *t, const int *literals, int count, int one, int other)
{
    for (int k = 0; k < count; k++)
        if (literals[k] != one && literals[k] != other)
            TRY(clique_table_fix(t, literals[k]));
    return 0;
}

int note_equal(CliqueTable *t, int u, int v)
{
    if (u > v) std::swap(u, v);
    if (u & 1) {
        u = literal_not(u);
        v = literal_not(v);
    }
    return array_append(&t->Equal, {u, v});
}

// Sorted members without those known false; a literal that stands twice is false, too.
int drop_false(CliqueTable *t, int *literals, int *count)
{
    int kept = 0;
    for (int k = 0, next = 0; k < *count; k = next) {
        while (next < *count && literals[next] == literals[k]) next++;
        if (next - k > 1) TRY(clique_table_fix(t, literals[k]));
        if (!t->IsFixed[literals[k]]) literals[kept++] = literals[k];
    }
    *count = kept;
    return 0;
}

// A member that is true, or both literals of a column: nothing remains of the clique. *first is such a member.
bool has_true(const CliqueTable *t, const int *literals, int count, int *first, int *second)
{
    for (int k = 0; k < count; k++) {
        *first = *second = literals[k];
        if (t->IsFixed[literal_not(literals[k])]) return true;
        if (k + 1 == count || literals[k + 1] != literal_not(literals[k])) continue;
        *second = literals[k + 1];
        return true;
    }
    return false;
}

// What the literals adjacent to the negation of z say; members are marked.
struct Follow {
    int Equal = -1;    // a member u whose negation is adjacent to not z
    bool Done = false; // nothing is left of the clique
};
int follow_member(CliqueTable *t, const int *literals, int count, int z, int64_t last,
                  Follow *follow)
{
    int error = 0;
    clique_each_adjacent(t, literal_not(z), &t->Effort, [&](int w) {
        if (w != z && t->Mark.data[w]) error = clique_table_fix(t, w);
        const int u = literal_not(w);
        if (u != z && t->Mark.data[u]) follow->Equal = u;
        return !error && follow->Equal < 0 && t->Effort < last;
    });
    TRY(error);
    if (follow->Equal < 0) return 0;
    follow->Done = true;
    TRY(note_equal(t, follow->Equal, literal_not(z)));
    return fix_all_but(t, literals, count, follow->Equal, z);
}

int follow_members(CliqueTable *t, const int *literals, int count)
{
    for (int k = 0; k < count; k++) t->Mark.data[literals[k]] = 1;
    const int64_t last = t->Effort + CHECKS_PER_LITERAL * count + CHECKS_MORE;
    Follow follow;
    int error = 0;
    for (int k = 0; k < count && !error && !follow.Done && t->Effort < last; k++)
        error = follow_member(t, literals, count, literals[k], last, &follow);
    for (int k = 0; k < count; k++) t->Mark.data[literals[k]] = 0;
    return error;
}

int store(CliqueTable *t, const int *literals, int count)
{
    if (t->Lit.size + t->NumEdges + count > t->EntryLimit) return 0;
    if (count > 2) return clique_store(t, literals, count);
    int64_t *effort = &t->Effort;
    if (clique_adjacent(t, literals[0], literals[1], effort)) return 0;
    return clique_store_edge(t, literals[0], literals[1]);
}
} // namespace

int clique_table_add(CliqueTable *t, const int *literals, int count)
{
    TRY(array_copy(&t->Work, literals, count));
    int *work = t->Work.data, first = 0, second = 0;
    std::sort(work, work + count);
    t->Effort += count;
    TRY(drop_false(t, work, &count));
    if (has_true(t, work, count, &first, &second))
        return fix_all_but(t, work, count, first, second);
    if (count < 2) return 0;
    TRY(follow_members(t, work, count));
    TRY(drop_false(t, work, &count));
    if (count < 2) return 0;
    return store(t, work, count);
}

int clique_table_fix(CliqueTable *t, int literal)
{
    if (t->IsFixed[literal]) return 0;
    TRY(array_append(&t->Fixed, literal));
    t->IsFixed[literal] = 1;
    if (t->IsFixed[literal_not(literal)]) t->Infeasible = true;
    return 0;
}

int clique_table_close(CliqueTable *t)
{
    for (int64_t k = 0; k < t->Fixed.size && !t->Infeasible; k++) {
        int error = 0;
        clique_each_adjacent(t, literal_not(t->Fixed[k]), &t->Effort, [&](int v) {
            error = clique_table_fix(t, v);
            return !error;
        });
        TRY(error);
    }
    return 0;
}
