// growth_families.cpp -- models that show how the cost of presolve grows
#include "growth_families.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double INF = 1e30;

struct Dice { // splitmix64
    uint64_t state = 7;
    uint64_t roll()
    {
        uint64_t z = state += 0x9e3779b97f4a7c15U;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
        return z ^ (z >> 31);
    }
    int below(int n) { return static_cast<int>(roll() % static_cast<uint64_t>(n)); }
    double unit() { return static_cast<double>(roll() >> 11) * 0x1p-53; }
    double nonzero() { return (roll() & 1 ? 1 : -1) * (1 + below(9)); }
};

// A point with its duals is chosen first; costs and right-hand sides follow.
void make_sparse(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 5), m = n / 2;
    std::vector<double> x(static_cast<size_t>(n)), y(static_cast<size_t>(m)),
        activity(y.size());
    for (int i = 0; i < m; i++) {
        const int kind = dice.below(4); // slack, tight, tight, equation
        y[i] = kind == 0 ? 0 : kind == 3 ? dice.nonzero() : -1 - dice.below(5);
        g->add_row(kind == 3 ? '=' : '<', kind == 0 ? 1 + dice.below(5) : 0);
    }
    for (int j = 0; j < n; j++) {
        const bool basic = dice.below(2) == 0;
        x[j] = basic ? 1 + dice.below(9) : 0;
        double cost = basic ? 0 : dice.below(5);
        const int j0 = g->add_col(0, 0, dice.below(3) == 0 ? 20 : INF);
        int met[5];
        for (int k = 0; k < 5; k++) {
            met[k] = dice.below(m);
            if (std::find(met, met + k, met[k]) != met + k) continue;
            const double a = dice.nonzero();
            g->put(met[k], j0, a);
            cost += y[met[k]] * a;
            activity[met[k]] += a * x[j];
        }
        g->obj[j0] = cost;
        g->optimum += cost * x[j];
    }
    for (int i = 0; i < m; i++) g->rhs[i] += activity[i];
    g->planted = true;
}

// Production and stock of 20 goods over many periods, 10 shared machines a period.
void make_staircase(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int goods = 20, machines = 10,
              periods = static_cast<int>(entries / (goods * 6) + 1);
    std::vector<int> stock(goods, -1);
    for (int t = 0; t < periods; t++) {
        const int first = g->num_rows();
        for (int k = 0; k < machines; k++) g->add_row('<', 60 + dice.below(60));
        for (int k = 0; k < goods; k++) {
            const int balance = g->add_row('=', dice.below(6));
            const int make = g->add_col(1 + dice.below(9), 0, INF);
            g->put(balance, make, 1);
            g->put(first + k % machines, make, 1 + dice.below(3));
            g->put(first + (k * 7 + 3) % machines, make,
                   k % machines == (k * 7 + 3) % machines ? 0 : 1);
            if (stock[k] >= 0) g->put(balance, stock[k], 1);
            stock[k] = g->add_col(0.1, 0, 30);
            g->put(balance, stock[k], -1);
        }
    }
}

// x_k+1 = -x_k + 2 x_k-1: a doubleton only when x_k has gone into x_0.
void make_doubleton_chain(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 4);
    for (int k = 0; k < n; k++) g->add_col(dice.below(3), -1e6, 1e6);
    for (int k = 0; k + 1 < n; k++) {
        const int r = g->add_row('=', 0);
        g->put(r, k + 1, 1);
        g->put(r, k, k == 0 ? -1 : 1);
        if (k > 0) g->put(r, k - 1, -2);
    }
    for (int k = 0; k + 2 < n; k += 2) {
        const int r = g->add_row('<', 1e5);
        g->put(r, k, 1);
        g->put(r, k + 2, 1);
    }
    g->reverse_rows();
}

// x_k = x_k+1 + c in random order, with some ends in other rows.
void make_doubleton_random(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 3);
    for (int k = 0; k < n; k++) g->add_col(dice.below(3), -1e6, 1e6);
    std::vector<int> order(static_cast<size_t>(n - 1));
    for (int k = 0; k + 1 < n; k++) order[k] = k;
    for (int k = n - 2; k > 0; k--) std::swap(order[k], order[dice.below(k + 1)]);
    for (const int k : order) {
        const int r = g->add_row('=', dice.below(3) - 1);
        g->put(r, k, 1);
        g->put(r, k + 1, -1);
    }
    for (int k = 0; k + n / 2 < n; k++) {
        const int r = g->add_row('<', 100 + dice.below(100));
        g->put(r, k, 1);
        g->put(r, k + n / 2, 1 + dice.below(9));
    }
}

// Row k fixes x_k when x_0 .. x_k-1 are fixed; rows in reverse, so that one becomes a singleton at a time.
void make_singleton_chain(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 3);
    for (int k = 0; k < n; k++) g->add_col(1, -1e6, 1e6);
    for (int k = 0; k < n; k++) {
        const int r = g->add_row('=', dice.below(3) - 1);
        g->put(r, k, 1);
        if (k > 0) g->put(r, k - 1, -0.5);
        if (k > 1) g->put(r, dice.below(k - 1), 0.25);
    }
    g->reverse_rows();
}

// The same with a column that stands in all rows, and so never becomes a singleton.
void make_singleton_star(GrowthModel *g, int64_t entries)
{
    const int n = static_cast<int>(entries / 4);
    const int z = g->add_col(1, 0, INF);
    for (int k = 0; k < n; k++) g->add_col(1, 0, 1e6);
    for (int k = 0; k < n; k++) {
        const int r = g->add_row('=', 1);
        g->put(r, z + 1 + k, 1);
        if (k > 0) g->put(r, z + k, -0.5);
        const int other = g->add_row('<', 1e7);
        g->put(other, z, 1);
        g->put(other, z + 1 + k, 1);
    }
    g->reverse_rows();
}

// One column in all rows and one row over all columns.
void make_star(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 4);
    const int hub = g->add_row('<', 10.0 * n), z = g->add_col(-1, 0, INF);
    for (int k = 0; k < n; k++) {
        const double a = 1 + dice.below(3), before = k > 0 ? dice.nonzero() : 0;
        const int j = g->add_col(-1 - dice.below(5), 0, 10 + dice.below(10));
        const bool equation = k % 3 == 0; // all are satisfied by ones
        const int i = g->add_row(equation ? '=' : '<',
                                 a + before + 1 + (equation ? 0 : dice.below(9)));
        g->put(hub, j, 1 + dice.below(5));
        g->put(i, j, a);
        g->put(i, z, 1);
        g->put(i, j - 1, before);
    }
}

// Equations of three through which every column would fill the hub's row and column.
void make_star_equations(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 5);
    const int hub = g->add_row('=', 5.0 * n), z = g->add_col(1, -INF, INF);
    for (int k = 0; k < n; k++) {
        const int x = g->add_col(dice.below(5), -INF, INF),
                  y = g->add_col(dice.below(5), 0, 9);
        const int i = g->add_row('=', dice.below(10));
        g->put(hub, x, 1 + dice.below(5));
        g->put(hub, y, 1 + dice.below(7));
        g->put(i, x, 1 + dice.below(3));
        g->put(i, y, 1 + dice.below(3));
        g->put(i, z, 1);
    }
}

// Columns without cost that a long row only keeps because its largest entry dwarfs theirs.
void make_dominated_hub(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 3);
    const int hub = g->add_row('<', 100);
    g->put(hub, g->add_col(-1, 0, INF), 1e7);
    for (int k = 0; k < n; k++) {
        const int j = g->add_col(0, -INF, INF);
        g->put(hub, j, 1);
        const int i = g->add_row('<', dice.below(10));
        g->put(i, j, 1);
        g->put(i, g->add_col(-1, 0, 5), 1);
    }
}

// Fixed columns of a long balance whose large terms cancel: sums lose their digits each time.
void make_cancelling(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 6) * 2;
    const int hub = g->add_row('=', 0);
    for (int k = 0; k < n; k++) {
        const double v = (k & 1 ? -1 : 1) * (1e6 + k / 2);
        const int j = g->add_col(1, v, v), other = g->add_col(dice.nonzero(), 0, 10);
        g->put(hub, j, 1);
        const int i = g->add_row('<', v + 15);
        g->put(i, j, 1);
        g->put(i, other, 2);
    }
}

// Groups of parallel rows and columns; `noise` makes them differ by a little more than may be overlooked.
void duplicates(GrowthModel *g, int64_t entries, int64_t group, double noise)
{
    Dice dice;
    const int width = 4; // rows of one pattern of columns, columns of one pattern of rows
    const int64_t n_groups = std::max<int64_t>(1, entries / (2 * width * group));
    for (int64_t k = 0; k < n_groups; k++) {
        int core[width];
        for (int &j : core) j = g->add_col(dice.nonzero(), 0, 100);
        double v[width];
        for (double &a : v) a = dice.nonzero();
        for (int64_t q = 0; q < group; q++) {
            const double scale = 1 + dice.below(4);
            const int i = g->add_row('<', scale * (100 + dice.below(100)));
            for (int t = 0; t < width; t++)
                g->put(i, core[t],
                       scale * v[t] * (1 + noise * static_cast<double>(q % 1000) * t));
        }
        int rows[width];
        for (int &i : rows) i = g->add_row('<', 1000);
        for (int64_t q = 0; q < group; q++) {
            const double scale = 1 + dice.below(4);
            const int j = g->add_col(scale * dice.below(3) - 2, 0, 1 + dice.below(5));
            for (int t = 0; t < width; t++)
                g->put(rows[t], j,
                       scale * (t + 1) * (1 + noise * static_cast<double>(q % 1000) * t));
        }
    }
}
void make_one_group(GrowthModel *g, int64_t entries)
{
    duplicates(g, entries, entries / 8, 0);
}
void make_many_groups(GrowthModel *g, int64_t entries)
{
    duplicates(g, entries, 5, 0);
}
void make_near_duplicates(GrowthModel *g, int64_t entries)
{
    duplicates(g, entries, entries / 8, 2e-11);
}

// 0 <= x; the first pair is zero, and each row then forces the next pair to zero; last rows first.
void make_forcing_cascade(GrowthModel *g, int64_t entries)
{
    const int n = static_cast<int>(entries / 4);
    int before = -1;
    for (int k = 0; k < n; k++) {
        const int j = g->add_col(-1, 0, 100);
        g->add_col(-2, 0, 100);
        const int i = g->add_row('<', 0);
        g->put(i, j, 1);
        g->put(i, j + 1, 2);
        if (before >= 0) g->put(i, before, -1);
        if (before >= 0) g->put(i, before + 1, -1);
        before = j;
    }
    g->reverse_rows();
}

// Bounds creep: x <= 0.9 y + 1 and y <= 0.9 x + 1, in rings that hang together.
void make_ladder(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int n = static_cast<int>(entries / 4);
    for (int k = 0; k < n; k++) g->add_col(-1, 0, k % 50 == 0 ? 1e6 : INF);
    for (int k = 0; k + 1 < n; k++) {
        int i = g->add_row('<', 1 + dice.below(5));
        g->put(i, k + 1, 1);
        g->put(i, k, -0.9);
        i = g->add_row('<', 1 + dice.below(5));
        g->put(i, k, 1);
        g->put(i, k + 1, -0.99);
    }
    g->reverse_rows();
}

// Free unknowns of a difference equation on a square, each bought and sold.
void make_grid(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int side = static_cast<int>(std::sqrt(static_cast<double>(entries) / 7)) + 1;
    for (int k = 0; k < side * side; k++) {
        g->add_col(0, -INF, INF);
        g->add_row('=', dice.below(7) - 3);
    }
    for (int r = 0; r < side; r++)
        for (int c = 0; c < side; c++) {
            const int k = r * side + c;
            g->put(k, k, 4);
            if (r > 0) g->put(k, k - side, -1);
            if (r + 1 < side) g->put(k, k + side, -1);
            if (c > 0) g->put(k, k - 1, -1);
            if (c + 1 < side) g->put(k, k + 1, -1);
            if (dice.below(2)) g->put(k, g->add_col(1 + dice.below(5), 0, INF), 1);
            if (dice.below(2)) g->put(k, g->add_col(1 + dice.below(5), 0, INF), -1);
        }
}

void make_transport(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int side = static_cast<int>(std::sqrt(static_cast<double>(entries) / 2)) + 1;
    for (int i = 0; i < side; i++) g->add_row('<', 100 + dice.below(50));
    for (int i = 0; i < side; i++) g->add_row('=', 10 + dice.below(80));
    for (int i = 0; i < side; i++)
        for (int k = 0; k < side; k++) {
            const int j = g->add_col(1 + dice.below(100), 0, INF);
            g->put(i, j, 1);
            g->put(side + k, j, 1);
        }
}

void make_network(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int arcs = static_cast<int>(entries / 2), nodes = arcs / 4;
    for (int i = 0; i < nodes; i++) g->add_row('=', i == 0 ? 10 : i == nodes - 1 ? -10 : 0);
    for (int k = 0; k < arcs; k++) {
        const int from = k < nodes - 1 ? k : dice.below(nodes);
        const int to = k < nodes - 1 ? k + 1 : (from + 1 + dice.below(nodes - 1)) % nodes;
        const int j = g->add_col(1 + dice.below(20), 0, 5 + dice.below(20));
        g->put(from, j, 1);
        g->put(to, j, -1);
    }
}

// Blocks of 20 by 30, and ten rows over all columns; ones satisfy all.
void make_blocks(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int linking = 10, m = 20, n = 30, per_block = n * (4 + linking);
    for (int i = 0; i < linking; i++) g->add_row('<', static_cast<double>(entries) / 2);
    for (int64_t b = 0; b < entries / per_block + 1; b++) {
        const int first = g->num_rows();
        for (int i = 0; i < m; i++)
            g->add_row(i % 3 == 0 ? '=' : '<', i % 3 == 0 ? 0 : dice.below(50));
        for (int k = 0; k < n; k++) {
            const int j = g->add_col(-1 - dice.below(9), 0, 20);
            for (int i = 0; i < linking; i++) g->put(i, j, 1 + dice.below(5));
            for (int t = 0; t < 4; t++) {
                const int i = first + (k + t * (1 + k % 4)) % m, a = 1 + dice.below(3);
                g->put(i, j, a);
                g->rhs[static_cast<size_t>(i)] += a;
            }
        }
    }
}

// Equations every third of which is the sum of two others, or of a chain of them.
void make_dependent(GrowthModel *g, int64_t entries)
{
    Dice dice;
    const int m = static_cast<int>(entries / 12), n = m + 20;
    for (int j = 0; j < n; j++) g->add_col(dice.below(9), 0, 100);
    int before[4] = {0, 0, 0, 0};
    double old[4] = {0, 0, 0, 0}, old_sum = 0;
    for (int r = 0; r < m; r++) {
        int at[4];
        double a[4], sum = 0;
        for (int k = 0; k < 4; k++) {
            do at[k] = std::min(n - 1, r + dice.below(20));
            while (std::find(at, at + k, at[k]) != at + k);
            sum += a[k] = 1 + dice.below(4);
        }
        const int i = g->add_row('=', sum);
        for (int k = 0; k < 4; k++) g->put(i, at[k], a[k]);
        if (r % 3 == 2) {
            const int both = g->add_row('=', sum + old_sum);
            for (int k = 0; k < 4; k++) g->put(both, at[k], a[k]);
            for (int k = 0; k < 4; k++)
                g->put(both, before[k], old[k]); // met twice: summed
        }
        std::copy_n(at, 4, before);
        std::copy_n(a, 4, old);
        old_sum = sum;
    }
}
} // namespace

const GrowthFamily growth_families[] = {
    {"sparse", make_sparse, nullptr, 0},
    {"staircase", make_staircase, nullptr, 0},
    {"doubleton_chain", make_doubleton_chain, nullptr, 0},
    {"doubleton_random", make_doubleton_random, nullptr, 0},
    {"singleton_chain", make_singleton_chain, nullptr, 0},
    {"singleton_star", make_singleton_star, nullptr, 0},
    {"star", make_star, nullptr, 0},
    {"star_equations", make_star_equations, nullptr, 0},
    {"dominated_hub", make_dominated_hub, nullptr, 0},
    {"cancelling", make_cancelling, nullptr, 0},
    {"one_group", make_one_group, nullptr, 0},
    {"many_groups", make_many_groups, nullptr, 0},
    {"near_duplicates", make_near_duplicates, nullptr, 0},
    {"forcing_cascade", make_forcing_cascade, nullptr, 0},
    {"ladder", make_ladder, nullptr, 0},
    {"grid", make_grid, nullptr, 0},
    {"transport", make_transport, nullptr, 0},
    {"network", make_network, nullptr, 0},
    {"blocks", make_blocks, nullptr, 0},
    {"dependent", make_dependent, "Presolve", 2},
    {"everything", make_sparse, "Presolve", 2},
    {nullptr, nullptr, nullptr, 0},
};

int GrowthModel::add_col(double cost, double low, double high)
{
    obj.push_back(cost);
    lb.push_back(low);
    ub.push_back(high);
    return num_cols() - 1;
}
int GrowthModel::add_row(char sense, double right)
{
    senses.push_back(sense);
    rhs.push_back(right);
    return num_rows() - 1;
}
void GrowthModel::put(int i, int j, double a)
{
    if (a == 0) return; // given as such
    row.push_back(i);
    col.push_back(j);
    value.push_back(a);
}
void GrowthModel::reverse_rows()
{
    for (int &i : row) i = num_rows() - 1 - i;
    std::reverse(rhs.begin(), rhs.end());
    std::reverse(senses.begin(), senses.end());
}
