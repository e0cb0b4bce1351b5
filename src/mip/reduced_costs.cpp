// reduced_costs.cpp -- fixing by the reduced costs of the root LP whenever the incumbent improves
//
// Method   A binary that is nonbasic at a bound in the root LP and whose reduced cost is as large as the gap to PruneValue
//          keeps its value in every better solution; a general integer moves by at most gap / cost.
#include "mip/search_bounds.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LEAST_COST = 1e-4;     // that is worth keeping
constexpr double STEP_MARGIN = 1e-6;    // steps are rounded down with it
constexpr double TRUSTED_OF_GAP = 1e-9; // share of the gap from which a cost counts
} // namespace

int keep_reduced_costs(SearchWorker *worker, double bound)
{
    MIPState *state = worker->State;
    ReducedCosts *reduced = &state->Reduced;
    const sopt *lp = worker->Lp.simplex;
    reduced->Objective = bound;
    reduced->Entries.size = 0;
    for (int j = 0; j < state->Body->numvars; j++) {
        if (!state->IsInteger.data[j] || simplex_is_basic(lp, j)) continue;
        const double d = simplex_reduced_cost(lp, j);
        if (std::fabs(d) <= LEAST_COST) continue;
        const double x = simplex_value(lp, j);
        if (d > 0 ? x > state->Lower.data[j] + STEP_MARGIN
                  : x < state->Upper.data[j] - STEP_MARGIN)
            continue;
        TRY(array_append(&reduced->Entries, {j, d, x}));
    }
    std::sort(reduced->Entries.begin(), reduced->Entries.end(),
              [](const ReducedCostEntry &a, const ReducedCostEntry &b) {
                  const double size_a = std::fabs(a.Cost), size_b = std::fabs(b.Cost);
                  return size_a != size_b ? size_a > size_b : a.Var < b.Var;
              });
    return 0;
}

int fix_by_reduced_costs(MIPState *state)
{
    if (!state->Env->TARV_PAR_DUALREDUCTION) return 0;
    const double gap = state->Pool.PruneValue - state->Reduced.Objective;
    for (const ReducedCostEntry &entry : state->Reduced.Entries) {
        const double size = std::fabs(entry.Cost);
        if (size < TRUSTED_OF_GAP * gap) break;
        const double step = std::max(0.0, std::floor(gap / size + STEP_MARGIN));
        if (entry.Cost > 0 ? entry.Bound + step >= state->Upper.data[entry.Var]
                           : entry.Bound - step <= state->Lower.data[entry.Var])
            continue;
        TRY(search_tighten(state, entry.Cost > 0
                                      ? BoundDelta{'<', entry.Var, entry.Bound + step}
                                      : BoundDelta{'>', entry.Var, entry.Bound - step}));
    }
    return 0;
}
