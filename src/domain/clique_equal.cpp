// clique_equal.cpp -- literals that imply each other
//
// Problem     Of two adjacent literals u, v each implies the negation of the other. Which literals are equal?
// Method      Strongly connected components of the implications, by Tarjan's algorithm with a stack of its own. So that a
//             clique of k literals costs O(k), not k^2, it has two nodes a position: PREFIX p implies the negations of
//             all members up to p, SUFFIX p those from p on; the member at p implies PREFIX p - 1 and SUFFIX p + 1.
//             The nodes are not stored, a node's successors follow from its number.
// Result      A component has a mirror image of the negated literals; pairs come from the one whose literal of the
//             smallest column is not negated. A literal beside its negation makes the table infeasible.
// Cost        O(literals + entries)
// Literature  R. E. Tarjan, "Depth-first search and linear graph algorithms", SIAM J. Computing 1, 1972.
#include "domain/clique_parts.h"
#include <algorithm>

namespace
{
constexpr int NONE = -1, END = -2; // as a successor: there is none here; there are no more

struct Frame {
    int Node;
    int64_t Next; // number of the next successor
};

// Nodes: literals, then PREFIX, then SUFFIX of each position of CliqueTable::Lit.
struct Search {
    const CliqueTable *t;
    int Literals, Positions;
    Array<char> IsFirst; // [Positions + 1] position starts a clique, or is the end
    Array<int>
        Order; // [nodes] number in the order of the visits, from 1; 0: not visited; INT32_MAX: done
    Array<int> Low;    // [nodes] smallest Order reached
    Array<int> Open;   // visited nodes without a component yet
    Array<Frame> Path; // from the root of the search to the node
    int Visited;
};

// Successor of a literal: its edges, then before and behind it in each of its cliques.
int literal_successor(const Search *s, int u, int64_t k)
{
    const CliqueTable *t = s->t;
    const int n_edges = t->Neighbours.Size.data[u];
    if (k < n_edges) return literal_not(lists_at(&t->Neighbours, u)[k]);
    const int64_t at = (k - n_edges) / 2;
    if (at >= t->CliquesOf.Size.data[u]) return END;
    const int c = lists_at(&t->CliquesOf, u)[at];
    const int *lit = clique_literals(t, c);
    const int size = clique_size(t, c);
    const int place = static_cast<int>(std::lower_bound(lit, lit + size, u) - lit);
    const int position = static_cast<int>(t->Beg.data[c]) + place;
    if ((k - n_edges) % 2 == 0) return place == 0 ? NONE : s->Literals + position - 1;
    return place + 1 == size ? NONE : s->Literals + s->Positions + position + 1;
}

int successor(const Search *s, int node, int64_t k)
{
    if (node < s->Literals) return literal_successor(s, node, k);
    if (k == 2) return END;
    const bool prefix = node < s->Literals + s->Positions;
    const int position = node - s->Literals - (prefix ? 0 : s->Positions);
    if (k == 0) return literal_not(s->t->Lit.data[position]);
    if (prefix) return s->IsFirst.data[position] ? NONE : node - 1;
    return s->IsFirst.data[position + 1] ? NONE : node + 1;
}

// The literals of a component, the nodes from `root` on in Open. 0 or OUT_OF_MEMORY.
int close_component(Search *s, int root, CliqueTable *t)
{
    int64_t begin = s->Open.size;
    while (s->Open[--begin] != root) {
    }
    for (int64_t k = begin; k < s->Open.size; k++) s->Order[s->Open[k]] = INT32_MAX;
    int *first = s->Open.data + begin;
    int *last =
        std::remove_if(first, s->Open.end(), [s](int v) { return v >= s->Literals; });
    s->Open.size = begin;
    if (last - first < 2) return 0;
    std::sort(first, last);
    for (int *u = first; u + 1 < last; u++)
        if (u[1] == literal_not(u[0])) t->Infeasible = true;
    if (*first & 1) return 0;
    for (int *u = first + 1; u < last; u++) TRY(array_append(&t->Equal, {*first, *u}));
    return 0;
}

void visit(Search *s, int node)
{
    s->Order[node] = s->Low[node] = ++s->Visited;
    array_push(&s->Open, node);
    array_push(&s->Path, {node, 0});
}

// All that can be reached from `root`. 0 or OUT_OF_MEMORY.
int search_from(Search *s, int root, CliqueTable *t)
{
    visit(s, root);
    while (s->Path.size > 0) {
        Frame *frame = &s->Path.data[s->Path.size - 1];
        const int node = frame->Node, next = successor(s, node, frame->Next++);
        if (next == NONE) continue;
        if (next != END) {
            if (s->Order[next] == 0)
                visit(s, next);
            else if (s->Order[next] != INT32_MAX)
                s->Low[node] = std::min(s->Low[node], s->Order[next]);
            continue;
        }
        s->Path.size--;
        if (s->Low[node] == s->Order[node]) TRY(close_component(s, node, t));
        if (s->Path.size == 0) break;
        int *low = &s->Low[s->Path[s->Path.size - 1].Node];
        *low = std::min(*low, s->Low[node]);
    }
    return 0;
}

int prepare(Search *s, int64_t nodes)
{
    TRY(array_assign<char>(&s->IsFirst, int64_t{s->Positions} + 1, 0));
    for (const int64_t begin : s->t->Beg) s->IsFirst[begin] = 1;
    TRY(array_assign(&s->Order, nodes, 0));
    TRY(array_resize(&s->Low, nodes));
    TRY(array_reserve(&s->Open, nodes));
    return array_reserve(&s->Path, nodes);
}
} // namespace

int clique_table_find_equal(CliqueTable *t)
{
    const int64_t literals = 2 * int64_t{t->NumCols}, nodes = literals + 2 * t->Lit.size;
    if (nodes > INT32_MAX) return 0; // benign: nothing is found
    Search s = {
        t, static_cast<int>(literals), static_cast<int>(t->Lit.size), {}, {}, {}, {}, {},
        0};
    TRY(prepare(&s, nodes));
    t->Effort += nodes;
    for (int u = 0; u < s.Literals; u++) {
        if (s.Order[u] != 0 || t->Neighbours.Size[u] + t->CliquesOf.Size[u] == 0) continue;
        TRY(search_from(&s, u, t));
    }
    return 0;
}
