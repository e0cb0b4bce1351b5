// accept.cpp -- solutions of a search: how a point becomes the incumbent
//
// Method   Integers are rounded to whole numbers, then the point is checked against the searched body, and, mapped back
//          by postsolve, against the caller's: rows and bounds within FeasibilityTol, integers, SOS constraints and
//          semi-continuous variables exactly. Nothing else is accepted.
#include "mip/accept.h"
#include "body/quality.h"
#include "mip/search_callback.h"
#include "mip/search_log.h"
#include "mip/semi.h"
#include <algorithm>
#include <cmath>

namespace
{
// The integers of a point become whole. False if one is too far from that.
bool round_integers(const MIPState *state, double *x)
{
    for (int j = 0; j < state->Body->numvars; j++) {
        if (!state->IsInteger.data[j]) continue;
        const double whole = std::round(x[j]);
        if (std::fabs(x[j] - whole) > state->Env->IntFeasTol) return false;
        x[j] = whole;
    }
    return true;
}

// Continuous values beyond a bound by rounding errors are put on it. False if one is outside by more.
bool clamp_to_bounds(const MIPState *state, double *x)
{
    const ModelBody *body = state->Body;
    for (int j = 0; j < body->numvars; j++) {
        const double inside = std::clamp(x[j], body->lb.data[j], std::max(body->lb.data[j], body->ub.data[j]));
        if (std::fabs(inside - x[j]) > state->Env->FeasibilityTol) return false;
        x[j] = inside;
    }
    return true;
}

bool sets_hold(const MIPState *state, const double *x)
{
    for (int k = 0; k < state->Body->numsos; k++)
        if (sos_violation(state->Body, k, x) > 0) return false;
    for (int k = 0; k < state->NumSemis; k++)
        if (semi_violation(state->Semis[k], x[state->Semis[k].col]) >
            state->Env->FeasibilityTol)
            return false;
    return true;
}

bool user_rows_hold(const MIPState *state, const double *x)
{
    const RowList *rows = &state->UserRows;
    for (int i = 0; i < row_count(rows); i++) {
        double activity = 0;
        for (int64_t p = rows->Beg.data[i]; p < rows->Beg.data[i + 1]; p++)
            activity += rows->Val.data[p] * x[rows->Ind.data[p]];
        if (activity > rows->Rhs.data[i] + state->Env->FeasibilityTol) return false;
    }
    return true;
}

// Violations of rows and bounds of a body, with exact sets.
int is_feasible(const MIPState *state, const ModelBody *body, const double *x, bool *feasible)
{
    Quality quality;
    TRY(MipQuality(state->Env, body, x, &quality, QualityWarnings::NO));
    const double tolerance = state->Env->FeasibilityTol;
    *feasible = quality.ConstrVio.max <= tolerance &&
                quality.BoundVio.max <= tolerance && quality.IntVio.max == 0;
    for (int k = 0; k < body->numsos && *feasible; k++)
        *feasible = sos_violation(body, k, x) == 0;
    return 0;
}

double objective_of(const ModelBody *body, const double *x)
{
    long double sum = body->objcon;
    for (int j = 0; j < body->numvars; j++)
        sum += static_cast<long double>(body->obj.data[j]) * x[j];
    return static_cast<double>(sum);
}

double *new_vector(int n)
{
    return static_cast<double *>(MemAlloc(sizeof(double) * static_cast<size_t>(std::max(1, n))));
}

int store(MIPState *state, const double *x, double *full, double objective,
          SolutionSource source)
{
    SolutionPool *pool = &state->Pool;
    double *own = new_vector(state->Body->numvars);
    if (!own) {
        MemFree(full);
        return OUT_OF_MEMORY;
    }
    std::copy_n(x, state->Body->numvars, own);
    TRY(pool_insert(pool, {state->Nodes, objective, source, own, full}));
    pool->Count++;
    pool->Sequence++;
    pool->Incumbent = objective;
    pool->Changed = true;
    return 0;
}
} // namespace

int apply_incumbent(MIPState *state)
{
    SolutionPool *pool = &state->Pool;
    const double value = std::min(pool->Incumbent, state->Cutoff);
    const double prune = prune_value(state->Grid, value);
    if (prune >= pool->PruneValue) return 0;
    pool->PruneValue = prune;
    store_prune(&state->Store, &state->Root, prune);
    return fix_by_reduced_costs(state);
}

int accept_solution(MIPState *state, const double *given, SolutionSource source,
                    Acceptance *outcome)
{
    const int n = state->Body->numvars;
    double *x = state->Candidate.data;
    std::copy_n(given, n, x);
    *outcome = Acceptance::INFEASIBLE;
    if (!round_integers(state, x) || !clamp_to_bounds(state, x) || !sets_hold(state, x) ||
        !user_rows_hold(state, x))
        return 0;
    const double objective = objective_of(state->Body, x);
    if (objective >= state->Pool.PruneValue) {
        *outcome = Acceptance::NOT_BETTER;
        return 0;
    }
    bool feasible = false;
    TRY(is_feasible(state, state->Body, x, &feasible));
    if (!feasible) return 0;
    double *full = new_vector(space_outermost(state->Space)->numvars);
    if (!full) return OUT_OF_MEMORY;
    int code = space_map_back(state->Space, x, full);
    if (!code) code = is_feasible(state, space_outermost(state->Space), full, &feasible);
    if (code || !feasible) {
        MemFree(full);
        *outcome = Acceptance::LOST;
        return code;
    }
    TRY(store(state, x, full, objective, source));
    *outcome = Acceptance::IMPROVED;
    TRY(apply_incumbent(state));
    solution_callback(state);
    if (source != SolutionSource::NODE_LP) heuristic_log_line(state);
    return 0;
}
