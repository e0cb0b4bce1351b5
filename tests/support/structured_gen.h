// structured_gen.h -- LPs of middle size with the structure of real ones, and LPs with a planted answer
//
// Each family scales with one size: tens to a few hundred rows. Where the answer is known by construction it is
// given; otherwise the optimality checker and the agreement of methods judge.
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"
#include <vector>

enum class Truth {
    OPTIMAL,
    INFEASIBLE,
    UNBOUNDED
}; // OPTIMAL: feasible and bounded at least

struct GeneratedLp {
    LpModel lp;
    Truth truth = Truth::OPTIMAL;
};

using Family = GeneratedLp (*)(Dice *dice, int size);
struct FamilyRow {
    const char *name;
    Family generate;
};
const std::vector<FamilyRow> &all_families();
LpModel generated(Family family, int size, uint64_t seed); // by choices of its own

GeneratedLp gen_assignment(Dice *dice, int size);   // few distinct costs, highly degenerate
GeneratedLp gen_multi_period(Dice *dice, int size); // production, stock, capacity
GeneratedLp gen_network(Dice *dice, int size);      // minimum cost flow with capacities
GeneratedLp gen_blending(Dice *dice, int size);     // dense ratio rows, free, fixed columns
GeneratedLp gen_planted_optimum(Dice *dice, int size);    // by a point and multipliers
GeneratedLp gen_badly_scaled(Dice *dice, int size);       // the same, lines stretched
GeneratedLp gen_degenerate_optimum(Dice *dice, int size); // the same, all rows tight
GeneratedLp gen_planted_infeasible(Dice *dice, int size); // rows add up to a contradiction
GeneratedLp gen_planted_unbounded(Dice *dice, int size);  // a feasible point, a hidden ray
