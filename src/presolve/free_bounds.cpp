// free_bounds.cpp -- at the end of presolve, bounds for columns that have none
//
// Problem     An interior point method is at ease when columns are bounded; where rows imply a bound anyway, it may be
//             given. The feasible set does not change.
// Method      Bounds are propagated over all rows. Columns without any bound get the one that follows, moved away by a
//             part, so that no feasible point stands at it.
// Way back    Such a bound is never active at a feasible point, so a nonbasic column cannot stand there; nothing to
//             remember. A vertex method could pass through it on its way, though, and would only be slowed down: so
//             this is for the interior point method alone.
// Cost        O(entries) for each of few rounds.
#include "presolve/bound_propagation.h"
#include <cmath>

namespace
{
constexpr int METHOD_INTERIOR = 2;
constexpr int ROUNDS = 10;
constexpr double SAFE_SHARE = 0.001;  // of 1 + |bound| that the bound is moved away
constexpr double LARGEST = 1e7;       // larger bounds help nobody
constexpr double LONG_COLUMNS = 1000; // entries per column from which it is not tried

double live_entries(const PresolveWork *w, int *cols)
{
    double entries = 0;
    *cols = 0;
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j)) continue;
        entries += w->ColCnt.data[j];
        ++*cols;
    }
    return entries;
}

void bound_column(const BoundPropagation *p, PresolveWork *w, int j)
{
    const double lower = p->Bound.data[2 * j + LOWER_SIDE],
                 upper = p->Bound.data[2 * j + UPPER_SIDE];
    double lb = w->Lb.data[j], ub = w->Ub.data[j];
    if (std::fabs(upper) < LARGEST)
        ub = upper + (std::fabs(upper) + 1) * SAFE_SHARE;
    else if (std::fabs(lower) < LARGEST)
        lb = lower - (std::fabs(lower) + 1) * SAFE_SHARE;
    else
        return;
    change_bounds(w, j, lb, ub);
    w->BoundsChanged++;
}
} // namespace

int pre_free_bounds(PresolveWork *w)
{
    int cols = 0;
    const double entries = live_entries(w, &cols);
    if (w->Env->LPMethod != METHOD_INTERIOR || !w->Env->TARV_PAR_PREBOUND ||
        w->MatrixClass == MATRIX_UNIT_EQUATIONS || entries >= LONG_COLUMNS * cols)
        return 0;
    BoundPropagation p;
    TRY(propagation_alloc(&p, w, PROPAGATE_PRIMAL));
    propagation_set_rows(&p, w->FeasTol);
    propagation_list_all(&p);
    TRY(propagation_run(&p, ROUNDS));
    w->Work += p.Effort;
    if (p.Contradiction) return 0; // the solver tells
    for (int j = 0; j < w->NumCols; j++)
        if (is_live_col(w, j) && w->ColFlags.data[j] == 0 && !has_lb(w, j) && !has_ub(w, j))
            bound_column(&p, w, j);
    return 0;
}
