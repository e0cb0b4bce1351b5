// passes.cpp -- calls of reductions, and the end of presolve
#include "presolve/passes.h"
#include "body/row_kind.h"
#include <cassert>
#include <cstdlib>

int run_reduction(PresolveWork *w, Reduction reduction)
{
    if (w->Steps >= w->StepLimit) return STOP;
    w->Steps++;
    TRY(reduction(w));
    TRY(sum_stale(w));
#ifdef TVX_DEBUG
    if (presolve_verify(w) > 0) abort(); // it has printed what is wrong
#endif
    return presolve_check(w);
}

int run_steps(PresolveWork *w, std::initializer_list<PresolveStep> steps)
{
    for (const PresolveStep &step : steps)
        if (step.wanted) TRY(run_reduction(w, step.reduction));
    return 0;
}

int remove_free_rows(PresolveWork *w)
{
    for (int i = 0; i < w->NumRows; i++) {
        TRY(check_limits(w, 1));
        if (w->Sense.data[i] == '=' || w->Rhs.data[i] < INFINITE_VALUE) continue;
        TRY(check_limits(w, w->RowCnt.data[i]));
        remove_row(w, i, ROW_REDUNDANT);
    }
    return 0;
}

bool nothing_left(const PresolveWork *w)
{
    return w->RowsRemoved >= w->NumRows || w->ColsRemoved >= w->NumCols;
}

int remove_empty_lines(PresolveWork *w)
{
    for (;;) {
        const int cols = w->ColsRemoved;
        TRY(run_reduction(w, pre_redundant_rows));
        TRY(run_reduction(w, pre_fix_empty));
        if (cols == w->ColsRemoved) return 0;
    }
}

int load_and_reduce(PresolveWork *w, const ModelBody *body, TVXenv *env, Reduction reduce,
                    PresolveResult **out)
{
    *out = nullptr;
    TRY(work_load(w, body, env));
    const int status = reduce(w);
    if (status != 0 && status != STOP) return status;
    TRY(build_reduced(w, out));
    const ModelBody *reduced = presolve_reduced(*out);
    return reduced && !all_rows_ordinary(reduced) ? END_OVERGROWN : 0;
}

void log_removed(const PresolveWork *w)
{
    if (w->RowsRemoved > 0 || w->ColsRemoved > 0)
        TVXmsg(w->Env, "Presolve removed %d rows and %d columns\n", w->RowsRemoved,
               w->ColsRemoved);
}

void log_tightened(const PresolveWork *w)
{
    if (w->CoefsChanged > 0 || w->BoundsChanged > 0)
        TVXmsg(w->Env, "Presolve tightened %d bounds and modified %d coefficients\n",
               w->BoundsChanged, w->CoefsChanged);
}

void log_equations(const PresolveWork *w)
{
    if (w->IneqToEq > 0)
        TVXmsg(w->Env, "Presolve changed %d inequalities to equalities\n", w->IneqToEq);
}

PresolveStatus presolve_status_of(int end)
{
    switch (end) {
    case 0:
        return PRESOLVE_OK;
    case END_INFEASIBLE:
        return PRESOLVE_INFEASIBLE;
    case END_INF_OR_UNBD:
        return PRESOLVE_INF_OR_UNBD;
    case END_UNBOUNDED:
        return PRESOLVE_UNBOUNDED;
    case TVX_TIME_LIMIT:
        return PRESOLVE_TIME_LIMIT;
    case TVX_INTERRUPTED:
        return PRESOLVE_INTERRUPTED;
    default:
        assert(end == END_OVERGROWN);
        return PRESOLVE_OVERGROWN;
    }
}

namespace
{
// The status of a model without optimum: reductions that keep only an optimum may leave infeasible or unbounded open.
PresolveStatus final_status(const PresolveWork *w, int status)
{
    if (status == END_UNBOUNDED) return PRESOLVE_INF_OR_UNBD;
    if (status == END_INFEASIBLE && w->Env->Presolve != 0 && w->Env->TARV_PAR_DUALREDUCTION)
        return PRESOLVE_INF_OR_UNBD;
    return presolve_status_of(status);
}
} // namespace

int presolve_end(PresolveWork *w, int end, PresolveResult **out, PresolveStatus *status,
                 double *effort)
{
    if (end != 0) {
        presolve_free(*out);
        *out = nullptr;
    }
    const bool failed = end == OUT_OF_MEMORY;
    *status = failed ? PRESOLVE_OK : final_status(w, end);
    *effort += w->Work;
    work_free(w);
    return failed ? OUT_OF_MEMORY : 0;
}
