// dual_row.cpp -- merits of the rows, from which the dual simplex chooses the leaving variable
//
// merit_i = (infeasibility of the basic variable at i)^2 / weight_i, 0 when it is feasible or its row is set aside.
// With NormAdjust 2 or 3 it is multiplied by the column's length plus the mean length: long columns leave early, which
// keeps bases sparse but takes more iterations on most models.
// Literature  J. J. Forrest and D. Goldfarb, "Steepest-edge simplex algorithms", Math. Prog. 57, 1992.
#include "simplex/dual.h"
#include <algorithm>

namespace
{
constexpr int NORM_BY_LENGTH = 2; // NormAdjust from here on

template<class R> R column_weight(const sopt *s, int i)
{
    const int j = s->BasisHead.data[i],
              length = j < s->NumCols ? s->ColBeg.data[j + 1] - s->ColBeg.data[j] : 1;
    return R(length) + R(s->ColBeg.data[s->NumCols]) / R(std::max(1, s->NumCols));
}
} // namespace

template<class R> void dual_set_merit(sopt *s, swork<R> *w, int i)
{
    dopt<R> *d = w->Dual;
    const R x = w->Bbar.data[i];
    const R gap = std::max(R(s->BasicLower.data[i]) - x, x - R(s->BasicUpper.data[i]));
    const bool eligible = gap > R(s->FeasTol) && !d->RowRejected.data[i];
    R merit = eligible ? gap * gap / d->Weights.data[i] : R(0);
    if (eligible && s->Env->NormAdjust >= NORM_BY_LENGTH) merit *= column_weight<R>(s, i);
    price_list_set(&d->Rows, i, merit);
}

namespace
{
// All merits; without branches, so that the compiler can vectorise the loop.
template<class R> void set_all_merits(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int m = s->NumRows;
    if (s->Env->NormAdjust >= NORM_BY_LENGTH) {
        for (int i = 0; i < m; i++) dual_set_merit(s, w, i);
        return;
    }
    const R *__restrict x = w->Bbar.data, *__restrict weight = d->Weights.data;
    const double *__restrict lower = s->BasicLower.data, *__restrict upper =
                                                             s->BasicUpper.data;
    R *__restrict merit = d->Rows.Merit.data;
    const R tol = R(s->FeasTol);
    for (int i = 0; i < m; i++) {
        R gap = std::max(R(lower[i]) - x[i], x[i] - R(upper[i]));
        gap = gap > tol ? gap : R(0);
        merit[i] = gap * gap / weight[i];
    }
    if (d->Rejected > 0)
        for (int i = 0; i < m; i++)
            if (d->RowRejected.data[i]) merit[i] = R(0);
    for (int i = 0; i < m; i++)
        if (merit[i] >= d->Rows.Threshold) price_list_set(&d->Rows, i, merit[i]);
}
} // namespace

template<class R> void dual_set_merits(sopt *s, swork<R> *w, const SVec<R> *changed)
{
    if (!svec_is_short(changed)) {
        set_all_merits(s, w);
        return;
    }
    for (int k = 0; k < changed->Count; k++) dual_set_merit(s, w, changed->Index.data[k]);
}

template<class R> void dual_list_reset(sopt *s, swork<R> *w)
{
    price_list_reset(&w->Dual->Rows);
    set_all_merits(s, w);
}

#define INSTANTIATE(R)                                                                     \
    template void dual_set_merit<R>(sopt *, swork<R> *, int);                              \
    template void dual_set_merits<R>(sopt *, swork<R> *, const SVec<R> *);                 \
    template void dual_list_reset<R>(sopt *, swork<R> *);

INSTANTIATE(double)
INSTANTIATE(long double)
