// lp_driver.cpp -- the solve of one linear program: what to start from, which method, what to publish
//
// Method      1  A model that is solved and unchanged is not solved again.
//             2  A row that no point satisfies makes the model infeasible without a solve.
//             3  What to start from, and the method, are decided (lp_start.cpp).
//             4  Presolve reduces the model, the simplex solves what is left, postsolve gives a basis of the model
//                (lp_presolved.cpp); or not, with a basis to start from.
//             5  The simplex solves the model itself, from that basis usually without an iteration. An answer that is not
//                sure is sought in other ways (lp_secure.cpp).
//             6  The result is published.
// Invariant   A status other than TVX_LOADED stands for what simplex and result hold. Out of memory leaves the status at
//             TVX_LOADED, and neither.
#include "body/row_kind.h"
#include "body/signs.h"
#include "lp/lp_form.h"
#include "lp/lp_presolved.h"
#include "lp/lp_secure.h"
#include "runtime/clock.h"

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
    lp->status = TVX_LOADED;
}

bool lp_has_point(const LpSolve *lp)
{
    return lp->simplex || (lp->result && lp->result->x.size > 0);
}

static bool already_solved(const LpSolve *lp)
{
    if (!lp->simplex || !lp->result) return false;
    return lp->status >= TVX_OPTIMAL && lp->status <= TVX_UNBOUNDED &&
           lp->status == simplex_status(lp->simplex);
}

// An empty result in place of any earlier one. 0 or OUT_OF_MEMORY.
static int open_result(LpSolve *lp)
{
    lp->status = TVX_LOADED;
    lp->work = 0;
    if (lp->simplex) (void)simplex_take_work(lp->simplex); // of earlier solves
    if (!lp->result) lp->result = record_create<LpResult>();
    if (!lp->result) return OUT_OF_MEMORY;
    *lp->result = LpResult{};
    return 0;
}

static void publish(LpSolve *lp, double start)
{
    LpResult *result = lp->result;
    result->runtime = WallClock() - start;
    if (!lp->simplex) return;
    result->objval = turned(lp->body->sense, simplex_objective(lp->simplex));
    result->itercount = simplex_iterations(lp->simplex);
    lp->work += simplex_take_work(lp->simplex);
    simplex_log_final(lp->simplex);
}

// A row that no point satisfies settles the model, whatever else it holds.
static bool has_impossible_row(const LpSolve *lp)
{
    const ModelBody *body = lp->body;
    const int i = find_row(body, RowKind::IMPOSSIBLE);
    if (i < 0) return false;
    char buffer[DEFAULT_NAME_LENGTH];
    TVXmsg(lp->env, "Warning: constraint %s has the infinite right-hand side %g\n",
           constr_name(body, i, buffer), turned(row_sign(body, i), body->rhs[i]));
    return true;
}

static int solve_from(LpSolve *lp, LpStart *start)
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

static int solve(LpSolve *lp, const LpGiven &given)
{
    const double begin = WallClock();
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
    publish(lp, begin);
    return 0;
}

// A fresh factor for queries to come. That the old one cannot be replaced costs only speed.
static int refresh_factor(LpSolve *lp)
{
    if (!lp->env->TARV_PAR_SIMPLEXENDFAC) return 0;
    return simplex_refactor(lp->simplex) == OUT_OF_MEMORY ? OUT_OF_MEMORY : 0;
}

int lp_solve(LpSolve *lp, const LpGiven &given)
{
    const int code = already_solved(lp) ? refresh_factor(lp) : solve(lp, given);
    if (code) lp_drop(lp); // nothing that a solve has left unfinished is used again
    return code;
}

int lp_quality(LpSolve *lp)
{
    LpResult *result = lp->result;
    if (!lp->simplex || !result) return TVX_ERROR_DATA_NOT_AVAILABLE;
    if (result->quality.computed) return 0;
    const int n = lp->body->numvars, m = lp->body->numconstrs;
    Array<double> x, pi, rc;
    Array<int> basis;
    TRY(array_resize(&x, n));
    TRY(array_resize(&pi, m));
    TRY(array_resize(&rc, n));
    TRY(array_resize(&basis, int64_t{n} + m));
    simplex_get_primal(lp->simplex, x.data);
    simplex_get_dual(lp->simplex, pi.data, rc.data);
    simplex_get_basis(lp->simplex, basis.data);
    const JudgedPoint point = {x.data, pi.data, rc.data, basis.data + n};
    QualityScale scale;
    simplex_get_scaling(lp->simplex, &scale.row, &scale.col, &scale.obj);
    return LpQuality(lp->env, lp->body, point, scale, &result->quality);
}

static int run_to_fresh_factors(LpSolve *lp, TVXenv *env)
{
    const SimplexCall call = {.Method = METHOD_DUAL, .Iterations = lp->result->itercount};
    do {
        TRY(SimplexOptimize(&lp->simplex, lp->body, env, call));
        lp->status = simplex_status(lp->simplex);
    } while (lp->status == TVX_OPTIMAL && !simplex_has_fresh_factor(lp->simplex));
    return 0;
}

// In an environment of its own: without callback and limit of iterations, with fresh factors at the end.
static int confirm_by_dual(LpSolve *lp)
{
    TVXenv *env = nullptr;
    TRY(env_inner(&env, lp->env));
    env->outer = nullptr;
    env->TARV_PAR_SIMPLEXENDFAC = 1;
    env->IterationLimit = UNDEFINED_VALUE;
    env->optimize_start = WallClock();
    const int code = run_to_fresh_factors(lp, env);
    if (lp->simplex) simplex_set_env(lp->simplex, lp->env);
    env_free(env);
    return code;
}

int lp_confirm(LpSolve *lp, bool *changed)
{
    bool optimal = false;
    const double before = lp->result->itercount;
    *changed = false;
    int code = simplex_confirm(lp->simplex, &optimal);
    if (!code && !optimal) code = confirm_by_dual(lp);
    if (code == OUT_OF_MEMORY && !lp->simplex) lp_drop(lp);
    if (code) return code;
    *changed = simplex_iterations(lp->simplex) > before;
    if (*changed) {
        lp->result->itercount = simplex_iterations(lp->simplex);
        lp->result->objval = turned(lp->body->sense, simplex_objective(lp->simplex));
        lp->result->quality.computed = 0;
    }
    return 0;
}
