// structured_gen.cpp -- LPs with the structure of real ones; see the header
#include "support/structured_gen.h"
#include "support/hostile_gen.h"
#include "support/model_gen.h"
#include <algorithm>

using Terms = std::vector<std::pair<int, double>>;

const std::vector<FamilyRow> &all_families()
{
    // clang-format off
    static const std::vector<FamilyRow> families = {
        {"assignment", gen_assignment}, {"multi_period", gen_multi_period}, {"network", gen_network},
        {"blending", gen_blending}, {"planted_optimum", gen_planted_optimum}, {"badly_scaled", gen_badly_scaled},
        {"degenerate_optimum", gen_degenerate_optimum}, {"planted_infeasible", gen_planted_infeasible},
        {"planted_unbounded", gen_planted_unbounded}};
    // clang-format on
    return families;
}

LpModel generated(Family family, int size, uint64_t seed)
{
    Dice dice(seed);
    return family(&dice, size).lp;
}

GeneratedLp gen_assignment(Dice *dice, int size)
{
    GeneratedLp g;
    const int k = std::max(2, size / 3);
    g.lp.sense = dice->chance(50) ? 1 : -1;
    std::vector<Terms> row(k), col(k);
    for (int i = 0; i < k; i++)
        for (int j = 0; j < k; j++) {
            const int x =
                lp_add_var(&g.lp, dice->range(1, 4), 0, dice->chance(50) ? 1 : LP_INFINITY);
            row[i].push_back({x, 1});
            col[j].push_back({x, 1});
        }
    for (const Terms &terms : row) lp_add_row_entries(&g.lp, terms, '=', 1);
    for (const Terms &terms : col) lp_add_row_entries(&g.lp, terms, '=', 1);
    return g;
}

GeneratedLp gen_multi_period(Dice *dice, int size)
{
    GeneratedLp g;
    const int items = dice->range(2, 4), periods = std::max(2, size / (items + 1));
    std::vector<int> stock(items, -1);
    for (int t = 0; t < periods; t++) {
        Terms capacity;
        for (int k = 0; k < items; k++) {
            const int make = lp_add_var(&g.lp, dice->range(3, 15), 0,
                                        dice->chance(30) ? 40 : LP_INFINITY);
            const int keep = lp_add_var(&g.lp, dice->range(1, 3), 0, dice->range(20, 60));
            const int late = lp_add_var(&g.lp, 200, 0, LP_INFINITY); // keeps it feasible
            Terms balance = {{make, 1}, {late, 1}, {keep, -1}};
            if (t > 0) balance.push_back({stock[k], 1});
            lp_add_row_entries(&g.lp, balance, '=', dice->range(0, 25));
            stock[k] = keep;
            capacity.push_back({make, dice->range(1, 5)});
        }
        lp_add_row_entries(&g.lp, capacity, '<', dice->range(30, 120));
    }
    return g;
}

GeneratedLp gen_network(Dice *dice, int size)
{
    GeneratedLp g;
    const int nodes = std::max(3, size), arcs = 3 * nodes;
    std::vector<Terms> balance(nodes);
    std::vector<int> net(nodes, 0);
    for (int a = 0; a < arcs; a++) {
        const int from = a < nodes ? a : dice->range(0, nodes - 1);
        int to = a < nodes ? (a + 1) % nodes : dice->range(0, nodes - 1);
        if (to == from) to = (to + 1) % nodes;
        const int flow = dice->chance(40) ? dice->range(0, 12) : 0; // planted
        const double capacity = dice->chance(30) ? LP_INFINITY : flow + dice->range(0, 8);
        const int x = lp_add_var(&g.lp, dice->range(0, 9), 0, capacity);
        balance[from].push_back({x, 1});
        balance[to].push_back({x, -1});
        net[from] += flow;
        net[to] -= flow;
    }
    for (int v = 0; v < nodes; v++) // one row is redundant
        lp_add_row_entries(&g.lp, balance[v], '=', net[v]);
    return g;
}

GeneratedLp gen_blending(Dice *dice, int size)
{
    GeneratedLp g;
    const int raws = std::max(4, size / 2), qualities = std::max(2, size / 2);
    std::vector<double> point;
    Terms all;
    for (int j = 0; j < raws; j++) {
        point.push_back(dice->range(0, 6));
        lp_add_var(&g.lp, dice->range(5, 50), 0, 6 + dice->range(0, 20));
        all.push_back({j, 1});
    }
    const int total = lp_add_var(&g.lp, -30, -LP_INFINITY, LP_INFINITY);
    const int fixed = lp_add_var(&g.lp, 1, 3, 3);
    double sum = 3;
    for (const double p : point) sum += p;
    all.push_back({total, -1});
    all.push_back({fixed, 1});
    lp_add_row_entries(&g.lp, all, '=', 0);
    for (int q = 0; q < qualities; q++) {
        Terms terms;
        double activity = 0;
        for (int j = 0; j < raws; j++) {
            const double grade = dice->range(-40, 60) / 8.0;
            terms.push_back({j, grade});
            activity += grade * point[j];
        }
        const double share = dice->range(-8, 8) / 8.0;
        terms.push_back({total, share});
        const double rhs = activity + share * sum;
        if (q % 2)
            lp_add_row_entries(&g.lp, terms, '<', rhs + dice->range(0, 4));
        else
            lp_add_row_entries(&g.lp, terms, '>', rhs - dice->range(0, 4));
    }
    return g;
}

// ---- Those whose kind of answer is known by construction ----

// About so many entries in each column.
static int density(int entries, int rows)
{
    return std::max(1, 100 * entries / rows);
}

GeneratedLp gen_planted_optimum(Dice *dice, int size)
{
    const int cols = dice->range(size / 2 + 1, 2 * size),
              entries = dice->range(2, std::min(6, size));
    return {gen_planted(dice, size, cols, density(entries, size), false)};
}

GeneratedLp gen_degenerate_optimum(Dice *dice, int size)
{
    return {gen_planted(dice, size, size, density(3, size), true)};
}

GeneratedLp gen_badly_scaled(Dice *dice, int size)
{
    GeneratedLp g = gen_planted_optimum(dice, size);
    stretch_lines(dice, &g.lp, 10);
    return g;
}

GeneratedLp gen_planted_infeasible(Dice *dice, int size)
{
    GeneratedLp g{.lp = gen_planted_optimum(dice, size).lp, .truth = Truth::INFEASIBLE};
    contradict_rows(dice, &g.lp, dice->range(1, 5));
    return g;
}

GeneratedLp gen_planted_unbounded(Dice *dice, int size)
{
    GeneratedLp g{.lp = gen_planted_optimum(dice, size).lp, .truth = Truth::UNBOUNDED};
    add_cancelling_pair(dice, &g.lp, 1);
    return g;
}
