// primal_pricing.cpp -- which pricing is in force, and when it changes
//
// Problem     No pricing is best throughout: partial pricing makes iterations cheap, exact weights make them few, Devex
//             stands between.
// Method      The caller's choice stays. Otherwise models with very many columns begin with partial pricing and change
//             when iterations mount; all others begin with steepest edge, and fall back to Devex when the exact weights
//             prove to take more than their share of the effort. Effort is counted, never timed.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr double NORM_TRIAL = 200;   // iterations before exact weights are judged
constexpr double MANY_COLUMNS = 20;  // against rows: partial pricing comes first
constexpr double PARTIAL_ROUNDS = 2; // iterations that it may take, in numbers of variables
constexpr double PATIENCE = 4;       // with it; tuned on published LPs
constexpr double NORM_SHARE = 0.5;   // of the effort that they may take

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

// Partial pricing serves while iterations are few and the factors thin against the columns: d grows with iterations,
// spikes and degeneracy, f with the factors, and row_work is what other pricing would pay for the pivot row.
template<class R> bool partial_has_served(const sopt *s, const swork<R> *w)
{
    const popt<R> *p = w->Primal;
    const double m = s->NumRows, n = s->NumCols;
    if (s->NPvt > PARTIAL_ROUNDS * (n + m)) return true;
    const double pivots = std::max(1.0, s->NPvt - p->StallIter);
    const double degenerate = std::min(1.0, (s->DegenCount - p->StallStart) / pivots);
    const double d = s->NPvt / (n + m) + 0.3 + 1.2 * p->AvgSpike / m +
                     0.6 * ((s->Perturbed >= 3) + degenerate);
    const double f = std::max(1.0, static_cast<double>(w->Lu.UNonzeros) +
                                       3.0 * static_cast<double>(w->Lu.LNonzeros) - 2 * m);
    const double row_work = p->AvgRow / (p->AvgSpike + 1);
    return row_work + 1 + 9 * n / f < PATIENCE * d;
}

// Many columns begin with partial pricing. Exact weights from a basis of slacks cost nothing; another start makes do
// with the framework at hand, and a short clean-up after the dual with Devex.
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

// Exact weights save iterations, but where the solves for them dominate, Devex does better.
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
    p->NewWeights = s->Status != SIMPLEX_RUNNING; // a limit may have left them half made
}

// Averages of the cycle that a factorisation ends.
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
