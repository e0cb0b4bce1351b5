// fixed_model.cpp -- TVXfixedmodel, TVXconverttofixed: a model with the decisions of a solution fixed
//
// Problem     From a solution of a model, the linear program of all points that share its decisions.
// Method      Integers, semi-continuous variables, SOS: integer variables are fixed at their values; a semi-continuous
//             variable and a member of an SOS are fixed at zero where they are zero, and keep their bounds otherwise.
//             So types and SOS constraints hold for all values of the other variables.
//             LP: with an optimal dual solution (y, d), a point x is optimal if and only if it is feasible, at the
//             bound for every d_j != 0, and tight in every row with y_i != 0. These variables are fixed, these rows
//             become equations: the feasible set is then the set of all optimal solutions.
// Invariant   The solution itself satisfies the new model within the tolerances.
// Cost        O(size of the model)
// Literature  A. J. Goldman and A. W. Tucker, "Theory of linear programming", in: Linear Inequalities and Related
//             Systems, Princeton 1956 (the optimal face).
#include "analysis/derived.h"
#include "body/quality.h"
#include "body/signs.h"
#include "model/model.h"
#include "model/solution.h"
#include <cmath>

namespace
{
constexpr char SUFFIX[] = "_fixed";

int unavailable(TVXmodel *model, const char *why)
{
    return fail_model(model, TVX_ERROR_DATA_NOT_AVAILABLE, Report::KEEP_FIRST, "%s", why);
}

// ---- Discrete decisions ----

struct Decisions {
    const double *x = nullptr; // [numvars]
    bool given = false;        // from the attribute Start: may be infeasible
};

// The values of the solution that was found, or null.
const double *found_values(const TVXmodel *model)
{
    const MipResult *mip = model->mip.result;
    return mip && mip->has_solution ? mip->x.data : nullptr;
}

// The values that the caller has set to start from, or null.
const double *start_values(const TVXmodel *model)
{
    return model->mip_start.size == model->body->numvars ? model->mip_start.data : nullptr;
}

int refuse_value(TVXmodel *model, int j, double value)
{
    char buffer[DEFAULT_NAME_LENGTH];
    const char *name = var_name(model->body, j, buffer);
    if (value == START_UNSET) // assigned
        return fail_model(model, TVX_ERROR_DATA_NOT_AVAILABLE, Report::KEEP_FIRST,
                          "Variable %s has no value to be fixed at", name);
    return fail_model(model, TVX_ERROR_DATA_NOT_AVAILABLE, Report::KEEP_FIRST,
                      "Variable %s cannot be fixed at %g", name, value);
}

bool within(const TVXmodel *model, int j, double value)
{
    const double tol = model->env->FeasibilityTol;
    return value >= model->body->lb.data[j] - tol &&
           value <= model->body->ub.data[j] + tol && std::fabs(value) < INFINITE_VALUE;
}

int fix_typed(TVXmodel *model, const Decisions &decisions, TVXmodel *copy)
{
    const TVXenv *env = model->env;
    const ModelBody *body = model->body;
    for (int j = 0; j < body->vtypes.size; j++) {
        const char type = body->vtypes.data[j];
        const double value = decisions.x[j], whole = std::floor(value + 0.5);
        if (type == 'C') continue;
        const bool off =
            (type == 'S' || type == 'N') && std::fabs(value) <= env->FeasibilityTol;
        const bool integral = type == 'S' || std::fabs(value - whole) <= env->IntFeasTol;
        const bool on = within(model, j, value);
        if (decisions.given && !((on || off) && integral))
            return refuse_value(model, j, value);
        if (type != 'S')
            derived_set_bounds(copy, j, whole, whole);
        else if (off && !on)
            derived_set_bounds(copy, j, 0, 0);
    }
    return 0;
}

int fix_members(TVXmodel *model, const Decisions &decisions, TVXmodel *copy)
{
    const ModelBody *body = model->body;
    const double *x = decisions.x;
    const double tol = model->env->FeasibilityTol;
    for (const int j : body->sosind) {
        if (x[j] == START_UNSET) return refuse_value(model, j, x[j]); // assigned
        if (std::fabs(x[j]) <= tol) derived_set_bounds(copy, j, 0, 0);
    }
    for (int k = 0; k < body->numsos; k++)
        if (sos_violation(body, k, x) > tol)
            return unavailable(model,
                               "The values to be fixed at violate an SOS constraint");
    return 0;
}

int fix_discrete(TVXmodel *model, const Decisions &decisions, TVXmodel *copy)
{
    TRY(fix_typed(model, decisions, copy));
    TRY(fix_members(model, decisions, copy));
    derived_make_linear(copy);
    return 0;
}

// ---- The optimal face of an LP ----

void fix_priced_vars(const TVXmodel *model, const double *x, const double *rc,
                     TVXmodel *copy)
{
    const ModelBody *body = model->body;
    const double tol = model->env->OptimalityTol, near = model->env->FeasibilityTol;
    for (int j = 0; j < body->numvars; j++) {
        const double d = turned(body->sense, rc[j]);
        if (std::fabs(d) <= tol) continue;
        const double bound = d > 0 ? body->lb.data[j] : body->ub.data[j];
        if (std::fabs(x[j] - bound) <= near) derived_set_bounds(copy, j, bound, bound);
    }
}

int equate_priced_rows(const TVXmodel *model, const double *slack, const double *pi,
                       ModelBody *copy)
{
    const double tol = model->env->OptimalityTol, near = model->env->FeasibilityTol;
    Array<char> turn; // [m] rows that the body held negated
    TRY(array_assign(&turn, copy->numconstrs, char(0)));
    for (int i = 0; i < copy->numconstrs; i++) {
        if (std::fabs(pi[i]) <= tol || std::fabs(slack[i]) > near) continue;
        turn.data[i] = copy->senses.data[i] == '>';
        if (turn.data[i]) copy->rhs.data[i] = turned(-1, copy->rhs.data[i]);
        copy->senses.data[i] = '=';
    }
    body_negate_rows(copy, turn.data);
    body_find_flipped(copy);
    return 0;
}

int fix_optimal(TVXmodel *model, TVXmodel *copy)
{
    if (model->lp.status != TVX_OPTIMAL || !solution_available(model))
        return unavailable(model, "The model has no optimal solution to be fixed at");
    const double *x = nullptr, *slack = nullptr, *pi = nullptr, *rc = nullptr;
    TRY(solution_x(model, &x));
    TRY(solution_slack(model, &slack));
    TRY(solution_duals(model, &pi, &rc));
    fix_priced_vars(model, x, rc, copy);
    return equate_priced_rows(model, slack, pi, copy->body);
}

int fix_decisions(TVXmodel *model, TVXmodel *copy)
{
    if (!body_is_mip(model->body)) return fix_optimal(model, copy);
    const double *x = found_values(model);
    const bool given = !x;
    if (given) x = start_values(model);
    if (!x)
        return unavailable(model, "The model has no solution and no start to be fixed at");
    return fix_discrete(model, {.x = x, .given = given}, copy);
}

int fix_solution(TVXmodel *model, TVXmodel *copy)
{
    if (!body_is_mip(model->body)) return 0; // nothing to fix
    const double *x = found_values(model);
    if (!x) return unavailable(model, "The model has no solution to be fixed at");
    return fix_discrete(model, {.x = x, .given = false}, copy);
}
} // namespace

TVXmodel *TVXfixedmodel(TVXmodel *model)
{
    return derive(model, SUFFIX, fix_solution);
}

TVXmodel *TVXconverttofixed(TVXmodel *model)
{
    return derive(model, SUFFIX, fix_decisions);
}
