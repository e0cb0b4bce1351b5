// primal_price.cpp -- merits and weights of the columns
//
// merit_j = d_j^2 / w_j for a nonbasic whose reduced cost improves the objective. w_j stands for the squared length of
// the edge along which x_j enters, eta_j = (B^-1 a_j, 1), restricted to a reference framework of variables:
//   steepest edge   all variables; start weights 1 + ||B^-1 a_j||^2
//   quick start     the nonbasics of the start, all start weights 1
//   Devex           the same framework, updated by a bound instead of the exact formula
// With pivot p, entering q, gamma = w_q computed exactly from its column, t_j = row_j / p:
//   steepest edge   w_j += t_j (t_j gamma - 2 a_j . v),  v = B^-T (B^-1 a_q restricted);  w_leaving = gamma / p^2
//   Devex           w_j = max(w_j, t_j^2 gamma),  w_leaving = max(gamma / p^2, 1)
// Cost        Devex: the pivot row. Steepest edge: one more BTRAN, and a dot product per entry of the row.
// Literature  P. M. J. Harris, Math. Prog. 5, 1973; D. Goldfarb and J. K. Reid, Math. Prog. 12, 1977; J. J. Forrest and
//             D. Goldfarb, Math. Prog. 57, 1992.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr double WEIGHT_OFF = 3; // stored over exact weight that counts as bad
constexpr int MAX_BAD_WEIGHTS = 3;
constexpr double WEIGHT_MIN = 1e-4;  // floor of rounding
constexpr int SOLVES_PER_LOOK = 100; // solves for start weights between tests of the limits

template<class R> bool is_steepest(const popt<R> *p)
{
    return p->PricingCur == PRICE_STEEPEST || p->PricingCur == PRICE_QUICK;
}

// gamma: squared length of the entering column over the framework.
template<class R> R exact_weight(const sopt *s, const swork<R> *w)
{
    const popt<R> *p = w->Primal;
    R weight = p->Reference.data[p->PivotCol] ? R(1) : R(0);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        if (!p->Reference.data[s->BasisHead.data[i]]) continue;
        const R a = w->Alpha.Value.data[i];
        weight += a * a;
    }
    return weight;
}

template<class R> void update_devex(sopt *s, swork<R> *w, R pivot, R gamma)
{
    popt<R> *p = w->Primal;
    const int q = p->PivotCol, leaving = s->BasisHead.data[p->PivotRow];
    const R g = std::max(gamma, R(1)) / (pivot * pivot);
    for (int k = 0; k < w->RowCount; k++) {
        R *wj = &p->Weights.data[w->RowInd.data[k]];
        const R a = w->RowVal.data[k];
        *wj = std::max(*wj, g * a * a);
    }
    p->Weights.data[leaving] = std::max(g, R(1));
    p->Weights.data[q] = R(1);
}

template<class R> void update_steepest(sopt *s, swork<R> *w, R pivot, R gamma)
{
    popt<R> *p = w->Primal;
    const int q = p->PivotCol, leaving = s->BasisHead.data[p->PivotRow];
    const double before = w->Lu.WorkUnits;
    SVec<R> *v = &w->Tau;
    svec_copy(v, &w->Alpha);
    for (int k = 0; k < v->Count; k++) {
        const int i = v->Index.data[k];
        if (!p->Reference.data[s->BasisHead.data[i]]) v->Value.data[i] = SVEC_TINY<R>;
    }
    Btran(&w->Lu, v, SOLVE_NORM, Keep::NO);
    const R *__restrict tau = v->Value.data;
    const R q_in = p->Reference.data[q] ? R(1) : R(0);
    int64_t entries = 0;
    for (int k = 0; k < w->RowCount; k++) {
        const int j = w->RowInd.data[k];
        const R t = w->RowVal.data[k] / pivot;
        const R j_in = p->Reference.data[j] ? R(1) : R(0);
        const R weight = p->Weights.data[j] + t * (t * gamma - 2 * column_dot(s, j, tau));
        p->Weights.data[j] = std::max(weight, std::max(j_in + q_in * t * t, R(WEIGHT_MIN)));
        if (j < s->NumCols) entries += s->ColBeg.data[j + 1] - s->ColBeg.data[j];
    }
    p->Weights.data[leaving] = std::max(gamma / (pivot * pivot), R(WEIGHT_MIN));
    p->Weights.data[q] = R(1);
    s->WorkUnits += static_cast<double>(entries);
    p->NormWork += w->Lu.WorkUnits - before + static_cast<double>(entries);
}

// 1 + ||a_j||^2, for partial pricing.
template<class R> void column_norms(const sopt *s, popt<R> *p)
{
    for (int j = 0; j < s->NumVars; j++) {
        R *weight = &p->Weights.data[j];
        *weight = R(j < s->NumCols ? 1 : 2);
        if (j >= s->NumCols) continue;
        for (int k = s->ColBeg.data[j]; k < s->ColBeg.data[j + 1]; k++)
            *weight += R(s->ColVal.data[k]) * R(s->ColVal.data[k]);
    }
}

// 1 + ||B^-1 a_j||^2 for each nonbasic, unless a limit ends the run. In a slack basis no solve is needed.
template<class R> void start_norms(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const bool slacks = is_slack_basis(s);
    int solves = 0;
    for (int j = 0; j < s->NumVars; j++) {
        p->Reference.data[j] = 1;
        R *weight = &p->Weights.data[j];
        *weight = R(1);
        if (is_basic(s, j) || s->VStat.data[j] == AT_FIXED) continue;
        load_column(s, j, &w->Alpha);
        if (!slacks) {
            if (solves++ % SOLVES_PER_LOOK == 0 && limit_reached(s)) return;
            Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::NO);
        }
        for (int k = 0; k < w->Alpha.Count; k++) {
            const R a = w->Alpha.Value.data[w->Alpha.Index.data[k]];
            *weight += a * a;
        }
    }
    s->WorkUnits += s->ColBeg.data[s->NumCols];
}
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

template<class R> void primal_start_weights(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    p->BadWeights = 0;
    if (p->PricingCur == PRICE_STEEPEST) {
        start_norms(s, w);
        return;
    }
    if (p->PricingCur == PRICE_PARTIAL) {
        column_norms(s, p);
        return;
    }
    for (int j = 0; j < s->NumVars; j++) {
        p->Weights.data[j] = R(1);
        p->Reference.data[j] = s->VStat.data[j] < 0;
    }
}

template<class R> void primal_update_weights(sopt *s, swork<R> *w, R pivot)
{
    popt<R> *p = w->Primal;
    const R gamma = exact_weight(s, w);
    if (is_steepest(p)) {
        update_steepest(s, w, pivot, gamma);
        return;
    }
    if (p->Weights.data[p->PivotCol] > R(WEIGHT_OFF) * gamma) p->BadWeights++;
    update_devex(s, w, pivot, gamma);
    if (p->BadWeights > MAX_BAD_WEIGHTS) {
        primal_start_weights(s, w);
        primal_list_reset(s, w);
    }
}

template<class R> R primal_exact_cbar(const sopt *s, const swork<R> *w)
{
    const popt<R> *p = w->Primal;
    const R share = p->Phase1 ? R(p->CostWeight) : R(1);
    R exact = share * R(s->Cost.data[p->PivotCol]);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        R cost = share * R(s->Cost.data[s->BasisHead.data[i]]);
        if (p->Phase1) cost += R(p->RowState.data[i]);
        exact -= cost * w->Alpha.Value.data[i];
    }
    return exact;
}

#define INSTANTIATE(R)                                                                     \
    template void primal_set_merit<R>(sopt *, swork<R> *, int);                            \
    template void primal_list_reset<R>(sopt *, swork<R> *);                                \
    template void primal_start_weights<R>(sopt *, swork<R> *);                             \
    template void primal_update_weights<R>(sopt *, swork<R> *, R);                         \
    template R primal_exact_cbar<R>(const sopt *, const swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
