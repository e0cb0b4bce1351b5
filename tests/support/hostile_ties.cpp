// hostile_ties.cpp -- integer data with equal coefficients: every step has ties, most steps have length 0
#include "support/hostile_gen.h"
#include "support/hostile_parts.h"
#include "support/structured_gen.h"
#include <algorithm>

// min sum x: every window of a cycle holds enough; all vertices look alike.
static LpModel cyclic_cover(Dice *dice)
{
    LpModel lp;
    const int n = dice->range(5, 24), width = dice->range(2, n - 1),
              need = dice->range(1, 3);
    const bool packing = dice->chance(40);
    lp.sense = packing ? -1 : 1;
    for (int j = 0; j < n; j++) lp_add_var(&lp, 1, 0, dice->chance(30) ? 1 : LP_INFINITY);
    for (int i = 0; i < n; i++) {
        HostileTerms terms;
        for (int k = 0; k < width; k++) terms.push_back({(i + k) % n, 1});
        lp_add_row_entries(&lp, terms, packing ? '<' : '>', need);
    }
    return lp;
}

// Covering with a random 0-1 matrix and few costs.
static LpModel random_cover(Dice *dice)
{
    LpModel lp;
    const int n = dice->range(5, 25), m = dice->range(5, 40);
    for (int j = 0; j < n; j++) lp_add_var(&lp, dice->range(1, 2), 0, 1);
    for (int i = 0; i < m; i++) {
        HostileTerms terms;
        for (int j = 0; j < n; j++)
            if (dice->chance(20)) terms.push_back({j, 1});
        if (terms.empty()) terms.push_back({dice->range(0, n - 1), 1});
        lp_add_row_entries(&lp, terms, dice->chance(90) ? '>' : '=', 1);
    }
    return lp;
}

// Supply and demand that balance, equal costs, some routes closed.
static LpModel transport(Dice *dice)
{
    LpModel lp;
    const int from = dice->range(2, 6), to = dice->range(2, 6), unit = dice->range(1, 5);
    std::vector<HostileTerms> out(from), in(to);
    for (int i = 0; i < from; i++)
        for (int j = 0; j < to; j++) {
            const int x = lp_add_var(&lp, dice->range(1, 3), 0,
                                     dice->chance(80) ? LP_INFINITY : dice->range(0, unit));
            out[i].push_back({x, 1});
            in[j].push_back({x, 1});
        }
    for (const HostileTerms &terms : out) lp_add_row_entries(&lp, terms, '=', unit * to);
    for (const HostileTerms &terms : in) lp_add_row_entries(&lp, terms, '=', unit * from);
    return lp;
}

// x_i - x_j <= d around cycles, and free columns: potentials, dual to shortest paths.
static LpModel potentials(Dice *dice)
{
    LpModel lp;
    const int n = dice->range(4, 16);
    for (int j = 0; j < n; j++) lp_add_var(&lp, 0, -LP_INFINITY, LP_INFINITY);
    lp.lb[0] = lp.ub[0] = 0;
    for (int j = 0; j < n; j++)
        lp_add_row_entries(&lp, {{(j + 1) % n, 1}, {j, -1}}, '<', dice->range(0, 1));
    for (int k = dice->range(n, 4 * n); k > 0; k--)
        lp_add_row_entries(&lp, {{dice->range(0, n - 1), 1}, {dice->range(0, n - 1), -1}},
                           '<', dice->range(0, 1));
    lp.obj[n - 1] = dice->nonzero(1);
    if (dice->chance(50)) lp.obj[dice->range(0, n - 1)] += dice->nonzero(1);
    return lp;
}

static LpModel known_structure(Dice *dice)
{
    static constexpr Family MAKERS[] = {gen_assignment, gen_network, gen_cone};
    return MAKERS[dice->range(0, 2)](dice, dice->range(3, 16)).lp;
}

LpModel hostile_ties(Dice *dice)
{
    static constexpr LpModel (*MAKERS[])(Dice *) = {cyclic_cover,    random_cover,
                                                    transport,       potentials,
                                                    known_structure, known_structure};
    LpModel lp = MAKERS[dice->range(0, 5)](dice);
    if (dice->chance(20)) { // equal, but not representable
        for (std::vector<LpEntry> &col : lp.cols)
            for (LpEntry &e : col) e.value /= 3;
        for (double &b : lp.rhs) b /= 3;
    }
    return lp;
}
