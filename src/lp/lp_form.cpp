// lp_form.cpp -- which form of a linear model is presolved and solved: the model or its dual
//
// Method      Many more rows than columns speak for the dual. With PreDual 2 both forms are presolved at the same time, on
//             two threads; the sizes that are left decide. Both always run to their end, so the choice does not depend on
//             which is faster.
#include "lp/lp_form.h"
#include "api/optimize.h"
#include "body/row_kind.h"
#include "presolve/dualise.h"
#include "presolve/limits.h"
#include "runtime/thread.h"
#include "simplex/simplex.h"
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

bool automatic_dual(const TVXmodel *model)
{
    const ModelBody *body = model->body;
    if (model->env->LPMethod == 2) return dual_for_barrier(body);
    return body->numconstrs > TALL * body->numvars;
}

int take_dual(TVXmodel *model, LpForm *form)
{
    TVXmodel *dual = nullptr;
    const int error = dualise(model, model->env, &dual);
    if (error == OUT_OF_MEMORY) return error;
    if (!error) form->model = dual; // else the primal form goes on
    return 0;
}

// The dual form on its own thread, with an environment that prints nothing.
struct DualThread {
    const TVXmodel *source = nullptr;
    TVXenv *env = nullptr;
    TVXmodel *dual = nullptr;
    int status = 0;
    int32_t done = 0;
};

void run_dual(void *argument)
{
    DualThread *t = static_cast<DualThread *>(argument);
    t->status = dualise(t->source, t->env, &t->dual);
    if (t->status == 0) t->status = presolve_lp(t->dual);
    if (t->status != 0) { // to give back much memory takes time: not after the other form
        model_free(t->dual);
        t->dual = nullptr;
    }
    flag_store(&t->done, 1);
}

double ratio(int a, int b)
{
    return (a + 1.0) / (b + 1.0);
}

bool dual_is_smaller(const TVXmodel *model, const TVXmodel *dual)
{
    if (!model->presolved || !dual->presolved) return model->presolved != nullptr;
    const ModelBody *p = model->presolved->body, *d = dual->presolved->body;
    return VAR_WEIGHT * ratio(p->numvars, d->numvars) +
               ROW_WEIGHT * ratio(p->numconstrs, d->numconstrs) +
               NZ_WEIGHT * ratio(p->numnz, d->numnz) >
           BETTER;
}

// The dual comes over to the model's environment.
void adopt(TVXmodel *model, DualThread *t, LpForm *form)
{
    presolve_drop(model);
    t->dual->env = model->env;
    if (t->dual->presolved) t->dual->presolved->env = model->env;
    form->model = t->dual;
    t->dual = nullptr;
}

int choose_from_both(TVXmodel *model, LpForm *form)
{
    DualThread t;
    t.source = model;
    TRY(env_copy(&t.env, model->env, LogReopen::NO));
    t.env->OutputFlag = 0;
    t.env->terminate_ptr = model->env->terminate_ptr;
    t.env->optimize_start = model->env->optimize_start;
    const uintptr_t thread = ThreadStart(run_dual, &t);
    form->presolved = true;
    form->status = presolve_lp(model, &form->claim);
    for (int round = 0; thread && !flag_load(&t.done); round++) ThreadPause(round);
    if (thread) ThreadJoin(thread);
    if (t.dual) model->node_count += std::exchange(t.dual->node_count, 0.0);
    // One form may have been ready long before the other: a limit is looked at before anything is made of either.
    if (form->status == 0) form->status = limits_reached(model->env);
    if (is_limit(form->status))
        presolve_drop(model);
    else if (thread && form->status == 0 && t.status == 0 && dual_is_smaller(model, t.dual))
        adopt(model, &t, form);
    model_free(t.dual);
    env_free(t.env);
    return 0;
}
} // namespace

int lp_form_choose(TVXmodel *model, LpForm *form)
{
    const TVXenv *env = model->env;
    form->model = model;
    if (model->body->numvars == 0) return 0;
    int choice = env->PreDual;
    if (choice == BOTH_FORMS && (env->Threads == 1 || ProcessorCount() == 1))
        choice = AUTOMATIC;
    if (choice == BOTH_FORMS) return choose_from_both(model, form);
    const bool dual = choice == DUAL_FORM || (choice == AUTOMATIC && automatic_dual(model));
    return dual ? take_dual(model, form) : 0;
}

int lp_form_prepare(const TVXmodel *form)
{
    Array<char> rows;
    TRY(array_assign(&rows, form->presolved->body->numconstrs, char(0)));
    if (postsolve_equations(form, rows.data) == 0) return 0;
    return simplex_release_slacks(form->presolved, rows.data);
}

int lp_form_basis(const TVXmodel *form, PostsolveLimits limits, Array<int> *statuses)
{
    LpPoint point, full;
    const TVXmodel *reduced = form->presolved;
    if (reduced) {
        const int n = reduced->body->numvars;
        TRY(lp_point_alloc(&point, reduced, true));
        simplex_get_primal(reduced->simplex, point.x.data);
        simplex_get_dual(reduced->simplex, point.dual.data + n, point.dual.data);
        simplex_get_basis(reduced->simplex, point.status.data);
    }
    TRY(postsolve_lp(form, reduced ? &point : nullptr, &full, limits));
    *statuses = static_cast<Array<int> &&>(full.status);
    return 0;
}

void lp_form_free(LpForm *form, const TVXmodel *model)
{
    if (form->model != model) model_free(form->model);
    *form = LpForm{};
}
