// dual_bounds.cpp -- bounds on dual values fix columns and turn inequalities into equations
//
// Problem     A column without an upper bound has reduced cost c - a y >= 0 in every optimum, one without a lower bound
//             <= 0; a row a x <= b has y <= 0. Find the bounds on dual values that these inequalities imply.
// Method      Bounds implied by the rows count as infinite (dispensable_bounds.cpp). The inequalities of columns are
//             propagated like rows. A column whose reduced cost is then bounded away from zero is at its bound in every
//             optimum, and a row whose dual value is bounded away from zero is tight.
// Safety      All inequalities are widened by OptTol, which is also the smallest distance of a reduced cost or dual
//             value to zero: so the conclusions hold for every solution that is dual feasible within the tolerance.
//             Columns and signs of rows that a conclusion depends on are kept (bound_origins.cpp), and bounds that were
//             counted as infinite for it are removed from the model. Therefore the conclusions hold for the reduced
//             model.
// Postsolve   A fixed column is nonbasic at its bound with a reduced cost of that sign (fix.cpp); a row that became an
//             equation is tight and has a dual value with the sign of an inequality. No undo record is needed.
// Cost        O(entries) for each of a few rounds.
// Literature  E. D. Andersen and K. D. Andersen, "Presolving in linear programming", Math. Prog. 71, 1995.
//             J. Gondzio, "Presolve analysis of linear programs prior to applying an interior point method",
//             INFORMS J. Computing 9, 1997.
#include "presolve/reduce/dual_bounds.h"
#include "presolve/claim.h"
#include "presolve/errors.h"

namespace
{
constexpr int ROUNDS = 5; // more rounds found almost nothing on Netlib
// columns with a smaller range are fixed by other reductions
constexpr double CLOSED = 1e-10;

// The inequalities of the columns, and the signs of the rows.
int set_columns(BoundPropagation *p, PresolveWork *w, const Array<char> &given)
{
    TRY(propagation_alloc(p, w, PROPAGATE_DUAL));
    for (int j = 0; j < w->NumCols; j++) {
        TRY(check_limits(w, 1));
        if (w->ColCnt.data[j] <= 0 || w->ColFlags.data[j] || is_integer(w, j)) continue;
        const bool no_lower = !has_lb(w, j) || (given.data[j] & (1 << LOWER_SIDE)),
                   no_upper = !has_ub(w, j) || (given.data[j] & (1 << UPPER_SIDE));
        const double wider = w->OptTol + cost_error(w, j);
        if (no_upper) p->Limit.data[2 * j + UPPER_SIDE] = w->Obj.data[j] + wider;
        if (no_lower) p->Limit.data[2 * j + LOWER_SIDE] = w->Obj.data[j] - wider;
        if (no_upper || no_lower) propagation_list(p, j);
    }
    for (int i = 0; i < w->NumRows; i++)
        if (is_live_row(w, i) && w->Sense.data[i] != '=')
            p->Start.data[2 * i + UPPER_SIDE] = w->OptTol;
    return check_limits(w, w->NumRows);
}

// Bounds of the reduced cost of column j from all dual values, without bounds that the column itself has implied.
int try_column(BoundPropagation *p, PresolveWork *w, int j)
{
    const double cost = w->Obj.data[j], zero = w->OptTol + cost_error(w, j);
    if (has_lb(w, j) && cost - activity_of_others(p, j, LOWER_SIDE) > zero)
        return claim_con(p, j, 1 << LOWER_SIDE) ? fix_at_lower(w, j) : 0;
    if (has_ub(w, j) && cost - activity_of_others(p, j, UPPER_SIDE) < -zero)
        return claim_con(p, j, 1 << UPPER_SIDE) ? fix_at_upper(w, j) : 0;
    return 0;
}

int fix_columns(BoundPropagation *p, PresolveWork *w)
{
    for (int j = 0; j < w->NumCols; j++) {
        if (w->ColCnt.data[j] <= 0 || w->ColFlags.data[j]) continue;
        if (w->Ub.data[j] - w->Lb.data[j] <= CLOSED) continue;
        TRY(propagation_check(p));
        TRY(try_column(p, w, j));
    }
    return 0;
}

int tighten_rows(BoundPropagation *p, PresolveWork *w)
{
    for (int i = 0; i < w->NumRows; i++) {
        const int place = 2 * i + UPPER_SIDE;
        TRY(check_limits(w, 1));
        if (!is_live_row(w, i) || w->Sense.data[i] == '=') continue;
        if (p->Newest.data[place] < 0 || p->Bound.data[place] >= -w->OptTol) continue;
        if (!claim_start(p, place)) continue;
        w->Sense.data[i] = '=';
        w->IneqToEq++;
        mark_row(w, i);
        mark_cols_of_row(w, i);
        TRY(check_limits(w, w->RowCnt.data[i]));
    }
    return 0;
}

// Removes the bounds that were counted as infinite for a conclusion.
int drop_bounds(const BoundPropagation *p, PresolveWork *w, const Array<char> &given)
{
    for (int j = 0; j < w->NumCols; j++) {
        const int used = p->ConState.data[j];
        if (!is_live_col(w, j) || (used & CON_GONE) || given.data[j] == 0) continue;
        const bool lower = (used & CON_LOW_USED) && (given.data[j] & (1 << LOWER_SIDE)),
                   upper = (used & CON_HIGH_USED) && (given.data[j] & (1 << UPPER_SIDE));
        if (!lower && !upper) continue;
        change_bounds(w, j, lower ? -w->INF : w->Lb.data[j],
                      upper ? w->INF : w->Ub.data[j]);
        w->BoundsChanged++;
        mark_col(w, j);
        mark_rows_of_col(w, j);
        TRY(check_limits(w, w->ColCnt.data[j]));
    }
    return 0;
}
} // namespace

int pre_dual_bounds(PresolveWork *w)
{
    if (!w->Env->TARV_PAR_DUALREDUCTION) return 0;
    Array<char> given;
    TRY(dispensable_bounds(w, &given));
    BoundPropagation p;
    TRY(set_columns(&p, w, given));
    TRY(propagation_run(&p, ROUNDS));
    int status = 0;
    if (p.Contradiction) { // the dual is infeasible
        w->InfeasCol = p.WrongCon;
        status = claim_propagated(w, &p);
    } else {
        status = fix_columns(&p, w);
        if (status == 0) status = tighten_rows(&p, w);
        if (status == 0) status = drop_bounds(&p, w, given);
    }
    w->Work += p.Effort;
    return status;
}
