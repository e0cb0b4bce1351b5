// farkas.cpp -- is a claimed infeasibility proved?
//
// Problem     A method stops because a row cannot become feasible, by more than the tolerance. Rounding and dropped
//             entries may have led it there: the claim needs a proof that stands alone.
// Method      Any multipliers y give a valid equation g x = y b with g = y (A I). The LP is infeasible when the range
//             of g x over the bounds stays away from y b, all rows and bounds held wider by SLACK. An entry of g
//             on a side without a bound ends the proof, unless the gap is wider than that entry times RANGE (for
//             slacks see `reach`).
//             So y must be known well: in exact arithmetic g is -1, 0 or 1 in the columns of the basis; what the solve
//             has left beside these is solved for again, and the corrections are kept beside y as its lower digits.
//             Sums run in twofold doubles. Then multipliers of 1e5 do not hide an infeasibility of 1e-5, and an entry
//             of 1e-16 is told from rounding.
// Cost        O(nonzeros) and REFINEMENTS solves at most.
// Literature  J. Farkas, "Theorie der einfachen Ungleichungen", J. reine angew. Math. 124, 1902.
//             N. J. Higham, "Accuracy and stability of numerical algorithms", 2002, chapter 12 (refinement).
#include "body/double_double.h"
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr int REFINEMENTS = 8; // each adds digits, fewer where the basis is ill-conditioned
// What the basis columns may have left, against the multipliers.
constexpr double ENOUGH = 0x1p-98;
// In the user's units: a model with a point that violates no row and no bound by more is not refused.
constexpr double SLACK = 1e-9;
// Likewise: points up to this far out are excluded.
constexpr double RANGE = 1e15;
// The same of the weaker claims in LimitedProof.
constexpr double EXACT_RANGE = 1e12, WIDENED_RANGE = 1e9;
constexpr double USUAL_VALUE = 1e6; // of a column whose coefficients are huge

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

// What g lacks in the column of basis position k.
template<class R> double missing(const sopt *s, const Multipliers<R> &y, int k)
{
    const Twofold g = entry_of(s, y, s->BasisHead.data[k]).value;
    return (std::round(g.high) - g.high) - g.low;
}

// Low += B^-T (what g should be in the basis - what it is). Returns the largest of that before.
template<class R> double refine(const sopt *s, swork<R> *w, const Multipliers<R> &y)
{
    SVec<R> *change = &w->Work;
    svec_clear(change);
    double largest = 0;
    for (int k = 0; k < s->NumRows; k++) {
        const double left = missing(s, y, k);
        if (left != 0) svec_add(change, k, R(left)); // 0: g is the very integer
        largest = std::max(largest, std::fabs(left));
    }
    if (largest == 0) return 0;
    for (int k = 0; k < change->Count; k++) // solves drop small values
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

// One end of the range of g x - y b, seen so far.
struct End {
    TwofoldSum Total;
    double Rounding = 0; // of what the sum is made of
    // What variables without a bound may add, for each unit of the user that the columns go out.
    double Open = 0;
    double Weight = 0; // what rows and bounds held wider by a unit of the user may add
};

// How far variable j goes in units of the range: a slack also as far as columns of usual size carry it.
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
    bool Full = false; // infeasible out to RANGE, with rows and bounds held wider by SLACK
    bool Widened = false; // also with rows and bounds held wider by FeasibilityTol
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

// sign: by what y is multiplied so that the least value of g x exceeds y b.
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

// Row multipliers, scaled.
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
    w->Tau.Count = -1; // not listed
    svec_clear(&w->Tau);
    return proved;
}

template bool proves_infeasible<double>(sopt *, swork<double> *);
template bool proves_infeasible<long double>(sopt *, swork<long double> *);
