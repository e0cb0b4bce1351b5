// lp_form.cpp -- which form of a linear model is presolved and solved: the model or its dual
//
// Method      Many more rows than columns favour the dual form. With PreDual 2 both forms are presolved at the same
//             time, on two threads; the sizes that are left decide. Both always run to their end, so the choice does
//             not depend on which is faster.
#include "lp/lp_form.h"
#include "body/row_kind.h"
#include "env/limits.h"
#include "presolve/dualise.h"
#include "runtime/thread.h"
#include <utility>

namespace
{
constexpr double TALL = 5, WIDE = 2; // rows over columns: the dual, the primal form
constexpr double VAR_WEIGHT = 3, ROW_WEIGHT = 5, NZ_WEIGHT = 2,
                 BETTER = 25; // of the comparison

enum PreDualChoice { AUTOMATIC = -1, PRIMAL_FORM = 0, DUAL_FORM = 1, BOTH_FORMS = 2 };

// For the barrier: the form with the smaller system, which free variables and inequalities spoil.
bool dual_for_barrier(const ModelBody *body)
{
    const double m = body->numconstrs, n = body->numvars;
    if (m > TALL * n) return true;
    if (m < WIDE * n) return false;
    int equations = 0, free = 0;
    for (int i = 0; i < body->numconstrs; i++) equations += is_equation(body, i);
    for (const char kind : body->bound_kind) free += kind == 3;
    return equations == 0 || (free > 0 && equations < 2 * free);
}

bool automatic_dual(const ModelBody *body, LpMethod method)
{
    if (method == LP_BARRIER) return dual_for_barrier(body);
    return body->numconstrs > TALL * body->numvars;
}

int take_dual(const LpSolve *lp, LpForm *form)
{
    TRY(dualise(lp->body, lp->env, &form->dual));
    if (form->dual) form->body = form->dual; // else the primal form goes on
    return 0;
}

// The dual form on its own thread.
struct DualThread {
    const ModelBody *source = nullptr;
    TVXenv *env = nullptr; // an inner one
    LpMethod method = LP_DUAL_SIMPLEX;
    ModelBody *dual = nullptr;
    PresolveResult *presolve = nullptr; // null: this form cannot be used
    double work = 0;
    int32_t done = 0;
};

void run_dual(void *argument)
{
    DualThread *t = static_cast<DualThread *>(argument);
    PresolveStatus status = PRESOLVE_OK;
    // benign: where memory does not suffice for this form the other one stands
    if (!dualise(t->source, t->env, &t->dual) && t->dual)
        (void)presolve_lp(t->dual, t->env, t->method, &t->presolve, &status, &t->work);
    if (!t->presolve) { // to give back much memory takes time: not after the other form
        body_free(t->dual);
        t->dual = nullptr;
    }
    flag_store(&t->done, 1);
}

double ratio(int a, int b)
{
    return (a + 1.0) / (b + 1.0);
}

bool dual_is_smaller(const PresolveResult *primal, const PresolveResult *dual)
{
    const ModelBody *p = presolve_reduced(primal), *d = presolve_reduced(dual);
    if (!p || !d) return p != nullptr;
    return VAR_WEIGHT * ratio(p->numvars, d->numvars) +
               ROW_WEIGHT * ratio(p->numconstrs, d->numconstrs) +
               NZ_WEIGHT * ratio(p->numnz, d->numnz) >
           BETTER;
}

void adopt(DualThread *t, TVXenv *env, LpForm *form)
{
    lp_form_drop_presolve(form);
    form->body = form->dual = std::exchange(t->dual, nullptr);
    form->presolve = std::exchange(t->presolve, nullptr);
    presolve_set_env(form->presolve, env);
}

int choose_from_both(LpSolve *lp, LpMethod method, LpForm *form)
{
    DualThread t;
    t.source = lp->body;
    t.method = method;
    TRY(env_inner(&t.env, lp->env));
    t.env->outer = nullptr; // another thread must not enter the caller's function
    const uintptr_t thread = ThreadStart(run_dual, &t);
    const int code = lp_form_presolve(lp, method, form);
    for (int round = 0; thread && !flag_load(&t.done); round++) ThreadPause(round);
    if (thread) ThreadJoin(thread);
    if (t.dual) lp->work += t.work;
    // One form may have been ready long before the other: a limit is looked at before anything is made of either.
    if (form->outcome == PRESOLVE_OK)
        form->outcome = presolve_status_of(limits_reached(lp->env));
    if (form->outcome != PRESOLVE_OK)
        lp_form_drop_presolve(form);
    else if (!code && t.presolve && dual_is_smaller(form->presolve, t.presolve))
        adopt(&t, lp->env, form);
    presolve_free(t.presolve);
    body_free(t.dual);
    env_free(t.env);
    return code;
}

int choose(LpSolve *lp, LpMethod method, LpForm *form)
{
    const TVXenv *env = lp->env;
    form->body = lp->body;
    if (lp->body->numvars == 0) return 0;
    int choice = env->PreDual;
    if (choice == BOTH_FORMS && (env->Threads == 1 || ProcessorCount() == 1))
        choice = AUTOMATIC;
    if (choice == BOTH_FORMS) return choose_from_both(lp, method, form);
    const bool dual =
        choice == DUAL_FORM || (choice == AUTOMATIC && automatic_dual(lp->body, method));
    return dual ? take_dual(lp, form) : 0;
}
} // namespace

int lp_status_of(PresolveStatus outcome)
{
    switch (outcome) {
    case PRESOLVE_OK:
        break;
    case PRESOLVE_INFEASIBLE:
        return TVX_INFEASIBLE;
    case PRESOLVE_INF_OR_UNBD:
        return TVX_INF_OR_UNBD;
    case PRESOLVE_UNBOUNDED:
        return TVX_UNBOUNDED;
    case PRESOLVE_TIME_LIMIT:
        return TVX_TIME_LIMIT;
    case PRESOLVE_INTERRUPTED:
        return TVX_INTERRUPTED;
    case PRESOLVE_OVERGROWN:
        return TVX_NUMERIC;
    }
    return 0;
}

int lp_form_choose(LpSolve *lp, LpMethod method, LpForm **out)
{
    *out = nullptr;
    LpForm *form = record_create<LpForm>();
    if (!form) return OUT_OF_MEMORY;
    if (const int code = choose(lp, method, form)) {
        lp_form_free(form);
        return code;
    }
    *out = form;
    return 0;
}

int lp_form_presolve(LpSolve *lp, LpMethod method, LpForm *form)
{
    if (form->presolved) return 0;
    form->presolved = true;
    return presolve_lp(form->body, lp->env, method, &form->presolve, &form->outcome,
                       &lp->work, &form->claim);
}

void lp_form_drop_presolve(LpForm *form)
{
    simplex_free(form->simplex);
    presolve_free(form->presolve);
    form->simplex = nullptr;
    form->presolve = nullptr;
}

void lp_form_free(LpForm *form)
{
    if (!form) return;
    lp_form_drop_presolve(form);
    body_free(form->dual);
    record_free(form);
}

int lp_postsolve_prepare(const PresolveResult *presolve, sopt *simplex)
{
    Array<char> rows;
    TRY(array_assign(&rows, presolve_reduced(presolve)->numconstrs, char(0)));
    if (postsolve_equations(presolve, rows.data) == 0) return 0;
    return simplex_release_slacks(simplex, rows.data);
}

int lp_postsolve_basis(const PresolveResult *presolve, const sopt *simplex,
                       Array<int> *statuses, PresolveStatus *stopped)
{
    LpPoint point, full;
    const ModelBody *reduced = presolve_reduced(presolve);
    if (reduced) {
        const int n = reduced->numvars;
        TRY(lp_point_alloc(&point, reduced, true));
        simplex_get_primal(simplex, point.x.data);
        simplex_get_dual(simplex, point.dual.data + n, point.dual.data);
        simplex_get_basis(simplex, point.status.data);
    }
    TRY(postsolve_lp(presolve, reduced ? &point : nullptr, &full, stopped));
    if (stopped && *stopped != PRESOLVE_OK) return 0;
    *statuses = static_cast<Array<int> &&>(full.status);
    return 0;
}
