// dual_start.cpp -- bounds, nonbasic statuses and costs of the dual simplex: phase 1 and perturbation
//
// Method      A basis is made dual feasible by moving boxed variables to the bound that their reduced cost asks for. If
//             other variables remain dual infeasible, phase 1 solves the box problem: variables without upper bound in
//             [0, 1], free ones in [-1000, 1000], all others fixed at 0, right-hand side 0. Its optimum is 0 if and
//             only if the LP is dual feasible; its optimal basis is then dual feasible for the LP.
//             Costs are perturbed to the dual feasible side against degeneracy; cost shifts keep reduced costs from
//             becoming infeasible by rounding. Both are removed at the end; a live record takes back few shifts by the
//             tableau rows that they have changed.
// Literature  A. Koberstein, The dual simplex method, techniques for a fast and stable implementation, Paderborn 2005.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
// box of a free variable in phase 1: far more attractive to repair than others
constexpr double FREE_BOX = 1000;
constexpr double START_SHARE = 0.5; // size of the start perturbation over PerturbValue
// perturbation of a slack against that of a column of mean length
constexpr double SLACK_WEIGHT = 0.3;
// Range of the factor length / mean length on the perturbation of a column.
constexpr double WEIGHT_LEAST = 0.01, WEIGHT_MOST = 10;
constexpr double STALL_SHARE = 0.9; // share of degenerate iterations that counts as a stall
// Growth of PerturbCur with each perturbation, and its upper limit.
constexpr double PERTURB_GROWTH = 3, PERTURB_MOST = 0.01;

double random_share(Random *rng) // in (0, 1]
{
    return (random_next(rng) % 500 + 1) / 500.0;
}
} // namespace

void dual_set_true_bounds(sopt *s)
{
    std::copy_n(s->Lower.data, s->NumVars, s->WorkLower.data);
    std::copy_n(s->Upper.data, s->NumVars, s->WorkUpper.data);
}

void dual_set_box_bounds(sopt *s)
{
    for (int j = 0; j < s->NumVars; j++) {
        const bool lower = has_lower(s, s->Lower.data[j]),
                   upper = has_upper(s, s->Upper.data[j]);
        s->WorkLower.data[j] = lower ? 0 : -FREE_BOX;
        s->WorkUpper.data[j] = lower ? (upper ? 0 : 1) : FREE_BOX;
    }
}

template<class R> int dual_place_nonbasics(sopt *s, swork<R> *w)
{
    const R tol = R(s->OptTol);
    int infeasible = 0, free_count = 0;
    for (int j = 0; j < s->NumVars; j++) {
        int *status = &s->VStat.data[j];
        if (*status >= 0) continue;
        const double lower = s->WorkLower.data[j], upper = s->WorkUpper.data[j];
        const R d = w->Cbar.data[j];
        if (lower == upper) { // assigned alike
            *status = AT_FIXED;
        } else if (!has_lower(s, lower)) {
            *status = AT_FREE;
            free_count++;
            infeasible += std::abs(d) > tol;
        } else if (!has_upper(s, upper)) {
            *status = AT_LOWER;
            infeasible += d < -tol;
        } else if (d < -tol) {
            *status = AT_UPPER;
        } else if (d > tol || *status != AT_UPPER) {
            *status = AT_LOWER;
        }
    }
    w->Dual->FreeCount = free_count;
    return infeasible;
}

template<class R> void dual_shift_cost(sopt *s, swork<R> *w, int j, R new_cbar)
{
    const double shift = static_cast<double>(new_cbar - w->Cbar.data[j]);
    s->WorkCost.data[j] += shift;
    dual_add_objective(s, shift * nonbasic_value(s, j));
    if (s->Perturbed == PERTURBED_NONE) s->ShiftCount = 0;
    if (s->ShiftCount < MOST_SHIFTS) s->Shifted[s->ShiftCount] = j;
    s->ShiftCount++;
    w->Cbar.data[j] = new_cbar;
    s->Perturbed = std::max<int>(s->Perturbed, PERTURBED_SINGLE);
}

// Before the first pivot the reduced costs of nonbasics are moved away from zero, without change of sign, relative to
// the size of the cost. Long columns are moved further: they become less attractive, which keeps bases sparse. Costs of
// basic variables stay: they would change the reduced costs of the nonbasics by amounts of either sign, so that boxed
// variables of cost zero would start at the wrong bound (thousands of them on some models).
template<class R> void dual_perturb_start(sopt *s, swork<R> *w)
{
    const double size = START_SHARE * s->Env->PerturbValue;
    if (size <= 0 || s->PerturbCur <= 0) return;
    const double mean_length = std::max(1, s->ColBeg.data[s->NumCols]) /
                               static_cast<double>(std::max(1, s->NumCols));
    for (int j = 0; j < s->NumVars; j++) {
        const double lower = s->Lower.data[j], upper = s->Upper.data[j];
        const double share = 0.5 + 0.5 * random_share(&s->Rng);
        if (is_basic(s, j) || lower == upper || !has_lower(s, lower))
            continue; // fixed: never enters; free: its reduced cost has to be zero
        double step = share * size * SLACK_WEIGHT;
        if (j < s->NumCols) {
            const double length = s->ColBeg.data[j + 1] - s->ColBeg.data[j];
            step = share * size * (1 + std::fabs(s->Cost.data[j])) *
                   std::clamp(length / mean_length, WEIGHT_LEAST, WEIGHT_MOST);
        }
        if (has_upper(s, upper) && w->Cbar.data[j] < R(-s->OptTol)) step = -step;
        s->WorkCost.data[j] += step;
        w->Cbar.data[j] += R(step);
    }
    s->Perturbed = PERTURBED_ALL;
}

// Perturbs the costs if nearly all iterations since the last test were degenerate.
template<class R> void dual_perturb_stalled(sopt *s, swork<R> *w)
{
    const double steps = s->NPvt - s->LastPerturbIter;
    const double degenerate = s->DegenCount - s->LastDegenCount;
    const int period = s->SwitchCount > 2 || s->Perturbed == PERTURBED_ALL ? 5 : 2;
    if (!s->PerturbAllowed || s->PerturbCur <= 0 || s->NumFactor % period != 0) return;
    if (s->Env->TARV_PAR_PRIMDUALSWITCH < 0 && s->Perturbed == PERTURBED_ALL)
        return; // all costs are perturbed once only
    const bool stalled = steps > 0 && degenerate > STALL_SHARE * steps;
    s->LastPerturbIter = s->NPvt;
    s->LastDegenCount = s->DegenCount;
    if (stalled) dual_perturb_costs(s, w);
}

// Moves all reduced costs of nonbasics away from zero, further with each call.
template<class R> void dual_perturb_costs(sopt *s, swork<R> *w)
{
    for (int j = 0; j < s->NumVars; j++) {
        const double share = random_share(&s->Rng);
        const int status = s->VStat.data[j];
        if (status != AT_LOWER && status != AT_UPPER) continue;
        const double step =
            status == AT_LOWER ? share * s->PerturbCur : -share * s->PerturbCur;
        s->WorkCost.data[j] += step;
        w->Cbar.data[j] += R(step);
    }
    s->Perturbed = PERTURBED_ALL;
    s->PerturbCur = std::min(PERTURB_MOST, PERTURB_GROWTH * s->PerturbCur);
}

void dual_remove_perturbation(sopt *s)
{
    std::copy_n(s->Cost.data, s->NumVars, s->WorkCost.data);
    s->Perturbed = PERTURBED_NONE;
    s->ShiftCount = 0;
}

// The shift of a basic variable changes the reduced costs of its tableau row.
template<class R> bool dual_remove_shifts(sopt *s, swork<R> *w, bool *feasible)
{
    if (s->Perturbed != PERTURBED_SINGLE || s->ShiftCount > MOST_SHIFTS ||
        !tracks_objective(s))
        return false;
    bool basic = false;
    svec_clear(&w->Rho);
    for (int k = 0; k < s->ShiftCount; k++) {
        const int j = s->Shifted[k];
        const double shift = s->WorkCost.data[j] - s->Cost.data[j];
        s->WorkCost.data[j] = s->Cost.data[j];
        if (shift == 0) continue; // listed twice
        const int r = s->VStat.data[j];
        dual_add_objective(s, -shift * (r >= 0 ? static_cast<double>(w->Bbar.data[r])
                                               : nonbasic_value(s, j)));
        if (r >= 0)
            svec_add(&w->Rho, r, R(shift));
        else
            w->Cbar.data[j] -= R(shift);
        basic |= r >= 0;
    }
    if (basic) {
        Btran(&w->Lu, &w->Rho, SOLVE_COSTS, Keep::NO);
        compute_row(s, w);
        dual_subtract_row(s, w, R(-1));
    }
    *feasible = true;
    const auto judge = [=](int j) {
        const double gap = dual_sign_gap(s, w, j);
        dual_count_sign(s, j, gap);
        if (gap > s->OptTol) *feasible = false;
    };
    for (int k = 0; k < s->ShiftCount; k++) judge(s->Shifted[k]);
    for (int k = 0; basic && k < w->RowCount; k++) judge(w->RowInd.data[k]);
    s->Perturbed = PERTURBED_NONE;
    s->ShiftCount = 0;
    return true;
}

#define INSTANTIATE(R)                                                                     \
    template int dual_place_nonbasics<R>(sopt *, swork<R> *);                              \
    template void dual_perturb_start<R>(sopt *, swork<R> *);                               \
    template void dual_perturb_stalled<R>(sopt *, swork<R> *);                             \
    template void dual_perturb_costs<R>(sopt *, swork<R> *);                               \
    template bool dual_remove_shifts<R>(sopt *, swork<R> *, bool *);                       \
    template void dual_shift_cost<R>(sopt *, swork<R> *, int, R);
INSTANTIATE(double)
INSTANTIATE(long double)
