// fixed_model.cpp -- TVXconverttofixed: a model in which is fixed what a solution decides
//
// Problem     From a solution of a model, the linear program of all points that share its decisions.
// Method      Integers, semi-continuous variables, SOS: integer variables are fixed at their values; a semi-continuous
//             variable and a member of an SOS are fixed at zero where they are zero, and keep their bounds otherwise.
//             Whatever the rest does, types and SOS hold.
//             LP: with an optimal dual (y, d), a point x is optimal exactly when it is feasible, stands at the bound
//             wherever d_j != 0, and meets every row with y_i != 0 with equality. These variables are fixed, these rows
//             become equations: what is left is the set of all optimal solutions.
// Invariant   The solution itself satisfies the new model within the tolerances.
// Cost        O(size of the model)
// Literature  A. J. Goldman and A. W. Tucker, "Theory of linear programming", in: Linear Inequalities and Related Systems,
//             Princeton 1956 (the optimal face).
#include "frame/model_store.h"
#include "frame/quality.h"
#include "frame/signs.h"
#include "frame/solution.h"
#include <cmath>

namespace
{
constexpr char SUFFIX[] = "_fixed";

int unavailable(TVXmodel *model, const char *why)
{
    return fail_model(model, TVX_ERROR_DATA_NOT_AVAILABLE, Report::KEEP_FIRST, "%s", why);
}

void set_bounds(ModelBody *copy, int j, double lb, double ub)
{
    copy->lb.data[j] = lb;
    copy->ub.data[j] = ub;
    copy->bound_kind.data[j] = 0;
}

// ---- Discrete decisions ----

// The solution, or without one the values that the caller has set to start from.
int find_values(TVXmodel *model, const double **x)
{
    if (model->mip_result && model->mip_result->has_solution) return solution_x(model, x);
    *x = model->mip_start.data;
    if (model->mip_start.size == model->body->numvars && model->mip_start.size > 0)
        return 0;
    return unavailable(model, "The model has no solution and no start to be fixed at");
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

int fix_typed(TVXmodel *model, const double *x, ModelBody *copy)
{
    const ModelBody *body = model->body;
    const double tol = model->env->FeasibilityTol;
    for (int64_t j = 0; j < body->vtypes.size; j++) {
        const char type = body->vtypes.data[j];
        const double value = x[j], whole = std::floor(value + 0.5);
        const int var = static_cast<int>(j);
        if (type == 'C') continue;
        const bool on = value >= body->lb.data[j] - tol &&
                        value <= body->ub.data[j] + tol &&
                        std::fabs(value) < INFINITE_VALUE;
        const bool off = (type == 'S' || type == 'N') && std::fabs(value) <= tol;
        const bool integral = std::fabs(value - whole) <= model->env->IntFeasTol;
        if (!(on || off) || !(type == 'S' || integral))
            return refuse_value(model, var, value);
        if (type != 'S')
            set_bounds(copy, var, whole, whole);
        else if (!on)
            set_bounds(copy, var, 0, 0);
    }
    return 0;
}

int fix_members(TVXmodel *model, const double *x, ModelBody *copy)
{
    const ModelBody *body = model->body;
    const double tol = model->env->FeasibilityTol;
    for (const int j : body->sosind) {
        if (x[j] == START_UNSET) return refuse_value(model, j, x[j]); // assigned
        if (std::fabs(x[j]) <= tol) set_bounds(copy, j, 0, 0);
    }
    for (int k = 0; k < body->numsos; k++)
        if (sos_violation(body, k, x) > tol)
            return unavailable(model,
                               "The values to be fixed at violate an SOS constraint");
    return 0;
}

void make_continuous(ModelBody *copy)
{
    array_free(&copy->vtypes);
    body_count_types(copy);
    copy->numsos = 0;
    array_free(&copy->sostype);
    array_free(&copy->sosbeg);
    array_free(&copy->sosind);
    array_free(&copy->soswt);
}

int fix_discrete(TVXmodel *model, ModelBody *copy)
{
    const double *x = nullptr;
    TRY(find_values(model, &x));
    TRY(fix_typed(model, x, copy));
    TRY(fix_members(model, x, copy));
    make_continuous(copy);
    return 0;
}

// ---- The optimal face of an LP ----

void fix_priced_vars(const TVXmodel *model, const double *x, const double *rc,
                     ModelBody *copy)
{
    const ModelBody *body = model->body;
    const double tol = model->env->OptimalityTol, near = model->env->FeasibilityTol;
    for (int j = 0; j < body->numvars; j++) {
        const double d = turned(body->sense, rc[j]);
        if (std::fabs(d) <= tol) continue;
        const double bound = d > 0 ? body->lb.data[j] : body->ub.data[j];
        if (std::fabs(x[j] - bound) <= near) set_bounds(copy, j, bound, bound);
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

int fix_optimal(TVXmodel *model, ModelBody *copy)
{
    if (model->status != TVX_OPTIMAL || !solution_available(model))
        return unavailable(model, "The model has no optimal solution to be fixed at");
    const double *x = nullptr, *slack = nullptr, *pi = nullptr, *rc = nullptr;
    TRY(solution_x(model, &x));
    TRY(solution_slack(model, &slack));
    TRY(solution_duals(model, &pi, &rc));
    fix_priced_vars(model, x, rc, copy);
    return equate_priced_rows(model, slack, pi, copy);
}

int make_fixed(TVXmodel *model, TVXmodel *fixed)
{
    ModelBody *copy = fixed->body;
    TRY(model_is_mip(model) ? fix_discrete(model, copy) : fix_optimal(model, copy));
    const char *name = model->body->modelname;
    return body_join_name(copy, name ? name : "", SUFFIX, &copy->modelname);
}

int convert(TVXmodel *model, TVXmodel **out)
{
    const ModelBody *body = model->body;
    TRY(model_copy(model, body->varnames.size ? body->varnames.data : nullptr,
                   body->constrnames.size ? body->constrnames.data : nullptr, out));
    const int code = make_fixed(model, *out);
    if (!code) return 0;
    model_free(*out);
    *out = nullptr;
    return code;
}
} // namespace

TVXmodel *TVXconverttofixed(TVXmodel *model)
{
    if (const int error = TVXcheckmodel(model)) {
        finish_model(model, error);
        return nullptr;
    }
    TVXmodel *out = nullptr;
    finish_model(model, convert(model, &out));
    return out;
}
