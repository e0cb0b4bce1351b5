// primal_pricing.cpp -- automatic choice of the pricing of the primal simplex
//
// Problem     No pricing is best for all models: partial pricing has cheap iterations, exact steepest edge weights give
//             few iterations, Devex is between.
// Method      A pricing set by the parameter is kept. Otherwise models with very many columns begin with partial
//             pricing and change to steepest edge when many iterations have passed; all others begin with steepest
//             edge, and change to Devex if the exact weights take too large a share of the work. Work is counted in
//             units, not measured in time, so that runs are deterministic.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
// iterations before the work for exact weights is tested
constexpr double NORM_TRIAL = 200;
// columns per row from which partial pricing comes first
constexpr double MANY_COLUMNS = 20;
// iterations of partial pricing, as a multiple of NumVars
constexpr double PARTIAL_ROUNDS = 2;
// larger: partial pricing ends earlier; tuned on published LPs
constexpr double PATIENCE = 4;
constexpr double NORM_SHARE = 0.5; // share of the work that exact weights may take

template<class R> double total_work(const sopt *s, const swork<R> *w)
{
    return s->WorkUnits + w->Lu.WorkUnits;
}

// Changes pricing in mid-run; weights start again from the basis at hand.
template<class R> void change_pricing(sopt *s, swork<R> *w, int pricing)
{
    popt<R> *p = w->Primal;
    p->PricingCur = pricing;
    p->NewWeights = 1;
    p->NormWork = 0;
    p->PricingSince = s->NPvt;
    p->WorkStart = total_work(s, w);
}

// True if partial pricing should end. It pays while there are few iterations and the factors are sparse in comparison
// with the number of columns: d grows with iterations, spikes and degeneracy, f with the entries of the factors, and
// row_work is the cost of the pivot row that other pricing needs, relative to the spike length.
template<class R> bool partial_has_served(const sopt *s, const swork<R> *w)
{
    const popt<R> *p = w->Primal;
    const double m = s->NumRows, n = s->NumCols;
    if (s->NPvt > PARTIAL_ROUNDS * (n + m)) return true;
    const double pivots = std::max(1.0, s->NPvt - p->StallIter);
    const double degenerate = std::min(1.0, (s->DegenCount - p->StallStart) / pivots);
    const double d = s->NPvt / (n + m) + 0.3 + 1.2 * p->AvgSpike / m +
                     0.6 * ((s->Perturbed == PERTURBED_ALL) + degenerate);
    const double f = std::max(1.0, static_cast<double>(w->Lu.UNonzeros) +
                                       3.0 * static_cast<double>(w->Lu.LNonzeros) - 2 * m);
    const double row_work = p->AvgRow / (p->AvgSpike + 1);
    return row_work + 1 + 9 * n / f < PATIENCE * d;
}

// Partial pricing for many columns, Devex after a switch from the dual simplex. In a slack basis exact steepest edge
// weights need no solves; from another basis quick-start steepest edge avoids them.
int automatic_pricing(const sopt *s)
{
    if (s->SwitchCount > 0) return PRICE_DEVEX;
    if (s->NumCols >= MANY_COLUMNS * s->NumRows) return PRICE_PARTIAL;
    return is_slack_basis(s) ? PRICE_STEEPEST : PRICE_QUICK;
}

} // namespace

template<class R> void primal_choose_pricing(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const int wish = s->Env->SimplexPricing, kind = s->Env->TARV_PAR_PRIMALPARTIAL;
    p->PricingFixed = wish >= 0;
    p->PricingKind = kind > 0 ? kind : PARTIAL_MULTIPLE;
    p->AvgSpike = p->AvgRow = p->RhoEntries = p->RhoCount = 0;
    change_pricing(s, w, p->PricingFixed ? wish : automatic_pricing(s));
}

// From steepest edge to Devex if the solves for exact weights dominate; from partial pricing to quick-start steepest
// edge.
template<class R> void primal_review_pricing(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const bool steepest = p->PricingCur == PRICE_STEEPEST || p->PricingCur == PRICE_QUICK;
    if (steepest && !p->PricingFixed && s->NPvt - p->PricingSince > NORM_TRIAL &&
        p->NormWork > NORM_SHARE * (total_work(s, w) - p->WorkStart)) {
        change_pricing(s, w, PRICE_DEVEX);
    } else if (p->PricingCur == PRICE_PARTIAL && !p->PricingFixed && s->NPvt > 0 &&
               partial_has_served(s, w)) {
        change_pricing(s, w, PRICE_QUICK);
    }
    if (!p->NewWeights) return;
    primal_start_weights(s, w);
    p->NewWeights = s->Status != SIMPLEX_RUNNING; // incomplete if a limit was reached
}

// Means of the cycle that ends with a refactorisation.
template<class R> void primal_end_cycle(const sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (w->Lu.NumUpdates > 0 && has_factor(s, w))
        p->AvgSpike = static_cast<double>(w->Lu.SpikeNnz) / w->Lu.NumUpdates;
    if (p->RhoCount > 0)
        p->AvgRow = p->RhoEntries / p->RhoCount * s->ColBeg.data[s->NumCols] / s->NumRows;
    p->RhoCount = p->RhoEntries = 0;
}

#define INSTANTIATE(R)                                                                     \
    template void primal_choose_pricing<R>(sopt *, swork<R> *);                            \
    template void primal_review_pricing<R>(sopt *, swork<R> *);                            \
    template void primal_end_cycle<R>(const sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
