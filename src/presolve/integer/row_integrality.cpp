// row_integrality.cpp -- rows of integer columns: smallest integer coefficients, rounded sides
//
// Method      With integer coefficients the activity of the row is a multiple of their greatest divisor g. An equation
//             whose side is no such multiple has no solution; the side of an inequality is rounded down to one. The row
//             is divided by g.
// Postsolve   None: the rows have the same integer points.
// Cost        O(entries of the rows touched), times the scales tried (integer_row.cpp)
// Literature  K. L. Hoffman, M. Padberg, "Improving LP-representations of zero-one linear programs for branch-and-cut",
//             ORSA J. Computing 3, 1991.
#include "presolve/errors.h"
#include "presolve/integer/integer_row.h"

namespace
{
int64_t divisor_of(const IntegerRow *row)
{
    int64_t g = 0;
    for (int k = 0; k < row->count && g != 1; k++)
        g = greatest_divisor(g, row->coef.data[k]);
    return g;
}
} // namespace

int make_row_integral(PresolveWork *w, int i, IntegerRow *row)
{
    bool found = false;
    TRY(integer_row(w, i, row, &found));
    if (!found) return 0;
    const int64_t g = divisor_of(row);
    if (g == 0) return 0; // no entries
    if (w->Sense.data[i] == '=' &&
        (std::fabs(row->rest) > row->play || row->side % g != 0)) {
        w->InfeasRow = i;
        return END_INFEASIBLE;
    }
    if (set_integer_row(w, i, row, g)) w->CoefsChanged++;
    return 0;
}

int pre_row_integrality(PresolveWork *w)
{
    IntegerRow row;
    const int count = candidate_rows(w, w->IndexA.data);
    for (int k = 0; k < count; k++) {
        const int i = w->IndexA.data[k];
        TRY(check_limits(w, 1 + w->RowCnt.data[i]));
        w->Work += 2.0 * w->RowCnt.data[i];
        if (w->RowCnt.data[i] > 1) TRY(make_row_integral(w, i, &row));
    }
    return 0;
}
