// farkas.cpp -- is a claimed infeasibility proved?
//
// Problem     A method stops because a row cannot become feasible, by more than the tolerance. Rounding and dropped
//             entries may have led it there: the claim needs a proof that stands alone.
// Method      Any multipliers y give a valid equation g x = y b with g = y (A I). The LP is infeasible when the range of
//             g x over the bounds stays away from y b by more than the rounding of both. Entries that are rounding
//             count as zero, for values up to FARTHEST; any other entry on an unbounded side makes the range infinite, and
//             the proof fails. All rows and bounds are held wider by RELAXED.
//             What is rounding depends on how well y is known. In exact arithmetic g is -1, 0 or 1 in the columns of
//             the basis; what the solve has left beside these is solved for again, and the corrections are kept beside
//             y as its lower digits. So multipliers of 1e5 do not hide an infeasibility of 1e-5.
// Cost        O(nonzeros) and REFINEMENTS solves.
// Literature  J. Farkas, "Theorie der einfachen Ungleichungen", J. reine angew. Math. 124, 1902.
//             N. J. Higham, "Accuracy and stability of numerical algorithms", 2002, chapter 12 (refinement).
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr int REFINEMENTS =
    3; // the first brings y to working accuracy, the others add digits
constexpr long double ROUNDING = 1e-15L; // left in refined multipliers, against the largest
constexpr long double RELAXED =
    1e-9L; // in the user's units: a model with a point that violates no row and bound by more is not refused
constexpr long double FARTHEST =
    1e9L; // likewise: how far out a variable without a bound may be for the proof to reach it

// y = High + Low, over rows.
template<class R> struct Multipliers {
    SVec<R> *High, *Low;
    long double at(int i) const
    {
        return static_cast<long double>(High->Value.data[i]) + Low->Value.data[i];
    }
};

// Entry j of g, and the size of its column.
struct Entry {
    long double Value = 0, Column = 0;
};

template<class R> Entry entry_of(const sopt *s, const Multipliers<R> &y, int j)
{
    if (j >= s->NumCols) return {y.at(j - s->NumCols), 1};
    Entry g;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        const long double a = s->ColVal.data[p];
        g.Value += a * y.at(s->ColInd.data[p]);
        g.Column += std::fabs(a);
    }
    return g;
}

// Low += B^-T (what g should be in the basis - what it is)
template<class R> void refine(const sopt *s, swork<R> *w, const Multipliers<R> &y)
{
    SVec<R> *change = &w->Work;
    svec_clear(change);
    R largest = 0;
    for (int k = 0; k < s->NumRows; k++) {
        const long double g = entry_of(s, y, s->BasisHead.data[k]).Value;
        const R missing = static_cast<R>(std::round(g) - g);
        if (missing == R(0)) continue; // g is the very integer
        svec_add(change, k, missing);
        largest = std::max(largest, std::abs(missing));
    }
    if (largest == R(0)) return;
    for (int k = 0; k < change->Count; k++) // solves drop small values
        change->Value.data[change->Index.data[k]] /= largest;
    Btran(&w->Lu, change, SOLVE_COSTS, Keep::NO);
    for (int i = 0; i < s->NumRows; i++)
        y.Low->Value.data[i] += largest * change->Value.data[i];
    svec_clear(change);
}

// One end of the range of g x, seen so far.
struct End {
    long double Sum = 0, Unsure = 0;
    bool Open = false; // infinite
};

void extend(const sopt *s, End *end, int j, const Entry &g, long double rounding,
            double bound)
{
    const long double size = std::fabs(g.Value), unit = user_unit(s, j);
    if (has_lower(s, bound) && has_upper(s, bound)) {
        end->Sum += g.Value * bound;
        end->Unsure += rounding * std::fabs(bound) + size * RELAXED / unit;
    } else if (size <= rounding) {
        end->Unsure += size * FARTHEST / unit;
    } else {
        end->Open = true;
    }
}

template<class R> bool equation_fails(const sopt *s, const Multipliers<R> &y)
{
    long double largest = 0, target = 0, unsure = 0;
    for (int i = 0; i < s->NumRows; i++) largest = std::max(largest, std::fabs(y.at(i)));
    for (int i = 0; i < s->NumRows; i++) {
        target += y.at(i) * s->Rhs.data[i];
        unsure += ROUNDING * largest * std::fabs(s->Rhs.data[i]);
    }
    End low, high;
    for (int j = 0; j < s->NumVars; j++) {
        const Entry g = entry_of(s, y, j);
        const long double rounding = ROUNDING * largest * g.Column;
        const bool up = g.Value > 0;
        extend(s, &low, j, g, rounding, up ? s->Lower.data[j] : s->Upper.data[j]);
        extend(s, &high, j, g, rounding, up ? s->Upper.data[j] : s->Lower.data[j]);
        if (low.Open && high.Open) return false;
    }
    return (!low.Open && low.Sum - target > low.Unsure + unsure) ||
           (!high.Open && target - high.Sum > high.Unsure + unsure);
}

// Row multipliers, scaled.
template<class R> void keep(sopt *s, const Multipliers<R> &y)
{
    s->Proof = PROOF_FARKAS;
    std::fill_n(s->ProofVector.data, s->NumVars, 0.0);
    for (int i = 0; i < s->NumRows; i++)
        s->ProofVector.data[i] = static_cast<double>(y.at(i));
}
} // namespace

template<class R> bool proves_infeasible(sopt *s, swork<R> *w)
{
    svec_clear(&w->Tau);
    const Multipliers<R> y = {&w->Rho, &w->Tau};
    for (int round = 0; round < REFINEMENTS; round++) refine(s, w, y);
    const bool proved = equation_fails(s, y);
    if (proved) keep(s, y);
    w->Tau.Count = -1; // not listed
    svec_clear(&w->Tau);
    return proved;
}

template bool proves_infeasible<double>(sopt *, swork<double> *);
template bool proves_infeasible<long double>(sopt *, swork<long double> *);
