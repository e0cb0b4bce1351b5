// stall.cpp -- the stall guard of both simplex methods
//
// Problem     Perturbation may be used up, forbidden or too small, costs may be shifted repeatedly in both directions,
//             and rounding may lead a run back from phase 2 to phase 1. Such a run would not terminate, and no single
//             iteration shows it.
// Method      A look is one refresh of factors and values. At every LOOK_PERIOD-th look, after the first FIRST_LOOKS
//             looks or FIRST_ROUNDS iterations, the value that the phase minimises is compared with its best since the
//             last remedy: the sum of infeasibilities (primal, phase 1), the objective (primal, phase 2), minus the
//             dual objective (dual, box problem and phase 2). After many looks and iterations without improvement the
//             next remedy of StallRemedy that applies is taken. Each is taken at most once, and the last one,
//             which always applies, ends the run.
// Cost        One pass over the variables per comparison.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr int LOOK_PERIOD = 3; // looks from one comparison to the next
// No comparison before this number of looks, or of iterations as a multiple of NumVars: most runs are shorter.
constexpr int FIRST_LOOKS = 30;
constexpr double FIRST_ROUNDS = 0.5;
// Stalled: this number of looks, and STALL_ROUNDS * NumVars + STALL_LEAST iterations, without improvement.
constexpr int STALL_LOOKS = 10;
constexpr double STALL_ROUNDS = 2, STALL_LEAST = 30;
// Stuck: this number of looks without improvement and with fewer than STUCK_PIVOTS iterations per look.
constexpr int STUCK_LOOKS = 50;
constexpr double STUCK_PIVOTS = 2;
// After LONG_ROUNDS * NumVars + LONG_LEAST iterations since the last remedy improvements no longer count, since
// repeated cost shifts may look like improvements.
constexpr double LONG_ROUNDS = 25, LONG_LEAST = 1000;
constexpr double STALL_PROGRESS = 1e-9; // relative decrease that counts as an improvement

template<class R> double infeasibility(const sopt *s, const swork<R> *w)
{
    double sum = 0;
    for (int i = 0; i < s->NumRows; i++) {
        const double x = static_cast<double>(w->Bbar.data[i]);
        sum += std::max({0.0, s->BasicLower.data[i] - x, x - s->BasicUpper.data[i]});
    }
    return sum;
}

template<class R> double phase_value(const sopt *s, const swork<R> *w, StallPhase phase)
{
    const double objective = working_objective(s, w);
    if (phase == STALL_PRIMAL_1)
        return infeasibility(s, w) + w->Primal->CostWeight * objective;
    return s->Method == METHOD_DUAL ? -objective : objective;
}

template<class R> StallPhase phase_of(const sopt *s, const swork<R> *w)
{
    if (s->Method == METHOD_DUAL) return s->BoxPhase ? STALL_BOX : STALL_DUAL;
    return w->Primal->Phase1 ? STALL_PRIMAL_1 : STALL_PRIMAL_2;
}

template<class R>
bool applies(const sopt *s, const swork<R> *w, StallPhase phase, StallRemedy remedy)
{
    if (remedy == STALL_COSTS) return phase == STALL_PRIMAL_1 && w->Primal->CostWeight > 0;
    // With SimplexTuning the caller repeats solves in different ways itself (lp_secure).
    if (remedy == STALL_STRICT) return !simplex_is_tuned(s);
    if (remedy == STALL_PERTURB) return s->PerturbAllowed && s->Env->PerturbValue > 0;
    return remedy != STALL_EXTENDED || (!s->Quad && s->Env->Quad == -1);
}

void begin(sopt *s)
{
    s->Stall.IdleLooks = 0;
    s->Stall.Iter = s->NPvt;
}
} // namespace

void stall_reset(sopt *s)
{
    for (double &best : s->Stall.Best) best = INFINITE_BOUND;
    begin(s);
}

template<class R> StallRemedy stall_look(sopt *s, swork<R> *w)
{
    StallGuard *g = &s->Stall;
    const bool endless = s->NPvt - g->Begin > LONG_ROUNDS * s->NumVars + LONG_LEAST;
    // Refreshes are counted, not factorisations: a run without pivots has none.
    g->Looks++;
    if (g->Looks < FIRST_LOOKS && s->NPvt < FIRST_ROUNDS * s->NumVars) return STALL_NONE;
    g->IdleLooks++;
    if (!endless && g->IdleLooks % LOOK_PERIOD != 0) return STALL_NONE;
    const StallPhase phase = phase_of(s, w);
    const double value = phase_value(s, w, phase);
    double *best = &g->Best[phase];
    const double since = s->NPvt - g->Iter;
    if (!endless && value < *best - STALL_PROGRESS * (1 + std::fabs(value))) {
        *best = value;
        begin(s);
        return STALL_NONE;
    }
    const bool stalled =
        g->IdleLooks >= STALL_LOOKS && since >= STALL_ROUNDS * s->NumVars + STALL_LEAST;
    const bool stuck = g->IdleLooks >= STUCK_LOOKS && since < STUCK_PIVOTS * g->IdleLooks;
    if (!stalled && !stuck && !endless) return STALL_NONE;
    stall_reset(s);
    g->Begin = s->NPvt;
    while (g->Taken < STALL_END) { // the last one always applies
        g->Taken = static_cast<StallRemedy>(g->Taken + 1);
        if (applies(s, w, phase, g->Taken)) break;
    }
    if (g->Taken == STALL_SWITCH) s->Status = SIMPLEX_SWITCH;
    if (g->Taken == STALL_EXTENDED) s->Status = SIMPLEX_NEED_QUAD;
    if (g->Taken == STALL_STRICT) s->Status = SIMPLEX_RESTART;
    if (g->Taken == STALL_END) s->Status = SIMPLEX_NUMERIC;
    return g->Taken;
}

template StallRemedy stall_look<double>(sopt *, swork<double> *);
template StallRemedy stall_look<long double>(sopt *, swork<long double> *);
