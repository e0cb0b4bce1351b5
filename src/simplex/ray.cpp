// ray.cpp -- proof of unboundedness by a ray
//
// Problem     A primal ratio test finds no row that blocks. An entry dropped as a rounding error may be one that
//             blocks, so the claim needs a ray that is verified independently.
// Method      The ray changes the entering variable by 1 and the basic variables by -B^-1 a_q. This column is refined
//             with residuals in extended precision, the corrections kept as a second, lower part. It is a ray of the LP
//             if the residual is a rounding error, no variable with a bound in its direction moves by more than a
//             rounding error, and the objective decreases by more than the rounding error of its sum. An entry counts
//             as a rounding error if every row of its column is satisfied to rounding without it: then a change of
//             other coefficients below their last digit would make it zero. Its size relative to other entries is no
//             criterion, as columns may have different units (example: x_t+1 = 2 x_t over 60 periods).
// Cost        O(nonzeros of the basis) and REFINEMENTS solves.
// Literature  N. J. Higham, "Accuracy and stability of numerical algorithms", 2002, chapter 12 (refinement).
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr int REFINEMENTS = 2;

// Rounding error of a term of a row, relative to the sum of the magnitudes of its terms.
constexpr long double ENTRY_ROUNDING = 1e-14L;

constexpr long double RESIDUAL_ROUNDING = 1e-15L; // of the residual of a row, likewise

constexpr long double COST_ROUNDING = 1e-13L; // of the objective, likewise

// B^-1 a_q = High + Low, by position.
template<class R> struct Column {
    SVec<R> *High, *Low;
    long double at(int k) const
    {
        return static_cast<long double>(High->Value.data[k]) + Low->Value.data[k];
    }
};

// Sum of terms, and sum of their magnitudes.
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

// Stores the sums of magnitudes of the rows in RowWork, for entry_matters. False if a residual is larger than rounding.
template<class R> bool is_exact(sopt *s, const Column<R> &x, int q)
{
    for (int i = 0; i < s->NumRows; i++) {
        const Sum row = residual(s, x, q, i);
        if (std::fabs(row.Value) > RESIDUAL_ROUNDING * row.Size) return false;
        s->RowWork.data[i] = static_cast<double>(row.Size);
    }
    return true;
}

// True if some row would have a residual above rounding if basic variable j did not move.
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

// True if basic variable j, which moves by `step`, has a bound in that direction.
bool blocks(const sopt *s, int j, long double step)
{
    return step < 0 ? has_lower(s, s->Lower.data[j]) : has_upper(s, s->Upper.data[j]);
}

// Stores the ray, in units of the working LP.
template<class R> void keep_ray(sopt *s, const Column<R> &x, int q, int direction)
{
    s->Proof = PROOF_RAY;
    double *ray = s->ProofVector.data;
    std::fill_n(ray, s->NumVars, 0.0);
    ray[q] = direction;
    for (int k = 0; k < s->NumRows; k++)
        ray[s->BasisHead.data[k]] = static_cast<double>(-direction * x.at(k));
}

// No bound blocks a basic variable, and the objective decreases.
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
    w->Tau.Count = -1; // its nonzeros are not listed
    svec_clear(&w->Tau);
    return proved;
}

template bool proves_unbounded<double>(sopt *, swork<double> *, int, int);

template bool proves_unbounded<long double>(sopt *, swork<long double> *, int, int);
