// lp_presolved.cpp -- presolve, the simplex on what is left, and postsolve to a basis of the model
//
// Method      Where presolve is wanted (lp_start.cpp): choose the form (the model or its dual); reduce it;
//             solve the reduced model; map an optimum back to a basis of the form. A dual form is solved from there and
//             its basis turned into one of the model. The caller confirms the basis on the model itself, usually
//             without an iteration.
//             Where a limit stops the reduced model its basis is mapped back all the same: the run on the model ends at
//             once, at the same limit, and shows the point. The next solve goes on from the reduced model, or, when the
//             limit came in postsolve, with postsolve. A limit in the run on the model itself leaves its simplex
//             record, and the next solve goes on from that without presolve (lp_start.h).
//             Infeasible and unbounded of the reduced model cannot be distinguished after dual reductions or on the
//             dual form. Numeric trouble: the model is solved without presolve.
// Invariant   With a final status there is no simplex record. lp->form exists only if a limit has stopped the solve;
//             the next one continues there.
#include "lp/lp_presolved.h"
#include "body/row_kind.h"
#include "body/signs.h"
#include "lp/lp_claim.h"
#include "lp/lp_run.h"
#include "presolve/dualise.h"
#include "runtime/clock.h"
#include <algorithm>
#include <cmath>

namespace
{
// Entries, rows and columns of a model whose point is computed after a limit: beyond, that takes some tenths of a
// second.
constexpr int64_t SHOWN_ENTRIES = 5000000;

// ---- The reduced model ----

// The primal simplex on the dual form stands for the dual simplex on the model, and conversely.
SimplexMethod method_on(const LpForm *form, SimplexMethod method)
{
    if (!form->dual) return method;
    switch (method) {
    case METHOD_PRIMAL:
        return METHOD_DUAL;
    case METHOD_DUAL:
        return METHOD_PRIMAL;
    case METHOD_BY_START:
    case METHOD_AUTO:
        break; // neither names a method
    }
    return method;
}

// A run on the form in place of one on the model, without a basis to start from.
LpStart run_on(const LpForm *form, const LpStart *start)
{
    LpStart run;
    run.chosen = start->chosen;
    run.method = method_on(form, start->method);
    return run;
}

// The basis that a caller or an earlier solve has left, as one of the form.
int start_in_form(const LpSolve *lp, const LpForm *form, const LpStart *start,
                  Array<int> *statuses)
{
    const ModelBody *body = lp->body;
    const int64_t size = int64_t{body->numvars} + body->numconstrs;
    Array<int> own;
    if (start->from == LpFrom::BASIS) {
        TRY(array_copy(&own, start->statuses.data, size));
    } else {
        TRY(array_resize(&own, size));
        simplex_get_basis(lp->simplex, own.data);
    }
    if (!form->dual) {
        *statuses = static_cast<Array<int> &&>(own);
        return 0;
    }
    TRY(array_resize(statuses, int64_t{form->dual->numvars} + form->dual->numconstrs));
    primal_basis_to_dual(body, infinite_bound(lp->env), own.data, statuses->data);
    return 0;
}

// That basis in the reduced model of the form; empty when there is none.
int crushed_start(const LpSolve *lp, const LpForm *form, const LpStart *start,
                  Array<int> *reduced)
{
    const ModelBody *small = lp_form_reduced(form);
    if (start->from == LpFrom::SCRATCH || !small) return 0;
    Array<int> full;
    TRY(start_in_form(lp, form, start, &full));
    TRY(array_resize(reduced, int64_t{small->numvars} + small->numconstrs));
    presolve_crush_basis(form->presolve, full.data, reduced->data);
    return 0;
}

// The simplex on the reduced model of a form, from `start`. Its status goes to *status: optimal where nothing is left.
int solve_reduced(LpSolve *lp, LpForm *form, const LpStart &start, int *status)
{
    const ModelBody *reduced = lp_form_reduced(form);
    *status = TVX_OPTIMAL;
    if (!reduced) return 0;
    TRY(lp_run(lp, {reduced, &form->simplex, !form->dual}, start));
    if (simplex_status(form->simplex) == TVX_OPTIMAL)
        TRY(lp_postsolve_prepare(form->presolve, form->simplex));
    *status =
        simplex_status(form->simplex); // numeric trouble, when new factors have failed
    lp->result->itercount = simplex_iterations(form->simplex);
    lp->result->reduced_itercount = lp->result->itercount;
    lp->work += simplex_take_work(form->simplex);
    return 0;
}

// ---- Results ----

// The status of the model is known without a run on it.
void settle(LpSolve *lp, int status, bool *final)
{
    lp->status = status;
    lp->result->objval = turned(lp->body->sense, UNDEFINED_VALUE);
    *final = true;
}

// The model is solved from these statuses, by the method for which they are feasible.
void start_from(Array<int> *statuses, LpStart *start)
{
    start->from = LpFrom::BASIS;
    start->method = METHOD_BY_START;
    start->norms.size = 0;
    start->statuses = static_cast<Array<int> &&>(*statuses);
}

// The basis of the dual form as one of the model.
int turn_basis(const LpSolve *lp, Array<int> *statuses)
{
    const ModelBody *body = lp->body;
    Array<int> own;
    TRY(array_resize(&own, int64_t{body->numvars} + body->numconstrs));
    dual_basis_to_primal(body, infinite_bound(lp->env), statuses->data, own.data);
    *statuses = static_cast<Array<int> &&>(own);
    return 0;
}

// A dual form whose reduced model is solved: the dual from there, then the model's own basis.
int leave_dual_form(LpSolve *lp, const LpForm *form, Array<int> *statuses, LpStart *start)
{
    struct Record {
        sopt *simplex = nullptr;
        ~Record() { simplex_free(simplex); }
    } of_dual;
    LpStart by_basis = run_on(form, start);
    start_from(statuses, &by_basis);
    by_basis.method = method_on(form, start->method);
    TRY(lp_run(lp, {form->dual, &of_dual.simplex, false}, by_basis));
    const int status = simplex_status(of_dual.simplex);
    if (status != TVX_OPTIMAL && !is_limit(status))
        return 0; // the run on the model decides
    Array<int> own;
    TRY(array_resize(&own, int64_t{form->dual->numvars} + form->dual->numconstrs));
    simplex_get_basis(of_dual.simplex, own.data);
    TRY(turn_basis(lp, &own));
    start_from(&own, start);
    return 0;
}

int finish_optimal(LpSolve *lp, LpForm *form, LpStart *start, bool *final)
{
    Array<int> statuses;
    PresolveStatus stopped = PRESOLVE_OK;
    TRY(lp_postsolve_basis(form->presolve, form->simplex, &statuses, &stopped));
    if (stopped != PRESOLVE_OK) {
        settle(lp, lp_status_of(stopped), final); // the next solve begins with postsolve
        return 0;
    }
    lp_form_drop_presolve(form);
    if (form->dual) return leave_dual_form(lp, form, &statuses, start);
    start_from(&statuses, start);
    return 0;
}

// A limit or the cutoff has stopped the run on the reduced model. Its basis is mapped to the model to show the point;
// the next solve continues on the reduced model. Not for a huge model, since computing the point takes time.
int show_stopped(LpSolve *lp, const LpForm *form, int status, LpStart *start, bool *final)
{
    const ModelBody *body = lp->body;
    if (int64_t{body->numnz} + body->numvars + body->numconstrs > SHOWN_ENTRIES) {
        settle(lp, status, final);
        return 0;
    }
    Array<int> statuses;
    TRY(lp_postsolve_basis(form->presolve, form->simplex, &statuses, nullptr));
    if (form->dual) TRY(turn_basis(lp, &statuses));
    presolve_mend_basis(body->numvars, body->numconstrs, statuses.data);
    start_from(&statuses, start);
    return 0;
}

// Presolve or the reduced model claims that the form has no optimal solution. The status is final if the claim is
// proved on the model, otherwise the run on the model decides. Without dual reductions only infeasibility can be final.
int finish_without_optimum(LpSolve *lp, LpForm *form, bool infeasible, const LpClaim *claim,
                           bool *final)
{
    const bool exact = lp->env->TARV_PAR_DUALREDUCTION == 0;
    infeasible = infeasible && exact && !form->dual;
    bool proved = false;
    TRY(lp_claim_holds(lp, form, claim, &proved));
    lp_form_drop_presolve(form);
    if (proved && (infeasible || !exact))
        settle(lp, infeasible ? TVX_INFEASIBLE : TVX_INF_OR_UNBD, final);
    return 0;
}

// What the status of the reduced model means for the model.
int conclude(LpSolve *lp, LpForm *form, int status, LpStart *start, bool *final)
{
    if (status == TVX_OPTIMAL) return finish_optimal(lp, form, start, final);
    if (is_limit(status) || status == TVX_CUTOFF)
        return show_stopped(lp, form, status, start, final);
    if (status == TVX_INFEASIBLE || status == TVX_UNBOUNDED) {
        LpClaim claim;
        TRY(lp_claim_of_reduced(form, &claim));
        return finish_without_optimum(lp, form, status == TVX_INFEASIBLE, &claim, final);
    }
    lp_form_drop_presolve(form); // numeric trouble: the run on the model decides
    return 0;
}

// ---- The steps in order ----

void log_presolved(const LpSolve *lp, const LpForm *form, double begin)
{
    TVXenv *env = lp->env;
    if (env->quiet_solve) return;
    TVXmsg(env, "Presolve time: %.2fs\n", WallClock() - begin);
    if (!form->presolve) return;
    if (const ModelBody *reduced = lp_form_reduced(form))
        TVXmsg(env, "Presolved: %d rows, %d columns, %d nonzeros\n\n", reduced->numconstrs,
               reduced->numvars, reduced->numnz);
    else
        TVXmsg(env, "Presolved: All rows and columns removed\n");
}

// Passes the reduced model to the hook of the caller.
void write_reduced(const LpSolve *lp, const LpForm *form)
{
    const ModelBody *reduced = lp_form_reduced(form);
    if (lp->env->TARV_PAR_WRITEPREMODEL && reduced && lp->write_reduced)
        lp->write_reduced(reduced, lp->env);
}

int reduce_and_solve(LpSolve *lp, LpForm *form, LpStart *start, bool *final)
{
    const double begin = WallClock();
    TRY(lp_form_presolve(lp, start->chosen, form));
    if (form->outcome == PRESOLVE_OVERGROWN) return 0; // the run on the model decides
    log_presolved(lp, form, begin);
    write_reduced(lp, form);
    if (const int status = lp_status_of(form->outcome); is_limit(status)) {
        settle(lp, status, final);
        return 0;
    }
    if (form->outcome != PRESOLVE_OK)
        return finish_without_optimum(lp, form, form->outcome == PRESOLVE_INFEASIBLE,
                                      &form->claim, final);
    LpStart reduced = run_on(form, start);
    int status = 0;
    TRY(crushed_start(lp, form, start, &reduced.statuses));
    TRY(solve_reduced(lp, form, reduced, &status));
    return conclude(lp, form, status, start, final);
}

// A limit has stopped postsolve: the reduced model is solved, or presolve has left none to solve.
bool waits_for_postsolve(const LpForm *form)
{
    return form->presolve &&
           (!lp_form_reduced(form) ||
            (form->simplex && simplex_status(form->simplex) == TVX_OPTIMAL));
}

// A limit has stopped the reduced model of a form, or postsolve.
bool was_stopped(const LpForm *form)
{
    return waits_for_postsolve(form) ||
           (form->simplex && is_limit(simplex_status(form->simplex)));
}

// Goes on where a limit has stopped a form.
int resume_form(LpSolve *lp, LpForm *form, LpStart *start, bool *final)
{
    int status = TVX_OPTIMAL;
    if (!waits_for_postsolve(form))
        TRY(solve_reduced(lp, form, run_on(form, start), &status));
    return conclude(lp, form, status, start, final);
}
} // namespace

int lp_presolved(LpSolve *lp, LpStart *start, bool *final)
{
    *final = false;
    if (start->from == LpFrom::FORM) {
        TRY(resume_form(lp, lp->form, start, final));
    } else {
        if (!start->presolve) return 0;
        TRY(lp_form_choose(lp, start->chosen, &lp->form));
        TRY(reduce_and_solve(lp, lp->form, start, final));
    }
    if (!was_stopped(lp->form)) lp_drop_form(lp);
    return 0;
}
