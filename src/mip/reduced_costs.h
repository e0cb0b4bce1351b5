// reduced_costs.h -- ReducedCosts, the reduced costs of the root LP, for fixing variables whenever the incumbent improves
#pragma once
#include "runtime/array.h"

struct ReducedCostEntry {
    int Var;
    double Cost;  // > 0: the variable is at its lower bound
    double Bound; // where it is in the LP solution
};
struct ReducedCosts {
    double Objective = -1e100;       // of the LP
    Array<ReducedCostEntry> Entries; // by falling magnitude
};
struct MIPState;
struct SearchWorker;
// Keeps those of the LP of the root, which is live and whose optimum is at least `bound`. 0 or OUT_OF_MEMORY.
[[nodiscard]] int keep_reduced_costs(SearchWorker *worker, double bound);
// Bounds that follow from them and PruneValue. 0 or OUT_OF_MEMORY.
[[nodiscard]] int fix_by_reduced_costs(MIPState *state);
