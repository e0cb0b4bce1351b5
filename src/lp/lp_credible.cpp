// lp_credible.cpp -- can the point that the simplex calls optimal be an optimum of the model?
//
// Problem     Tolerances hold in the scaled model. Where numbers are so wild that the scale factors hide everything, or
//             that products overflow, a scaled point within tolerance may miss a constraint of the model by all that it
//             asks for, or hold values that are no numbers. Such a point is no answer: the end is numeric trouble.
// Method      The objective must be a finite number. A value may be outside its row or bound by GROSS_TOLERANCES times
//             FeasibilityTol, or by GROSS_SHARE of the largest number that it comes from: what is less is told by a
//             warning and by the quality attributes, and users can judge it.
// Cost        O(n + m + nonzeros)
#include "lp/lp_credible.h"
#include "body/row_activity.h"
#include "body/row_kind.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double GROSS_TOLERANCES = 1000; // scale factors of usual models hide so much
constexpr double GROSS_SHARE = 1e-3; // three correct digits are the least for an answer
constexpr double ROUNDING_SHARE_OF_ROW = 1e-14; // of the terms of a row, or of a bound

struct Judge {
    double tolerance; // violations up to here pass whatever the numbers
    double share;     // and so do those up to this share of what they come from

    // Written so that what is no number does not pass.
    bool passes(double violation, double size) const
    {
        return violation <= std::max(tolerance, share * size);
    }
};

bool rows_hold(const ModelBody *body, const RowActivity &rows, const Judge &judge)
{
    for (int i = 0; i < body->numconstrs; i++) {
        if (row_kind(body, i) == RowKind::FREE) continue;
        const double above = static_cast<double>(rows.sum[i] - body->rhs[i]);
        const double violation = is_equation(body, i) ? std::fabs(above) : above;
        if (!judge.passes(violation, std::max(std::fabs(body->rhs[i]), rows.size[i])))
            return false;
    }
    return true;
}

bool bounds_hold(const ModelBody *body, const double *x, const Judge &judge)
{
    for (int j = 0; j < body->numvars; j++) {
        const bool below = body->bound_kind[j] & 1 ||
                           judge.passes(body->lb[j] - x[j], std::fabs(body->lb[j]));
        const bool above = body->bound_kind[j] & 2 ||
                           judge.passes(x[j] - body->ub[j], std::fabs(body->ub[j]));
        if (!below || !above || !std::isfinite(x[j])) return false;
    }
    return true;
}

int point_holds(const LpSolve *lp, const Judge &judge, bool *holds)
{
    const ModelBody *body = lp->body;
    Array<double> x;
    TRY(array_resize(&x, body->numvars));
    simplex_get_primal(lp->simplex, x.data);
    RowActivity rows;
    TRY(row_activity(body, x.data, &rows));
    *holds = bounds_hold(body, x.data, judge) && rows_hold(body, rows, judge);
    return 0;
}
} // namespace

int lp_credible(const LpSolve *lp, bool *credible)
{
    *credible = std::isfinite(simplex_objective(lp->simplex));
    if (!*credible) return 0;
    const double tolerance = GROSS_TOLERANCES * lp->env->FeasibilityTol;
    return point_holds(lp, {tolerance, GROSS_SHARE}, credible);
}

int lp_point_holds(const LpSolve *lp, bool *holds)
{
    return point_holds(lp, {lp->env->FeasibilityTol, ROUNDING_SHARE_OF_ROW}, holds);
}
