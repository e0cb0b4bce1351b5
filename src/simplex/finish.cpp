// finish.cpp -- the end of a run: values for the unperturbed LP, and their violations in user units
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
void take_largest(UserViolation *violation, double in_user_units, double in_working_units)
{
    if (in_user_units <= violation->Largest) return;
    violation->Largest = in_user_units;
    violation->Working = in_working_units;
}
} // namespace

// Removes perturbations, shifts and the bounds of the box problem, and computes values and reduced costs.
template<class R> void finish_values(sopt *s, swork<R> *w)
{
    std::copy_n(s->Cost.data, s->NumVars, s->WorkCost.data);
    std::copy_n(s->Lower.data, s->NumVars, s->WorkLower.data);
    std::copy_n(s->Upper.data, s->NumVars, s->WorkUpper.data);
    s->Perturbed = PERTURBED_NONE;
    s->BoxPhase = 0;
    settle_nonbasics(s);
    if (!has_factor(s, w)) return;
    compute_primal(s, w);
    compute_dual(s, w);
    // residuals that are small in the working LP may be large in user units
    refine_primal(s, w);
    refine_dual(s, w);
}

template<class R> UserViolations measure_violations(const sopt *s, const swork<R> *w)
{
    UserViolation primal, dual;
    double value = 0, price = 0; // largest magnitudes
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        const double x = static_cast<double>(w->Bbar.data[k]);
        const double gap = std::max({0.0, s->Lower.data[j] - x, x - s->Upper.data[j]});
        take_largest(&primal, user_unit(s, j) * gap, gap);
        primal.ObjectiveError += gap;
        value = std::max(value, std::fabs(x));
    }
    for (int j = 0; j < s->NumVars; j++) {
        const int status = s->VStat.data[j];
        if (status >= 0) continue;
        const double d = static_cast<double>(w->Cbar.data[j]);
        price = std::max(price, std::fabs(d));
        if (status == AT_FIXED) continue;
        const double wrong = status == AT_LOWER   ? -d
                             : status == AT_UPPER ? d
                                                  : std::fabs(d);
        const double gap = std::max(0.0, wrong);
        take_largest(&dual, gap / (user_unit(s, j) * s->ObjScale), gap);
        const double range = s->Upper.data[j] - s->Lower.data[j];
        dual.ObjectiveError += gap * (counts_range(s, j, range, value) ? range : value);
    }
    const double objective =
        s->ObjScale * (1 + std::fabs(true_objective(s, w) + s->ObjOffset));
    primal.ObjectiveError *= price / objective;
    dual.ObjectiveError /= objective;
    return {primal, dual};
}

template void finish_values<double>(sopt *, swork<double> *);
template void finish_values<long double>(sopt *, swork<long double> *);
template UserViolations measure_violations<double>(const sopt *, const swork<double> *);
template UserViolations measure_violations<long double>(const sopt *,
                                                        const swork<long double> *);
