// mip_log.cpp -- the closing lines of a MIP solve
#include "mip/mip.h"
#include "runtime/clock.h"
#include "runtime/text_number.h"
#include "runtime/thread.h"
#include <cmath>

static void log_outcome(TVXenv *env, int status, int error)
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

int mip_log_result(TVXenv *env, const ModelBody *body, MipResult *result, int error)
{
    TVXmsg(env, "\nExplored %.0f nodes (%.0f simplex iterations) in %.2f seconds\n",
           result->node_count, result->iter_count, WallClock() - env->optimize_start);
    TVXmsg(env, "Thread count was %d (of %d available processors)\n", result->thread_count,
           ProcessorCount());
    TVXmsg(env, "\n");
    log_outcome(env, result->status, error);
    if (result->has_solution)
        TRY(MipQuality(env, body, result->x.data, &result->quality, QualityWarnings::YES));
    char objective[FIGURE_LENGTH], bound[FIGURE_LENGTH], percent[FIGURE_LENGTH];
    TVXmsg(env, "Best objective %s, best bound %s, gap %s\n",
           figure(result->objval, objective), figure(result->objbound, bound),
           gap(result->objval, result->objbound, percent));
    return 0;
}
