// lp_driver.cpp -- the solve of one linear program: what to start from, which method, what to publish
//
// Method      1  A model that is solved and unchanged is not solved again.
//             2  A row that no point satisfies makes the model infeasible without a solve.
//             3  What to start from, and the method, are decided (lp_start.cpp).
//             4  Presolve reduces the model, the simplex solves what is left, postsolve gives a basis of the model
//                (lp_presolved.cpp); or not, with a basis to start from.
//             5  The simplex solves the model itself, from that basis usually without an iteration. An answer that is
//                not sure is sought in other ways (lp_secure.cpp).
//             6  The result is published.
// Invariant   A status other than TVX_LOADED stands for what simplex and result hold. Out of memory leaves the status
//             at TVX_LOADED, and neither.
#include "body/row_kind.h"
#include "body/signs.h"
#include "lp/lp_form.h"
#include "lp/lp_presolved.h"
#include "lp/lp_secure.h"
#include "runtime/clock.h"

void lp_set_loaded(LpSolve *lp)
{
    lp->status = TVX_LOADED;
}

void lp_set_broken(LpSolve *lp)
{
    lp->status = 0;
}

void lp_drop_form(LpSolve *lp)
{
    lp_form_free(lp->form);
    lp->form = nullptr;
}

void lp_drop_results(LpSolve *lp)
{
    lp_drop_form(lp);
    record_free(lp->result);
    lp->result = nullptr;
}

void lp_drop_simplex(LpSolve *lp)
{
    simplex_free(lp->simplex);
    lp->simplex = nullptr;
}

void lp_drop(LpSolve *lp)
{
    lp_drop_results(lp);
    lp_drop_simplex(lp);
    lp_set_loaded(lp);
}

namespace
{
bool already_solved(const LpSolve *lp)
{
    if (!lp->simplex || !lp->result) return false;
    return lp->status >= TVX_OPTIMAL && lp->status <= TVX_UNBOUNDED &&
           lp->status == simplex_status(lp->simplex);
}

// An empty result in place of any earlier one. 0 or OUT_OF_MEMORY.
int open_result(LpSolve *lp)
{
    lp->status = TVX_LOADED;
    lp->work = lp->lost_iterations = 0;
    if (lp->simplex) (void)simplex_take_work(lp->simplex); // of earlier solves
    if (!lp->result) lp->result = record_create<LpResult>();
    if (!lp->result) return OUT_OF_MEMORY;
    *lp->result = LpResult{};
    return 0;
}

void publish(LpSolve *lp)
{
    LpResult *result = lp->result;
    lp->version++;
    if (!lp->simplex) return;
    result->objval = turned(lp->body->sense, simplex_objective(lp->simplex));
    result->itercount = simplex_iterations(lp->simplex);
    lp->work += simplex_take_work(lp->simplex);
    simplex_log_final(lp->simplex);
}

// A row that no point satisfies settles the model, whatever else it holds.
bool has_impossible_row(const LpSolve *lp)
{
    const ModelBody *body = lp->body;
    const int i = find_row(body, RowKind::IMPOSSIBLE);
    if (i < 0) return false;
    char buffer[DEFAULT_NAME_LENGTH];
    TVXmsg(lp->env, "Warning: constraint %s has the infinite right-hand side %g\n",
           constr_name(body, i, buffer), turned(row_sign(body, i), body->rhs[i]));
    return true;
}

int solve_from(LpSolve *lp, LpStart *start)
{
    bool final = false;
    TRY(lp_presolved(lp, start, &final));
    if (final)
        lp_drop_simplex(lp);
    else
        TRY(lp_secure(lp, *start));
    if (!is_limit(lp->status)) lp_drop_form(lp); // nothing goes on from there
    if (lp->status == TVX_INF_OR_UNBD && objective_is_bounded(lp->env, lp->body))
        lp->status = TVX_INFEASIBLE;
    return 0;
}

int solve(LpSolve *lp, const LpGiven &given)
{
    LpStart start;
    TRY(lp_start_choose(lp, given, &start));
    TRY(open_result(lp));
    if (has_impossible_row(lp)) {
        lp_drop_form(lp);
        lp_drop_simplex(lp);
        lp->status = TVX_INFEASIBLE;
    } else {
        TRY(solve_from(lp, &start));
    }
    publish(lp);
    return 0;
}

// A fresh factor for queries to come. That the old one cannot be replaced costs only speed.
int refresh_factor(LpSolve *lp)
{
    if (!lp->env->TARV_PAR_SIMPLEXENDFAC) return 0;
    return simplex_refactor(lp->simplex) == OUT_OF_MEMORY ? OUT_OF_MEMORY : 0;
}
} // namespace

int lp_solve(LpSolve *lp, const ModelBody *body, TVXenv *env, const LpGiven &given)
{
    lp->body = body;
    lp->env = env;
    const int code = already_solved(lp) ? refresh_factor(lp) : solve(lp, given);
    if (code && lp->result) lp->lost_iterations = lp->result->itercount;
    if (code) lp_drop(lp); // nothing that a solve has left unfinished is used again
    return code;
}

namespace
{
int run_to_fresh_factors(LpSolve *lp, TVXenv *env)
{
    const SimplexCall call = {.Method = METHOD_DUAL, .Iterations = lp->result->itercount};
    do {
        TRY(SimplexOptimize(&lp->simplex, lp->body, env, call));
        lp->status = simplex_status(lp->simplex);
    } while (lp->status == TVX_OPTIMAL && !simplex_has_fresh_factor(lp->simplex));
    return 0;
}

// In an environment of its own: without callback and limit of iterations, with fresh factors at the end.
int make_confirming_env(const LpSolve *lp, TVXenv **env)
{
    TRY(env_inner(env, lp->env));
    (*env)->outer = nullptr;
    (*env)->TARV_PAR_SIMPLEXENDFAC = 1;
    (*env)->IterationLimit = UNDEFINED_VALUE;
    (*env)->optimize_start = WallClock();
    return 0;
}

int confirm(LpSolve *lp, TVXenv *env)
{
    bool optimal = false;
    TRY(simplex_confirm(lp->simplex, &optimal));
    return optimal ? 0 : run_to_fresh_factors(lp, env);
}
} // namespace

int lp_confirm(LpSolve *lp, bool *changed)
{
    TVXenv *env = nullptr;
    const double before = lp->result->itercount;
    *changed = false;
    TRY(make_confirming_env(lp, &env)); // before anything changes
    const int code = confirm(lp, env);
    if (lp->simplex) simplex_set_env(lp->simplex, lp->env);
    env_free(env);
    if (code) {
        lp_drop(lp);
        return code;
    }
    *changed = simplex_iterations(lp->simplex) > before;
    if (*changed) {
        lp->version++;
        lp->result->itercount = simplex_iterations(lp->simplex);
        lp->result->objval = turned(lp->body->sense, simplex_objective(lp->simplex));
        lp->result->quality.computed = 0;
    }
    return 0;
}

bool lp_bound_changed(LpSolve *lp, int j)
{
    if (!simplex_change_bound(lp->simplex, j, lp->body->lb[j], lp->body->ub[j]))
        return false;
    lp_drop_form(lp);
    lp->status = TVX_LOADED;
    return true;
}
