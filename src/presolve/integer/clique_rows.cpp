// clique_rows.cpp -- rows that cliques make redundant, and coefficients that cliques tighten
//
// Problem     The largest activity of a row counts all its literals; of a clique only one is true.
// Method      Literals of the row (with positive weights; a x = a - |a| (1 - x)) are grouped in cliques: the largest activity
//             M is the sum of the largest weights. If M does not exceed the side the row is redundant. Else let z have the
//             largest weight of its group, and M0 be the largest activity without it: if M0 < b the row is redundant at z
//             false, so that the weight of z and the side fall by b - M0.
// Safety      Only cliques that are rows of the model are used, and these rows are not looked at: what a row implies cannot
//             remove that row.
// Numbers     Sums are summed anew, without outward rounding, as in coefficients.cpp.
// Postsolve   None.
// Cost        O(entries), and the effort of the partitions
// Literature  T. Achterberg et al., "Presolve reductions in mixed integer programming", INFORMS J. Computing 32, 2020.
#include "presolve/errors.h"
#include "presolve/integer/clique_sets.h"
#include "presolve/integer/facts.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int LONGEST_ROW = 1000;
constexpr double WORK_PER_ENTRY = 20; // limit of the effort
constexpr double LEAST_GAIN = 1e-3;   // of the coefficient, relative
constexpr double LEAST_ENTRY = 1e-6;  // smaller coefficients do not arise
constexpr double ROUNDING = 1e-14;    // of a sum, relative to its terms

// A literal of the row.
struct Item {
    double weight; // > 0
    int entry;
    int group;
};

// The two largest weights of a group, and the item that has the first.
struct Group {
    double first, second;
    int item;
};

struct CliqueActivity {
    PresolveWork *w;
    CliqueTable *Table;  // of clique rows
    Array<Item> Items;   // descending weights
    Array<int> Literals; // [items] in their order
    Array<int> GroupOf;  // [items]
    Array<Group> Groups; // [groups]
    Array<int> Place;    // [literals] zero between uses
    long double
        Rest; // largest activity of the other columns, plus constants of negated literals, less the side
    double Size; // of the largest term
    int64_t Effort;
};

// False if the largest activity is infinite, or there are no two literals.
bool collect(CliqueActivity *c, int i)
{
    const PresolveWork *w = c->w;
    c->Items.size = 0;
    c->Rest = -w->Rhs.data[i];
    c->Size = std::fabs(w->Rhs.data[i]);
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double most = node.value > 0 ? w->Ub.data[node.col] : w->Lb.data[node.col];
        if (std::fabs(most) >= w->INF) return false;
        c->Size = std::max({c->Size, std::fabs(node.value), std::fabs(node.value * most)});
        if (!is_binary_now(w, node.col)) {
            c->Rest += static_cast<long double>(node.value) * most;
            continue;
        }
        if (node.value < 0) c->Rest += node.value;
        array_push(&c->Items, Item{std::fabs(node.value), p, -1});
    }
    return c->Items.size >= 2;
}

// Groups in c->Items; their number, 0 if each literal has one of its own.
int make_groups(CliqueActivity *c)
{
    const PresolveWork *w = c->w;
    const int count = static_cast<int>(c->Items.size);
    std::sort(c->Items.begin(), c->Items.end(), [](const Item &a, const Item &b) {
        return a.weight > b.weight || (a.weight == b.weight && a.entry < b.entry);
    });
    for (int k = 0; k < count; k++) {
        const PresolveNode &node = w->Nodes.data[c->Items.data[k].entry];
        c->Literals.data[k] = literal_of(node.col, node.value > 0);
    }
    const int groups = clique_partition(c->Table, c->Literals.data, count, c->GroupOf.data,
                                        c->Place.data, &c->Effort);
    if (groups == count) return 0;
    for (int k = 0; k < count; k++) c->Items.data[k].group = c->GroupOf.data[k];
    return groups;
}

// The largest activity minus the side.
long double sum_groups(CliqueActivity *c, int groups)
{
    for (int g = 0; g < groups; g++) c->Groups.data[g] = {0, 0, -1};
    for (int k = 0; k < c->Items.size; k++) {
        const Item &item = c->Items.data[k];
        Group *g = &c->Groups.data[item.group];
        if (item.weight > g->first) {
            g->second = g->first;
            g->first = item.weight;
            g->item = k;
        } else {
            g->second = std::max(g->second, item.weight);
        }
    }
    long double sum = c->Rest;
    for (int g = 0; g < groups; g++) sum += c->Groups.data[g].first;
    return sum;
}

// The weight of the item and the side fall by d.
void tighten(CliqueActivity *c, int k, double d)
{
    PresolveWork *w = c->w;
    Item *item = &c->Items.data[k];
    PresolveNode *node = &w->Nodes.data[item->entry];
    const int i = node->row;
    item->weight -= d;
    if (node->value > 0) {
        node->value = item->weight;
        w->Rhs.data[i] -= d;
        c->Rest += d;
    } else {
        node->value = -item->weight;
        c->Rest += d;
    }
    set_entry_size(w, item->entry, c->Size);
    add_to_rhs_error(w, i, c->Size, 0);
    w->CoefsChanged++;
    mark_col(w, node->col);
}

// Tightens one coefficient after the other; true if any.
bool tighten_row(CliqueActivity *c, int i, int groups, long double excess)
{
    const double least = c->w->FeasTol + rhs_error(c->w, i);
    bool changed = false;
    for (int g = 0; g < groups; g++) {
        const Group &group = c->Groups.data[g];
        const double a = group.first,
                     without = static_cast<double>(excess) - a + group.second;
        const double after = a + without; // the side falls by -without
        if (without >= -least || after < std::max(least, LEAST_ENTRY) ||
            a - after <= LEAST_GAIN * a)
            continue;
        tighten(c, group.item, -without);
        excess = sum_groups(c, groups);
        changed = true;
    }
    return changed;
}

int try_row(CliqueActivity *c, int i)
{
    PresolveWork *w = c->w;
    if (w->Rmaxcnt.data[i] > 0 || !collect(c, i)) return 0;
    const int groups = make_groups(c);
    if (groups == 0) return 0;
    const long double excess = sum_groups(c, groups);
    if (excess <= ROUNDING * c->Size) {
        remove_row(w, i, ROW_REDUNDANT);
        return 0;
    }
    if (!tighten_row(c, i, groups, excess)) return 0;
    row_activity(w, i);
    mark_row(w, i);
    return 0;
}

int fill_table(CliqueActivity *c, const RowCliques *cliques)
{
    const LiteralSets &sets = cliques->Sets;
    for (int64_t s = 0; s < cliques->Rows.size; s++) {
        const int64_t begin = sets.Beg.data[s], end = sets.Beg.data[s + 1];
        TRY(clique_table_add(c->Table, sets.Lit.data + begin,
                             static_cast<int>(end - begin)));
    }
    c->w->Work += static_cast<double>(c->Table->Effort);
    return check_limits(c->w, static_cast<double>(c->Table->Effort));
}

int allocate(CliqueActivity *c)
{
    TRY(array_reserve(&c->Items, LONGEST_ROW));
    for (Array<int> *a : {&c->Literals, &c->GroupOf}) TRY(array_resize(a, LONGEST_ROW));
    TRY(array_resize(&c->Groups, LONGEST_ROW));
    return array_assign(&c->Place, 2 * int64_t{c->w->NumCols}, 0);
}

bool is_candidate(const PresolveWork *w, const RowCliques *cliques, int i)
{
    return w->RowCnt.data[i] >= 2 && w->RowCnt.data[i] <= LONGEST_ROW &&
           w->Sense.data[i] == '<' && cliques->SetOf.data[i] < 0;
}

int try_rows(CliqueActivity *c, const RowCliques *cliques)
{
    PresolveWork *w = c->w;
    const double limit = WORK_PER_ENTRY * static_cast<double>(w->NumNz);
    TRY(fill_table(c, cliques));
    TRY(allocate(c));
    const int count = candidate_rows(w, w->IndexA.data);
    for (int k = 0; k < count && static_cast<double>(c->Effort) < limit; k++) {
        const int i = w->IndexA.data[k];
        if (!is_candidate(w, cliques, i)) continue;
        const int64_t before = c->Effort;
        c->Effort += 3 * int64_t{w->RowCnt.data[i]};
        TRY(try_row(c, i));
        TRY(check_limits(w, static_cast<double>(c->Effort - before)));
    }
    return 0;
}
} // namespace

int pre_clique_rows(PresolveWork *w)
{
    RowCliques cliques;
    TRY(row_cliques(w, &cliques));
    if (cliques.Rows.size == 0) return 0;
    CliqueActivity c = {w, nullptr, {}, {}, {}, {}, {}, 0, 0, 0};
    TRY(clique_table_create(&c.Table, w->NumCols, facts_limit(w)));
    const int code = try_rows(&c, &cliques);
    w->Work += static_cast<double>(c.Effort);
    clique_table_free(c.Table);
    return code;
}
