// dual_bound.cpp -- lower bounds of the optimum from row multipliers, and the test against the cutoff
//
// Problem     During a run costs are shifted or perturbed, so that the objective of the basis is not a bound for the
//             true costs.
// Method      For any multipliers y the Lagrangian bound  y b + sum_j min { d_j x_j : Lower_j <= x_j <= Upper_j },
//             d = Cost - y (A I), holds for the true costs. y is that of the basis for the costs in force, read from the
//             reduced costs of the slacks, or that for the true costs. Where the bound that a reduced cost asks for is
//             infinite, a reduced cost within OptTol is multiplied by an assumed largest value (OPEN_LEAST,
//             OPEN_SHARE), a larger one by the bound that one of the rows of the column implies. Rounding errors of the sum are subtracted.
// Cost        O(nonzeros). The objective in force, which costs nothing (DualObj), tells when it is worth it.
// Literature  A. M. Geoffrion, "Lagrangean relaxation for integer programming", Math. Prog. Study 2, 1974.
//             A. Neumaier and O. Shcherbina, "Safe bounds in linear and mixed-integer linear programming", Math. Prog.
//             99, 2004.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
// Error of the dual bound relative to the sum of the magnitudes of its terms. Far above the rounding of the sum itself,
// since the reduced costs have rounding errors, too.
constexpr double BOUND_ROUNDING = 1e-10;

// Assumed largest value of a column without a bound: OPEN_SHARE times the largest basic value, at least OPEN_LEAST.
constexpr double OPEN_LEAST = 1e6, OPEN_SHARE = 100;

// Entries that may be read for implied bounds, besides as many as the matrix has.
constexpr int64_t IMPLIED_LEAST = 1000;

// A sum of products, with the sum of the magnitudes of its terms for an error bound.
struct BoundSum {
    long double value = 0, size = 0;
    void add(long double term)
    {
        value += term;
        size += std::fabs(term);
    }
};

// In the user's units.
template<class R> double largest_basic_value(const sopt *s, const swork<R> *w)
{
    double largest = 0;
    for (int i = 0; i < s->NumRows; i++) {
        const double value = std::fabs(static_cast<double>(w->Bbar.data[i]));
        largest = std::max(largest, value * user_unit(s, s->BasisHead.data[i]));
    }
    return largest;
}

// Largest value of sum a_ik (-x_k) over the row without column j, or HUGE_VAL.
double rest_of_row(const sopt *s, int i, int j, double sign)
{
    double rest = 0;
    for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++) {
        const int k = s->RowInd.data[p];
        const double a = -sign * s->RowVal.data[p];
        if (k == j) continue;
        const double side = a > 0 ? s->Upper.data[k] : s->Lower.data[k];
        if (!has_lower(s, side) || !has_upper(s, side)) return HUGE_VAL;
        rest += a * side;
    }
    return rest;
}

// The bound that some row implies for column j, above or below; infinite if none does. `entries` counts what is read.
double implied_bound(const sopt *s, int j, bool above, int64_t *entries)
{
    double best = HUGE_VAL; // of x_j, or of -x_j
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        const int i = s->ColInd.data[p];
        const double a = above ? s->ColVal.data[p] : -s->ColVal.data[p];
        // a x <= Rhs - slack - rest for a > 0; an equation bounds from either side
        const double slack = s->Upper.data[s->NumCols + i];
        if (a < 0 && !has_upper(s, slack)) continue;
        const double sign = a > 0 ? 1 : -1;
        *entries += s->RowBeg.data[i + 1] - s->RowBeg.data[i];
        const double room =
            sign * s->Rhs.data[i] + (a > 0 ? 0 : slack) + rest_of_row(s, i, j, sign);
        best = std::min(best, room / std::fabs(a));
    }
    return above ? best : -best;
}

// Lagrangian bound for the multipliers of the basis for `cost`, given by the slacks' reduced costs [m] for it.
template<class R>
double lagrangian(const sopt *s, swork<R> *w, const R *slack_cbar, const double *cost)
{
    R *slack = w->RowVal.data; // minus the multipliers
    for (int i = 0; i < s->NumRows; i++) slack[i] = slack_cbar[i] - R(cost[s->NumCols + i]);
    BoundSum bound;
    int64_t entries = 0;
    const int64_t most = IMPLIED_LEAST + s->ColBeg.data[s->NumCols];
    double open =
        0; // sum of |reduced costs| without a bound, per user unit of the variable
    for (int i = 0; i < s->NumRows; i++)
        bound.add(-static_cast<long double>(slack[i]) * s->Rhs.data[i]);
    for (int j = 0; j < s->NumVars; j++) {
        R d = j < s->NumCols ? R(s->Cost.data[j]) : slack[j - s->NumCols];
        if (is_basic(s, j)) // its reduced cost for `cost` is 0
            d = R(s->Cost.data[j]) - R(cost[j]);
        else if (j < s->NumCols)
            for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
                d += R(s->ColVal.data[p]) * slack[s->ColInd.data[p]];
        if (d == R(0)) continue;
        const double side = d > R(0) ? s->Lower.data[j] : s->Upper.data[j];
        if (has_lower(s, side) && has_upper(s, side))
            bound.add(static_cast<long double>(d) * side);
        else if (std::abs(d) <= R(s->OptTol))
            open += static_cast<double>(std::abs(d)) / user_unit(s, j);
        else {
            const double implied = j < s->NumCols && entries <= most
                                       ? implied_bound(s, j, d < R(0), &entries)
                                       : HUGE_VAL;
            if (std::fabs(implied) >= s->Infinity) return -HUGE_VAL;
            bound.add(static_cast<long double>(d) * implied);
        }
    }
    if (open > 0) open *= std::max(OPEN_LEAST, OPEN_SHARE * largest_basic_value(s, w));
    return static_cast<double>(bound.value - BOUND_ROUNDING * bound.size - open);
}
} // namespace

template<class R> double dual_bound(sopt *s, swork<R> *w)
{
    s->WorkUnits += s->ColBeg.data[s->NumCols];
    return lagrangian(s, w, w->Cbar.data + s->NumCols, s->WorkCost.data) / s->ObjScale;
}

template<class R> double dual_bound_true_costs(sopt *s, swork<R> *w)
{
    compute_dual_for(s, w, s->Cost.data, w->RowVal.data);
    return lagrangian(s, w, w->RowVal.data + s->NumCols, s->Cost.data) / s->ObjScale;
}

template<class R> void dual_set_objective(sopt *s, const swork<R> *w)
{
    s->DualObj = working_objective(s, w);
    s->CutoffFrom = has_cutoff(s) ? s->Cutoff * s->ObjScale : HUGE_VAL;
}

template<class R> void dual_test_cutoff(sopt *s, swork<R> *w)
{
    double bound = dual_bound(s, w);
    if (bound <= s->Cutoff && s->Perturbed)
        bound = std::max(bound, dual_bound_true_costs(s, w));
    s->CutoffBound = bound;
    if (bound > s->Cutoff)
        s->Status = SIMPLEX_CUTOFF;
    else // the objective in force has to rise by what is missing
        s->CutoffFrom = s->DualObj + (s->Cutoff - bound) * s->ObjScale;
}

#define INSTANTIATE(R)                                                                     \
    template double dual_bound<R>(sopt *, swork<R> *);                                     \
    template double dual_bound_true_costs<R>(sopt *, swork<R> *);                          \
    template void dual_set_objective<R>(sopt *, const swork<R> *);                         \
    template void dual_test_cutoff<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
