// sensitivity.h -- ranges of costs, bounds and right-hand sides for which the basis of a solved LP stays optimal
//
// Ends are in the caller's form, -1e100 and 1e100 if there is no limit. One number changes, all others are constant:
//   cost    the basis stays optimal; so does the solution
//   bound   the basis stays feasible and so optimal: a nonbasic variable at the bound moves with it, and the objective
//           changes by RC per unit; other bounds do not change the solution
//   rhs     the same with Pi per unit
#pragma once
#include "model/model.h"

struct RangePair {
    double Low, Up;
};
struct BoundRanges {
    RangePair Lower, Upper;
};

// Fresh factors for the ranges of an optimal model, normally without visible change; if the basis is not optimal with
// them the model is solved again, with a warning. To be called first. 0; TVX_ERROR_DATA_NOT_AVAILABLE without an
// optimal LP solution; TVX_ERROR_OPTIMIZATION_IN_PROGRESS from inside a callback; OUT_OF_MEMORY; TVX_ERROR_NUMERIC if
// no optimal basis is found then.
[[nodiscard]] int SensitivityPrepare(TVXmodel *model);
// None can fail.                                             cost: one solve with the factors, or none
RangePair range_of_cost(TVXmodel *model, int j);
BoundRanges ranges_of_bounds(TVXmodel *model, int j);
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int range_of_rhs(TVXmodel *model, int i, RangePair *range);
