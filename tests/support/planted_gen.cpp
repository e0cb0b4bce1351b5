// planted_gen.cpp -- LPs whose kind of answer is known by construction; see structured_gen.h
#include "support/hostile_gen.h"
#include "support/model_gen.h"
#include "support/structured_gen.h"
#include <algorithm>

// About so many entries in each column.
static int density(int entries, int rows)
{
    return std::max(1, 100 * entries / rows);
}

GeneratedLp gen_planted_optimum(Dice *dice, int size)
{
    const int cols = dice->range(size / 2 + 1, 2 * size),
              entries = dice->range(2, std::min(6, size));
    return {.lp = gen_planted(dice, size, cols, density(entries, size), false),
            .truth = Truth::OPTIMAL};
}

GeneratedLp gen_degenerate_optimum(Dice *dice, int size)
{
    return {.lp = gen_planted(dice, size, size, density(3, size), true),
            .truth = Truth::OPTIMAL};
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
