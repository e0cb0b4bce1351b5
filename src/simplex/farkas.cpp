// farkas.cpp -- is a claimed infeasibility proved?
//
// Problem     A method stops because a row cannot become feasible. Rounding and dropped entries may have led it there:
//             the claim needs a proof that stands alone.
// Method      Any multipliers y give a valid equation g x = y b with g = y (A I). The LP is infeasible when the range of
//             g x over the bounds stays away from y b. Entries that are rounding against the terms they were summed from
//             count as zero; any other entry on an unbounded side makes the range infinite, and the proof fails.
// Cost        O(nonzeros).
// Literature  J. Farkas, "Theorie der einfachen Ungleichungen", J. reine angew. Math. 124, 1902.
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr long double ROUNDING =
    1e-11L; // an entry below this share of its terms is taken for zero

// Range of sum g x seen so far.
struct Range {
    long double Low = 0, High = 0;
    bool NoLow = false, NoHigh = false;
};

void widen(const sopt *s, Range *range, long double g, double lower, double upper)
{
    if (g == 0) return; // assigned zero
    const double at_low = g > 0 ? lower : upper, at_high = g > 0 ? upper : lower;
    if (has_lower(s, at_low) && has_upper(s, at_low))
        range->Low += g * at_low;
    else
        range->NoLow = true;
    if (has_lower(s, at_high) && has_upper(s, at_high))
        range->High += g * at_high;
    else
        range->NoHigh = true;
}
} // namespace

template<class R> bool proves_infeasible(const sopt *s, const SVec<R> *y)
{
    const R *value = y->Value.data;
    long double target = 0, size = 0, largest = 0;
    for (int i = 0; i < s->NumRows; i++) {
        const long double yi = value[i];
        target += yi * s->Rhs.data[i];
        size += std::fabs(yi * s->Rhs.data[i]);
        largest = std::max(largest, std::fabs(yi));
    }
    if (largest == 0) return false;
    Range range;
    for (int j = 0; j < s->NumCols; j++) {
        long double g = 0, terms = 0;
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
            const long double term =
                static_cast<long double>(s->ColVal.data[p]) * value[s->ColInd.data[p]];
            g += term;
            terms += std::fabs(term);
        }
        if (std::fabs(g) <= ROUNDING * std::max(terms, largest)) g = 0;
        widen(s, &range, g, s->Lower.data[j], s->Upper.data[j]);
        size += std::fabs(g);
    }
    for (int i = 0; i < s->NumRows; i++) {
        long double g = value[i];
        if (std::fabs(g) <= ROUNDING * largest) g = 0;
        widen(s, &range, g, s->Lower.data[s->NumCols + i], s->Upper.data[s->NumCols + i]);
    }
    const long double margin = s->FeasTol * largest + ROUNDING * size;
    return (!range.NoLow && range.Low > target + margin) ||
           (!range.NoHigh && range.High < target - margin);
}

template bool proves_infeasible<double>(const sopt *, const SVec<double> *);
template bool proves_infeasible<long double>(const sopt *, const SVec<long double> *);
