// clique_sets.cpp -- rows that are cliques
//
// Method      Over literals with positive coefficients (a x = a - |a| (1 - x) for a < 0) the row is a clique if its two
//             smallest coefficients together exceed the side by more than the tolerance, and the largest does not. In an
//             equation all coefficients are equal to the side.
// Cost        O(entries)
#include "presolve/integer/clique_sets.h"
#include "presolve/errors.h"
#include "presolve/integer/facts.h"
#include <algorithm>

namespace
{
constexpr double EQUAL = 1e-12; // relative difference of equal coefficients

bool is_clique(const PresolveWork *w, int i)
{
    double side = w->Rhs.data[i], least = INFINITY, second = INFINITY, largest = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (!is_binary_now(w, node.col)) return false;
        const double a = std::fabs(node.value);
        if (node.value < 0) side += a;
        second = std::min(second, std::max(a, least));
        least = std::min(least, a);
        largest = std::max(largest, a);
    }
    if (w->Sense.data[i] == '=')
        return largest - least <= EQUAL * largest &&
               std::fabs(side - largest) <= EQUAL * largest;
    const double play = w->FeasTol + rhs_error(w, i);
    return least + second > side + play && largest <= side + EQUAL * largest;
}

int add_row(PresolveWork *w, int i, RowCliques *cliques)
{
    LiteralSets *sets = &cliques->Sets;
    cliques->SetOf.data[i] = static_cast<int>(cliques->Rows.size);
    TRY(array_append(&cliques->Rows, i));
    const int64_t begin = sets->Lit.size;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        TRY(array_append(&sets->Lit,
                         literal_of(w->Nodes.data[p].col, w->Nodes.data[p].value > 0)));
    std::sort(sets->Lit.data + begin, sets->Lit.end());
    return array_append(&sets->Beg, sets->Lit.size);
}
} // namespace

int row_cliques(PresolveWork *w, RowCliques *cliques)
{
    TRY(array_assign(&cliques->SetOf, w->NumRows, -1));
    TRY(array_append<int64_t>(&cliques->Sets.Beg, 0));
    for (int i = 0; i < w->NumRows; i++) {
        TRY(check_limits(w, 1 + std::max(0, w->RowCnt.data[i])));
        w->Work += std::max(0, w->RowCnt.data[i]);
        if (w->RowCnt.data[i] >= 2 && is_clique(w, i)) TRY(add_row(w, i, cliques));
    }
    return 0;
}
