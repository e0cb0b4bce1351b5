// dual_weights.cpp -- row weights of the dual simplex: start values, updates, choice between steepest edge and Devex
//
// Problem     The leaving row should have the largest infeasibility relative to the length of its row of the inverse.
// Method      Steepest edge: weight_i = ||B^-T e_i||^2, updated exactly with one more FTRAN. Devex: lengths measured
//             over the reference framework, the variables that were basic when it was set; updates need no further
//             solve, but give only lower bounds of the lengths.
//             With p = alpha_r the pivot and tau = B^-1 rho:
//   steepest      w_i += (alpha_i / p)^2 w_r - 2 (alpha_i / p) tau_i,  w_r /= p^2
//   Devex         w_i = max(w_i, (alpha_i / p)^2 w_r),  w_r = max(w_r / p^2, 1)
// In, out     Weights by position; WeightOf by variable keeps them during refactorisations and from run to run.
// Literature  J. J. Forrest and D. Goldfarb, Math. Prog. 57, 1992; P. M. J. Harris, Math. Prog. 5, 1973.
#include "simplex/dual.h"
#include <algorithm>

namespace
{
// floor: updates may give too small weights by rounding
constexpr double WEIGHT_MIN = 1e-8;
constexpr double FRAMEWORK_LIFE = 30; // entries per row updated before a new framework
// share of the rows added to FrameworkWork by every pivot
constexpr double FRAMEWORK_STEP = 0.02;
// Exact start weights pay if there are more columns than EXACT_WIDE * m and EXACT_SQUARE * m^2.
constexpr double EXACT_WIDE = 100, EXACT_SQUARE = 0.1;
constexpr int LIMIT_PERIOD = 100; // solves between tests of the limits
// models with at least this many rows may change their pricing
constexpr int LARGE_ROWS = 15000;
constexpr double NARROW = 3; // if they have at most this many columns per row
// from steepest edge to Devex: work for weights over work for pivot rows
constexpr double NORM_SHARE = 3;
constexpr double NORM_DOMINATES = 0.45; // and over all work
constexpr double DEVEX_LIMIT = 3;       // from Devex to steepest edge: iterations per row,
constexpr int DEVEX_SWITCHES = 3;       // or switches of method, with numeric trouble

// The current basic variables become the reference framework, in which every row has length 1.
template<class R> void set_framework(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    for (int j = 0; j < s->NumVars; j++) d->Reference.data[j] = is_basic(s, j);
    for (int k = 0; k < s->NumRows; k++) d->Weights.data[k] = R(1);
    d->FrameworkWork = 0;
}

template<class R> R squared_length(const SVec<R> *x)
{
    R sum = 0;
    for (int k = 0; k < x->Count; k++) {
        const R v = x->Value.data[x->Index.data[k]];
        sum += v * v;
    }
    return sum;
}

// One BTRAN per row.
template<class R> void exact_weights(sopt *s, swork<R> *w)
{
    for (int k = 0; k < s->NumRows; k++) {
        if (k % LIMIT_PERIOD == 0 && limit_reached(s)) return;
        svec_unit(&w->Rho, k, R(1));
        Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
        w->Dual->Weights.data[k] = std::max(squared_length(&w->Rho), R(WEIGHT_MIN));
    }
}

bool wants_exact_weights(const sopt *s)
{
    const int wish = s->Env->TARV_PAR_EXACTNORM;
    const double m = s->NumRows, n = s->NumCols;
    return wish == 1 || (wish == -1 && n > EXACT_WIDE * m && n > EXACT_SQUARE * m * m);
}

// Weights given with the start basis are used if every basic variable has one.
template<class R> bool take_given_weights(const sopt *s, dopt<R> *d)
{
    if (s->StartNorms.size == 0) return false;
    for (int k = 0; k < s->NumRows; k++) {
        const double norm = s->StartNorms.data[s->BasisHead.data[k]];
        if (!(norm > 0 && norm < s->Infinity)) return false;
        d->Weights.data[k] = std::max(R(norm), R(WEIGHT_MIN));
    }
    return true;
}

template<class R> void update_steepest(swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int r = d->PivotRow;
    const R pivot = d->AlphaCol, norm = d->Weights.data[r];
    R *__restrict weights = d->Weights.data;
    const R *__restrict alpha = w->Alpha.Value.data, *__restrict tau = w->Tau.Value.data;
    const auto update = [=](int i) {
        const R ratio = alpha[i] / pivot;
        weights[i] =
            std::max(weights[i] + ratio * (ratio * norm - 2 * tau[i]), R(WEIGHT_MIN));
    };
    if (svec_is_short(&w->Alpha))
        for (int k = 0; k < w->Alpha.Count; k++) update(w->Alpha.Index.data[k]);
    else // the update does nothing where alpha is zero
        for (int i = 0; i < w->Alpha.Dim; i++) update(i);
    weights[r] = std::max(norm / (pivot * pivot), R(WEIGHT_MIN));
}

template<class R> void update_devex(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int r = d->PivotRow;
    R norm = d->Reference.data[s->BasisHead.data[r]] ? R(1) : R(0);
    for (int k = 0; k < w->RowCount; k++)
        if (d->Reference.data[w->RowInd.data[k]])
            norm += w->RowVal.data[k] * w->RowVal.data[k];
    const R pivot = d->AlphaCol;
    R *__restrict weights = d->Weights.data;
    const R *__restrict alpha = w->Alpha.Value.data;
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R ratio = alpha[i] / pivot;
        weights[i] = std::max(weights[i], ratio * ratio * norm);
    }
    weights[r] = std::max(norm / (pivot * pivot), R(1));
    d->FrameworkWork += w->Alpha.Count + FRAMEWORK_STEP * s->NumRows;
}
} // namespace

template<class R> void dual_weights_start(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int wish = s->Env->SimplexPricing;
    const bool kept = dual_weights_kept(s, d);
    if (wish == PRICE_DEVEX) {
        d->PricingCur = PRICE_DEVEX;
        set_framework(s, w);
        return;
    }
    const bool usable = kept && d->PricingCur == PRICE_STEEPEST;
    d->PricingCur = PRICE_STEEPEST;
    d->WeightAge = -1;
    if (take_given_weights(s, d)) return;
    if (usable) {
        dual_weights_restore(s, w);
        return;
    }
    for (int k = 0; k < s->NumRows; k++) d->Weights.data[k] = R(1);
    if (wish != PRICE_QUICK && wants_exact_weights(s) && !is_slack_basis(s))
        exact_weights(s, w);
}

template<class R> void dual_weights_save(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    for (int j = 0; j < s->NumVars; j++) d->WeightOf.data[j] = R(1);
    for (int k = 0; k < s->NumRows; k++)
        d->WeightOf.data[s->BasisHead.data[k]] = d->Weights.data[k];
}

template<class R> void dual_weights_restore(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    for (int k = 0; k < s->NumRows; k++)
        d->Weights.data[k] = d->WeightOf.data[s->BasisHead.data[k]];
}

template<class R> bool dual_weights_kept(const sopt *s, const dopt<R> *d)
{
    return d->WeightAge == s->BasisAge && d->WeightPivots == s->Pivots;
}

template<class R> void dual_weights_keep(sopt *s, swork<R> *w)
{
    dual_weights_save(s, w);
    w->Dual->WeightAge = s->BasisAge;
    w->Dual->WeightPivots = s->Pivots;
}

template<class R> R dual_true_weight(const swork<R> *w)
{
    return squared_length(&w->Rho);
}

template<class R> void dual_update_weights(sopt *s, swork<R> *w)
{
    if (w->Dual->PricingCur == PRICE_DEVEX)
        update_devex(s, w);
    else
        update_steepest(w);
}

template<class R> void dual_change_pricing(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    if (d->PricingCur == PRICE_DEVEX && d->FrameworkWork > FRAMEWORK_LIFE * s->NumRows)
        set_framework(s, w);
    if (s->Env->SimplexPricing >= 0 || d->PricingFinal || s->NumRows < LARGE_ROWS ||
        s->NumCols > NARROW * s->NumRows)
        return;
    if (d->PricingCur == PRICE_DEVEX) {
        const bool trouble = s->SwitchCount >= DEVEX_SWITCHES && s->NumericCount >= 1;
        if (!trouble && s->NPvt <= DEVEX_LIMIT * s->NumRows) return;
        for (int k = 0; k < s->NumRows; k++) d->Weights.data[k] = R(1);
        d->PricingCur = PRICE_STEEPEST;
        d->PricingFinal = 1;
    } else if (d->NormWork > NORM_SHARE * d->RowWork &&
               d->NormWork > NORM_DOMINATES * (s->WorkUnits + w->Lu.WorkUnits)) {
        set_framework(s, w);
        d->PricingCur = PRICE_DEVEX;
    }
}

#define INSTANTIATE(R)                                                                     \
    template void dual_weights_start<R>(sopt *, swork<R> *);                               \
    template void dual_weights_save<R>(sopt *, swork<R> *);                                \
    template void dual_weights_restore<R>(sopt *, swork<R> *);                             \
    template void dual_weights_keep<R>(sopt *, swork<R> *);                                \
    template bool dual_weights_kept<R>(const sopt *, const dopt<R> *);                     \
    template R dual_true_weight<R>(const swork<R> *);                                      \
    template void dual_update_weights<R>(sopt *, swork<R> *);                              \
    template void dual_change_pricing<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
