// lp_log.cpp -- the closing lines of an LP solve
#include "lp/lp.h"
#include "runtime/clock.h"
#include <algorithm>
#include <climits>

namespace
{
void log_effort(const LpSolve *lp, double start)
{
    const bool solved = lp->status >= TVX_OPTIMAL && lp->status <= TVX_UNBOUNDED;
    const double iterations = lp->result ? lp->result->itercount : lp->lost_iterations;
    TVXmsg(lp->env, "\n");
    TVXmsg(lp->env, "%s in %d iterations and %.2f seconds\n", solved ? "Solved" : "Stopped",
           static_cast<int>(std::min(iterations, double{INT_MAX})), WallClock() - start);
}

// An optimal basis of the scaled model may violate the tolerances of the model as given: say so.
int warn_unscaled(LpSolve *lp)
{
    TVXenv *env = lp->env;
    if (env->TARV_PAR_UNSCALEDVIO == 0) return 0;
    TRY(lp_quality(lp));
    const Quality *quality = &lp->result->quality;
    const double primal = std::max(quality->BoundVio.max, quality->ConstrVio.max);
    if (primal > env->FeasibilityTol)
        TVXmsg(env, "Warning: unscaled primal violation = %g and residual = %g\n", primal,
               quality->ConstrResidual.max);
    if (quality->DualVio.max > env->OptimalityTol)
        TVXmsg(env, "Warning: unscaled dual violation = %g and residual = %g\n",
               quality->DualVio.max, quality->DualResidual.max);
    return 0;
}

const char *lp_outcome(int status)
{
    switch (status) {
    case TVX_INFEASIBLE:
        return "Infeasible model\n";
    case TVX_INF_OR_UNBD:
        return "Infeasible or unbounded model\n";
    case TVX_UNBOUNDED:
        return "Unbounded model\n";
    case TVX_ITERATION_LIMIT:
        return "Iteration limit exceeded\n";
    case TVX_TIME_LIMIT:
        return "Time limit exceeded\n";
    case TVX_INTERRUPTED:
        return "Solve interrupted\n";
    case TVX_NUMERIC:
        return "Numeric error\n";
    default:
        return "";
    }
}
} // namespace

int lp_log_result(LpSolve *lp, double start)
{
    log_effort(lp, start);
    if (lp->status == TVX_OPTIMAL) {
        TVXmsg(lp->env, "Optimal objective %16.9e\n", lp->result->objval);
        return warn_unscaled(lp);
    }
    const char *line = lp_outcome(lp->status);
    if (*line) TVXmsg(lp->env, "%s", line);
    return 0;
}
