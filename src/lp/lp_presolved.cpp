// lp_presolved.cpp -- presolve, the simplex on what is left, and the way back to a basis of the model
//
// Method      A model with a basis to start from is solved as it is, unless the caller asks for presolve, and so is one
//             whose numbers would overflow in a reduction. Else: choose the form (the model or its dual); reduce it;
//             solve the reduced model; map an optimum back to a basis of the form. A dual form is solved from there and
//             its basis turned into one of the model. The caller confirms the basis on the model itself, usually without
//             an iteration.
//             Where a limit stops the reduced model its basis is mapped back all the same: the run on the model ends at
//             once, at the same limit, and shows the point. The next solve goes on from the reduced model, or, when the
//             limit came on the way back, with the way back. A limit in the run on the model itself leaves its simplex
//             record, and the driver goes on from that without presolve (lp_driver.cpp).
//             Any other outcome of the reduced model is one of the model, but for what reductions or the dual form may
//             hide: infeasible and unbounded cannot be told apart then.
// Invariant   When this returns with a final status there is no simplex record. presolve and presolved stay only where a
//             limit stopped the solve, for the next one to go on.
#include "lp/lp_presolved.h"
#include "api/optimize.h"
#include "body/row_kind.h"
#include "body/signs.h"
#include "files/files.h"
#include "lp/lp_claim.h"
#include "lp/lp_form.h"
#include "lp/lp_run.h"
#include "model/model_store.h"
#include "model/warm_start.h"
#include "presolve/dualise.h"
#include "presolve/presolve.h"
#include "runtime/clock.h"
#include "simplex/simplex.h"
#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr double WIDE_COEFFICIENTS =
    1e15;                         // largest over smallest: reductions would lose digits
constexpr double MANY_FREE = 0.2; // free variables against the smaller dimension, then

constexpr int64_t SHOWN_ENTRIES =
    5000000; // of a model whose point is made up after a limit: some tenths of a second

bool has_start(const TVXmodel *model)
{
    return model->simplex || warm_start_usable(model);
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

// Bounds that cross or stand at the wrong infinity: the simplex tells what is wrong with them.
bool has_bad_bounds(const TVXmodel *model)
{
    const ModelBody *body = model->body;
    const double infinite = infinite_bound(model->env);
    for (int j = 0; j < body->numvars; j++) {
        const double lb = body->lb.data[j], ub = body->ub.data[j];
        if (lb >= infinite || ub <= -infinite || lb - ub > model->env->FeasibilityTol)
            return true;
    }
    return false;
}

bool wants_presolve(const TVXmodel *model)
{
    const TVXenv *env = model->env;
    if (env->Presolve == 0 || has_bad_bounds(model)) return false;
    if (env->Presolve < 0 && has_start(model)) return false;
    if (body_is_extreme(model->body)) return false;
    return !(env->PreDual == -1 && env->LPMethod < 2 && env->Presolve < 2 &&
             is_wide(model->body));
}

// The outcome of a model that presolve or a reduced model has settled.
void settle(TVXmodel *model, int status, LpStart *start)
{
    model->status = status;
    model->lp_result->objval = turned(model->body->sense, UNDEFINED_VALUE);
    start->final = true;
}

// The basis that a caller or an earlier solve left, as one of the form.
int start_in_form(const TVXmodel *model, const TVXmodel *form, Array<int> *statuses)
{
    const int64_t size = int64_t{model->body->numvars} + model->body->numconstrs;
    const WarmStart *warm = warm_start_usable(model);
    Array<int> own;
    TRY(array_resize(&own, size));
    if (warm)
        std::copy_n(warm->statuses.data, size, own.data);
    else
        simplex_get_basis(model->simplex, own.data);
    if (form == model) {
        *statuses = static_cast<Array<int> &&>(own);
        return 0;
    }
    TRY(array_resize(statuses, int64_t{form->body->numvars} + form->body->numconstrs));
    primal_basis_to_dual(model->body, infinite_bound(model->env), own.data, statuses->data);
    return 0;
}

// That basis in the reduced model of the form; empty when there is none.
int crushed_start(const TVXmodel *model, const TVXmodel *form, Array<int> *reduced)
{
    if (!has_start(model) || !form->presolved) return 0;
    const ModelBody *small = form->presolved->body;
    Array<int> full;
    TRY(start_in_form(model, form, &full));
    TRY(array_resize(reduced, int64_t{small->numvars} + small->numconstrs));
    presolve_crush_basis(form, full.data, reduced->data);
    return 0;
}

// The simplex on the reduced model of a form, from `statuses` if there are any. Its status goes to *status.
int solve_reduced(TVXmodel *model, TVXmodel *form, int method, const Array<int> *statuses,
                  int *status)
{
    TVXmodel *reduced = form->presolved;
    *status = TVX_OPTIMAL;
    if (!reduced) return 0;
    TRY(lp_run(model, reduced, method, statuses));
    if (reduced->status == TVX_OPTIMAL) TRY(lp_form_prepare(form));
    model->lp_result->itercount = simplex_iterations(reduced->simplex);
    model->lp_result->reduced_itercount = model->lp_result->itercount;
    model->node_count += simplex_take_work(reduced->simplex);
    *status = reduced->status;
    return 0;
}

// The basis of the dual form as one of the model.
int turn_basis(const TVXmodel *model, Array<int> *statuses)
{
    const ModelBody *body = model->body;
    Array<int> own;
    TRY(array_resize(&own, int64_t{body->numvars} + body->numconstrs));
    dual_basis_to_primal(body, infinite_bound(model->env), statuses->data, own.data);
    *statuses = static_cast<Array<int> &&>(own);
    return 0;
}

// A dual form that is solved, or that a limit stops: the model's own basis.
int leave_dual_form(TVXmodel *model, TVXmodel *dual, int method, LpStart *start)
{
    TRY(lp_run(model, dual, method, &start->statuses));
    if (dual->status != TVX_OPTIMAL && !is_limit(dual->status)) {
        array_free(&start->statuses); // the model itself has to tell
        return 0;
    }
    simplex_get_basis(dual->simplex, start->statuses.data);
    return turn_basis(model, &start->statuses);
}

// A limit or the cutoff has stopped the reduced model. The basis it has come to, in the model, gives its point there,
// optimal or not; the next solve goes on from the reduced model itself. A huge model shows nothing: to make up its point
// takes time.
int show_stopped(TVXmodel *model, const TVXmodel *form, int status, LpStart *start)
{
    const ModelBody *body = model->body;
    if (int64_t{body->numnz} + body->numvars + body->numconstrs > SHOWN_ENTRIES) {
        settle(model, status, start);
        return 0;
    }
    TRY(lp_form_basis(form, PostsolveLimits::IGNORE, &start->statuses));
    if (form != model) TRY(turn_basis(model, &start->statuses));
    presolve_mend_basis(body->numvars, body->numconstrs, start->statuses.data);
    return 0;
}

// The form is said to have no optimal solution. Where the claim is not proved the model itself has to tell. Without dual
// reductions an infeasible reduced model is an infeasible model, and in every other case the model itself has to tell.
int settle_without_optimum(TVXmodel *model, TVXmodel *form, int status,
                           const LpClaim *claim, LpStart *start)
{
    const bool exact = model->env->TARV_PAR_DUALREDUCTION == 0;
    const bool infeasible = exact && form == model && status == TVX_INFEASIBLE;
    bool proved = false;
    TRY(lp_claim_holds(model, form, claim, &proved));
    presolve_drop(form);
    if (proved && (infeasible || !exact))
        settle(model, infeasible ? TVX_INFEASIBLE : TVX_INF_OR_UNBD, start);
    return 0;
}

// What the outcome on the form means for the model.
int conclude(TVXmodel *model, TVXmodel *form, int method, int status, LpStart *start)
{
    if (status == TVX_OPTIMAL) {
        const int code = lp_form_basis(form, PostsolveLimits::OBEY, &start->statuses);
        if (code == PRESOLVE_TIME_LIMIT || code == PRESOLVE_INTERRUPTED) {
            settle(model, code, start); // the next solve comes back from where this one was
            return 0;
        }
        TRY(code);
        presolve_drop(form);
        return form == model ? 0 : leave_dual_form(model, form, method, start);
    }
    if (is_limit(status) || status == TVX_CUTOFF)
        return show_stopped(model, form, status, start);
    if (status == TVX_NUMERIC) { // the model itself may fare better
        presolve_drop(form);
        return 0;
    }
    if (status == TVX_INFEASIBLE || status == TVX_UNBOUNDED) {
        LpClaim claim;
        TRY(lp_claim_of_reduced(form, &claim));
        return settle_without_optimum(model, form, status, &claim, start);
    }
    settle(model, status, start);
    presolve_drop(form);
    return 0;
}

void log_presolved(const TVXmodel *form, double begin)
{
    TVXenv *env = form->env;
    const TVXmodel *reduced = form->presolved;
    if (env->quiet_solve) return;
    TVXmsg(env, "Presolve time: %.2fs\n", WallClock() - begin);
    if (!form->presolve) return;
    if (!reduced) {
        TVXmsg(env, "Presolved: All rows and columns removed\n");
        return;
    }
    TVXmsg(env, "Presolved: %d rows, %d columns, %d nonzeros\n\n",
           reduced->body->numconstrs, reduced->body->numvars, reduced->body->numnz);
}

// For whoever wants to look at it. Failing to write it does not stop the solve.
void write_reduced(TVXmodel *form)
{
    if (!form->env->TARV_PAR_WRITEPREMODEL || !form->presolved) return;
    (void)mps_write(form->presolved, "junk.mps", WriteNames::NUMBERED);
    (void)finish_model(form, 0); // a failure leaves no text
}

// Numbers have grown beyond what a model may hold, or into what counts as infinite there.
bool is_overgrown(const TVXmodel *form, int status)
{
    if (status >= TVX_ERROR_OUT_OF_MEMORY) return true;
    return status == 0 && form->presolved && !all_rows_ordinary(form->presolved->body);
}

int presolve_and_solve(TVXmodel *model, LpForm *form, int method, LpStart *start)
{
    const double begin = WallClock();
    int status = form->presolved ? form->status : presolve_lp(form->model, &form->claim);
    if (form->model != model)
        model->node_count += std::exchange(form->model->node_count, 0.0);
    if (status == OUT_OF_MEMORY) return status;
    if (is_overgrown(form->model, status)) { // the model itself has to tell
        presolve_drop(form->model);
        return 0;
    }
    log_presolved(form->model, begin);
    write_reduced(form->model);
    if (status != 0) {
        if (!is_limit(status))
            return settle_without_optimum(model, form->model, status, &form->claim, start);
        settle(model, status, start);
        return 0;
    }
    Array<int> statuses;
    if (form->model != model) method = 1 - method;
    TRY(crushed_start(model, form->model, &statuses));
    TRY(solve_reduced(model, form->model, method, &statuses, &status));
    return conclude(model, form->model, method, status, start);
}

// A limit has stopped the way back: the reduced model is solved, or presolve has left none to solve.
bool waits_for_way_back(const TVXmodel *form)
{
    return form->presolve && (!form->presolved || form->presolved->status == TVX_OPTIMAL);
}

// A limit has stopped the reduced model of a form, or the way back from it.
bool was_stopped(const TVXmodel *form)
{
    const TVXmodel *reduced = form->presolved;
    return waits_for_way_back(form) ||
           (reduced && reduced->simplex && is_limit(reduced->status));
}

// Goes on where a limit has stopped a form.
int resume_form(TVXmodel *model, TVXmodel *form, int method, LpStart *start)
{
    int status = 0;
    const Array<int> as_it_stands;
    if (form != model) method = 1 - method;
    if (waits_for_way_back(form)) return conclude(model, form, method, TVX_OPTIMAL, start);
    TRY(solve_reduced(model, form, method, &as_it_stands, &status));
    return conclude(model, form, method, status, start);
}
} // namespace

bool lp_can_resume(const TVXmodel *model)
{
    return was_stopped(model->dual_form ? model->dual_form : model);
}

int lp_presolved(TVXmodel *model, int method, bool resume, LpStart *start)
{
    LpForm form;
    int code = 0;
    if (resume) {
        form.model = model->dual_form ? model->dual_form : model;
        model->dual_form = nullptr;
        code = resume_form(model, form.model, method, start);
    } else {
        presolve_drop(model);
        if (!wants_presolve(model)) return 0;
        TRY(lp_form_choose(model, &form));
        code = presolve_and_solve(model, &form, method, start);
    }
    if (code == 0 && form.model != model && was_stopped(form.model)) {
        model->dual_form = form.model; // for the next solve to go on from
        form.model = model;
    }
    lp_form_free(&form, model);
    return code;
}
