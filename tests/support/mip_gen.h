// mip_gen.h -- random MIPs of every variable type, tiny ones for the exact judge and small ones
//
// Small integers, so that no verdict hangs on a tolerance; what is scaled is scaled after the exact judge has seen it.
// Families follow the shapes that solvers treat in ways of their own; around each, objectives are made equal, zero or
// constant, senses turned, columns and rows shuffled.
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"

struct MipFamily {
    const char *name;
    void (*add)(Dice *dice, int size, LpModel *lp); // minimise; about `size` columns
};
const std::vector<MipFamily> &mip_families();

struct GeneratedMip {
    const char *family;
    LpModel lp;
};
GeneratedMip gen_mip(Dice *dice, int most_size = 6);

// Multiplies rows by powers of ten from 0.1 to 1000, the objective by one from 0.001 to 1000, which rounds data. Smaller
// rows would let FeasibilityTol blur the optimum. The factor of the objective.
double scale_by_tens(Dice *dice, LpModel *lp);

// The same model with rows and columns in another order; old columns: place[new] = old.
LpModel shuffled(Dice *dice, const LpModel &lp, std::vector<int> *place);
