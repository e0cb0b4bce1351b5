// clique_rows.cpp -- cliques that a row implies
//
// Problem     In sum a_k x_k <= b no two literals can be true whose coefficients together exceed what is left of b.
// Method      Binary columns become literals with a positive coefficient (x = 1 - not x), all others are replaced by
//             their least term. With the coefficients descending, the longest prefix whose last two exceed b is a clique.
//             Each later literal forms one with the longest prefix whose last member and itself exceed b.
// Sides       b is relaxed by the row's tolerance, or by RELATIVE of the largest coefficient if that is more: a point that
//             the solver accepts must not be lost.
// Cost        O(n log n); O(n) for a row without a clique.
// Literature  T. Achterberg, "Constraint Integer Programming", dissertation, TU Berlin 2007, section 10.1.
//             S. S. Brito, H. G. Santos, "Preprocessing and cutting planes with conflict graphs", Computers & OR 128, 2021.
#include "body/double_double.h"
#include "domain/clique_table.h"
#include "domain/propagation_rows.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double RELATIVE = 1e-6;

constexpr int64_t ROW_ENTRIES =
    10; // literals of cliques from a row, at most, times its length

constexpr double ROW_TOLERANCE = 1e-6; // of the rows of a model

struct Item {
    double Weight; // > 0
    int Literal;
};

// A row as a knapsack of literals.
struct Knapsack {
    Array<Item> Items;
    double Room = 0;                // b less the least terms, relaxed
    double Largest = 0, Second = 0; // weights
};

bool is_binary(const double *lower, const double *upper, const char *is_integer, int j)
{
    return is_integer[j] && lower[j] == 0 && upper[j] == 1; // stored, exact
}

void push_item(Knapsack *sack, double weight, int literal)
{
    array_push(&sack->Items, {weight, literal});
    sack->Second = std::max(sack->Second, std::min(weight, sack->Largest));
    sack->Largest = std::max(sack->Largest, weight);
}

// False when a least term is infinite.
bool fill(Knapsack *sack, const CliqueRow *row, const double *lower, const double *upper,
          const char *is_integer)
{
    Twofold rest = {row->Side, 0};
    for (int k = 0; k < row->Count; k++) {
        const int j = row->Col[k];
        const double a = row->Val[k];
        if (a == 0) continue;
        const double least = a > 0 ? lower[j] : upper[j];
        if (domain_is_infinite(least)) return false;
        twofold_add(&rest, two_product(-a, least));
        if (is_binary(lower, upper, is_integer, j))
            push_item(sack, std::fabs(a), literal_of(j, a > 0));
    }
    sack->Room =
        rest.high + std::max(row->Tolerance, RELATIVE * std::max(1.0, sack->Largest));
    return true;
}

// Items [0 .. count) in descending order: how many are first with weight + last > room?
int prefix_with(const Item *items, int count, double last, double room)
{
    const Item *end = std::partition_point(
        items, items + count, [=](const Item &item) { return item.Weight + last > room; });
    return static_cast<int>(end - items);
}

int add_cliques(CliqueTable *t, const Knapsack *sack)
{
    const Item *items = sack->Items.data;
    const int n = static_cast<int>(sack->Items.size);
    Array<int> literals;
    TRY(array_resize(&literals, n));
    for (int k = 0; k < n; k++) literals[k] = items[k].Literal;
    int base = 2;
    while (base < n && items[base - 1].Weight + items[base].Weight > sack->Room) base++;
    TRY(clique_table_add(t, literals.data, base));
    int64_t left = ROW_ENTRIES * n;
    for (int k = base; k < n && left > 0; k++) {
        const int prefix = prefix_with(items, base, items[k].Weight, sack->Room);
        if (prefix == 0) break;
        literals[prefix] = items[k].Literal; // later prefixes are not longer
        TRY(clique_table_add(t, literals.data, prefix + 1));
        left -= prefix + 1;
    }
    return 0;
}
} // namespace

int clique_table_add_row(CliqueTable *t, const CliqueRow *row, const double *lower,
                         const double *upper, const char *is_integer)
{
    Knapsack sack;
    t->Effort += row->Count;
    TRY(array_reserve(&sack.Items, row->Count));
    if (!fill(&sack, row, lower, upper, is_integer)) return 0;
    for (const Item &item : sack.Items)
        if (item.Weight > sack.Room) TRY(clique_table_fix(t, item.Literal));
    if (sack.Items.size < 2 || sack.Largest + sack.Second <= sack.Room) return 0;
    std::sort(sack.Items.begin(), sack.Items.end(), [](const Item &a, const Item &b) {
        return a.Weight > b.Weight || (a.Weight == b.Weight && a.Literal < b.Literal);
    });
    return add_cliques(t, &sack);
}

int clique_table_add_rows(CliqueTable *t, const PropagationRows *rows, const double *lower,
                          const double *upper)
{
    Array<int> col;
    Array<double> val;
    for (const DirectedRow &row : rows->Directed) {
        const int64_t begin = rows->RowBeg[row.Row], end = rows->RowBeg[row.Row + 1];
        TRY(array_resize(&col, end - begin));
        TRY(array_resize(&val, end - begin));
        for (int64_t p = begin; p < end; p++) {
            col[p - begin] = rows->Entry[p].Col;
            val[p - begin] = row.Sign * rows->Entry[p].Val;
        }
        const CliqueRow source = {static_cast<int>(end - begin), col.data, val.data,
                                  row.Side, ROW_TOLERANCE * (1 + row.Soft)};
        TRY(clique_table_add_row(t, &source, lower, upper, rows->IsInteger.data));
    }
    return 0;
}
