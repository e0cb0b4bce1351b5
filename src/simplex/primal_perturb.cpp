// primal_perturb.cpp -- perturbed bounds against stalling, and bound shifts against negative steps
//
// Problem     At a degenerate vertex many basic variables are at a bound, every step has length zero, and the method
//             may stall or cycle.
// Method      If nearly all iterations since the last test were degenerate, the bounds at which basic variables are
//             move outwards by random amounts. Only these bounds are perturbed; each further pass moves them further.
//             Besides, if the Harris ratio test gives a negative step, the blocking bound is shifted to the value of
//             its variable. All true bounds are restored at the end of the run.
// Invariant   WorkLower <= Lower and WorkUpper >= Upper, except for bounds shifted to the value of their variable.
// Literature  P. E. Gill, W. Murray, M. A. Saunders, M. H. Wright, "A practical anti-cycling procedure for linearly
//             constrained optimization", Math. Prog. 45, 1989.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
// Share of degenerate iterations since the last test that counts as a stall.
constexpr double STALL_SHARE = 0.9;
constexpr double STALL_LEAST = 100;   // iterations between two tests
constexpr int MAX_PASSES = 12;        // perturbations in one run
constexpr double SIZE_GROWTH = 3;     // growth of PerturbSize with each pass
constexpr double LARGEST_SIZE = 0.01; // upper limit of PerturbSize
// largest infeasibility that shifted bounds may remove
constexpr double BRIDGE_MOST = 1e-3;
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
    s->Perturbed = PERTURBED_ALL;
    set_basic_bounds(s);
}

void primal_remove_perturbation(sopt *s)
{
    std::copy_n(s->Lower.data, s->NumVars, s->WorkLower.data);
    std::copy_n(s->Upper.data, s->NumVars, s->WorkUpper.data);
    s->Perturbed = PERTURBED_NONE;
    stall_reset(s);
}

// Small infeasibilities that appear in phase 2 by rounding are removed by shifting bounds. If one is too large, phase 1
// has to remove them.
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
    s->Perturbed = std::max<int>(s->Perturbed, PERTURBED_SINGLE);
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
    s->Perturbed = std::max<int>(s->Perturbed, PERTURBED_SINGLE);
}

#define INSTANTIATE(R)                                                                     \
    template bool primal_stalled<R>(const sopt *, popt<R> *);                              \
    template void primal_perturb<R>(sopt *, swork<R> *);                                   \
    template bool primal_shift_infeasible<R>(sopt *, swork<R> *);                          \
    template void primal_shift_blocking<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
