// hostile_bigm.cpp -- coefficients from 1e5 to 1e12 where models have them: switches, chains, indicators, penalties
//
// Each kind is a few columns as people write them, of which some may stand side by side in one model, tied together by
// a row. The numbers but M are small integers: only M makes them hard.
#include "support/hostile_gen.h"
#include <algorithm>

static double big_number(Dice *dice)
{
    const int power = dice->range(5, 12);
    if (dice->chance(60)) return std::pow(10.0, power);
    return with_digits(std::pow(10.0, power) * dice->real(0.5, 2), dice->range(1, 6));
}

// min -c x:  -x + a y >= b,  p x + q y - r z >= s,  y <= M z,  z <= 1
static void add_switch(Dice *dice, LpModel *lp)
{
    const double big = big_number(dice);
    const int x = lp_add_var(lp, -lp->sense * dice->range(1, 5), 0, LP_INFINITY);
    const int y = lp_add_var(lp, 0, dice->chance(80) ? 0 : -LP_INFINITY, LP_INFINITY);
    const int z = lp_add_var(lp, dice->chance(70) ? 0 : lp->sense * dice->range(1, 100), 0,
                             dice->chance(70) ? 1 : LP_INFINITY);
    lp_add_row_entries(lp, {{x, -1}, {y, dice->range(1, 6)}}, '>', dice->range(-3, 3));
    lp_add_row_entries(
        lp, {{x, dice->range(1, 4)}, {y, dice->range(0, 3)}, {z, -dice->range(0, 9)}}, '>',
        dice->range(-10, 50));
    lp_add_row_entries(lp, {{y, 1}, {z, -big}}, '<', 0);
    if (lp->ub[z] > 1) lp_add_row_entries(lp, {{z, 1}}, '<', 1);
}

// max x1:  x1 <= f1 x2,  x2 <= f2 x3, ..., the last one bounded; the factors multiply to M
static void add_chain(Dice *dice, LpModel *lp)
{
    double left = std::log10(big_number(dice));
    int x = lp_add_var(lp, -lp->sense, dice->chance(70) ? 0 : -LP_INFINITY, LP_INFINITY);
    while (left > 0.5) {
        const double step = std::min(left, dice->real(0.5, 8));
        const int next = lp_add_var(lp, 0, 0, LP_INFINITY);
        const double factor = with_digits(std::pow(10.0, step), 2);
        if (dice->chance(50))
            lp_add_row_entries(lp, {{x, 1}, {next, -factor}}, '<', 0);
        else
            lp_add_row_entries(lp, {{x, 1 / factor}, {next, -1}},
                               dice->chance(80) ? '<' : '=', 0);
        x = next;
        left -= step;
    }
    lp->ub[x] = dice->chance(80) ? dice->range(1, 3) : LP_INFINITY; // else unbounded
}

// Costs of being open and of use:  x_k <= M z_k,  sum x >= demand,  sum z <= some
static void add_indicators(Dice *dice, LpModel *lp)
{
    const double big = big_number(dice);
    HostileTerms demand, open;
    const int count = dice->range(2, 6);
    for (int k = 0; k < count; k++) {
        const int x = lp_add_var(lp, lp->sense * dice->range(0, 9), 0, LP_INFINITY);
        const int z = lp_add_var(lp, lp->sense * dice->range(0, 1000), 0, 1);
        lp_add_row_entries(lp, {{x, 1}, {z, -big}}, '<', 0);
        demand.push_back({x, dice->range(1, 3)});
        open.push_back({z, 1});
    }
    lp_add_row_entries(lp, demand, dice->chance(80) ? '>' : '=', dice->range(1, 1000));
    lp_add_row_entries(lp, open, '<', dice->range(0, count));
    if (dice->chance(30)) lp_add_row_entries(lp, open, '>', dice->range(1, count));
}

// Rows that may be missed at the cost of M a unit.
static void add_penalties(Dice *dice, LpModel *lp)
{
    const double big = big_number(dice);
    const int count = dice->range(2, 8), first = lp->num_vars();
    for (int j = 0; j < count; j++)
        lp_add_var(lp, lp->sense * dice->range(-3, 9), 0,
                   dice->chance(70) ? dice->range(1, 20) : LP_INFINITY);
    for (int i = dice->range(2, count + 2); i > 0; i--) {
        HostileTerms terms;
        for (int j = 0; j < count; j++)
            if (dice->chance(50)) terms.push_back({first + j, dice->nonzero(5)});
        terms.push_back({lp_add_var(lp, lp->sense * big, 0, LP_INFINITY), 1});
        if (dice->chance(70))
            terms.push_back({lp_add_var(lp, lp->sense * big, 0, LP_INFINITY), -1});
        const char sense = "<>="[dice->range(0, 2)];
        lp_add_row_entries(lp, terms, sense, dice->range(-20, 30));
    }
}

// One of two rows must hold:  a x <= b + M z,  c x >= d - M (1 - z)
static void add_disjunction(Dice *dice, LpModel *lp)
{
    const double big = big_number(dice);
    const int count = dice->range(2, 5), first = lp->num_vars();
    for (int j = 0; j < count; j++)
        lp_add_var(lp, lp->sense * dice->range(-5, 5), 0, dice->range(5, 50));
    const int z = lp_add_var(lp, lp->sense * dice->range(0, 20), 0, 1);
    HostileTerms at_most, at_least;
    for (int j = 0; j < count; j++) {
        at_most.push_back({first + j, dice->range(0, 4)});
        at_least.push_back({first + j, dice->range(0, 4)});
    }
    at_most.push_back({z, -big});
    at_least.push_back({z, -big});
    lp_add_row_entries(lp, at_most, '<', dice->range(0, 20));
    lp_add_row_entries(lp, at_least, '>', dice->range(10, 60) - big);
}

LpModel hostile_bigm(Dice *dice)
{
    static constexpr void (*PARTS[])(Dice *, LpModel *) = {
        add_switch, add_switch, add_chain, add_indicators, add_penalties, add_disjunction};
    LpModel lp;
    lp.sense = dice->chance(60) ? 1 : -1;
    lp.objcon = dice->chance(30) ? dice->range(-9, 9) : 0;
    for (int parts = dice->chance(50) ? 1 : dice->range(2, 5); parts > 0; parts--)
        PARTS[dice->range(0, 5)](dice, &lp);
    if (dice->chance(40)) {
        HostileTerms tie;
        for (int j = 0; j < lp.num_vars(); j++)
            if (dice->chance(40)) tie.push_back({j, dice->range(1, 5)});
        lp_add_row_entries(&lp, tie, dice->chance(50) ? '<' : '>', dice->range(1, 200));
    }
    return lp;
}
