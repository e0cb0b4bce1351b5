// optimize_log.cpp -- the lines that a solve prints at its beginning and end (optimize_log.h)
//
// The lines of the solvers in between are theirs. All go through TVXmsg, so OutputFlag and LogFile
// hold for them.
#include "api/optimize_log.h"
#include "attributes/solution.h"
#include "body/quality.h"
#include "runtime/clock.h"
#include "runtime/text_number.h"
#include "runtime/thread.h"
#include <algorithm>
#include <climits>
#include <cmath>

void log_model_size(TVXmodel *model)
{
    const ModelBody *body = model->body;
    TVXmsg(model->env, "Optimize a model with %d rows, %d columns and %d nonzeros\n",
           body->numconstrs, body->numvars, body->numnz);
}

// ---- Linear programs ----

void log_lp_effort(TVXmodel *model, double iterations, double start)
{
    const int status = model->status;
    const bool solved = status >= TVX_OPTIMAL && status <= TVX_UNBOUNDED;
    TVXmsg(model->env, "\n");
    TVXmsg(model->env, "%s in %d iterations and %.2f seconds\n",
           solved ? "Solved" : "Stopped",
           static_cast<int>(std::min(iterations, double{INT_MAX})), WallClock() - start);
}

// An optimal basis of the scaled model may violate the tolerances of the model as given: say so.
static int warn_unscaled(TVXmodel *model)
{
    TVXenv *env = model->env;
    if (env->TARV_PAR_UNSCALEDVIO == 0) return 0;
    TRY(solution_quality(model));
    const Quality *quality = &model->lp_result->quality;
    const double primal = std::max(quality->BoundVio.max, quality->ConstrVio.max);
    if (primal > env->FeasibilityTol)
        TVXmsg(env, "Warning: unscaled primal violation = %g and residual = %g\n", primal,
               quality->ConstrResidual.max);
    if (quality->DualVio.max > env->OptimalityTol)
        TVXmsg(env, "Warning: unscaled dual violation = %g and residual = %g\n",
               quality->DualVio.max, quality->DualResidual.max);
    return 0;
}

static const char *lp_outcome(int status)
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

int log_lp_outcome(TVXmodel *model)
{
    if (model->status == TVX_OPTIMAL) {
        TVXmsg(model->env, "Optimal objective %16.9e\n", model->lp_result->objval);
        return warn_unscaled(model);
    }
    const char *line = lp_outcome(model->status);
    if (*line) TVXmsg(model->env, "%s", line);
    return 0;
}

// ---- Mixed-integer programs ----

static void log_mip_outcome(TVXenv *env, int status, int error)
{
    switch (status) {
    case TVX_OPTIMAL:
        TVXmsg(env, "Optimal solution found (tolerance %.2e)\n", env->MIPGap);
        break;
    case TVX_INFEASIBLE:
        TVXmsg(env, "Model is infeasible\n");
        break;
    case TVX_INF_OR_UNBD:
        TVXmsg(env, "Model is infeasible or unbounded\n");
        break;
    case TVX_UNBOUNDED:
        TVXmsg(env, "Model is unbounded\n");
        break;
    case TVX_CUTOFF:
        TVXmsg(env, "Model objective exceeds cutoff\n");
        break;
    case TVX_ITERATION_LIMIT:
        TVXmsg(env, "Iteration limit reached\n");
        break;
    case TVX_NODE_LIMIT:
        TVXmsg(env, "Node limit reached\n");
        break;
    case TVX_TIME_LIMIT:
        TVXmsg(env, "Time limit reached\n");
        break;
    case TVX_SOLUTION_LIMIT:
        TVXmsg(env, "Solution limit reached\n");
        break;
    case TVX_INTERRUPTED:
        if (error)
            TVXmsg(env, "Solve interrupted (error code %d)\n", error);
        else
            TVXmsg(env, "Solve interrupted\n");
        break;
    default:
        break;
    }
}

static constexpr int FIGURE_LENGTH =
    32; // characters of "%.10e" or of a percentage, and more
static constexpr double SAME_VALUE = 1e-10;     // objective and bound that meet
static constexpr double NO_RELATIVE_GAP = 1e-6; // objective too close to 0 for a percentage

static bool is_finite_value(double value)
{
    return fabs(value) < UNDEFINED_VALUE;
}

static const char *figure(double value, char *text)
{
    if (is_finite_value(value))
        text_format(text, FIGURE_LENGTH, "%.10e", value);
    else
        text_format(text, FIGURE_LENGTH, "-");
    return text;
}

static const char *gap(double objective, double bound, char *text)
{
    const double difference = fabs(objective - bound);
    text_format(text, FIGURE_LENGTH, "-");
    if (!is_finite_value(objective) || !is_finite_value(bound)) return text;
    if (difference < SAME_VALUE)
        text_format(text, FIGURE_LENGTH, "0.0%%");
    else if (fabs(objective) > NO_RELATIVE_GAP)
        text_format(text, FIGURE_LENGTH, "%.4f%%", 100 * difference / fabs(objective));
    return text;
}

int log_mip_epilogue(TVXmodel *model, int error)
{
    TVXenv *env = model->env;
    MipResult *result = model->mip_result;
    TVXmsg(env, "\nExplored %.0f nodes (%.0f simplex iterations) in %.2f seconds\n",
           result->node_count, result->iter_count, WallClock() - env->optimize_start);
    TVXmsg(env, "Thread count was %d (of %d available processors)\n", result->thread_count,
           ProcessorCount());
    TVXmsg(env, "\n");
    log_mip_outcome(env, result->status, error);
    if (result->has_solution)
        TRY(MipQuality(model, result->x.data, &result->quality, QualityWarnings::YES));
    char objective[FIGURE_LENGTH], bound[FIGURE_LENGTH], percent[FIGURE_LENGTH];
    TVXmsg(env, "Best objective %s, best bound %s, gap %s\n",
           figure(result->objval, objective), figure(result->objbound, bound),
           gap(result->objval, result->objbound, percent));
    return 0;
}
