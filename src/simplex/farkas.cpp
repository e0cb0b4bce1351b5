// farkas.cpp -- proof of infeasibility by row multipliers
//
// Problem     A simplex method stops because a row cannot become feasible. Rounding errors and dropped entries may be
//             the reason, so the claim needs a proof that is independent of the run.
// Method      Any multipliers y give a valid equation g x = y b with g = y (A I). The LP is infeasible if the range of
//             g x over the bounds does not contain y b, with all rows and bounds widened by SLACK. An entry of g on a
//             side without a bound makes the range infinite; it is allowed if the gap is larger than the entry times
//             RANGE (for slacks see `reach`).
//             So y has to be accurate: in exact arithmetic g is -1, 0 or 1 in the columns of the basis. The difference
//             is solved for again (iterative refinement), and the corrections are kept as a second, lower part of y.
//             Sums are computed in twofold doubles. Then an infeasibility of 1e-5 is found with multipliers of 1e5, and
//             an entry of g of 1e-16 can be distinguished from a rounding error.
// Cost        O(nonzeros) and at most REFINEMENTS solves.
// Literature  J. Farkas, "Theorie der einfachen Ungleichungen", J. reine angew. Math. 124, 1902.
//             N. J. Higham, "Accuracy and stability of numerical algorithms", 2002, chapter 12 (refinement).
#include "body/double_double.h"
#include "simplex/dual.h"
#include <algorithm>

namespace
{
constexpr int REFINEMENTS = 8; // each adds digits, fewer if the basis is ill-conditioned

// Refinement ends when the largest residual is below this share of the largest multiplier: twofold doubles hold about
// 106 bits.
constexpr double ENOUGH = 0x1p-98;

// In user units: a model with a point that violates every row and bound by at most SLACK is not proved infeasible.
constexpr double SLACK = 1e-9;

// In user units: the proof excludes points with values up to RANGE.
constexpr double RANGE = 1e15;

// The same for the weaker statements in LimitedProof.
constexpr double EXACT_RANGE = 1e12, WIDENED_RANGE = 1e9;

constexpr double USUAL_VALUE = 1e6; // assumed size of columns, for the range of slacks

template<class R> struct Multipliers {
    SVec<R> *High, *Low;
    Twofold at(int i) const
    {
        const R high = High->Value.data[i], low = Low->Value.data[i];
        const double first = static_cast<double>(high);
        return two_sum(first, static_cast<double>((high - R(first)) + low));
    }
};

// Entry j of g.
template<class R> TwofoldSum entry_of(const sopt *s, const Multipliers<R> &y, int j)
{
    TwofoldSum g;
    if (j >= s->NumCols) {
        g.add(y.at(j - s->NumCols));
        return g;
    }
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        g.add(twofold_times(y.at(s->ColInd.data[p]), s->ColVal.data[p]));
    return g;
}

// Difference of g in the column of basis position k to the nearest integer.
template<class R> double missing(const sopt *s, const Multipliers<R> &y, int k)
{
    const Twofold g = entry_of(s, y, s->BasisHead.data[k]).value;
    return (std::round(g.high) - g.high) - g.low;
}

// One refinement step: Low += B^-T (residual in the basis columns). Returns the largest residual before the step.
template<class R> double refine(const sopt *s, swork<R> *w, const Multipliers<R> &y)
{
    SVec<R> *change = &w->Work;
    svec_clear(change);
    double largest = 0;
    for (int k = 0; k < s->NumRows; k++) {
        const double left = missing(s, y, k);
        if (left != 0) svec_add(change, k, R(left));
        largest = std::max(largest, std::fabs(left));
    }
    if (largest == 0) return 0;
    for (int k = 0; k < change->Count;
         k++) // scaled to size 1, since solves drop small values
        change->Value.data[change->Index.data[k]] /= R(largest);
    Btran(&w->Lu, change, SOLVE_COSTS, Keep::NO);
    for (int i = 0; i < s->NumRows; i++)
        y.Low->Value.data[i] += R(largest) * change->Value.data[i];
    svec_clear(change);
    return largest;
}

template<class R> double largest_multiplier(const sopt *s, const Multipliers<R> &y)
{
    double largest = 0;
    for (int i = 0; i < s->NumRows; i++)
        largest = std::max(largest, std::fabs(y.at(i).high));
    return largest;
}

// One end of the range of g x - y b, as a sum over the variables.
struct End {
    TwofoldSum Total;
    double Rounding = 0; // error bound of the terms
    // Contribution of variables without a bound if their values are limited to 1 user unit.
    double Open = 0;
    double Weight = 0; // change if all rows and bounds are widened by 1 user unit
};

// Factor on the range for variable j: the slack of a row with large coefficients may be as large as columns of size
// USUAL_VALUE make it.
double reach(const sopt *s, int j)
{
    if (j < s->NumCols) return 1;
    double largest = 0;
    const int i = j - s->NumCols;
    for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++) {
        const double scale = std::fabs(s->ColScale.data[s->RowInd.data[p]]);
        largest = std::max(largest, std::fabs(s->RowVal.data[p]) / scale * user_unit(s, j));
    }
    return std::max(1.0, USUAL_VALUE / RANGE * largest);
}

void extend(const sopt *s, End *end, int j, const TwofoldSum &g, double bound)
{
    const double size = std::fabs(g.value.high), unit = user_unit(s, j);
    if (std::fabs(bound) * unit < INFINITE_VALUE && has_lower(s, bound) &&
        has_upper(s, bound)) {
        end->Total.add(twofold_times(g.value, bound));
        end->Rounding += g.error() * std::fabs(bound);
        end->Weight += size / unit;
    } else {
        const double open = (size + g.error()) / unit;
        if (open > 0) end->Open += open * reach(s, j);
    }
}

// What the multipliers prove.
struct Proof {
    bool Full = false;    // no point up to RANGE, with rows and bounds widened by SLACK
    bool Widened = false; // the same with rows and bounds widened by FeasibilityTol
    LimitedProof Limited;
};

Proof judge(const sopt *s, const End &end, int sign)
{
    const double gap = sign * end.Total.value.high - end.Rounding - end.Total.error();
    const double wide = std::max(SLACK, s->Env->FeasibilityTol) * end.Weight;
    Proof proof;
    proof.Full = gap - RANGE * end.Open > SLACK * end.Weight;
    proof.Widened = gap - RANGE * end.Open > wide;
    proof.Limited.Exact = gap - EXACT_RANGE * end.Open > 0;
    proof.Limited.Widened = gap - WIDENED_RANGE * end.Open > wide;
    return proof;
}

// sign: factor on y for which the smallest value of g x exceeds y b.
template<class R> Proof equation_fails(const sopt *s, const Multipliers<R> &y, int *sign)
{
    End low, high;
    for (int i = 0; i < s->NumRows; i++) {
        const Twofold term = twofold_times(y.at(i), -s->Rhs.data[i]);
        low.Total.add(term);
        high.Total.add(term);
    }
    for (int j = 0; j < s->NumVars; j++) {
        const TwofoldSum g = entry_of(s, y, j);
        const bool up = g.value.high > 0;
        extend(s, &low, j, g, up ? s->Lower.data[j] : s->Upper.data[j]);
        extend(s, &high, j, g, up ? s->Upper.data[j] : s->Lower.data[j]);
    }
    const Proof above = judge(s, low, 1), below = judge(s, high, -1);
    *sign = below.Full ? -1 : 1;
    Proof proof = below.Full ? below : above;
    proof.Limited.Exact = above.Limited.Exact || below.Limited.Exact;
    proof.Limited.Widened = above.Limited.Widened || below.Limited.Widened;
    return proof;
}

// Stores the row multipliers, in units of the working LP.
template<class R> void keep(sopt *s, const Multipliers<R> &y, int sign)
{
    s->Proof = PROOF_FARKAS;
    std::fill_n(s->ProofVector.data, s->NumVars, 0.0);
    for (int i = 0; i < s->NumRows; i++) s->ProofVector.data[i] = sign * y.at(i).high;
}
} // namespace

template<class R> bool proves_infeasible(sopt *s, swork<R> *w)
{
    svec_clear(&w->Tau);
    const Multipliers<R> y = {&w->Rho, &w->Tau};
    double before = INFINITE_BOUND;
    for (int round = 0; round < REFINEMENTS; round++) {
        const double left = refine(s, w, y);
        if (left <= ENOUGH * largest_multiplier(s, y) || left >= before) break;
        before = left;
    }
    int sign = 1;
    const Proof proof = equation_fails(s, y, &sign);
    const bool proved = proof.Full;
    s->WidenedProof = proof.Widened;
    s->LimitedFarkas.Exact |= proof.Limited.Exact;
    s->LimitedFarkas.Widened |= proof.Limited.Widened;
    if (proved) keep(s, y, sign);
    w->Tau.Count = -1; // its nonzeros are not listed
    svec_clear(&w->Tau);
    return proved;
}

namespace
{
// Entries of g up to this size at a variable without a bound are rounding errors.
constexpr double SIMPLE_NOISE = 1e-14;

// The same of basic variables, whose entries are zero but for the errors of the multipliers, and 1 for the leaving one.
constexpr double SIMPLE_BASIC_NOISE = 1e-9;

// In user units, as SLACK. Far larger, since the multipliers are not refined; closer cases are left to
// proves_infeasible.
constexpr double SIMPLE_SLACK = 1e-6;

// Share of the sum of all terms by which the gap has to exceed rounding errors.
constexpr double SIMPLE_ROUNDING = 1e-10;

// Both ends of the range of g x, with the sums of its terms' magnitudes and of the weights of a widening.
struct SimpleRange {
    double Low = 0, High = 0, Size = 0, Weight = 0;
    bool LowOpen = false, HighOpen = false;
};

void extend_simply(const sopt *s, SimpleRange *range, int j, double g)
{
    const double lower = s->Lower.data[j], upper = s->Upper.data[j];
    const double below = g > 0 ? lower : upper, above = g > 0 ? upper : lower;
    const bool noise = std::fabs(g) <= (is_basic(s, j) ? SIMPLE_BASIC_NOISE : SIMPLE_NOISE);
    range->Weight += std::fabs(g) / user_unit(s, j);
    for (const bool low : {true, false}) {
        const double bound = low ? below : above;
        if (!has_lower(s, bound) || !has_upper(s, bound)) {
            (low ? range->LowOpen : range->HighOpen) |= !noise;
            continue;
        }
        (low ? range->Low : range->High) += g * bound;
        range->Size += std::fabs(g * bound);
    }
}

// Entries of g and the sums over all of them. acc is SVEC_TINY again on return.
template<class R> SimpleRange range_of_row(const sopt *s, swork<R> *w)
{
    R *acc = w->RowAcc.data;
    int *list = w->Dual->CandPlace.data, count = 0;
    SimpleRange range;
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k];
        const R rho = w->Rho.Value.data[i];
        for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++) {
            const int j = s->RowInd.data[p];
            if (acc[j] == SVEC_TINY<R>) list[count++] = j;
            acc[j] += rho * R(s->RowVal.data[p]);
        }
        extend_simply(s, &range, s->NumCols + i, static_cast<double>(rho));
    }
    for (int k = 0; k < count; k++) {
        extend_simply(s, &range, list[k], static_cast<double>(acc[list[k]]));
        acc[list[k]] = SVEC_TINY<R>;
    }
    return range;
}
} // namespace

template<class R> bool proves_simply(sopt *s, swork<R> *w)
{
    SimpleRange range = range_of_row(s, w);
    double rhs = 0;
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k];
        const double term = static_cast<double>(w->Rho.Value.data[i]) * s->Rhs.data[i];
        rhs += term;
        range.Size += std::fabs(term);
    }
    const double least = SIMPLE_SLACK * range.Weight + SIMPLE_ROUNDING * range.Size;
    const bool above = !range.LowOpen && range.Low - rhs > least,
               below = !range.HighOpen && rhs - range.High > least;
    if (above || below) s->Proof = PROOF_ROW;
    return above || below;
}

template bool proves_simply<double>(sopt *, swork<double> *);

template bool proves_simply<long double>(sopt *, swork<long double> *);

template bool proves_infeasible<double>(sopt *, swork<double> *);

template bool proves_infeasible<long double>(sopt *, swork<long double> *);
