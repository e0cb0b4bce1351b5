// dual_row.cpp -- merits of the rows from which a dual simplex step chooses
//
// merit_i = (infeasibility of the basic variable at i)^2 / weight_i, 0 when it is feasible or its row is set aside.
// Literature  J. J. Forrest and D. Goldfarb, "Steepest-edge simplex algorithms", Math. Prog. 57, 1992.
#include "simplex/dual.h"
#include <algorithm>

template<class R> void dual_set_merit(sopt *s, swork<R> *w, int i)
{
    dopt<R> *d = w->Dual;
    const R x = w->Bbar.data[i];
    const R gap = std::max(R(s->BasicLower.data[i]) - x, x - R(s->BasicUpper.data[i]));
    const bool eligible = gap > R(s->FeasTol) && !d->RowRejected.data[i];
    price_list_set(&d->Rows, i, eligible ? gap * gap / d->Weights.data[i] : R(0));
}

template<class R> void dual_list_reset(sopt *s, swork<R> *w)
{
    price_list_reset(&w->Dual->Rows);
    for (int i = 0; i < s->NumRows; i++) dual_set_merit(s, w, i);
}

#define INSTANTIATE(R)                                                                     \
    template void dual_set_merit<R>(sopt *, swork<R> *, int);                              \
    template void dual_list_reset<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
