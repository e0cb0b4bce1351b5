// quality_check.h -- do the quality attributes of a solved LP say what an independent computation finds?
//
// Method      The measures as docs/attributes.md defines them, from the test's own copy of the model and the solution
//             as it was read, in long double. Each attribute may differ by the rounding of two such sums;
//             the place it names must hold the largest amount up to that.
// Out         One line of text per attribute that disagrees or cannot be read.
#pragma once
#include "support/lp_check.h"
#include "tarvex.h"

std::vector<std::string> check_quality(TVXmodel *model, const LpModel *lp,
                                       const LpSolution *solution);
