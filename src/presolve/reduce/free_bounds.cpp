// free_bounds.cpp -- at the end of presolve, implied bounds for columns without bounds
//
// Problem     An interior point method is more stable without free columns; the dual simplex starts dual feasible and
//             takes longer steps if columns have both bounds. Bounds that rows imply can be added without a change of
//             the feasible set.
// Method      Bounds are propagated over all rows, widened by the tolerance. For the interior point method free columns
//             get one of the implied bounds, for the dual simplex columns with one bound the other one; each is moved
//             outwards by a share, so that no feasible point is at it. The primal simplex gets none (9 % more
//             iterations with them on Netlib); the dual simplex has 6 % fewer on Netlib, Kennington and Meszaros.
// Postsolve   Such a bound is not active at a feasible point, so that in an optimal basis no column is at it. A proof
//             that the reduced model is infeasible may use it: then the propagation is repeated to find its origins.
// Cost        O(entries) for each of a few rounds.
// Literature  R. E. Bixby, "Solving real-world linear programs: a decade and more of progress", Operations Research 50,
//             2002, on boxed columns and the dual simplex.
#include "presolve/bound_propagation.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int ROUNDS = 10;
// share of 1 + |bound| by which the bound is moved outwards
constexpr double SAFE_SHARE = 0.001;
constexpr double LARGEST = 1e7;       // larger bounds are of no use
constexpr double LONG_COLUMNS = 1000; // models with more entries per column are skipped

bool is_worth_it(const PresolveWork *w)
{
    if (w->Method == LP_PRIMAL_SIMPLEX) return false;
    if (!w->Env->TARV_PAR_PREBOUND || w->MatrixClass == MATRIX_UNIT_EQUATIONS) return false;
    double entries = 0, cols = 0;
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j)) continue;
        entries += w->ColCnt.data[j];
        cols++;
    }
    return entries < LONG_COLUMNS * cols;
}

double moved_away(double bound, int side)
{
    const double step = (std::fabs(bound) + 1) * SAFE_SHARE;
    return side == UPPER_SIDE ? bound + step : bound - step;
}

// Adds the implied bound of column j on this side, if it is useful.
bool give_bound(const BoundPropagation *p, PresolveWork *w, int j, int side)
{
    const double bound = p->Bound.data[2 * j + side];
    if (std::fabs(bound) >= LARGEST) return false;
    const bool upper = side == UPPER_SIDE;
    change_bounds(w, j, upper ? w->Lb.data[j] : moved_away(bound, side),
                  upper ? moved_away(bound, side) : w->Ub.data[j]);
    w->GivenBounds.data[j] |= static_cast<char>(1 << side);
    w->BoundsChanged++;
    return true;
}

void bound_column(const BoundPropagation *p, PresolveWork *w, int j)
{
    const bool lower = has_lb(w, j), upper = has_ub(w, j);
    if (w->Method == LP_DUAL_SIMPLEX) {
        if (lower != upper) give_bound(p, w, j, lower ? UPPER_SIDE : LOWER_SIDE);
    } else if (!lower && !upper && !give_bound(p, w, j, UPPER_SIDE)) {
        give_bound(p, w, j, LOWER_SIDE);
    }
}
int propagate(BoundPropagation *p, PresolveWork *w)
{
    TRY(propagation_alloc(p, w, PROPAGATE_PRIMAL));
    propagation_set_rows(p, w->FeasTol);
    propagation_list_all(p);
    TRY(propagation_run(p, ROUNDS));
    w->Work += p->Effort;
    return 0;
}

// True if the bound of column j whose multiplier is d_j in a dual ray was added by this reduction.
bool leans_on_given(const PresolveResult *result, int j, double d)
{
    const int side = d > 0 ? LOWER_SIDE : UPPER_SIDE;
    return d != 0 &&
           (result->GivenBounds.data[j] & (1 << side)); // d_j == 0: no bound is used
}

// The reduced model without the added bounds.
int load_reduced(PresolveWork *w, const PresolveResult *result)
{
    TRY(work_load(w, result->Reduced, result->Env));
    for (int j = 0; j < result->NumCols; j++) {
        const int k = result->ColMap.data[j], given = result->GivenBounds.data[j];
        if (k < 0) continue;
        if (given & (1 << LOWER_SIDE)) w->Lb.data[k] = -w->INF;
        if (given & (1 << UPPER_SIDE)) w->Ub.data[k] = w->INF;
    }
    return 0;
}
} // namespace

int replace_given_bounds(const PresolveResult *result, double *y, double *d)
{
    if (result->GivenBounds.size == 0) return 0;
    bool leans = false;
    for (int j = 0; j < result->NumCols && !leans; j++) {
        const int k = result->ColMap.data[j];
        leans = k >= 0 && leans_on_given(result, j, d[k]);
    }
    if (!leans) return 0;
    PresolveWork w;
    BoundPropagation p;
    int status = load_reduced(&w, result);
    if (status == 0) status = propagate(&p, &w);
    if (status == 0) propagation_unfold(&p, y, d);
    work_free(&w);
    return status == OUT_OF_MEMORY ? status : 0;
}

int pre_free_bounds(PresolveWork *w)
{
    if (!is_worth_it(w)) return 0;
    BoundPropagation p;
    TRY(propagate(&p, w));
    TRY(array_assign(&w->GivenBounds, w->NumCols, char(0)));
    if (p.Contradiction) return 0; // left to the solver
    for (int j = 0; j < w->NumCols; j++) {
        TRY(check_limits(w, 1 + std::max(0, w->ColCnt.data[j])));
        if (is_live_col(w, j) && w->ColFlags.data[j] == 0) bound_column(&p, w, j);
    }
    return 0;
}
