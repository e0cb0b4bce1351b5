// simplex_query.cpp -- results of a simplex record, in the units and signs of the body
#include "simplex/dual.h"
#include "simplex/primal.h"
#include <algorithm>

namespace
{
// Value in user units of the scaled value x of variable j < NumCols.
double user_value(const sopt *s, int j, double x)
{
    return x * s->ColScale.data[j];
}

template<class R> void get_primal(const sopt *s, const swork<R> *w, double *x)
{
    for (int j = 0; j < s->NumCols; j++) {
        const int status = s->VStat.data[j];
        x[j] = user_value(s, j,
                          status >= 0 ? static_cast<double>(w->Bbar.data[status])
                                      : nonbasic_value(s, j));
    }
}

// Slack i has cost 0 and column e_i: its reduced cost is -pi_i.
template<class R> void get_dual(const sopt *s, const swork<R> *w, double *pi, double *rc)
{
    for (int i = 0; pi && i < s->NumRows; i++)
        pi[i] = -static_cast<double>(w->Cbar.data[s->NumCols + i]) * s->RowScale.data[i] /
                s->ObjScale;
    for (int j = 0; rc && j < s->NumCols; j++)
        rc[j] = static_cast<double>(w->Cbar.data[j]) / (s->ColScale.data[j] * s->ObjScale);
}
} // namespace

void simplex_get_primal(const sopt *s, double *x)
{
    if (!x) return;
    if (s->Quad)
        get_primal(s, s->Extended, x);
    else
        get_primal(s, s->Double, x);
}

void simplex_get_dual(const sopt *s, double *pi, double *rc)
{
    if (s->Quad)
        get_dual(s, s->Extended, pi, rc);
    else
        get_dual(s, s->Double, pi, rc);
}

void simplex_get_basis(const sopt *s, int *statuses)
{
    if (!statuses) return;
    for (int j = 0; j < s->NumVars; j++) {
        int status = s->VStat.data[j];
        if (status == AT_FIXED) status = AT_LOWER;
        const bool reversed = j < s->NumCols && s->ColScale.data[j] < 0;
        if (reversed && (status == AT_LOWER || status == AT_UPPER))
            status = status == AT_LOWER ? AT_UPPER : AT_LOWER;
        statuses[j] = status;
    }
}

bool simplex_get_farkas(const sopt *s, double *farkas)
{
    if (s->Status != SIMPLEX_INFEASIBLE || s->Proof != PROOF_FARKAS) return false;
    for (int i = 0; i < s->NumRows; i++)
        farkas[i] = s->ProofVector.data[i] * s->RowScale.data[i];
    return true;
}

bool simplex_get_ray(const sopt *s, double *ray)
{
    if (s->Status != SIMPLEX_UNBOUNDED || s->Proof != PROOF_RAY) return false;
    for (int j = 0; j < s->NumCols; j++) ray[j] = user_value(s, j, s->ProofVector.data[j]);
    return true;
}

double simplex_objective(const sopt *s)
{
    return s->Obj + s->ObjOffset;
}

double simplex_iterations(const sopt *s)
{
    return iterations(s);
}

int simplex_factorizations(const sopt *s)
{
    return s->NumFactor;
}

namespace
{
// The figures of a line of the log, in the caller's sense. Costs a pass over the variables.
struct Progress {
    double objective, primal_infeasibility, dual_infeasibility;
};

template<class R> Progress progress_of(const sopt *s, const swork<R> *w)
{
    const Infeasibility inf = measure_infeasibility(s, w);
    return {s->Sense * (true_objective(s, w) + s->ObjOffset), inf.PrimalSum, inf.DualSum};
}

Progress progress(const sopt *s)
{
    return s->Quad ? progress_of(s, s->Extended) : progress_of(s, s->Double);
}

// 0 not at all, 1 single costs or bounds, 2 all of them
int perturbation(const sopt *s)
{
    return s->Perturbed == PERTURBED_NONE ? 0 : s->Perturbed == PERTURBED_SINGLE ? 1 : 2;
}
} // namespace

// The sums are computed only when the callback function asks for them.
int simplex_answer(const void *record, int what, void *result)
{
    const sopt *s = static_cast<const sopt *>(record);
    double *value = static_cast<double *>(result);
    switch (what) {
    case TVX_CB_SIMPLEX_ITERATIONS:
        *value = simplex_iterations(s);
        return 0;
    case TVX_CB_SIMPLEX_PERTURBED:
        *static_cast<int *>(result) = perturbation(s);
        return 0;
    case TVX_CB_SIMPLEX_OBJECTIVE:
        *value = progress(s).objective;
        return 0;
    case TVX_CB_SIMPLEX_PRIMAL_INFEASIBILITY:
        *value = progress(s).primal_infeasibility;
        return 0;
    case TVX_CB_SIMPLEX_DUAL_INFEASIBILITY:
        *value = progress(s).dual_infeasibility;
        return 0;
    default:
        return TVX_ERROR_CALLBACK;
    }
}

int simplex_status(const sopt *s)
{
    return s->Status;
}

double simplex_work_units(const sopt *s)
{
    const double factors = s->Double     ? s->Double->Lu.WorkUnits
                           : s->Extended ? s->Extended->Lu.WorkUnits
                                         : 0;
    return s->WorkUnits + s->FactorWork + factors;
}

double simplex_take_work(sopt *s)
{
    const double taken = s->WorkTaken;
    s->WorkTaken = simplex_work_units(s);
    return s->WorkTaken - taken;
}

void simplex_get_scaling(const sopt *s, const double **row, const double **col, double *obj)
{
    if (row) *row = s->Scaled ? s->RowScale.data : nullptr;
    if (col) *col = s->Scaled ? s->ColScale.data : nullptr;
    if (obj) *obj = s->ObjScale;
}

namespace
{
// The weights of the last run, if they are steepest edge weights of the current basis.
template<class R> int held_norms(const sopt *s, const swork<R> *w, double *norms)
{
    const bool dual = s->Method == METHOD_DUAL;
    if (!w || (dual ? !w->Dual : !w->Primal)) return 0;
    if (dual && (w->Dual->PricingCur == PRICE_DEVEX || !dual_weights_kept(s, w->Dual)))
        return 0;
    if (!dual &&
        (w->Primal->WeightAge != s->BasisAge || w->Primal->WeightPivots != s->Pivots))
        return 0;
    const R *weights = dual ? w->Dual->WeightOf.data : w->Primal->Weights.data;
    for (int j = 0; norms && j < s->NumVars; j++)
        norms[j] = s->VStat.data[j] != AT_FIXED && is_basic(s, j) == dual
                       ? static_cast<double>(weights[j])
                       : 0;
    return dual ? 1 : 2;
}
} // namespace

int simplex_get_norms(const sopt *s, double *norms)
{
    return s->Quad ? held_norms(s, s->Extended, norms) : held_norms(s, s->Double, norms);
}

bool simplex_has_factor(const sopt *s)
{
    return s->Quad ? has_factor(s, s->Extended) : has_factor(s, s->Double);
}

bool simplex_has_fresh_factor(const sopt *s)
{
    const int updates = s->Quad ? s->Extended->Lu.NumUpdates : s->Double->Lu.NumUpdates;
    return simplex_has_factor(s) && updates == 0;
}

namespace
{
template<class R> int refactor(sopt *s, swork<R> *w)
{
    TRY(Refactor(s, w));
    finish_values(s, w);
    return 0;
}
} // namespace

int simplex_refactor(sopt *s)
{
    if (simplex_has_fresh_factor(s)) return 0;
    s->Running = 0; // no callbacks
    return s->Quad ? refactor(s, s->Extended) : refactor(s, s->Double);
}

int simplex_confirm(sopt *s, bool *optimal)
{
    const int repairs = s->SingularCount;
    TRY(simplex_refactor(s));
    const Infeasibility inf = s->Quad ? measure_infeasibility(s, s->Extended)
                                      : measure_infeasibility(s, s->Double);
    *optimal = s->Status == SIMPLEX_OPTIMAL && s->SingularCount == repairs &&
               inf.PrimalCount == 0 && inf.DualCount == 0;
    if (!*optimal) s->Status = SIMPLEX_RUNNING; // the next run has to solve
    return 0;
}

bool simplex_change_bound(sopt *s, int j, double lb, double ub)
{
    const double scale = s->ColScale.data[j];
    double lower = working_bound(s, lb), upper = working_bound(s, ub);
    if (scale < 0) {
        std::swap(lower, upper);
        lower = -lower;
        upper = -upper;
    }
    const bool bounded_below = has_lower(s, lower), bounded_above = has_upper(s, upper);
    const bool was_free = !has_lower(s, s->Lower.data[j]);
    if (bounded_below == was_free || (!bounded_below && bounded_above)) return false;
    for (double *bound : {&lower, &upper})
        if (std::fabs(*bound) < s->Infinity) *bound /= std::fabs(scale);
    s->Lower.data[j] = lower;
    s->Upper.data[j] = upper;
    s->InfeasCheckNeeded = 1;
    return true;
}
