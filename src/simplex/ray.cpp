// ray.cpp -- is a claimed unboundedness proved?
//
// Problem     A primal step finds no row that blocks. Entries dropped as rounding may have been what blocks: the claim
//             needs a ray that stands alone.
// Method      The ray moves the entering variable by 1 and the basics by -B^-1 a_q. That column is solved for again
//             with the residual in longer numbers, the corrections kept as its lower digits. It is a ray of the LP when
//             the residual is rounding, no variable with a bound in the way moves by more than rounding, and the
//             objective falls by more than the rounding of its sum. An entry is rounding when every row of its column
//             holds to rounding without it: then other coefficients, off by less than their last digit, would make it
//             zero. Small against the other entries says nothing, as columns have units of their own (x_t+1 = 2 x_t
//             over 60 periods).
// Cost        O(nonzeros of the basis) and REFINEMENTS solves.
// Literature  N. J. Higham, "Accuracy and stability of numerical algorithms", 2002, chapter 12 (refinement).
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr int REFINEMENTS = 2;
// of a term of a row, against the sum of its terms
constexpr long double ENTRY_ROUNDING = 1e-14L;
constexpr long double RESIDUAL_ROUNDING = 1e-15L; // of a row, against the sum of its terms
constexpr long double COST_ROUNDING = 1e-13L;     // of the objective, likewise

// B^-1 a_q = High + Low, by position.
template<class R> struct Column {
    SVec<R> *High, *Low;
    long double at(int k) const
    {
        return static_cast<long double>(High->Value.data[k]) + Low->Value.data[k];
    }
};

// Sum of terms, and of their magnitudes.
struct Sum {
    long double Value = 0, Size = 0;
    void add(long double v)
    {
        Value += v;
        Size += std::fabs(v);
    }
};

// Row i of a_q - B (High + Low).
template<class R> Sum residual(const sopt *s, const Column<R> &x, int q, int i)
{
    Sum row;
    const auto add = [s, &x, q, &row](int j, long double a) {
        if (j == q) row.add(a);
        if (is_basic(s, j)) row.add(-a * x.at(s->VStat.data[j]));
    };
    for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++)
        add(s->RowInd.data[p], s->RowVal.data[p]);
    add(s->NumCols + i, 1);
    return row;
}

// Low += B^-1 residual
template<class R> void refine(const sopt *s, swork<R> *w, const Column<R> &x, int q)
{
    SVec<R> *change = &w->Work;
    svec_clear(change);
    for (int i = 0; i < s->NumRows; i++)
        change->Value.data[i] = static_cast<R>(residual(s, x, q, i).Value);
    R largest = 0;
    for (int i = 0; i < s->NumRows; i++)
        largest = std::max(largest, std::abs(change->Value.data[i]));
    if (largest > 0) // solves drop what is small against 1
        for (int i = 0; i < s->NumRows; i++) change->Value.data[i] /= largest;
    change->Count = -1;
    Ftran(&w->Lu, change, SOLVE_COSTS, Keep::VALUES);
    for (int k = 0; k < s->NumRows; k++)
        x.Low->Value.data[k] += largest * change->Value.data[k];
    change->Count = -1;
    svec_clear(change);
}

// Sizes of the rows, for entry_matters. False when a row is off by more than rounding. Uses RowWork.
template<class R> bool is_exact(sopt *s, const Column<R> &x, int q)
{
    for (int i = 0; i < s->NumRows; i++) {
        const Sum row = residual(s, x, q, i);
        if (std::fabs(row.Value) > RESIDUAL_ROUNDING * row.Size) return false;
        s->RowWork.data[i] = static_cast<double>(row.Size);
    }
    return true;
}

// Would some row miss its side by more than rounding if basic variable j did not move?
bool entry_matters(const sopt *s, int j, long double step)
{
    if (step == 0) return false;
    const auto matters = [s, step](int i, long double a) {
        return std::fabs(a * step) > ENTRY_ROUNDING * s->RowWork.data[i];
    };
    if (j >= s->NumCols) return matters(j - s->NumCols, 1);
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        if (matters(s->ColInd.data[p], s->ColVal.data[p])) return true;
    return false;
}

// Does a bound stop basic variable j, which moves by `step`?
bool blocks(const sopt *s, int j, long double step)
{
    return step < 0 ? has_lower(s, s->Lower.data[j]) : has_upper(s, s->Upper.data[j]);
}

// Entry j of the ray, scaled, for the structurals.
template<class R> void keep_ray(sopt *s, const Column<R> &x, int q, int direction)
{
    s->Proof = PROOF_RAY;
    double *ray = s->ProofVector.data;
    std::fill_n(ray, s->NumVars, 0.0);
    ray[q] = direction;
    for (int k = 0; k < s->NumRows; k++)
        ray[s->BasisHead.data[k]] = static_cast<double>(-direction * x.at(k));
}

// Nothing stops the basics, and the objective falls.
template<class R> bool is_ray(const sopt *s, const Column<R> &x, int q, int direction)
{
    Sum cost;
    cost.add(static_cast<long double>(s->Cost.data[q]) * direction);
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        const long double step = -direction * x.at(k);
        if (blocks(s, j, step) && entry_matters(s, j, step)) return false;
        cost.add(s->Cost.data[j] * step);
    }
    return cost.Value < -COST_ROUNDING * cost.Size;
}
} // namespace

template<class R> bool proves_unbounded(sopt *s, swork<R> *w, int q, int direction)
{
    load_column(s, q, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::NO);
    svec_clear(&w->Tau);
    const Column<R> x = {&w->Alpha, &w->Tau};
    for (int round = 0; round < REFINEMENTS; round++) refine(s, w, x, q);
    const bool proved = is_exact(s, x, q) && is_ray(s, x, q, direction);
    if (proved) keep_ray(s, x, q, direction);
    w->Tau.Count = -1; // not listed
    svec_clear(&w->Tau);
    return proved;
}

template bool proves_unbounded<double>(sopt *, swork<double> *, int, int);
template bool proves_unbounded<long double>(sopt *, swork<long double> *, int, int);
