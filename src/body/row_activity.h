// row_activity.h -- activity of every row at a point, summed more exactly than solvers do
#pragma once
#include "body/body.h"

struct RowActivity {
    Array<long double> sum; // [numconstrs] a_i x in the body's form ('>' rows negated)
    Array<double> size;     // [numconstrs] largest |a_ij x_j| of the row
};
[[nodiscard]] int row_activity(const ModelBody *body, const double *x,
                               RowActivity *rows); // 0 or OUT_OF_MEMORY
