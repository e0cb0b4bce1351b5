// values.cpp -- basic values and reduced costs from the factors, and their residuals
//
// Problem     Bbar = B^-1 (Rhs - N x_N),  Cbar = cost - (A I)^T B^-T cost_B.
// Method      Solve, then compute the residual of the equations. If it is not small against the tolerance, one step of
//             iterative refinement follows. The remaining residual measures the accuracy of the factors: large ones
//             tighten the Markowitz tolerance, and repeated residuals beyond the tolerances ask for extended precision.
// Cost        One pass over the matrix each, besides the solves.
// Literature  J. H. Wilkinson, Rounding Errors in Algebraic Processes, 1963, for the refinement.
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
// residual over the tolerance from which refinement pays
constexpr double REFINE_SHARE = 1e-3;

// Number of residuals beyond the tolerance that are accepted in a run.
constexpr int PRIMAL_STRIKES = 2, DUAL_STRIKES = 5;

// a residual this many times smaller than the violations does no harm
constexpr double STRIKE_SHARE = 100;

constexpr double RHS_LEAST = 1e-9; // smallest size of the right-hand side in these ratios

// Largest growth of the solution over the right-hand side and largest relative residual; beyond one of them the
// Markowitz tolerance is raised to Threshold.
struct Trust {
    double Growth, Residual, Threshold;
};

constexpr Trust TRUST[] = {{1e10, 1e-8, 0.5},
                           {1e9, 4e-9, 0.25},
                           {1e8, 1e-9, 0.125},
                           {1e7, 4e-10, 0.0625},
                           {1e6, 1e-10, 0.03125}};

template<class R> void subtract_column(const sopt *s, R *value, int j, R x)
{
    if (x == R(0)) return;
    if (j >= s->NumCols) {
        value[j - s->NumCols] -= x;
        return;
    }
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        value[s->ColInd.data[p]] -= R(s->ColVal.data[p]) * x;
}

// x := Rhs - N x_N, dense.
template<class R> void load_rhs(const sopt *s, SVec<R> *x)
{
    svec_clear(x);
    R *value = x->Value.data;
    for (int i = 0; i < s->NumRows; i++) value[i] = s->BoxPhase ? R(0) : R(s->Rhs.data[i]);
    for (int j = 0; j < s->NumVars; j++)
        if (!is_basic(s, j)) subtract_column(s, value, j, R(nonbasic_value(s, j)));
    x->Count = -1;
}

template<class R> double largest(const R *value, int n)
{
    R most = 0;
    for (int i = 0; i < n; i++) most = std::max(most, std::abs(value[i]));
    return static_cast<double>(most);
}

// x := Rhs - N x_N - B Bbar; its largest entry.
template<class R> double primal_residual(const sopt *s, const swork<R> *w, SVec<R> *x)
{
    load_rhs(s, x);
    for (int k = 0; k < s->NumRows; k++)
        subtract_column(s, x->Value.data, s->BasisHead.data[k], w->Bbar.data[k]);
    return largest(x->Value.data, s->NumRows);
}

// Divides x by its largest entry and returns that: solves drop entries that are small against 1.
template<class R> R normalise(SVec<R> *x, int n)
{
    const R size = R(largest(x->Value.data, n));
    for (int i = 0; i < n && size > 0; i++) x->Value.data[i] /= size;
    x->Count = -1;
    return size;
}

// Bbar += B^-1 x for the residual x; x becomes the residual of the new values.
template<class R> void correct_primal(sopt *s, swork<R> *w, SVec<R> *x)
{
    const R size = normalise(x, s->NumRows);
    Ftran(&w->Lu, x, SOLVE_COSTS, Keep::VALUES);
    for (int i = 0; i < s->NumRows; i++) w->Bbar.data[i] += size * x->Value.data[i];
    s->PrimalResidual = primal_residual(s, w, x);
}

// x := cost_B - B^T y by position; its largest entry.
template<class R>
double dual_residual(const sopt *s, const double *cost, const R *y, SVec<R> *x)
{
    svec_clear(x);
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        x->Value.data[k] = R(cost[j]) - column_dot(s, j, y);
    }
    x->Count = -1;
    return largest(x->Value.data, s->NumRows);
}

void tighten_pivots(sopt *s, double growth, double residual)
{
    for (const Trust &t : TRUST) {
        if (growth <= t.Growth && residual <= t.Residual) continue;
        if (t.Threshold <= s->MarkowitzTol) return;
        s->MarkowitzTol = t.Threshold;
        TVXmsg(s->Env, "Warning: Markowitz tolerance tightened to %g\n", t.Threshold);
        return;
    }
}

void strike(sopt *s, int *count, int limit)
{
    s->NumericCount++;
    if (++*count <= limit || s->Quad || s->Env->Quad != -1) return;
    s->Status = SIMPLEX_NEED_QUAD;
}
} // namespace

// The residual is computed in extended precision: that of a row scaled down by 1000 is 1000 times larger in user units.
template<class R> void refine_primal(sopt *s, swork<R> *w)
{
    SVec<R> *x = &w->Work;
    svec_clear(x);
    const auto value = [s, w](int j) {
        return is_basic(s, j) ? static_cast<long double>(w->Bbar.data[s->VStat.data[j]])
                              : static_cast<long double>(nonbasic_value(s, j));
    };
    for (int i = 0; i < s->NumRows; i++) {
        long double left = s->Rhs.data[i] - value(s->NumCols + i);
        for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++)
            left -= static_cast<long double>(s->RowVal.data[p]) * value(s->RowInd.data[p]);
        x->Value.data[i] = static_cast<R>(left);
    }
    x->Count = -1;
    correct_primal(s, w, x);
    svec_clear(x);
}

template<class R> void compute_primal(sopt *s, swork<R> *w)
{
    SVec<R> *x = &w->Work;
    load_rhs(s, x);
    s->RhsSize = largest(x->Value.data, s->NumRows);
    Ftran(&w->Lu, x, SOLVE_COSTS, Keep::VALUES);
    for (int i = 0; i < s->NumRows; i++) w->Bbar.data[i] = x->Value.data[i];
    s->ValueNoise = 0;
    s->PrimalError = s->PrimalResidual = primal_residual(s, w, x);
    if (s->PrimalError > REFINE_SHARE * s->FeasTol) correct_primal(s, w, x);
    svec_clear(x);
    set_basic_bounds(s);
    s->WorkUnits += 2.0 * s->ColBeg.data[s->NumCols];
}

template<class R> void compute_dual_for(sopt *s, swork<R> *w, const double *cost, R *cbar)
{
    SVec<R> *y = &w->Work, *x = &w->Tau;
    svec_clear(y);
    for (int k = 0; k < s->NumRows; k++) y->Value.data[k] = R(cost[s->BasisHead.data[k]]);
    y->Count = -1;
    Btran(&w->Lu, y, SOLVE_COSTS, Keep::NO);
    R *pi = y->Value.data;
    s->DualResidual = dual_residual(s, cost, pi, x);
    if (s->DualResidual > REFINE_SHARE * s->OptTol) {
        y->Count = -1;
        const R size = normalise(x, s->NumRows);
        Btran(&w->Lu, x, SOLVE_COSTS, Keep::NO);
        for (int k = 0; k < x->Count; k++)
            pi[x->Index.data[k]] += size * x->Value.data[x->Index.data[k]];
        s->DualResidual = dual_residual(s, cost, pi, x);
    }
    svec_clear(x);
    for (int j = 0; j < s->NumVars; j++)
        cbar[j] = is_basic(s, j) ? R(0) : R(cost[j]) - column_dot(s, j, pi);
    y->Count = -1;
    svec_clear(y);
    s->WorkUnits += 2.0 * s->ColBeg.data[s->NumCols];
}

// As refine_primal, if the residual is not small in user units: with costs of 1e8 sums in double precision have errors
// of 1e-8 in every column.
template<class R> void refine_dual(sopt *s, swork<R> *w)
{
    SVec<R> *x = &w->Work;
    R *cbar = w->Cbar.data;
    const R *slack = cbar + s->NumCols; // minus the multipliers
    const auto reduced_cost = [s, slack](int j) {
        long double left = s->WorkCost.data[j];
        if (j >= s->NumCols) return left + slack[j - s->NumCols];
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
            left += static_cast<long double>(s->ColVal.data[p]) * slack[s->ColInd.data[p]];
        return left;
    };
    svec_clear(x);
    x->Count = -1;
    double worst = 0;
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        x->Value.data[k] = static_cast<R>(reduced_cost(j));
        const double residual = std::fabs(static_cast<double>(x->Value.data[k]));
        worst = std::max(worst, residual / (user_unit(s, j) * s->ObjScale));
    }
    s->WorkUnits += s->ColBeg.data[s->NumCols];
    if (worst > REFINE_SHARE * s->OptTol) {
        s->DualResidual = largest(x->Value.data, s->NumRows);
        const R size = normalise(x, s->NumRows);
        Btran(&w->Lu, x, SOLVE_COSTS, Keep::NO);
        for (int i = 0; i < s->NumRows; i++)
            if (!is_basic(s, s->NumCols + i))
                cbar[s->NumCols + i] -= size * x->Value.data[i];
        for (int j = 0; j < s->NumCols; j++)
            if (!is_basic(s, j)) cbar[j] = static_cast<R>(reduced_cost(j));
        x->Count = -1;
        s->WorkUnits += 2.0 * s->ColBeg.data[s->NumCols];
    }
    svec_clear(x);
}

template<class R> void compute_dual(sopt *s, swork<R> *w)
{
    compute_dual_for(s, w, s->WorkCost.data, w->Cbar.data);
    s->DualNoise = 0;
}

template<class R> void judge_residuals(sopt *s, const swork<R> *w)
{
    if (s->BoxPhase) return;
    const double rhs = std::max(RHS_LEAST, s->RhsSize);
    tighten_pivots(s, largest(w->Bbar.data, s->NumRows) / rhs, s->PrimalError / rhs);
    if (s->PrimalResidual > s->FeasTol &&
        STRIKE_SHARE * s->PrimalResidual > measure_infeasibility(s, w).PrimalMax)
        strike(s, &s->FeasTolCount, PRIMAL_STRIKES);
    if (s->DualResidual > s->OptTol) strike(s, &s->OptTolCount, DUAL_STRIKES);
}

template<class R> double working_objective(const sopt *s, const swork<R> *w)
{
    double sum = 0;
    for (int j = 0; j < s->NumVars; j++)
        if (s->WorkCost.data[j] != 0)
            sum += s->WorkCost.data[j] *
                   (is_basic(s, j) ? static_cast<double>(w->Bbar.data[s->VStat.data[j]])
                                   : nonbasic_value(s, j));
    return sum;
}

#define INSTANTIATE(R)                                                                     \
    template double working_objective<R>(const sopt *, const swork<R> *);                  \
    template void compute_primal<R>(sopt *, swork<R> *);                                   \
    template void refine_primal<R>(sopt *, swork<R> *);                                    \
    template void compute_dual<R>(sopt *, swork<R> *);                                     \
    template void refine_dual<R>(sopt *, swork<R> *);

INSTANTIATE(double)
INSTANTIATE(long double)
template void judge_residuals<double>(sopt *, const swork<double> *);

template void judge_residuals<long double>(sopt *, const swork<long double> *);

template void compute_dual_for<double>(sopt *, swork<double> *, const double *, double *);

template void compute_dual_for<long double>(sopt *, swork<long double> *, const double *,
                                            long double *);
