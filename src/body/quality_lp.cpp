// quality_lp.cpp -- all measures of an LP solution: a point with dual values
//
// Problem     minimise c x, A x + s = b, l <= x <= u, s_i >= 0 for inequalities, s_i = 0 for equalities
//             (the body's form). The multiplier of x_j is d_j = c_j - sum_i a_ij pi_i, that of s_i is -pi_i.
// Method      The conditions of Karush, Kuhn and Tucker one by one: x and s in their ranges, d_j >= 0
//             unless x_j is at its upper bound, d_j <= 0 unless at its lower, the same for s and -pi. A
//             value counts as being at a bound if its distance is at most FeasibilityTol plus 1e-9 times
//             the numbers that it was computed from, or if it is beyond. The remaining complementarity
//             violation of such a value with a nonzero multiplier is measured by ComplVio.
// Invariant   Exact data with a zero in every measure prove optimality of the exact LP.
// Cost        O(n + m + nonzeros), three arrays over rows.
// Literature  H. W. Kuhn, A. W. Tucker, "Nonlinear programming", Berkeley Symposium 2, 1951.
#include "body/quality_parts.h"
#include "body/row_kind.h"
#include "body/signs.h"
#include <algorithm>
#include <cmath>

namespace
{
// Relative distance within which a value counts as being at its bound: rounding errors of updates grow to about this
// size before a refactorisation.
constexpr double RELATIVE_PLACE_TOLERANCE = 1e-9;

// A value with its range and multiplier, and the scale factor of the multiplier.
struct Stand {
    int index;         // as DualVio reports it
    double multiplier; // >= 0 wanted at lower, <= 0 at upper, 0 between
    double below;      // value - lower bound, or infinity
    double above;      // upper bound - value, or infinity
    double tolerance;  // distance at which it is at the bound
    double scale;      // multiplier of the scaled model / multiplier
};

// DualVio and ComplVio of one variable or slack.
void judge(const Stand &s, Quality *result)
{
    const double toward = s.multiplier > 0 ? s.below : s.above; // the bound it prices
    const double force = fabs(s.multiplier);
    if (toward > s.tolerance || std::isnan(toward) || std::isnan(force)) {
        violation_add(&result->DualVio, s.index, force);
        violation_add(&result->DualSVio, s.index, force * s.scale);
    }
    // an infinite distance is a wrong sign, not a lack of complementarity
    if (force > 0 && !std::isinf(toward))
        violation_add(&result->ComplVio, s.index, force * fabs(toward));
}

// The multipliers in the body's form. 0 or OUT_OF_MEMORY.
int body_duals(const ModelBody *body, const JudgedPoint &point, Array<double> *pi)
{
    TRY(array_copy(pi, point.pi, body->numconstrs));
    if (point.signs == PointSigns::CALLER)
        for (int i = 0; i < body->numconstrs; i++)
            (*pi)[i] *= body->sense * row_sign(body, i);
    return 0;
}

void row_residuals(const ModelBody *body, const JudgedPoint &point, const RowActivity &rows,
                   const QualityScale &scale, Quality *result)
{
    for (int i = 0; i < body->numconstrs; i++) {
        const bool held = point.row_basis && point.row_basis[i] < 0;
        if (!held && !is_equation(body, i)) continue;
        const double residual = static_cast<double>(fabsl(body->rhs[i] - rows.sum[i]));
        violation_add(&result->ConstrResidual, i, residual);
        violation_add(&result->ConstrSResidual, i, residual * scale_at(scale.row, i));
    }
}

void row_duals(const TVXenv *env, const ModelBody *body, const double *pi,
               const RowActivity &rows, const QualityScale &scale, Quality *result)
{
    for (int i = 0; i < body->numconstrs; i++) {
        if (is_equation(body, i) && !std::isnan(pi[i])) continue; // any sign will do
        const double size = std::max(fabs(body->rhs[i]), rows.size[i]);
        judge({.index = body->numvars + i,
               .multiplier = -pi[i],
               .below = static_cast<double>(body->rhs[i] - rows.sum[i]),
               .above = HUGE_VAL,
               .tolerance = env->FeasibilityTol + RELATIVE_PLACE_TOLERANCE * size,
               .scale = scale.obj / scale_at(scale.row, i)},
              result);
    }
}

// d_j of the body's form.
long double reduced_cost(const ModelBody *body, const double *pi, int j)
{
    const int *vind = body->vind.data;
    const double *vval = body->vval.data;
    const int begin = body->vbeg[j], end = begin + body->vlen[j];
    long double d = body->obj[j];
    for (int p = begin; p < end; p++) d -= static_cast<long double>(vval[p]) * pi[vind[p]];
    return d;
}

void var_duals(const TVXenv *env, const ModelBody *body, const JudgedPoint &point,
               const double *pi, const QualityScale &scale, Quality *result)
{
    const int sign = point.signs == PointSigns::CALLER ? body->sense : 1; // of point.rc
    for (int j = 0; j < body->numvars; j++) {
        const double x = point.x[j], lb = body->lb[j], ub = body->ub[j];
        const long double exact = reduced_cost(body, pi, j);
        const double d = static_cast<double>(exact);
        const double factor = scale_at(scale.col, j) * scale.obj;
        const double near = d > 0 ? lb : ub;
        judge({.index = j,
               .multiplier = d,
               .below = body->bound_kind[j] & 1 ? HUGE_VAL : x - lb,
               .above = body->bound_kind[j] & 2 ? HUGE_VAL : ub - x,
               .tolerance = env->FeasibilityTol + RELATIVE_PLACE_TOLERANCE * fabs(near),
               .scale = factor},
              result);
        if (!point.rc) continue;
        const double residual = static_cast<double>(fabsl(exact - sign * point.rc[j]));
        violation_add(&result->DualResidual, j, residual);
        violation_add(&result->DualSResidual, j, residual * factor);
    }
}
} // namespace

int LpQuality(TVXenv *env, const ModelBody *body, const JudgedPoint &point,
              const QualityScale &scale, Quality *result)
{
    RowActivity rows;
    Array<double> pi;
    TRY(row_activity(body, point.x, &rows));
    TRY(body_duals(body, point, &pi));
    *result = Quality{};
    quality_bounds(body, point.x, scale, result);
    quality_rows(body, rows, scale, result);
    row_residuals(body, point, rows, scale, result);
    row_duals(env, body, pi.data, rows, scale, result);
    var_duals(env, body, point, pi.data, scale, result);
    result->computed = 1;
    message_debug(env, "Violations(primal): const %.6e, bound %.6e, rc %.6e\n",
                  result->ConstrVio.max, result->BoundVio.max, result->DualVio.max);
    message_debug(env, "Scaled violations: const %.6e, bound %.6e, rc %.6e\n",
                  result->ConstrSVio.max, result->BoundSVio.max, result->DualSVio.max);
    return 0;
}
