// finish.cpp -- the end of a run: values for the true problem, and how good they are for the user
#include "simplex/sopt.h"
#include <algorithm>

// Perturbations, shifts and the box of phase 1 go; values and reduced costs are those of the true LP.
template<class R> void finish_values(sopt *s, swork<R> *w)
{
    std::copy_n(s->Cost.data, s->NumVars, s->WorkCost.data);
    std::copy_n(s->Lower.data, s->NumVars, s->WorkLower.data);
    std::copy_n(s->Upper.data, s->NumVars, s->WorkUpper.data);
    s->Perturbed = 0;
    s->BoxPhase = 0;
    settle_nonbasics(s);
    if (!has_factor(s, w)) return;
    compute_primal(s, w);
    compute_dual(s, w);
}

// User x_j = c_j x_j, slack_i = s_i / r_i, d_j = d_j / (o c_j), pi_i = r_i pi_i / o.
template<class R> UnscaledViolation measure_unscaled(const sopt *s, const swork<R> *w)
{
    UnscaledViolation v;
    double largest = 0;
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        const double unit = j < s->NumCols ? std::fabs(s->ColScale.data[j])
                                           : 1 / s->RowScale.data[j - s->NumCols];
        const double x = static_cast<double>(w->Bbar.data[k]);
        largest = std::max(largest, std::fabs(x));
        v.Primal =
            std::max(v.Primal, unit * std::max(s->Lower.data[j] - x, x - s->Upper.data[j]));
    }
    for (int j = 0; j < s->NumVars; j++) {
        const int status = s->VStat.data[j];
        if (status >= 0 || status == AT_FIXED) continue;
        const double unit = j < s->NumCols ? 1 / std::fabs(s->ColScale.data[j])
                                           : s->RowScale.data[j - s->NumCols];
        const double d = static_cast<double>(w->Cbar.data[j]);
        const double gap = status == AT_LOWER ? -d : status == AT_UPPER ? d : std::fabs(d);
        v.Dual = std::max(v.Dual, unit / s->ObjScale * gap);
        v.Gain +=
            std::max(0.0, gap) * std::min(largest, s->Upper.data[j] - s->Lower.data[j]);
    }
    v.Gain /= s->ObjScale * (1 + std::fabs(true_objective(s, w) + s->ObjOffset));
    return v;
}

template void finish_values<double>(sopt *, swork<double> *);
template void finish_values<long double>(sopt *, swork<long double> *);
template UnscaledViolation measure_unscaled<double>(const sopt *, const swork<double> *);
template UnscaledViolation measure_unscaled<long double>(const sopt *,
                                                         const swork<long double> *);
