// search_check.cpp -- when a search ends
#include "mip/search.h"
#include "mip/search_log.h"
#include "runtime/clock.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LEAST_INCUMBENT = 1e-6; // by which a gap is divided

int test(const MIPState *state)
{
    const TVXenv *env = state->Env;
    const double incumbent = state->Pool.Incumbent,
                 bound = std::min(state->Store.GlobalBound, incumbent);
    if (env_stop_requested(env)) return TVX_INTERRUPTED;
    if (bound >= UNDEFINED_VALUE) return TVX_INFEASIBLE;
    if (bound > state->Pool.PruneValue) return TVX_OPTIMAL;
    const double gap = incumbent - bound;
    if (env->MIPGap > 0 && incumbent < UNDEFINED_VALUE &&
        env->MIPGap > std::fabs(gap) / std::max(std::fabs(incumbent), LEAST_INCUMBENT))
        return TVX_OPTIMAL;
    if (env->MIPGapAbs > 0 && env->MIPGapAbs > gap) return TVX_OPTIMAL;
    if (state->Nodes >= env->NodeLimit) return TVX_NODE_LIMIT;
    if (state->Iterations + state->SubIterations >= env->IterationLimit)
        return TVX_ITERATION_LIMIT;
    if (WallClock() - env->optimize_start > env->TimeLimit) return TVX_TIME_LIMIT;
    if (search_work(state) > env->TARV_PAR_VTIMELIMIT) return TVX_TIME_LIMIT;
    return state->Pool.Count < env->SolutionLimit ? RUNNING : TVX_SOLUTION_LIMIT;
}
} // namespace

int check_status(MIPState *state)
{
    if (state->Status == RUNNING) state->Status = test(state);
    return state->Status;
}

double search_work(const MIPState *state)
{
    double sum = 0;
    for (const double work : state->Work) sum += work;
    return sum;
}
