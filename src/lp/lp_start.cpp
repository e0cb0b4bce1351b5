// lp_start.cpp -- what one LP solve starts from, and by which method: decided once
//
// Order       A basis that the caller has set since the last solve; the place where a limit has stopped that one (the
//             form, with presolve on, else the model itself); the live record; a basis that a change of the model has
//             carried over; scratch. A record that was tuned (SimplexTuning) for one solve is dropped; its basis is kept.
#include "lp/lp_start.h"
#include "lp/lp_form.h"

namespace
{
int choose_method(TVXenv *env)
{
    if (env->LPMethod != LP_BARRIER) return env->LPMethod;
    TVXmsg(env, "Warning: barrier is not available, using dual simplex\n");
    return METHOD_DUAL;
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
} // namespace

int lp_start_choose(LpSolve *lp, const LpGiven &given, LpStart *start)
{
    start->method = start->resolved = choose_method(lp->env);
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
