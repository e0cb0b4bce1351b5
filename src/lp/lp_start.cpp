// lp_start.cpp -- what one LP solve starts from, by which method, and whether presolve runs first: decided once
//
// Order       A basis that the caller has set since the last solve; the place where a limit has stopped that one (the
//             form, with presolve on, else the model itself); the live record; a basis that a change of the model has
//             carried over; scratch. A record that was tuned (SimplexTuning) for one solve is dropped; its basis is
//             kept.
#include "lp/lp_start.h"
#include "body/row_kind.h"
#include "lp/lp_form.h"
#include <algorithm>
#include <cmath>

namespace
{
// largest over smallest: reductions would lose digits
constexpr double WIDE_COEFFICIENTS = 1e15;
// free variables against the smaller dimension, then
constexpr double MANY_FREE = 0.2;

void choose_method(TVXenv *env, LpStart *start)
{
    start->chosen = static_cast<LpMethod>(env->LPMethod);
    if (start->chosen == LP_BARRIER)
        TVXmsg(env, "Warning: barrier is not available, using dual simplex\n");
    start->resolved = start->chosen == LP_PRIMAL_SIMPLEX ? METHOD_PRIMAL : METHOD_DUAL;
    start->method = start->resolved;
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

// Bounds that cross, a lower bound of +inf or an upper bound of -inf: the simplex tells what is wrong with them.
bool has_bad_bounds(const ModelBody *body, const TVXenv *env)
{
    const double infinite = infinite_bound(env);
    for (int j = 0; j < body->numvars; j++) {
        const double lb = body->lb.data[j], ub = body->ub.data[j];
        if (lb >= infinite || ub <= -infinite || lb - ub > env->FeasibilityTol) return true;
    }
    return false;
}

// Of a model with a basis to start from only when the caller asks for it.
bool wants_presolve(const LpSolve *lp, const LpStart *start)
{
    const TVXenv *env = lp->env;
    if (start->from == LpFrom::FORM || start->from == LpFrom::MODEL) return false;
    if (env->Presolve == 0 || has_bad_bounds(lp->body, env)) return false;
    if (env->Presolve < 0 && start->from != LpFrom::SCRATCH) return false;
    if (body_is_extreme(lp->body)) return false;
    return !(env->PreDual == -1 && start->chosen != LP_BARRIER && env->Presolve < 2 &&
             is_wide(lp->body));
}

int take_given(const LpSolve *lp, const LpGiven &given, LpStart *start)
{
    const int64_t size = int64_t{lp->body->numvars} + lp->body->numconstrs;
    start->from = LpFrom::BASIS;
    if (given.norms) TRY(array_copy(&start->norms, given.norms, size));
    return array_copy(&start->statuses, given.statuses, size);
}

int take_basis(const LpSolve *lp, LpStart *start)
{
    start->from = LpFrom::BASIS;
    TRY(array_resize(&start->statuses, int64_t{lp->body->numvars} + lp->body->numconstrs));
    simplex_get_basis(lp->simplex, start->statuses.data);
    return 0;
}

// Where to go on from.
int choose_place(LpSolve *lp, const LpGiven &given, LpStart *start)
{
    const bool newer = given.statuses && given.newer, stopped = is_limit(lp->status);
    const bool tuned = lp->simplex && simplex_is_tuned(lp->simplex);
    if (stopped && !newer && lp->form && lp->env->Presolve != 0) {
        if (tuned) lp_drop_simplex(lp);
        if (!lp->simplex && given.statuses) TRY(take_given(lp, given, start));
        start->from = LpFrom::FORM;
        return 0;
    }
    lp_drop_form(lp);
    if (lp->simplex && newer) lp_drop_simplex(lp);
    if (!lp->simplex) return given.statuses ? take_given(lp, given, start) : 0;
    start->from = stopped ? LpFrom::MODEL : LpFrom::RECORD;
    if (!tuned) return 0;
    TRY(take_basis(lp, start));
    if (stopped) start->from = LpFrom::MODEL;
    lp_drop_simplex(lp);
    return 0;
}
} // namespace

int lp_start_choose(LpSolve *lp, const LpGiven &given, LpStart *start)
{
    choose_method(lp->env, start);
    TRY(choose_place(lp, given, start));
    start->presolve = wants_presolve(lp, start);
    start->root = given.root;
    return 0;
}
