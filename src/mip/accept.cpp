// accept.cpp -- solutions of a search: how a point becomes the incumbent
//
// Method   Integers are rounded to whole numbers, then the point is checked against the searched body, and, mapped back
//          by postsolve, against the caller's: rows and bounds within FeasibilityTol, integers, SOS constraints and
//          semi-continuous variables exactly. Nothing else is accepted. The caller's body decides: presolve may have added
//          up rows to terms so large that their rounding errors alone exceed the tolerance.
#include "mip/accept.h"
#include "body/quality.h"
#include "body/row_activity.h"
#include "body/row_kind.h"
#include "mip/node_heuristics.h"
#include "mip/search.h"
#include "mip/search_callback.h"
#include "mip/search_log.h"
#include "mip/semi.h"
#include "mip/user_rows.h"
#include <algorithm>
#include <cmath>

namespace
{
// Times the tolerance, up to which a point of the searched body is mapped back to be judged.
constexpr double NEARLY = 1000;

// Of the gap, by which an incumbent is taken to have reduced it.
constexpr double NO_GAP = 1e-10, LEAST_SHARE = 0.05, MOST_SHARE = 0.95;
constexpr double CLOSED_GAP = 1e-10; // relative, that leaves nothing to improve

bool is_integer_type(const ModelBody *body, int j)
{
    const char type = body->vtypes.size > 0 ? body->vtypes.data[j] : 'C';
    return type == 'B' || type == 'I' || type == 'N';
}

// The integers of a point become whole. False if one is too far from that.
bool round_integers(const MIPState *state, const ModelBody *body, double *x)
{
    for (int j = 0; j < body->numvars; j++) {
        if (!is_integer_type(body, j)) continue;
        const double whole = std::round(x[j]);
        if (!(std::fabs(x[j] - whole) <= state->Env->IntFeasTol)) return false;
        x[j] = whole;
    }
    return true;
}

// Continuous values beyond a bound by rounding errors are put on it. False if one is outside by more.
bool clamp_to_bounds(const MIPState *state, const ModelBody *body, double *x)
{
    for (int j = 0; j < body->numvars; j++) {
        const double lower = body->lb.data[j], upper = std::max(lower, body->ub.data[j]);
        const double inside = std::clamp(x[j], lower, upper);
        if (!(std::fabs(inside - x[j]) <= state->Env->FeasibilityTol)) return false;
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

// Sums of terms that differ in size have rounding errors, whatever the values: a row may miss its side by some of them.
constexpr double TERM_ROUNDING = 4 * 2.220446049250313e-16;

int rows_hold(const ModelBody *body, const double *x, double tolerance, bool *hold)
{
    RowActivity rows;
    *hold = true;
    TRY(row_activity(body, x, &rows));
    for (int i = 0; i < body->numconstrs && *hold; i++) {
        const double above = static_cast<double>(rows.sum.data[i] - body->rhs.data[i]),
                     amount = is_equation(body, i) ? std::fabs(above) : above;
        *hold = amount <= tolerance + TERM_ROUNDING * rows.size.data[i];
    }
    return 0;
}

// Violations of rows and bounds of a body, with exact sets.
int is_feasible(const MIPState *state, const ModelBody *body, const double *x,
                double tolerance, bool *feasible)
{
    Quality quality;
    TRY(MipQuality(state->Env, body, x, &quality, QualityWarnings::NO));
    *feasible = quality.BoundVio.max <= tolerance && quality.IntVio.max == 0;
    if (*feasible && quality.ConstrVio.max > tolerance)
        TRY(rows_hold(body, x, tolerance, feasible));
    for (int k = 0; k < body->numsos && *feasible; k++)
        *feasible = sos_violation(body, k, x) == 0;
    return 0;
}

// Putting values on their bounds may move rows with large coefficients by more than the tolerance: the continuous values
// as they are given then, which are within the tolerance of their bounds.
int is_feasible_unclamped(const MIPState *state, const double *given, double *x,
                          double tolerance, bool *feasible)
{
    for (int j = 0; j < state->Body->numvars; j++)
        if (!is_integer_type(state->Body, j)) x[j] = given[j];
    *feasible = sets_hold(state, x) && user_rows_hold(state, x);
    return *feasible ? is_feasible(state, state->Body, x, tolerance, feasible) : 0;
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
    return static_cast<double *>(
        MemAlloc(sizeof(double) * static_cast<size_t>(std::max(1, n))));
}

// A better incumbent makes the tree smaller that the last restart has given up.
void expect_fewer_nodes(MIPState *state, double objective)
{
    if (state->Pool.Incumbent >= UNDEFINED_VALUE) return;
    const double distance = state->Pool.Incumbent - state->Store.GlobalBound,
                 share = (state->Pool.Incumbent - objective) / std::max(distance, NO_GAP);
    state->Restart.Open *= 1 - std::clamp(share, LEAST_SHARE, MOST_SHARE);
}

// Takes over both points; x may be null.
int store(MIPState *state, double *x, double *full, double objective, SolutionSource source)
{
    SolutionPool *pool = &state->Pool;
    if (objective < pool->Incumbent) expect_fewer_nodes(state, objective);
    TRY(pool_insert(pool, {state->Nodes, objective, source, x, full}));
    pool->Count++;
    pool->Sequence++;
    pool->Incumbent = objective;
    pool->Changed = true;
    return 0;
}

double *new_copy(const double *x, int n)
{
    double *copy = new_vector(n);
    if (copy) std::copy_n(x, n, copy);
    return copy;
}

// A better point next to x, the new incumbent in Candidate, which is offered in turn.
int improve(MIPState *state, SolutionSource source)
{
    const double objective = state->Pool.Incumbent, bound = search_bound(state, true);
    if (source == SolutionSource::IMPROVED || check_status(state) != RUNNING ||
        objective - bound <= (std::fabs(objective) + 1) * CLOSED_GAP)
        return 0;
    const double *better = nullptr;
    Acceptance outcome = Acceptance::INFEASIBLE;
    TRY(search_improve(state, state->Candidate.data, &better));
    return better ? accept_solution(state, better, SolutionSource::IMPROVED, &outcome) : 0;
}

// The incumbent has changed: PruneValue, the caller, the log.
int announce(MIPState *state, SolutionSource source)
{
    TRY(apply_incumbent(state));
    solution_callback(state);
    if (source != SolutionSource::NODE_LP) heuristic_log_line(state);
    return 0;
}

} // namespace

int crush_point(const MIPState *state, const double *full, double **x)
{
    bool mapped = true;
    *x = nullptr;
    double *point = new_vector(state->Body->numvars);
    if (!point) return OUT_OF_MEMORY;
    int code = space_map_in(state->Space, full, point, &mapped);
    if (!code && mapped)
        code = is_feasible(state, state->Body, point, state->Env->FeasibilityTol, &mapped);
    if (!code && mapped && sets_hold(state, point))
        *x = point;
    else
        MemFree(point);
    return code;
}

int apply_incumbent(MIPState *state)
{
    SolutionPool *pool = &state->Pool;
    const double prune = search_prune_value(state);
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
    if (!round_integers(state, state->Body, x) || !clamp_to_bounds(state, state->Body, x) ||
        !sets_hold(state, x) || !user_rows_hold(state, x))
        return 0;
    double objective = objective_of(state->Body, x);
    if (objective >= state->Pool.PruneValue) {
        *outcome = Acceptance::NOT_BETTER;
        return 0;
    }
    const double tolerance = state->Env->FeasibilityTol;
    bool exact = false;
    TRY(is_feasible(state, state->Body, x, tolerance, &exact));
    if (!exact) TRY(is_feasible_unclamped(state, given, x, tolerance, &exact));
    bool feasible = exact;
    if (!exact) TRY(is_feasible(state, state->Body, x, NEARLY * tolerance, &feasible));
    if (!feasible) return 0;
    objective = objective_of(state->Body, x);
    double *full = new_vector(space_outermost(state->Space)->numvars);
    if (!full) return OUT_OF_MEMORY;
    int code = space_map_back(state->Space, x, full);
    if (!code)
        code =
            is_feasible(state, space_outermost(state->Space), full, tolerance, &feasible);
    feasible = feasible && callers_rows_hold(state, full);
    if (code || !feasible) {
        MemFree(full);
        *outcome = exact ? Acceptance::LOST : Acceptance::INFEASIBLE;
        return code;
    }
    double *own = new_copy(x, n);
    if (!own) {
        MemFree(full);
        return OUT_OF_MEMORY;
    }
    TRY(store(state, own, full, objective, source));
    *outcome = Acceptance::IMPROVED;
    TRY(announce(state, source));
    return improve(state, source);
}

int accept_callers_point(MIPState *state, const double *given, SolutionSource source,
                         Acceptance *outcome)
{
    const ModelBody *body = space_outermost(state->Space);
    *outcome = Acceptance::INFEASIBLE;
    double *full = new_copy(given, body->numvars), *x = nullptr;
    if (!full) return OUT_OF_MEMORY;
    bool feasible = round_integers(state, body, full) && callers_rows_hold(state, full);
    const double tolerance = state->Env->FeasibilityTol;
    int code = feasible ? is_feasible(state, body, full, tolerance, &feasible) : 0;
    const double objective = objective_of(body, full);
    if (!code && feasible && objective >= state->Pool.PruneValue) {
        *outcome = Acceptance::NOT_BETTER;
        feasible = false;
    }
    if (!code && feasible) code = crush_point(state, full, &x);
    if (code || !feasible) {
        MemFree(full);
        MemFree(x);
        return code;
    }
    TRY(store(state, x, full, objective, source));
    *outcome = Acceptance::IMPROVED;
    return announce(state, source);
}
