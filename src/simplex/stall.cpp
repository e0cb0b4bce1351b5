// stall.cpp -- the stall guard of both simplex methods
//
// Problem     Perturbation may be exhausted, forbidden or too small, costs may be shifted to and fro, and rounding may
//             carry a run between the phases. No single step shows it, and the run would never end.
// Method      Each refresh of factors and values is a look. At every LOOK_PERIOD-th, once the run is past FIRST_LOOKS
//             or FIRST_ROUNDS, the value that the phase brings down is compared with its best since the last remedy:
//             the sum of infeasibilities (primal, phase 1), the objective (primal, phase 2), the dual objective with
//             its sign changed (dual, box problem and phase 2). After many looks and iterations without a better one
//             the run takes the next remedy: the true costs leave phase 1 of the primal; costs or bounds are perturbed;
//             the other method takes over; the same basis goes on in longer numbers; the run begins again with slacks
//             and strict pivots in the factors; it ends in numeric trouble. Each is taken once, so that there is an
//             end.
// Cost        one pass over the variables per look.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr int LOOK_PERIOD = 3; // looks from one comparison to the next
// Nothing is compared before so many looks or iterations (in numbers of variables): most runs have ended by then.
constexpr int FIRST_LOOKS = 30;
constexpr double FIRST_ROUNDS = 0.5;
constexpr int STALL_LOOKS = 10;    // looks without progress
constexpr double STALL_ROUNDS = 2; // and iterations, in numbers of variables
constexpr double STALL_LEAST = 30; // plus these
constexpr int STUCK_LOOKS = 50;    // looks without progress and with hardly a pivot
constexpr double STUCK_PIVOTS = 2; // in each
// Iterations since the last remedy, in numbers of variables, after which progress counts no more: costs that are
// shifted again and again look like progress.
constexpr double LONG_ROUNDS = 25;
constexpr double LONG_LEAST = 1000;     // plus these
constexpr double STALL_PROGRESS = 1e-9; // relative fall that counts

// The objective at the basis under the costs and bounds in force: in the dual the dual objective.
template<class R> double working_objective(const sopt *s, const swork<R> *w)
{
    double sum = 0;
    for (int j = 0; j < s->NumVars; j++)
        if (s->WorkCost.data[j] != 0) // most slacks have none
            sum += s->WorkCost.data[j] *
                   (is_basic(s, j) ? static_cast<double>(w->Bbar.data[s->VStat.data[j]])
                                   : nonbasic_value(s, j));
    return sum;
}

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
    if (remedy == STALL_STRICT) return !simplex_is_tuned(s); // one of other ways already
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
    // Refreshes count, not factorisations: a run without pivots makes none.
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
    do g->Taken = static_cast<StallRemedy>(g->Taken + 1);
    while (!applies(s, w, phase, g->Taken));
    if (g->Taken >= STALL_END) g->Taken = STALL_END;
    if (g->Taken == STALL_SWITCH) s->Status = SIMPLEX_SWITCH;
    if (g->Taken == STALL_EXTENDED) s->Status = SIMPLEX_NEED_QUAD;
    if (g->Taken == STALL_STRICT) s->Status = SIMPLEX_RESTART;
    if (g->Taken == STALL_END) s->Status = SIMPLEX_NUMERIC;
    return g->Taken;
}

template StallRemedy stall_look<double>(sopt *, swork<double> *);
template StallRemedy stall_look<long double>(sopt *, swork<long double> *);
