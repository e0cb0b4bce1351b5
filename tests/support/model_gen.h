// model_gen.h -- random tiny LPs, every odd shape on purpose
//
// Small integers, so that the exact judge is quick and no verdict hangs on a tolerance. The shapes mix freely:
// all senses and bound patterns, empty rows and columns, no rows, no columns, duplicates, parallel and
// contradicting rows, degenerate vertices, planted points and duals so that all three verdicts are common.
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"

struct TinyLimits {
    int max_vars = 8;
    int max_rows = 8;
    int scaled_percent = 5; // models whose rows and columns are multiplied by powers of two
};
LpModel gen_tiny(Dice *dice, const TinyLimits &limits);
// Feasible by a point and bounded by multipliers; so many percent of the entries are not 0.
LpModel gen_planted(Dice *dice, int rows, int cols, int density, bool all_tight);

// Multiplies rows and columns by powers of two up to 2^power: no rounding, so the verdict stays.
void stretch_lines(Dice *dice, LpModel *lp, int power);
