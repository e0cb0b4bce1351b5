// objective_grid.h -- ObjectiveGrid: the values that the objective of integer points can have
//
// When all variables with a cost are integer, or implied to be, objectives are the constant plus multiples of a step. A bound may then be
// rounded up to the next such value, and a better solution is better by at least the step.
#pragma once
#include "body/body.h"

static constexpr double CONSTANT_OBJECTIVE = -1e100; // as Step: no variable has a cost

struct ObjectiveGrid {
    double Step = 0;     // 0: none is known; CONSTANT_OBJECTIVE
    double Constant = 0; // of the objective, minimisation form
    // The values are those of optimal points: others may lie between them.
    bool Loose = false;
};
// `implied` [columns]: continuous columns that count as integer, and in what way (implied_integers.h).
ObjectiveGrid objective_grid(const ModelBody *body, const char *implied);
// The value from which a bound cuts a node off: for an incumbent, and for a cutoff, which need not be a value of the grid.
// UNDEFINED_VALUE: none.
double prune_value_of_incumbent(const ObjectiveGrid &grid, double incumbent);
double prune_value_of_cutoff(const ObjectiveGrid &grid, double cutoff);
// A valid lower bound as it is reported: the next value that the objective can have.
double rounded_bound(const ObjectiveGrid &grid, double bound);
// The greatest step of which all values are multiples within their rounding; 0: none of a sensible size.
double common_step(const double *values, int count);
