// mip_presolve_gen.h -- generated MIPs with lines that reductions of presolve look for
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"

// A model of gen_mip with parallel columns of any types, parallel rows, slacks and short equations.
LpModel gen_mip_with_lines(Dice *dice);
