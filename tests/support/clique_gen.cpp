// clique_gen.cpp -- see the header
#include "support/clique_gen.h"
#include <algorithm>

using Row = std::vector<std::pair<int, double>>;

// `count` different columns of the first n.
static std::vector<int> some_columns(Dice *dice, int n, int count)
{
    std::vector<int> cols(static_cast<size_t>(n));
    for (int j = 0; j < n; j++) cols[static_cast<size_t>(j)] = j;
    for (int k = n - 1; k > 0; k--) std::swap(cols[k], cols[dice->range(0, k)]);
    cols.resize(static_cast<size_t>(std::min(n, count)));
    return cols;
}

// At most (or exactly) one of some literals, times a factor.
static void add_packing(Dice *dice, LpModel *lp, int binaries)
{
    Row row;
    const double factor = dice->pick<double>({1, 1, 3});
    double side = factor;
    for (const int j : some_columns(dice, binaries, dice->range(2, 4))) {
        const bool negated = dice->chance(20);
        row.emplace_back(j, negated ? -factor : factor);
        if (negated) side -= factor;
    }
    lp_add_row_entries(lp, row, dice->chance(20) ? '=' : '<', side);
}

// A row over anything, with a side that excludes some but not all.
static void add_knapsack(Dice *dice, LpModel *lp)
{
    Row row;
    double most = 0;
    for (const int j : some_columns(dice, lp->num_vars(), dice->range(2, 5))) {
        row.emplace_back(j, dice->nonzero(5));
        most += std::max(0.0, row.back().second);
    }
    lp_add_row_entries(lp, row, dice->chance(15) ? '>' : '<',
                       dice->range(-1, static_cast<int>(most)));
}

// x <= u z or x >= l z, for any column that is not binary.
static void add_variable_bound(Dice *dice, LpModel *lp, int binaries)
{
    if (lp->num_vars() == binaries) return;
    const int x = dice->range(binaries, lp->num_vars() - 1),
              z = dice->range(0, binaries - 1);
    const double u = dice->range(1, 4);
    if (dice->chance(70))
        lp_add_row_entries(lp, {{x, 1}, {z, -u}}, '<', dice->pick<double>({0, 0, 1}));
    else
        lp_add_row_entries(lp, {{x, -1}, {z, u}}, '<', 0);
}

// sum a_k x_k + a z = b with x at one end for z = 1 and at the other one for z = 0; sometimes not quite.
static void add_deciding_equation(Dice *dice, LpModel *lp, int binaries)
{
    const int z = dice->range(0, binaries - 1);
    Row row;
    double least = 0, most = 0;
    for (const int j : some_columns(dice, lp->num_vars(), 3)) {
        if (j == z || !(lp->lb[j] > -100 && lp->ub[j] < 100)) continue;
        const double a = dice->nonzero(2);
        row.emplace_back(j, a);
        least += a > 0 ? a * lp->lb[j] : a * lp->ub[j];
        most += a > 0 ? a * lp->ub[j] : a * lp->lb[j];
    }
    const bool up = dice->chance(50);
    const double a = up ? most - least : least - most;
    if (row.empty() || a == 0) return;
    row.emplace_back(z, a + (dice->chance(20) ? dice->nonzero(1) : 0));
    lp_add_row_entries(lp, row, '=', up ? most : least);
}

static void add_column(Dice *dice, LpModel *lp)
{
    const char type = dice->pick<char>({'I', 'I', 'C', 'C', 'S', 'N'});
    const double low = dice->chance(70) ? 0 : dice->range(-2, 1);
    const double up =
        dice->chance(15) ? LP_INFINITY : std::max(low, 0.0) + dice->range(1, 3);
    lp_add_var(lp, dice->range(-4, 4), low, up, type);
}

LpModel gen_mip_with_cliques(Dice *dice)
{
    LpModel lp;
    const int binaries = dice->range(2, 6), others = dice->range(0, 2);
    for (int j = 0; j < binaries; j++)
        lp_add_var(&lp, dice->range(-5, 5), 0, 1, dice->chance(80) ? 'B' : 'I');
    for (int j = 0; j < others; j++) add_column(dice, &lp);
    for (int more = dice->range(1, 6); more > 0; more--) {
        const int kind = dice->range(0, 9);
        if (kind < 5)
            add_packing(dice, &lp, binaries);
        else if (kind < 7)
            add_knapsack(dice, &lp);
        else if (kind < 9)
            add_variable_bound(dice, &lp, binaries);
        else
            add_deciding_equation(dice, &lp, binaries);
    }
    if (dice->chance(10) && binaries > 2)
        lp.sets.push_back({dice->range(1, 2), some_columns(dice, lp.num_vars(), 3)});
    lp.sense = dice->chance(30) ? -1 : 1;
    return lp;
}
