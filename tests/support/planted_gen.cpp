// planted_gen.cpp -- LPs whose answer is known by construction; see structured_gen.h
//
// All data are integers (or integers times powers of two), so that the planted point, multipliers and value are
// exact in doubles.
#include "support/hostile_gen.h"
#include "support/model_gen.h"
#include "support/structured_gen.h"
#include <algorithm>

namespace
{

struct Plan {
    int rows, cols;
    int entries_per_col;
    int tight_percent; // rows that hold with equality at the planted point
    int zero_percent;  // multipliers and reduced costs that are 0 though they need not be
};

} // namespace

static void add_entries(Dice *dice, const Plan &plan, LpModel *lp)
{
    for (int j = 0; j < plan.cols; j++)
        for (int k = 0; k < plan.entries_per_col; k++)
            lp_set_entry(lp, dice->range(0, plan.rows - 1), j, dice->nonzero(5));
}

// Bounds around a value, by pattern; returns the value of the planted point.
static double add_planted_var(Dice *dice, LpModel *lp)
{
    const double inf = LP_INFINITY, x = dice->range(-5, 5), room = dice->range(1, 9);
    const struct {
        double lb, ub, x;
    } patterns[] = {{-inf, inf, x}, {x, x, x},        {x - room, x + room, x},
                    {-inf, x, x},   {x - room, x, x}, {x, x + room, x},
                    {0, inf, room}, {0, inf, 0},      {0, inf, 0},
                    {0, inf, 0}};
    const auto &one = patterns[dice->range(0, 9)];
    lp_add_var(lp, 0, one.lb, one.ub);
    return one.x;
}

// A model with optimal point x and multipliers y by complementary slackness.
static GeneratedLp plant_optimum(Dice *dice, const Plan &plan)
{
    GeneratedLp g{.lp = {}, .truth = Truth::OPTIMAL, .has_value = true};
    LpModel *lp = &g.lp;
    lp->sense = dice->chance(50) ? 1 : -1;
    lp->objcon = dice->range(-50, 50);
    std::vector<double> x, y;
    for (int j = 0; j < plan.cols; j++) x.push_back(add_planted_var(dice, lp));
    for (int i = 0; i < plan.rows; i++) lp_add_row(lp, random_sense(dice), 0);
    add_entries(dice, plan, lp);
    const std::vector<long double> activity = lp_activity(lp, x);
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        lp->rhs[i] = static_cast<double>(activity[i]);
        const bool tight = lp->senses[i] == '=' || dice->chance(plan.tight_percent);
        double multiplier =
            tight && !dice->chance(plan.zero_percent) ? dice->range(1, 5) : 0;
        if (lp->senses[i] == '<' || (lp->senses[i] == '=' && dice->chance(50)))
            multiplier = -multiplier;
        if (!tight)
            lp->rhs[i] += lp->senses[i] == '<' ? dice->range(1, 20) : -dice->range(1, 20);
        y.push_back(multiplier * lp->sense);
    }
    for (size_t j = 0; j < x.size(); j++) {
        double d = dice->chance(plan.zero_percent) ? 0 : dice->range(1, 9);
        const bool at_lower = x[j] == lp->lb[j], at_upper = x[j] == lp->ub[j];
        if (!at_lower && !at_upper) d = 0;
        if (at_upper && (!at_lower || dice->chance(50))) d = -d;
        lp->obj[j] = d * lp->sense;
        for (const LpEntry &e : lp->cols[j]) lp->obj[j] += y[e.row] * e.value;
    }
    g.value = static_cast<double>(lp_objective(lp, x));
    return g;
}

GeneratedLp gen_planted_optimum(Dice *dice, int size)
{
    const int cols = dice->range(size / 2 + 1, 2 * size);
    return plant_optimum(dice, {size, cols, dice->range(2, std::min(6, size)), 60, 20});
}

GeneratedLp gen_degenerate_optimum(Dice *dice, int size)
{
    return plant_optimum(dice, {size, size, std::min(3, size), 95, 80});
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
