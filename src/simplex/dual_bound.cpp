// dual_bound.cpp -- lower bounds of the optimum from row multipliers, and the test against the cutoff
//
// Problem     During a run costs are shifted or perturbed, so that the objective of the basis is not a bound for the
//             true costs.
// Method      For any multipliers y the Lagrangian bound  y b + sum_j min { d_j x_j : Lower_j <= x_j <= Upper_j },
//             d = Cost - y (A I), holds for the true costs. y is that of the basis for the costs in force, read from
//             the reduced costs of the slacks, or that for the true costs. Where the bound that a reduced cost asks
//             for is infinite, a reduced cost within OptTol is multiplied by an assumed largest value (OPEN_LEAST,
//             OPEN_SHARE), a larger one by the bound that one of the rows of the column implies. Rounding errors of the
//             sum are subtracted.
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

// Rise of the objective from one test against the cutoff to the next: share of the excess, least relative rise.
constexpr double TEST_SHARE = 0.1, TEST_LEAST = 1e-9;

// Reduced costs of basic variables up to this size, relative to 1 + |cost|, are rounding errors.
constexpr double BASIC_NOISE = 1e-12;

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

// Reduced cost of variable j for the true costs.
template<class R> R true_reduced_cost(const sopt *s, const R *minus_multipliers, int j)
{
    if (j >= s->NumCols) return minus_multipliers[j - s->NumCols];
    return R(s->Cost.data[j]) + column_dot(s, j, minus_multipliers);
}

// The sum of a Lagrangian bound.
struct Lagrangian {
    BoundSum Sum;
    double Open =
        0; // sum of |reduced costs| without a bound, per user unit of the variable
    int64_t Entries = 0; // read for implied bounds
    bool Infinite = false;
};

// Adds min d x_j. Without a bound of j on that side: as the file head says.
void add_variable(const sopt *s, Lagrangian *bound, int j, double d)
{
    double side = d > 0 ? s->Lower.data[j] : s->Upper.data[j];
    const bool given = has_lower(s, side) && has_upper(s, side);
    if (!given && is_basic(s, j) &&
        std::fabs(d) <= BASIC_NOISE * (1 + std::fabs(s->Cost.data[j])))
        return;
    if (!given && std::fabs(d) <= s->OptTol) {
        bound->Open += std::fabs(d) / user_unit(s, j);
        return;
    }
    if (!given) {
        const int64_t most = IMPLIED_LEAST + s->ColBeg.data[s->NumCols];
        const bool looks = j < s->NumCols && bound->Entries <= most;
        side = looks ? implied_bound(s, j, d < 0, &bound->Entries) : HUGE_VAL;
        bound->Infinite |= std::fabs(side) >= s->Infinity;
    }
    bound->Sum.add(static_cast<long double>(d) * side);
}

// Lagrangian bound for the multipliers of the basis for `cost`, given by the slacks' reduced costs [m] for it.
template<class R>
double lagrangian(const sopt *s, swork<R> *w, const R *slack_cbar, const double *cost)
{
    R *minus_multipliers = w->RowVal.data;
    Lagrangian bound;
    for (int i = 0; i < s->NumRows; i++) {
        minus_multipliers[i] = slack_cbar[i] - R(cost[s->NumCols + i]);
        bound.Sum.add(-static_cast<long double>(minus_multipliers[i]) * s->Rhs.data[i]);
    }
    for (int j = 0; j < s->NumVars && !bound.Infinite; j++) {
        const R d = true_reduced_cost(s, minus_multipliers, j);
        if (d != R(0)) add_variable(s, &bound, j, static_cast<double>(d));
    }
    if (bound.Infinite) return -HUGE_VAL;
    double open = bound.Open;
    if (open > 0) open *= std::max(OPEN_LEAST, OPEN_SHARE * largest_basic_value(s, w));
    return static_cast<double>(bound.Sum.value - BOUND_ROUNDING * bound.Sum.size - open);
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

template<class R> void dual_count_signs(sopt *s, const swork<R> *w)
{
    s->ValueSize = s->SignError = s->SignOpen = 0;
    for (int r = 0; r < s->NumRows; r++)
        s->ValueSize =
            std::max(s->ValueSize, std::fabs(static_cast<double>(w->Bbar.data[r])));
    for (int j = 0; j < s->NumVars; j++) dual_count_sign(s, j, dual_sign_gap(s, w, j));
}

template<class R> void dual_set_objective(sopt *s, const swork<R> *w)
{
    if (s->Live) dual_count_signs(s, w);
    s->DualObj = working_objective(s, w);
    s->DualObjSum = 0;
    s->CutoffFrom = has_cutoff(s) ? s->Cutoff * s->ObjScale : HUGE_VAL;
}

template<class R> void dual_test_cutoff(sopt *s, swork<R> *w)
{
    double bound = dual_bound(s, w);
    if (bound <= s->Cutoff && s->Perturbed)
        bound = std::max(bound, dual_bound_true_costs(s, w));
    s->CutoffBound = bound;
    if (bound > s->Cutoff) {
        s->Status = SIMPLEX_CUTOFF;
        return;
    }
    // The objective in force has to rise by what is missing, and by a share of what it already exceeds the cutoff by,
    // so that perturbed costs do not lead to a test at every pivot. The next refresh tests again in any case.
    const double cutoff = s->Cutoff * s->ObjScale;
    s->CutoffFrom = s->DualObj + std::max({cutoff - bound * s->ObjScale,
                                           TEST_SHARE * (s->DualObj - cutoff),
                                           TEST_LEAST * (1 + std::fabs(s->DualObj))});
}

#define INSTANTIATE(R)                                                                     \
    template double dual_bound<R>(sopt *, swork<R> *);                                     \
    template double dual_bound_true_costs<R>(sopt *, swork<R> *);                          \
    template void dual_count_signs<R>(sopt *, const swork<R> *);                           \
    template void dual_set_objective<R>(sopt *, const swork<R> *);                         \
    template void dual_test_cutoff<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
