// primal_price.cpp -- choose the entering column: Devex weights and merits
//
// merit_j = d_j^2 / w_j for a nonbasic whose reduced cost improves the objective. With pivot p, entering q and the
// reference weight s of q computed exactly from its column,
//   w_j = max(w_j, s (row_j / p)^2),   w_leaving = max(s / p^2, 1)
// When stored weights prove too far off, the framework starts again from the nonbasics at hand.
// Literature  P. M. J. Harris, Math. Prog. 5, 1973; J. J. Forrest and D. Goldfarb, Math. Prog. 57, 1992.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr double WEIGHT_OFF = 3; // stored over exact weight that counts as bad
constexpr int MAX_BAD_WEIGHTS = 3;
} // namespace

template<class R> void primal_set_merit(sopt *s, swork<R> *w, int j)
{
    popt<R> *p = w->Primal;
    const int status = s->VStat.data[j];
    const R d = w->Cbar.data[j];
    R gain = 0;
    if (status == AT_LOWER)
        gain = -d;
    else if (status == AT_UPPER)
        gain = d;
    else if (status == AT_FREE)
        gain = std::abs(d);
    const bool eligible = gain > R(s->OptTol) && !p->ColRejected.data[j];
    price_list_set(&p->Columns, j, eligible ? d * d / p->Weights.data[j] : R(0));
}

template<class R> void primal_list_reset(sopt *s, swork<R> *w)
{
    price_list_reset(&w->Primal->Columns);
    for (int j = 0; j < s->NumVars; j++) primal_set_merit(s, w, j);
}

template<class R> void primal_reset_weights(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    p->BadWeights = 0;
    for (int j = 0; j < s->NumVars; j++) {
        p->Weights.data[j] = R(1);
        p->Reference.data[j] = s->VStat.data[j] < 0;
    }
}

template<class R> void primal_update_weights(sopt *s, swork<R> *w, R pivot)
{
    popt<R> *p = w->Primal;
    const int q = p->PivotCol, r = p->PivotRow, leaving = s->BasisHead.data[r];
    R weight = p->Reference.data[q] ? R(1) : R(0);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        if (!p->Reference.data[s->BasisHead.data[i]]) continue;
        const R a = w->Alpha.Value.data[i];
        weight += a * a;
    }
    if (p->Weights.data[q] > R(WEIGHT_OFF) * weight) p->BadWeights++;
    const R g = std::max(weight, R(1)) / (pivot * pivot);
    for (int k = 0; k < w->RowCount; k++) {
        R *wj = &p->Weights.data[w->RowInd.data[k]];
        const R a = w->RowVal.data[k];
        *wj = std::max(*wj, g * a * a);
    }
    p->Weights.data[leaving] = std::max(g, R(1));
    p->Weights.data[q] = R(1);
    if (p->BadWeights > MAX_BAD_WEIGHTS) {
        primal_reset_weights(s, w);
        p->Columns.Threshold = R(1e300); // all merits changed
        primal_list_reset(s, w);
    }
}

#define INSTANTIATE(R)                                                                     \
    template void primal_set_merit<R>(sopt *, swork<R> *, int);                            \
    template void primal_list_reset<R>(sopt *, swork<R> *);                                \
    template void primal_reset_weights<R>(sopt *, swork<R> *);                             \
    template void primal_update_weights<R>(sopt *, swork<R> *, R);
INSTANTIATE(double)
INSTANTIATE(long double)
