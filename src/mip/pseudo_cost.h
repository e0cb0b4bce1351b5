// pseudo_cost.h -- PseudoCostTable: the mean gain of the objective per unit by which a variable is moved
//
// Literature   M. Benichou et al., "Experiments in mixed-integer linear programming", Math. Prog. 1, 1971.
//              T. Achterberg, T. Koch, A. Martin, "Branching rules revisited", OR Letters 33, 2005.
#pragma once
#include "runtime/array.h"

enum class BranchWay { DOWN, UP };

struct PseudoCostTable {
    // [columns] by way: observations, and sum of the gains per unit
    Array<int> Count[2];
    Array<double> Sum[2];
    int Reliability =
        -8; // observations a way from which a cost is trusted; -r: automatic, at most r
    // Simplex iterations of one side of strong branching; NO_BUDGET: strong branching sets its own limit; 1: a step of
    // the dual ratio test only
    int Budget = 1;
    double Iterations = 0; // spent on strong branching
    double MeanGain = 0;   // the first gain by which a node was closed
};
static constexpr int NO_BUDGET = -1;

[[nodiscard]] int pseudo_alloc(PseudoCostTable *table, int columns);
// The objective has risen by `gain` after variable j was moved by `step` (below 0: down).
void pseudo_update(PseudoCostTable *table, int j, double step, double gain);
// Estimated gains of both ways for a variable with this fraction; 0 without an observation.
struct GainEstimate {
    double Down, Up;
};
GainEstimate pseudo_estimate(const PseudoCostTable *table, int j, double fraction);
// Observations of the way that has fewer.
int pseudo_observations(const PseudoCostTable *table, int j);
