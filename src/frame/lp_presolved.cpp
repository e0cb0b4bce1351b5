// lp_presolved.cpp -- presolve, the simplex on what is left, and the way back to a basis of the model
//
// Method      A model with a basis to start from is solved as it is, unless the caller asks for presolve. Else: reduce;
//             solve the reduced model; an optimum is mapped back to a basis, from which the simplex confirms it on the
//             model itself. Any other outcome of the reduced model is one of the model, but for what dual reductions
//             may hide: infeasible and unbounded cannot be told apart then.
// Invariant   When this returns with a final status there is no simplex record.
#include "frame/lp_presolved.h"
#include "frame/optimize_log.h"
#include "frame/runtime/clock.h"
#include "frame/signs.h"
#include "frame/warm_start.h"
#include "presolve/presolve.h"
#include "simplex/simplex.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double WIDE_COEFFICIENTS =
    1e15;                         // largest over smallest: reductions would lose digits
constexpr double MANY_FREE = 0.2; // free variables against the smaller dimension, then

bool has_start(const TVXmodel *model)
{
    return model->simplex || warm_start_usable(model);
}

bool is_wide(const ModelBody *body)
{
    double least = 1e300, most = 0;
    int free = 0;
    for (const double a : body->vval) {
        if (a == 0) continue; // stored by the caller as such
        least = std::min(least, std::fabs(a));
        most = std::max(most, std::fabs(a));
    }
    for (const char kind : body->bound_kind) free += kind == 3;
    return most > WIDE_COEFFICIENTS * least &&
           free < MANY_FREE * std::min(body->numvars, body->numconstrs);
}

// A bound at the wrong infinity: the simplex tells what is wrong with it.
bool has_runaway_bounds(const TVXmodel *model)
{
    const ModelBody *body = model->body;
    const double infinite = model->env->TARV_PAR_INFBOUND;
    for (int j = 0; j < body->numvars; j++)
        if (body->lb[j] >= infinite || body->ub[j] <= -infinite ||
            body->lb[j] - body->ub[j] > model->env->FeasibilityTol)
            return true;
    return false;
}

bool wants_presolve(const TVXmodel *model)
{
    const TVXenv *env = model->env;
    if (env->Presolve == 0 || has_runaway_bounds(model)) return false;
    if (env->Presolve < 0 && has_start(model)) return false;
    return !(env->PreDual == -1 && env->LPMethod < 2 && env->Presolve < 2 &&
             is_wide(model->body));
}

// The outcome of a model that presolve or the reduced model has settled.
void settle(TVXmodel *model, int status, LpStart *start)
{
    model->status = status;
    model->lp_result->objval = turned(model->body->sense, UNDEFINED_VALUE);
    start->final = true;
}

int read_point(const TVXmodel *reduced, LpPoint *point)
{
    TRY(lp_point_alloc(point, reduced, true));
    const sopt *s = reduced->simplex;
    const ModelBody *body = reduced->body;
    const int n = body->numvars;
    simplex_get_primal(s, point->x.data);
    simplex_get_dual(s, point->dual.data + n, point->dual.data);
    simplex_get_basis(s, point->status.data);
    return 0;
}

int come_back(TVXmodel *model, LpStart *start)
{
    LpPoint reduced, full;
    if (model->presolved) TRY(read_point(model->presolved, &reduced));
    TRY(postsolve_lp(model, model->presolved ? &reduced : nullptr, &full));
    start->statuses = static_cast<Array<int> &&>(full.status);
    start->vstat_cols = start->statuses.data;
    start->vstat_rows = start->statuses.data + model->body->numvars;
    return 0;
}

int solve_reduced(TVXmodel *model, int method, LpStart *start)
{
    TVXmodel *reduced = model->presolved;
    const int code = SimplexOptimize(reduced, method, nullptr, nullptr, nullptr, nullptr);
    if (code) return code;
    if (!reduced->simplex) return 0;
    model->lp_result->itercount += simplex_iterations(reduced->simplex);
    model->node_count += simplex_work_units(reduced->simplex);
    const int status = reduced->status;
    if (status == TVX_OPTIMAL) return come_back(model, start);
    if (status == TVX_NUMERIC) return 0; // the model itself may fare better
    const bool open = status == TVX_INFEASIBLE || status == TVX_UNBOUNDED;
    settle(model, open ? TVX_INF_OR_UNBD : status, start);
    return 0;
}
} // namespace

int lp_presolved(TVXmodel *model, int method, LpStart *start)
{
    if (!wants_presolve(model)) return 0;
    TVXenv *env = model->env;
    const double begin = WallClock();
    const int status = presolve_lp(model);
    if (status == OUT_OF_MEMORY) return status;
    if (!env->quiet_solve) TVXmsg(env, "Presolve time: %.2fs\n", WallClock() - begin);
    if (status != 0) {
        settle(model, status, start);
        return 0;
    }
    const TVXmodel *reduced = model->presolved;
    if (!reduced) {
        TVXmsg(env, "Presolved: All rows and columns removed\n");
        return come_back(model, start);
    }
    TVXmsg(env, "Presolved: %d rows, %d columns, %d nonzeros\n\n",
           reduced->body->numconstrs, reduced->body->numvars, reduced->body->numnz);
    return solve_reduced(model, method, start);
}
