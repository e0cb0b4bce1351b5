// live_negate.cpp -- a column of a live record changes its sign
//
// Problem     The working LP has no columns with only an upper bound, but a branch may leave a free column with one. A
//             lower bound far away instead would spoil all basic values as soon as the column is placed there.
// Method      x_j becomes -x_j: entries in both copies of the matrix, cost, bounds, value, reduced cost, and the column
//             of the factors if it is basic. Everything else, weights included, stays.
// Cost        The entries of the column, and of the rows of U in which it stands.
#include "simplex/dual.h"
#include <utility>

namespace
{
void negate_range(double *lower, double *upper)
{
    std::swap(*lower, *upper);
    *lower = -*lower;
    *upper = -*upper;
}

void negate(double *value)
{
    *value = -*value;
}
} // namespace

template<class R> void live_negate(sopt *s, swork<R> *w, int j)
{
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        negate(&s->ColVal.data[p]);
        s->RowVal.data[s->SlotOfEntry.data[p]] = s->ColVal.data[p];
    }
    for (Array<double> *a : {&s->ColScale, &s->Cost, &s->WorkCost, &s->SuperVal})
        negate(&a->data[j]);
    negate_range(&s->Lower.data[j], &s->Upper.data[j]);
    negate_range(&s->WorkLower.data[j], &s->WorkUpper.data[j]);
    w->Cbar.data[j] = -w->Cbar.data[j];
    const int status = s->VStat.data[j];
    if (status == AT_LOWER || status == AT_UPPER)
        s->VStat.data[j] = status == AT_LOWER ? AT_UPPER : AT_LOWER;
    if (status < 0) return;
    w->Bbar.data[status] = -w->Bbar.data[status];
    negate_range(&s->BasicLower.data[status], &s->BasicUpper.data[status]);
    if (has_factor(s, w)) lu_negate_column(&w->Lu, status);
}

template void live_negate<double>(sopt *, swork<double> *, int);
template void live_negate<long double>(sopt *, swork<long double> *, int);
