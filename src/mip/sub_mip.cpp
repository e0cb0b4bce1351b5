// sub_mip.cpp -- recursive searches
//
// Method   The body is copied with the bounds, presolved and searched in an environment of its own. The search stops at
//          its node limit, at the limits of the search that asks, or without another hope: a bound that cannot beat the
//          cutoff.
#include "mip/sub_mip.h"
#include "body/build.h"
#include "mip/accept.h"
#include "mip/mip_run.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SMALL_IMPROVEMENT = 1e-10; // less than this is none
constexpr double CUTOFF_MARGIN = 1e-6;      // above the incumbent
constexpr double GAP_ABS = 1e-10, HEURISTICS = 0.05;
constexpr int ALWAYS = 2, AT_ROOT = 1; // levels of cuts

int make_env(const SubMipOrder &order, TVXenv **out)
{
    TRY(env_inner(out, order.Env));
    TVXenv *env = *out;
    env->outer = nullptr; // a callback that asks for this search is not called by it
    env->NodeLimit = order.NodeLimit;
    env->TARV_PAR_VTIMELIMIT = std::min(env->TARV_PAR_VTIMELIMIT, order.WorkLimit);
    env->Cutoff = UNDEFINED_VALUE; // is an argument
    env->Heuristics = HEURISTICS;
    env->MIPGap = order.Gap;
    env->MIPGapAbs = GAP_ABS;
    env->TARV_PAR_ASPIRE = 1;
    env->Threads = 1;
    env->TARV_PAR_SUBMIP = 1;
    env->Presolve = -1;
    env->TARV_PAR_PREPROBE = 0;
    env->VarBranch = -1;
    env->Cuts = -1;
    env->CoverCuts = env->ImpliedCuts = ALWAYS;
    env->CliqueCuts = env->FlowCoverCuts = env->FlowPathCuts = AT_ROOT;
    env->GUBCoverCuts = env->MIPSepCuts = AT_ROOT;
    env->GomoryPasses = -1;
    env->TARV_PAR_QUICKDIVE = 0;
    env->MIPFocus = 0;
    env->SolutionLimit = 2000000000;
    if (env->Crossover == 0) env->Crossover = -1;
    return 0;
}

int search(const SubMipOrder &order, const ModelBody *body, TVXenv *env,
           PresolveResult *presolved, SubMipOutcome *outcome)
{
    SearchOrder inner;
    TRY(space_create(body, presolved, &inner.Space));
    inner.Env = env;
    inner.Recursive = true;
    inner.Cutoff = order.Cutoff;
    MIPState *state = nullptr;
    TRY(search_create(inner, &state));
    int code = mip_run(&state);
    outcome->Nodes = state->Nodes;
    outcome->Iterations = state->Iterations;
    outcome->Work += search_work(state);
    const SolutionEntry *best = pool_best(&state->Pool);
    if (!code && best) code = array_copy(&outcome->X, best->Full, body->numvars);
    outcome->Found = !code && best;
    outcome->Status = state->Status;
    outcome->Complete = state->Status == TVX_OPTIMAL || state->Status == TVX_INFEASIBLE ||
                        state->Status == TVX_CUTOFF;
    search_free(state);
    return code;
}

// Presolve has solved everything.
int take_presolved(const ModelBody *body, PresolveResult *presolved, SubMipOutcome *outcome)
{
    const int code = array_resize(&outcome->X, body->numvars);
    if (!code) postsolve_primal(presolved, nullptr, outcome->X.data);
    outcome->Found = outcome->Complete = code == 0;
    presolve_free(presolved);
    return code;
}

int presolve_and_search(const SubMipOrder &order, const ModelBody *body, TVXenv *env,
                        SubMipOutcome *outcome)
{
    PresolveResult *presolved = nullptr;
    PresolveStatus status = PRESOLVE_OK;
    double work = 0;
    TRY(presolve_mip(body, env, env->TARV_PAR_PREPROBE, &presolved, &status, &work));
    outcome->Work += work;
    outcome->Complete = status == PRESOLVE_INFEASIBLE ||
                        (status == PRESOLVE_INF_OR_UNBD && objective_is_bounded(env, body));
    if (status != PRESOLVE_OK) return 0;
    const ModelBody *reduced = presolve_reduced(presolved);
    if (!reduced || reduced->numvars == 0) return take_presolved(body, presolved, outcome);
    return search(order, body, env, presolved, outcome);
}

// No point within the bounds can have a lower objective.
double least_objective(const ModelBody *body, const double *lower, const double *upper)
{
    double sum = body->objcon;
    for (int j = 0; j < body->numvars; j++) {
        const double c = body->obj.data[j];
        if (c == 0) continue;
        const double bound = c > 0 ? lower[j] : upper[j];
        if (std::fabs(bound) >= INFINITE_VALUE) return -UNDEFINED_VALUE;
        sum += c * bound;
    }
    return sum;
}
} // namespace

int sub_mip_run(const SubMipOrder &order, SubMipOutcome *outcome)
{
    TVXenv *env = nullptr;
    ModelBody *body = nullptr;
    *outcome = SubMipOutcome{};
    TRY(make_env(order, &env));
    int code =
        body_copy_changed(order.Body, env, {order.Costs, order.Lower, order.Upper}, &body);
    if (!code) code = presolve_and_search(order, body, env, outcome);
    body_free(body);
    env_free(env);
    return code == OUT_OF_MEMORY ? code : 0;
}

int RunSubMip(MIPState *state, const double *lower, const double *upper,
              SubMipLimits limits, SubMipResult *result)
{
    *result = SubMipResult{};
    const double incumbent = state->Pool.Incumbent;
    if (least_objective(state->Body, lower, upper) > incumbent - SMALL_IMPROVEMENT)
        return 0;
    SubMipOrder order = {state->Body,
                         lower,
                         upper,
                         nullptr,
                         state->Env,
                         limits.Nodes,
                         state->Pool.PruneValue,
                         limits.Work};
    if (incumbent < UNDEFINED_VALUE)
        order.Cutoff = std::min(order.Cutoff, incumbent + CUTOFF_MARGIN);
    SubMipOutcome found;
    TRY(sub_mip_run(order, &found));
    state->SubNodes += found.Nodes;
    state->SubIterations += found.Iterations;
    result->Work = found.Work;
    if (!found.Found) return 0;
    Acceptance outcome = Acceptance::INFEASIBLE;
    TRY(accept_solution(state, found.X.data, SolutionSource::SUB_MIP, &outcome));
    if (outcome == Acceptance::IMPROVED) result->Objective = state->Pool.Incumbent;
    return 0;
}
