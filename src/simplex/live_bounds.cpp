// live_bounds.cpp -- variables of a live record follow changes of their bounds
//
// Method      A nonbasic variable goes to the bound that its reduced cost asks for; all moves together change the
//             basic values by one sparse FTRAN. A bound of a basic variable changes one merit. The reduced cost of a
//             variable that was fixed is computed from the multipliers.
// Invariant   LIVE_FRESH (resolve.h), once the values have been moved.
#include "simplex/dual.h"
#include <cmath>

bool live_crosses(const sopt *s, int j)
{
    return bounds_exclude(s, j, s->Lower.data[j], s->Upper.data[j]);
}

namespace
{
// The status of nonbasic j by the sign of its reduced cost. Without a sign it gets `status`; one that was fixed goes
// to the bound nearest to where it was.
template<class R>
int place(const sopt *s, const swork<R> *w, int j, int status, double before)
{
    const double lower = s->WorkLower.data[j], upper = s->WorkUpper.data[j];
    const R d = w->Cbar.data[j], tol = R(s->OptTol);
    if (lower == upper) return AT_FIXED; // assigned alike
    const bool below = has_lower(s, lower), above = has_upper(s, upper);
    if (!below && !above) return AT_FREE;
    if (!below) return AT_UPPER;
    if (!above) return AT_LOWER;
    if (std::abs(d) <= tol && status == AT_FIXED)
        return upper - before < before - lower ? AT_UPPER : AT_LOWER;
    if (std::abs(d) <= tol) return status == AT_UPPER ? AT_UPPER : AT_LOWER;
    return d < 0 ? AT_UPPER : AT_LOWER;
}

// The reduced cost of nonbasic j asks for a bound at infinity.
template<class R> bool wants_infinity(const sopt *s, const swork<R> *w, int j)
{
    const R d = w->Cbar.data[j], tol = R(s->OptTol);
    if (s->VStat.data[j] == AT_FIXED) return false;
    return (d > tol && !has_lower(s, s->WorkLower.data[j])) ||
           (d < -tol && !has_upper(s, s->WorkUpper.data[j]));
}
} // namespace

template<class R> R live_reduced_cost(const sopt *s, const swork<R> *w, int j)
{
    R d = R(s->WorkCost.data[j]);
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        d += R(s->ColVal.data[p]) * minus_multiplier(s, w, s->ColInd.data[p]);
    return d;
}

template<class R>
void live_move_nonbasic(sopt *s, swork<R> *w, int j, int wish, double before)
{
    int *status = &s->VStat.data[j];
    if (*status == AT_FIXED) w->Cbar.data[j] = live_reduced_cost(s, w, j);
    const int old = *status;
    *status = place(s, w, j, wish, before);
    dual_count_sign(s, j, dual_sign_gap(s, w, j));
    w->Dual->FreeCount += (*status == AT_FREE) - (old == AT_FREE);
    if (*status == AT_FIXED)
        row_copy_remove(s, j);
    else
        row_copy_insert(s, j);
    const double step = nonbasic_value(s, j) - before;
    if (step != 0) {
        dual_add_objective(s, step * static_cast<double>(w->Cbar.data[j]));
        dual_add_column(s, &w->Work, j, R(step));
    }
    // last, since the shift changes the objective by its product with the value
    if (wants_infinity(s, w, j)) dual_shift_cost(s, w, j, R(0));
}

template<class R>
void live_set_bounds(sopt *s, swork<R> *w, int j, double lower, double upper)
{
    const int status = s->VStat.data[j];
    s->Crossed -= live_crosses(s, j);
    s->Lower.data[j] = lower;
    s->Upper.data[j] = upper;
    // No solve before they are changed again: values keep to the working bounds.
    if (live_crosses(s, j)) {
        s->Crossed++;
        return;
    }
    if (lower > upper) s->Upper.data[j] = lower; // by less than the tolerance: fixed
    const double before = status < 0 ? nonbasic_value(s, j) : 0;
    s->WorkLower.data[j] = s->Lower.data[j];
    s->WorkUpper.data[j] = s->Upper.data[j];
    if (s->Live != LIVE_FRESH) return; // the next refresh places all variables
    if (status < 0) {
        live_move_nonbasic(s, w, j, status, before);
    } else {
        s->BasicLower.data[status] = s->WorkLower.data[j];
        s->BasicUpper.data[status] = s->WorkUpper.data[j];
        dual_set_merit(s, w, status);
    }
}

template<class R> void live_move_values(sopt *s, swork<R> *w)
{
    if (w->Work.Count == 0) return;
    Ftran(&w->Lu, &w->Work, SOLVE_FLIPS, Keep::NO);
    dual_move_values(s, w);
}

#define INSTANTIATE(R)                                                                     \
    template R live_reduced_cost<R>(const sopt *, const swork<R> *, int);                  \
    template void live_move_nonbasic<R>(sopt *, swork<R> *, int, int, double);             \
    template void live_set_bounds<R>(sopt *, swork<R> *, int, double, double);             \
    template void live_move_values<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
