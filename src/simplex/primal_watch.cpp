// primal_watch.cpp -- the primal never goes on for ever
//
// Problem     Perturbation may be exhausted or forbidden, and rounding may carry a run to and fro between the phases.
//             No single step shows it.
// Method      At each factorisation the value that the phase minimises is compared with the best so far; a way back from
//             phase 2 into phase 1 is no progress. After many factorisations and iterations without any: the true costs
//             leave phase 1; then bounds are perturbed though the run was to be clean; then the dual takes over.
// Cost        one pass over the variables per factorisation.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr int WATCH_FACTORS = 50;       // factorisations without progress
constexpr double WATCH_ROUNDS = 2;      // and iterations, in numbers of variables
constexpr double WATCH_PROGRESS = 1e-9; // relative fall that counts
constexpr int WATCH_PERTURBATIONS = 3;  // forced in one run

// Sum of infeasibilities plus the share of the costs; in phase 2 the costs.
template<class R> double phase_value(const sopt *s, const swork<R> *w)
{
    const popt<R> *p = w->Primal;
    double sum = 0, objective = 0;
    for (int i = 0; i < s->NumRows; i++) {
        const double x = static_cast<double>(w->Bbar.data[i]);
        if (p->RowState.data[i] == ROW_BELOW) sum += s->BasicLower.data[i] - x;
        if (p->RowState.data[i] == ROW_ABOVE) sum += x - s->BasicUpper.data[i];
    }
    for (int j = 0; j < s->NumCols; j++) {
        if (s->Cost.data[j] == 0) continue; // most of them, often
        objective += s->Cost.data[j] *
                     (is_basic(s, j) ? static_cast<double>(w->Bbar.data[s->VStat.data[j]])
                                     : nonbasic_value(s, j));
    }
    return p->Phase1 ? sum + p->CostWeight * objective : objective;
}
} // namespace

template<class R> void primal_watch_reset(const sopt *s, popt<R> *p)
{
    p->WatchBest = 1e300;
    p->WatchPhase1 = 1;
    p->WatchCount = 0;
    p->WatchIter = s->NPvt;
}

template<class R> void primal_watch(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const double value = phase_value(s, w);
    const bool first_feasible = p->WatchPhase1 && !p->Phase1;
    const bool lower = p->WatchPhase1 == p->Phase1 &&
                       value < p->WatchBest - WATCH_PROGRESS * (1 + std::fabs(value));
    if (first_feasible || lower) {
        p->WatchBest = value;
        p->WatchPhase1 = p->Phase1;
        p->WatchCount = 0;
        p->WatchIter = s->NPvt;
        return;
    }
    if (++p->WatchCount < WATCH_FACTORS ||
        s->NPvt - p->WatchIter < WATCH_ROUNDS * s->NumVars)
        return;
    if (p->Phase1 && p->CostWeight > 0) {
        p->CostWeight = 0;
    } else if (p->PerturbSize > 0 && p->WatchForced < WATCH_PERTURBATIONS) {
        p->WatchForced++;
        p->PerturbPasses = 0;
        primal_perturb(s, w);
        primal_classify(s, w);
    } else {
        s->Status = SIMPLEX_SWITCH;
    }
    primal_watch_reset(s, p);
}

template void primal_watch_reset<double>(const sopt *, popt<double> *);
template void primal_watch_reset<long double>(const sopt *, popt<long double> *);
template void primal_watch<double>(sopt *, swork<double> *);
template void primal_watch<long double>(sopt *, swork<long double> *);
