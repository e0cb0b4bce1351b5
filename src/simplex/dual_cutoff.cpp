// dual_cutoff.cpp -- does the dual bound of the basis exceed the cutoff?
//
// Problem     The dual simplex may stop as soon as no point can be as good as the cutoff. Its objective is that of the
//             perturbed costs, and reduced costs within OptTol may have the wrong sign.
// Method      The Lagrangian bound with the multipliers of the basis for the true (unperturbed) costs has to exceed the
//             cutoff by more than rounding errors. Where the bound that a reduced cost asks for is infinite, a reduced
//             cost within OptTol is multiplied by an assumed largest value (OPEN_LEAST, OPEN_SHARE); a larger one makes
//             the test fail.
// Cost        A BTRAN and a pass over the matrix.
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
// Error of the dual bound relative to the sum of the magnitudes of its terms. Far above the rounding of the sum itself,
// since the multipliers have the error of solves with the factors.
constexpr double CUTOFF_ROUNDING = 1e-10;

// Assumed largest value of a column without a bound: OPEN_SHARE times the largest basic value, at least OPEN_LEAST.
constexpr double OPEN_LEAST = 1e6, OPEN_SHARE = 100;

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
} // namespace

template<class R> bool dual_passes_cutoff(sopt *s, swork<R> *w)
{
    R *d = w->RowVal.data;
    compute_dual_for(s, w, s->Cost.data, d);
    BoundSum bound;
    // sum of |reduced costs| without a bound, per user unit of the variable
    double open = 0;
    for (int i = 0; i < s->NumRows; i++)
        bound.add(-static_cast<long double>(d[s->NumCols + i]) * s->Rhs.data[i]);
    for (int j = 0; j < s->NumVars; j++) {
        if (is_basic(s, j)) continue;
        const double side = d[j] > 0 ? s->Lower.data[j] : s->Upper.data[j];
        if (has_lower(s, side) && has_upper(s, side))
            bound.add(static_cast<long double>(d[j]) * side);
        else if (std::abs(d[j]) <= R(s->OptTol))
            open += static_cast<double>(std::abs(d[j])) / user_unit(s, j);
        else
            return false;
    }
    if (open > 0) open *= std::max(OPEN_LEAST, OPEN_SHARE * largest_basic_value(s, w));
    const long double sure = bound.value - CUTOFF_ROUNDING * bound.size - open;
    return static_cast<double>(sure) / s->ObjScale > s->Cutoff;
}

template bool dual_passes_cutoff<double>(sopt *, swork<double> *);
template bool dual_passes_cutoff<long double>(sopt *, swork<long double> *);
