// sensitivity.h -- ranges over which the optimal basis of a solved LP stays what it is
//
// Ends are in the caller's form, -1e100 and 1e100 where there is none. One number moves, all others stay:
//   cost    the basis stays optimal; so does the solution
//   bound   the basis stays feasible, and with it optimal: a nonbasic variable at the bound moves along, and the
//           objective by RC per unit; at other bounds nothing moves
//   rhs     the same with Pi per unit
#pragma once
#include "model/model.h"

struct RangePair {
    double Low, Up;
};
struct BoundRanges {
    RangePair Lower, Upper;
};

// Fresh factors for the ranges of an optimal model, without a trace for the caller; a basis that turns out not to be
// optimal with them is replaced, with a warning. To be called first. 0; TVX_ERROR_DATA_NOT_AVAILABLE without an
// optimal LP solution; TVX_ERROR_OPTIMIZATION_IN_PROGRESS from inside a callback; OUT_OF_MEMORY; TVX_ERROR_NUMERIC when
// no optimal basis is found any more.
[[nodiscard]] int SensitivityPrepare(TVXmodel *model);
// None can fail.                                             cost: one solve with the factors, or none
RangePair range_of_cost(TVXmodel *model, int j);
BoundRanges ranges_of_bounds(TVXmodel *model, int j);
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int range_of_rhs(TVXmodel *model, int i, RangePair *range);
