// clique_gen.h -- generated MIPs that presolve can learn from by cliques and probing
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"

// Binary columns, and some others, in set packing rows with negated literals, partitions, knapsacks, variable bounds and
// equations that one binary column decides.
LpModel gen_mip_with_cliques(Dice *dice);
