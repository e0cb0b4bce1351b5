// quality.cpp -- violations of a point in the primal, and the measures of an integer solution
//
// Method      One pass over columns for the activities (row_activity.h), one over rows, one over
//             variables. For an SOS the best window contains the member of largest magnitude, else that
//             member would be outside; so one or two places are to be looked at.
// Invariant   The measures of `result` that are not taken keep their empty state.
// Cost        O(n + m + nonzeros + SOS members)
#include "body/quality_parts.h"
#include "body/row_kind.h"
#include <algorithm>
#include <cmath>

void violation_add(Violation *violation, int index, double amount)
{
    if (std::isnan(amount)) amount = UNDEFINED_VALUE;
    if (amount <= 0) return;
    amount = std::min(amount, UNDEFINED_VALUE);
    violation->sum += amount;
    if (amount <= violation->max) return;
    violation->max = amount;
    violation->index = index;
}

namespace
{
// Distance of x to [lower, upper]; not a number if x is not a number.
double outside(double x, double lower, double upper)
{
    if (x < lower) return lower - x;
    if (x > upper) return x - upper;
    return std::isnan(x) ? x : 0;
}

char var_type(const ModelBody *body, int j)
{
    return body->vtypes.size ? body->vtypes[j] : 'C';
}
} // namespace

void quality_bounds(const ModelBody *body, const double *x, const QualityScale &scale,
                    Quality *result)
{
    for (int j = 0; j < body->numvars; j++) {
        const double lb = body->bound_kind[j] & 1 ? -HUGE_VAL : body->lb[j],
                     ub = body->bound_kind[j] & 2 ? HUGE_VAL : body->ub[j];
        double amount = outside(x[j], lb, ub);
        const char type = var_type(body, j);
        // a semi-continuous variable may also be zero: count the nearer of the two
        if (type == 'S' || type == 'N') amount = std::min(amount, fabs(x[j]));
        violation_add(&result->BoundVio, j, amount);
        violation_add(&result->BoundSVio, j, amount / scale_at(scale.col, j));
    }
}

void quality_rows(const ModelBody *body, const RowActivity &rows, const QualityScale &scale,
                  Quality *result)
{
    for (int i = 0; i < body->numconstrs; i++) {
        const double slack = static_cast<double>(body->rhs[i] - rows.sum[i]);
        const double amount = is_equation(body, i) ? fabs(slack) : -slack;
        violation_add(&result->ConstrVio, i, amount);
        violation_add(&result->ConstrSVio, i, amount * scale_at(scale.row, i));
    }
}

namespace
{
void integrality(const ModelBody *body, const double *x, Quality *result)
{
    for (int j = 0; j < body->numvars; j++) {
        const char type = var_type(body, j);
        if (type == 'C' || type == 'S') continue;
        violation_add(&result->IntVio, j, fabs(x[j] - floor(x[j] + 0.5)));
    }
}
} // namespace

double sos_violation(const ModelBody *body, int k, const double *x)
{
    const int first = body->sosbeg[k], end = body->sosbeg[k + 1];
    const auto magnitude = [&](int p) { return fabs(x[body->sosind[p]]); };
    int largest = first;
    for (int p = first + 1; p < end; p++)
        if (magnitude(p) > magnitude(largest)) largest = p;
    // the largest outside the windows {largest}, {largest - 1, largest}, {largest, largest + 1}
    double alone = 0, with_left = 0, with_right = 0;
    for (int p = first; p < end; p++) {
        if (p == largest) continue;
        alone = std::max(alone, magnitude(p));
        if (p != largest - 1) with_left = std::max(with_left, magnitude(p));
        if (p != largest + 1) with_right = std::max(with_right, magnitude(p));
    }
    return body->sostype[k] == 1 ? alone : std::min(with_left, with_right);
}

namespace
{
struct ToleranceWarning {
    const char *what;
    double amount;
    double tolerance;
};

void warn(TVXenv *env, const ToleranceWarning &test)
{
    if (test.amount > test.tolerance)
        TVXmsg(env, "Warning: max %s violation (%.4e) exceeds tolerance\n", test.what,
               test.amount);
}
} // namespace

int MipQuality(TVXenv *env, const ModelBody *body, const double *x, Quality *result,
               QualityWarnings warnings)
{
    RowActivity rows;
    TRY(row_activity(body, x, &rows));
    *result = Quality{};
    quality_rows(body, rows, QualityScale{}, result);
    quality_bounds(body, x, QualityScale{}, result);
    integrality(body, x, result);
    result->computed = 1;

    const double constr = result->ConstrVio.max, bound = result->BoundVio.max;
    const double integer = result->IntVio.max;
    double sos = 0;
    for (int k = 0; k < body->numsos; k++) sos = std::max(sos, sos_violation(body, k, x));
    if (warnings == QualityWarnings::YES) {
        warn(env, {"constraint", constr, env->FeasibilityTol});
        warn(env, {"bound", bound, env->FeasibilityTol});
        warn(env, {"integrality", integer, env->IntFeasTol});
        warn(env, {"SOS", sos, env->FeasibilityTol});
    }
    if (body->numsos)
        message_debug(env, "Violations: const %.4e, bound %.4e, int %.4e, sos %.4e\n",
                      constr, bound, integer, sos);
    else
        message_debug(env, "Violations: const %.4e, bound %.4e, int %.4e\n", constr, bound,
                      integer);
    return 0;
}
