// lp_credible.cpp -- can the point that the simplex calls optimal be an optimum of the model?
//
// Problem     Tolerances hold in the scaled model. Where numbers are so wild that the scale factors hide everything, or
//             that products overflow, a scaled point within tolerance may miss a constraint of the model by all that it
//             asks for, or hold values that are no numbers. Such a point is no answer: the end is numeric trouble.
// Method      The objective must be a finite number. A value may be outside its row or bound by GROSS_TOLERANCES times
//             FeasibilityTol, or by GROSS_SHARE of the largest number that it comes from: what is less is told by a
//             warning and by the quality attributes, and users can judge it.
// Cost        O(n + m + nonzeros)
#include "frame/optimize.h"
#include "frame/row_activity.h"
#include "frame/row_kind.h"
#include "frame/solution.h"
#include "simplex/simplex.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double GROSS_TOLERANCES = 1000; // scale factors of usual models hide so much
constexpr double GROSS_SHARE = 1e-3; // three correct digits are the least for an answer

struct Judge {
    double tolerance; // violations up to here pass whatever the numbers

    // Written so that what is no number does not pass.
    bool passes(double violation, double size) const
    {
        return violation <= std::max(tolerance, GROSS_SHARE * size);
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
} // namespace

int lp_credible(TVXmodel *model, bool *credible)
{
    const ModelBody *body = model->body;
    *credible = std::isfinite(simplex_objective(model->simplex));
    if (!*credible) return 0;
    const double *x = nullptr;
    TRY(solution_x(model, &x));
    RowActivity rows;
    TRY(row_activity(body, x, &rows));
    const Judge judge = {GROSS_TOLERANCES * model->env->FeasibilityTol};
    *credible = bounds_hold(body, x, judge) && rows_hold(body, rows, judge);
    return 0;
}
