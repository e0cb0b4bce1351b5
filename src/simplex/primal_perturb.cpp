// primal_perturb.cpp -- moved bounds against stalling and against steps that go backwards
//
// Problem     At a degenerate vertex many basic variables stand at a bound, every step has length zero, and pricing
//             wanders without progress or in a circle.
// Method      When nearly all steps since the last look were degenerate, the bounds at which basic variables stand move
//             outwards by random amounts: few bounds, only where it hurts. Each further pass moves them farther.
//             Besides, a blocking bound moves to its variable when a step within the tolerance would go backwards.
//             All true bounds return at the end of the run.
// Invariant   WorkLower <= Lower and WorkUpper >= Upper but for bounds that were moved to their variable.
// Literature  P. E. Gill, W. Murray, M. A. Saunders, M. H. Wright, "A practical anti-cycling procedure for linearly
//             constrained optimization", Math. Prog. 45, 1989.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
// degenerate share of the iterations since the last look
constexpr double STALL_SHARE = 0.9;
constexpr double STALL_LEAST = 100; // iterations needed for a judgement
constexpr int MAX_PASSES = 12;      // whole perturbations in one run
constexpr double SIZE_GROWTH = 3;   // of the next pass
constexpr double LARGEST_SIZE = 0.01;
constexpr double BRIDGE_MOST = 1e-3; // infeasibility that a moved bound may hide
} // namespace

template<class R> bool primal_stalled(const sopt *s, popt<R> *p)
{
    const double pivots = s->NPvt - p->StallIter;
    if (pivots < STALL_LEAST) return false;
    const bool yes = s->DegenCount - p->StallStart > STALL_SHARE * pivots;
    p->StallIter = s->NPvt;
    p->StallStart = s->DegenCount;
    return yes;
}

template<class R> void primal_perturb(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (p->PerturbSize <= 0 || p->PerturbPasses >= MAX_PASSES) return;
    const R near = R(s->FeasTol);
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        const double share = (random_next(&s->Rng) % 500 + 500) / 1000.0;
        double *lower = &s->WorkLower.data[j], *upper = &s->WorkUpper.data[j];
        const R x = w->Bbar.data[k];
        if (has_lower(s, *lower) && std::abs(x - R(*lower)) <= near)
            *lower -= share * p->PerturbSize * (1 + std::fabs(*lower));
        if (has_upper(s, *upper) && std::abs(x - R(*upper)) <= near)
            *upper += share * p->PerturbSize * (1 + std::fabs(*upper));
    }
    p->PerturbSize = std::min(LARGEST_SIZE, SIZE_GROWTH * p->PerturbSize);
    p->PerturbPasses++;
    s->Perturbed = 3;
    set_basic_bounds(s);
}

void primal_remove_perturbation(sopt *s)
{
    std::copy_n(s->Lower.data, s->NumVars, s->WorkLower.data);
    std::copy_n(s->Upper.data, s->NumVars, s->WorkUpper.data);
    s->Perturbed = 0;
    stall_reset(s);
}

// Small infeasibilities that rounding brought into phase 2 are bridged by moving the bound. When one is too large for
// that, phase 1 has to mend them.
template<class R> bool primal_shift_infeasible(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    for (int i = 0; i < s->NumRows; i++) {
        const R x = w->Bbar.data[i];
        if (x < R(s->BasicLower.data[i] - BRIDGE_MOST) ||
            x > R(s->BasicUpper.data[i] + BRIDGE_MOST))
            return false;
    }
    for (int i = 0; i < s->NumRows; i++) {
        const signed char state = p->RowState.data[i];
        const int j = s->BasisHead.data[i];
        if (state == ROW_FEASIBLE) continue;
        double *bound = state == ROW_BELOW ? &s->WorkLower.data[j] : &s->WorkUpper.data[j];
        *bound = static_cast<double>(w->Bbar.data[i]);
        p->RowState.data[i] = ROW_FEASIBLE;
    }
    set_basic_bounds(s);
    s->Perturbed = std::max(s->Perturbed, 1);
    return true;
}

template<class R> void primal_shift_blocking(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    if (p->Step >= 0) return;
    p->Step = 0;
    const int j = s->BasisHead.data[p->PivotRow];
    double *bound = p->ToUpper ? &s->WorkUpper.data[j] : &s->WorkLower.data[j];
    *bound = static_cast<double>(w->Bbar.data[p->PivotRow]);
    s->Perturbed = std::max(s->Perturbed, 1);
}

#define INSTANTIATE(R)                                                                     \
    template bool primal_stalled<R>(const sopt *, popt<R> *);                              \
    template void primal_perturb<R>(sopt *, swork<R> *);                                   \
    template bool primal_shift_infeasible<R>(sopt *, swork<R> *);                          \
    template void primal_shift_blocking<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
