// row_activity.cpp -- sum_i = sum over columns j of a_ij * x_j, for all rows in one pass over columns
//
// Method   Products and sums are formed in long double, which carries at least 11 bits more than the
//          numbers of the solvers on machines with 80-bit long double, so that a residual is the
//          error of the solution and not of its computation here.
// Cost     O(nonzeros)
#include "body/row_activity.h"
#include <algorithm>
#include <cmath>

int row_activity(const ModelBody *body, const double *x, RowActivity *rows)
{
    TRY(array_assign<long double>(&rows->sum, body->numconstrs, 0));
    TRY(array_assign<double>(&rows->size, body->numconstrs, 0));
    const int *vbeg = body->vbeg.data, *vlen = body->vlen.data, *vind = body->vind.data;
    const double *vval = body->vval.data;
    for (int j = 0; j < body->numvars; j++) {
        if (x[j] == 0) continue;
        for (int p = vbeg[j]; p < vbeg[j] + vlen[j]; p++) {
            const long double term = static_cast<long double>(vval[p]) * x[j];
            rows->sum[vind[p]] += term;
            rows->size[vind[p]] =
                std::max(rows->size[vind[p]], static_cast<double>(fabsl(term)));
        }
    }
    return 0;
}
