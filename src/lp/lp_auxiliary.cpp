// lp_auxiliary.cpp -- a start basis for a large model from a smaller problem
//
// Problem     A simplex method whose start is infeasible in its own sense first works on a problem that only asks for
//             feasibility. On a large model that phase may be worth a presolve of its own.
// Method      dual    min c x,  A x <= 0 or = 0, boxed variables at 0, others with their finite bound moved to 0: its
//                     optimum is 0 exactly when the model is dual feasible, and an optimal basis is dual feasible for
//                     the model, with boxed variables at the bound that their reduced cost asks for.
//             primal  min 0 over the model as it is: an optimal basis is primal feasible.
//             The problem is presolved, the dual simplex solves what is left, postsolve gives a basis of the model. Any
//             other outcome leaves the model to a start from scratch.
// When        dual    some variables are boxed, and many are driven away from their only bound by their cost; presolve
//                     then has to leave something, but at most half of the rows. Where it leaves nothing, phase 1 is as
//                     easy, and its basis better (the others had up to 13 times the solve time); where it leaves nearly
//                     all, both ways are the same (1.03 times the iterations on six generated families).
//             primal  hardly any row is violated at the start. On multi-commodity flows of 100,000 columns the solve
//                     then takes 0.4 to 0.8 of its time; where many rows are violated, the basis that ignores costs
//                     takes up to 4.5 times as long (transportation, osa-30, ken-13, cre-d).
// Invariant   The problem is a model of its own with an environment of its own: bounds, costs and parameters of the
//             caller's are never touched.
// Literature  A. Koberstein and U. H. Suhl, "Progress in the dual simplex method for large scale LP problems: practical
//             dual phase 1 algorithms", Comp. Opt. Appl. 37, 2007 (the subproblem approach).
#include "lp/lp_auxiliary.h"
#include "body/row_kind.h"
#include "lp/lp_form.h"
#include "model/model_store.h"
#include "presolve/presolve.h"
#include "simplex/simplex.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int LARGE = 100000;   // variables from which on a presolve more may pay
constexpr double FEW = 0.001;   // share of rows violated at the start of the primal
constexpr double SMALLER = 0.5; // share of the rows that presolve may leave for the dual

// ---- Whether ----

struct Shape {
    double boxed = 0; // variables with two bounds
    double wrong = 0; // with one bound, which their cost drives them away from
};

Shape shape_of(const TVXmodel *model)
{
    const ModelBody *body = model->body;
    const double tol = model->env->OptimalityTol, infinite = infinite_bound(model->env);
    Shape shape;
    for (int j = 0; j < body->numvars; j++) {
        const bool lower = body->lb.data[j] > -infinite,
                   upper = body->ub.data[j] < infinite;
        const double cost = body->obj.data[j];
        shape.boxed += lower && upper;
        shape.wrong += lower != upper && (lower ? cost < -tol : cost > tol);
    }
    return shape;
}

bool dual_pays(const TVXmodel *model)
{
    const Shape shape = shape_of(model);
    return shape.boxed > 0 && shape.wrong * shape.wrong >= model->body->numvars;
}

double start_value(const TVXmodel *model, int j)
{
    const double infinite = infinite_bound(model->env);
    const double lower = model->body->lb.data[j], upper = model->body->ub.data[j];
    return lower > -infinite ? lower : upper < infinite ? upper : 0;
}

// Rows that a start from bounds violates.
int count_violated(const TVXmodel *model, double *violated)
{
    const ModelBody *body = model->body;
    Array<double> slack;
    TRY(array_copy(&slack, body->rhs.data, body->numconstrs));
    for (int j = 0; j < body->numvars; j++) {
        const double value = start_value(model, j);
        if (value == 0) continue; // assigned, for most
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            slack.data[body->vind.data[p]] -= body->vval.data[p] * value;
    }
    const double tol = model->env->FeasibilityTol;
    *violated = 0;
    for (int i = 0; i < body->numconstrs; i++)
        *violated += slack.data[i] < -tol || (is_equation(body, i) && slack.data[i] > tol);
    return 0;
}

int is_wanted(const TVXmodel *model, int method, bool *wanted)
{
    const TVXenv *env = model->env;
    *wanted = false;
    if (model->body->numvars < LARGE || !env->Presolve || !env->PrePasses ||
        body_is_extreme(model->body))
        return 0;
    if (method == METHOD_DUAL) {
        *wanted = dual_pays(model);
        return 0;
    }
    double violated = 0;
    TRY(count_violated(model, &violated));
    *wanted = violated > 0 && violated <= FEW * model->body->numconstrs;
    return 0;
}

// ---- The problem ----

struct Auxiliary {
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;
    ~Auxiliary()
    {
        model_free(model);
        env_free(env);
    }
};

// Silent, without cutoff, within what is left of the limits.
int make_env(const TVXmodel *model, double done, Auxiliary *aux)
{
    TRY(env_copy(&aux->env, model->env, LogReopen::NO));
    TVXenv *env = aux->env;
    env->outer = model->env;
    env->OutputFlag = 0;
    env->quiet_solve = 1;
    env->Cutoff = UNDEFINED_VALUE;
    env->TARV_PAR_UNSCALEDVIO = 0; // a start need not be an answer
    env->IterationLimit = std::max(0.0, env->IterationLimit - done);
    return 0;
}

void make_homogeneous(ModelBody *body, double infinite)
{
    for (int i = 0; i < body->numconstrs; i++)
        if (row_kind(body, i) != RowKind::FREE) body->rhs[i] = 0;
    for (int j = 0; j < body->numvars; j++) {
        double *lower = &body->lb.data[j], *upper = &body->ub.data[j];
        if (*lower > -infinite) *lower = 0;
        if (*upper < infinite) *upper = 0;
    }
}

// The body's form is kept, so that the basis is one of the model: senses and the negated rows stay.
int make_model(const TVXmodel *model, int method, Auxiliary *aux)
{
    const ModelBody *body = model->body;
    Array<char> senses;
    TRY(array_copy(&senses, body->senses.data, body->senses.size));
    for (char &sense : senses)
        if (sense == '>') sense = '<';
    const ModelData data = {.numvars = body->numvars,
                            .numconstrs = body->numconstrs,
                            .obj = method == METHOD_DUAL ? body->obj.data : nullptr,
                            .senses = senses.data,
                            .rhs = body->rhs.data,
                            .vbeg = body->vbeg.data,
                            .vind = body->vind.data,
                            .vval = body->vval.data,
                            .lb = body->lb.data,
                            .ub = body->ub.data};
    TRY(model_create(aux->env, EnvUse::SHARED, &data, &aux->model));
    if (method == METHOD_DUAL) make_homogeneous(aux->model->body, infinite_bound(aux->env));
    return 0;
}

// ---- Its solution ----

bool is_smaller(const TVXmodel *aux)
{
    return aux->presolved &&
           aux->presolved->body->numconstrs <= SMALLER * aux->body->numconstrs;
}

int solve(TVXmodel *aux, int method, int *status)
{
    *status = presolve_lp(aux);
    if (*status == OUT_OF_MEMORY) return *status;
    if (*status != 0) return 0;
    *status = TVX_LOADED;
    if (method == METHOD_DUAL && !is_smaller(aux)) return 0;
    *status = TVX_OPTIMAL;
    if (!aux->presolved) return 0;
    TRY(SimplexOptimize(aux->presolved, METHOD_DUAL, nullptr, nullptr, nullptr, nullptr));
    if (aux->presolved->status == TVX_OPTIMAL) TRY(lp_form_prepare(aux));
    *status = aux->presolved->status;
    return 0;
}
} // namespace

int lp_auxiliary_start(const TVXmodel *model, int method, double done,
                       AuxiliaryStart *start)
{
    bool wanted = false;
    TRY(is_wanted(model, method, &wanted));
    if (!wanted) return 0;
    Auxiliary aux;
    TRY(make_env(model, done, &aux));
    TRY(make_model(model, method, &aux));
    int status = 0;
    TRY(solve(aux.model, method, &status));
    start->work = aux.model->node_count; // of presolve
    if (const TVXmodel *small = aux.model->presolved; small && small->simplex) {
        start->iterations = simplex_iterations(small->simplex);
        start->work += simplex_take_work(small->simplex);
    }
    if (status != TVX_OPTIMAL) return 0;
    const int code = lp_form_basis(aux.model, PostsolveLimits::OBEY, &start->statuses);
    return code == OUT_OF_MEMORY ? code : 0; // a limit: the run to come sees it too
}
