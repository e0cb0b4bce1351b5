// mip_start.cpp -- points that callers give: complete or in part
//
// Method   Given entries of integer variables that are whole, and of continuous ones, are fixed within the bounds; the
//          rest is what a recursive search finds under SubMIPNodes. A complete point that is feasible needs none.
#include "mip/mip_start.h"
#include "mip/accept.h"
#include "mip/sub_mip.h"
#include <cmath>

namespace
{
constexpr double IN_BOUNDS = 1e-6, WHOLE = 1e-5; // distances at which an entry still counts

bool is_given(double value)
{
    return value < START_UNDEFINED; // false for NaN too
}

bool is_complete(const ModelBody *body, const double *start)
{
    for (int j = 0; j < body->numvars; j++)
        if (!is_given(start[j])) return false;
    return true;
}

bool may_be_zero(const ModelBody *body, int j)
{
    const char type = body->vtypes.size > 0 ? body->vtypes.data[j] : 'C';
    return type == 'S' || type == 'N';
}

// Bounds with the given entries fixed.
void fix_given(const ModelBody *body, const double *start, double *lower, double *upper)
{
    for (int j = 0; j < body->numvars; j++) {
        const double value = start[j];
        const char type = body->vtypes.size > 0 ? body->vtypes.data[j] : 'C';
        if (!is_given(value)) continue;
        const bool off = may_be_zero(body, j) && std::fabs(value) <= IN_BOUNDS;
        if (!off && (value < lower[j] - IN_BOUNDS || value > upper[j] + IN_BOUNDS))
            continue;
        const bool integral = type == 'B' || type == 'I' || type == 'N';
        if (integral && std::fabs(value - std::round(value)) > WHOLE) continue;
        const double kept = off ? 0 : integral ? std::round(value) : value;
        lower[j] = upper[j] = kept;
    }
}
} // namespace

int offer_start(MIPState *state, const double *start, SolutionSource source, bool *accepted)
{
    const ModelBody *body = space_outermost(state->Space);
    const int n = body->numvars;
    Acceptance outcome = Acceptance::INFEASIBLE;
    *accepted = false;
    if (is_complete(body, start)) {
        TRY(accept_callers_point(state, start, source, &outcome));
        *accepted = outcome == Acceptance::IMPROVED;
        if (*accepted || outcome == Acceptance::NOT_BETTER) return 0;
    }
    Array<double> lower, upper;
    TRY(array_copy(&lower, body->lb.data, n));
    TRY(array_copy(&upper, body->ub.data, n));
    fix_given(body, start, lower.data, upper.data);
    SubMipOutcome found;
    TRY(sub_mip_run({body, lower.data, upper.data, nullptr, state->Env,
                     1.0 * state->Env->SubMIPNodes, state->Pool.PruneValue},
                    &found));
    state->SubNodes += found.Nodes;
    state->SubIterations += found.Iterations;
    if (!found.Found) return 0;
    TRY(accept_callers_point(state, found.X.data, source, &outcome));
    *accepted = outcome == Acceptance::IMPROVED;
    return 0;
}
