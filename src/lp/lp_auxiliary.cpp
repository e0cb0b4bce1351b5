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
// Invariant   The problem is a body of its own with an environment of its own.
// Literature  A. Koberstein and U. H. Suhl, "Progress in the dual simplex method for large scale LP problems: practical
//             dual phase 1 algorithms", Comp. Opt. Appl. 37, 2007 (the subproblem approach).
#include "lp/lp_auxiliary.h"
#include "body/build.h"
#include "body/row_kind.h"
#include "lp/lp_form.h"
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

Shape shape_of(const ModelBody *body, const TVXenv *env)
{
    const double tol = env->OptimalityTol, infinite = infinite_bound(env);
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

bool dual_pays(const ModelBody *body, const TVXenv *env)
{
    const Shape shape = shape_of(body, env);
    return shape.boxed > 0 && shape.wrong * shape.wrong >= body->numvars;
}

double start_value(const ModelBody *body, double infinite, int j)
{
    const double lower = body->lb.data[j], upper = body->ub.data[j];
    return lower > -infinite ? lower : upper < infinite ? upper : 0;
}

// Rows that a start from bounds violates.
int count_violated(const ModelBody *body, const TVXenv *env, double *violated)
{
    const double infinite = infinite_bound(env), tol = env->FeasibilityTol;
    Array<double> slack;
    TRY(array_copy(&slack, body->rhs.data, body->numconstrs));
    for (int j = 0; j < body->numvars; j++) {
        const double value = start_value(body, infinite, j);
        if (value == 0) continue; // assigned, for most
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            slack.data[body->vind.data[p]] -= body->vval.data[p] * value;
    }
    *violated = 0;
    for (int i = 0; i < body->numconstrs; i++)
        *violated += slack.data[i] < -tol || (is_equation(body, i) && slack.data[i] > tol);
    return 0;
}

int is_wanted(const ModelBody *body, const TVXenv *env, SimplexMethod method, bool *wanted)
{
    *wanted = false;
    if (body->numvars < LARGE || !env->Presolve || !env->PrePasses || body_is_extreme(body))
        return 0;
    if (method == METHOD_DUAL) {
        *wanted = dual_pays(body, env);
        return 0;
    }
    double violated = 0;
    TRY(count_violated(body, env, &violated));
    *wanted = violated > 0 && violated <= FEW * body->numconstrs;
    return 0;
}

// ---- The problem ----

struct Auxiliary {
    TVXenv *env = nullptr;
    ModelBody *body = nullptr;
    PresolveResult *presolve = nullptr;
    sopt *simplex = nullptr;
    ~Auxiliary()
    {
        simplex_free(simplex);
        presolve_free(presolve);
        body_free(body);
        env_free(env);
    }
};

// Without cutoff, within what is left of the limits.
int make_env(TVXenv *outer, double done, Auxiliary *aux)
{
    TRY(env_inner(&aux->env, outer));
    aux->env->TARV_PAR_UNSCALEDVIO = 0; // a start need not be an answer
    aux->env->IterationLimit = std::max(0.0, outer->IterationLimit - done);
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

// The body's form is kept, so that the basis is one of the model.
int make_body(const ModelBody *body, SimplexMethod method, Auxiliary *aux)
{
    const int n = body->numvars, m = body->numconstrs;
    ModelArrays arrays;
    TRY(array_assign(&arrays.obj, n, 0.0));
    if (method == METHOD_DUAL) std::copy_n(body->obj.data, n, arrays.obj.data);
    TRY(array_copy(&arrays.lb, body->lb.data, n));
    TRY(array_copy(&arrays.ub, body->ub.data, n));
    TRY(array_copy(&arrays.rhs, body->rhs.data, m));
    TRY(array_copy(&arrays.senses, body->senses.data, m));
    TRY(array_copy(&arrays.vbeg, body->vbeg.data, int64_t{n} + 1));
    TRY(array_copy(&arrays.vind, body->vind.data, body->numnz));
    TRY(array_copy(&arrays.vval, body->vval.data, body->numnz));
    TRY(body_adopt(aux->env, &arrays, &aux->body));
    if (method == METHOD_DUAL) make_homogeneous(aux->body, infinite_bound(aux->env));
    return 0;
}

// ---- Its solution ----

bool is_smaller(const ModelBody *reduced, const ModelBody *body)
{
    return reduced && reduced->numconstrs <= SMALLER * body->numconstrs;
}

// *solved: the reduced problem is solved to its end.
int solve(Auxiliary *aux, const LpStart &run, double *work, bool *solved)
{
    *solved = false;
    PresolveStatus status = PRESOLVE_OK;
    TRY(presolve_lp(aux->body, aux->env, run.chosen, &aux->presolve, &status, work));
    if (status != PRESOLVE_OK) return 0;
    const ModelBody *reduced = presolve_reduced(aux->presolve);
    if (run.method == METHOD_DUAL && !is_smaller(reduced, aux->body)) return 0;
    *solved = true;
    if (!reduced) return 0;
    TRY(SimplexOptimize(&aux->simplex, reduced, aux->env,
                        {.Method = METHOD_DUAL, .Cutoff = false}));
    *solved = simplex_status(aux->simplex) == TVX_OPTIMAL;
    return *solved ? lp_postsolve_prepare(aux->presolve, aux->simplex) : 0;
}
} // namespace

int lp_auxiliary_start(const ModelBody *body, TVXenv *env, const LpStart &run, double done,
                       AuxiliaryStart *start)
{
    bool wanted = false, solved = false;
    TRY(is_wanted(body, env, run.method, &wanted));
    if (!wanted) return 0;
    Auxiliary aux;
    TRY(make_env(env, done, &aux));
    TRY(make_body(body, run.method, &aux));
    TRY(solve(&aux, run, &start->work, &solved));
    if (aux.simplex) {
        start->iterations = simplex_iterations(aux.simplex);
        start->work += simplex_take_work(aux.simplex);
    }
    if (!solved) return 0;
    PresolveStatus stopped = PRESOLVE_OK; // a limit: the run to come sees it too
    return lp_postsolve_basis(aux.presolve, aux.simplex, &start->statuses, &stopped);
}
