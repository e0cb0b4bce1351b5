// presolve_lp.cpp -- presolve of a continuous model: the order of the reductions
//
// Method      Passes, each of a cheap inner loop (columns, singleton rows, forcing rows) that is repeated until it
//             removes nothing, and then once the more expensive reductions. Reductions process the rows and columns
//             that earlier ones touched. The passes end when one removes nothing, or with their budget; empty columns
//             and rows are removed last.
// Out         The reduced model with the data for postsolve, or a final status.
#include "body/body.h"
#include "body/row_kind.h"
#include "presolve/claim.h"
#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <initializer_list>

namespace
{
constexpr int PASSES_LEVEL1 = 3, PASSES = 10;

// After this number of rounds a changed bound alone causes no further round.
constexpr int INNER_ROUNDS = 5;

constexpr int DUAL_PASSES = 5; // passes with dual_bounds, unless Presolve is 2

constexpr int STOP = -1; // the step limit is reached: build the reduced model now

// Options of a run, resolved.
struct Plan {
    bool network = false, dual = false, bound = false, parallel = false, aggregate = false;
    int dependent = 0, passes = 0;
    bool two_rows = false, dual_always = false;
};

using Reduction = int (*)(PresolveWork *);

// Runs one reduction, counts it, and tests the limits.
int run(PresolveWork *w, Reduction reduction)
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

Plan make_plan(const PresolveWork *w)
{
    const TVXenv *env = w->Env;
    Plan plan;
    const int level = env->Presolve;
    plan.network = level < 2 && w->MatrixClass == MATRIX_NETWORK;
    plan.dual = env->TARV_PAR_DUALREDUCTION != 0;
    plan.bound = env->TARV_PAR_PREBOUND != 0;
    plan.parallel = env->TARV_PAR_PREPARALLEL != 0;
    plan.aggregate = env->Aggregate != 0;
    plan.two_rows = env->TARV_PAR_PRETWOROWS >= 1 || level == 2;
    plan.dual_always = level == 2;
    plan.passes = env->PrePasses >= 0 ? env->PrePasses
                  : level == 1        ? PASSES_LEVEL1
                                      : PASSES;
    plan.dependent = env->PreDepRow;
    if (plan.dependent < 0)
        plan.dependent =
            level == 2                                                           ? 3
            : level == 1                                                         ? 0
            : w->Method == LP_BARRIER || w->MatrixClass == MATRIX_UNIT_EQUATIONS ? 3
                                                                                 : 0;
    return plan;
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

// The cheap reductions, until they remove nothing.
int inner_loop(PresolveWork *w)
{
    for (int round = 1;; round++) {
        const int cols = w->ColsRemoved, rows = w->RowsRemoved, bounds = w->BoundsChanged;
        presolve_log(w);
        TRY(run(w, pre_columns));
        TRY(run(w, pre_singleton_rows));
        TRY(run(w, pre_forcing_rows));
        TRY(sweep_marked(w));
        if (cols == w->ColsRemoved && rows == w->RowsRemoved &&
            (bounds == w->BoundsChanged || round > INNER_ROUNDS))
            return 0;
        rotate(w);
    }
}

struct Step {
    bool wanted;
    Reduction reduction;
};

int run_wanted(PresolveWork *w, std::initializer_list<Step> steps)
{
    for (const Step &step : steps)
        if (step.wanted) TRY(run(w, step.reduction));
    presolve_log(w);
    return 0;
}

// The more expensive reductions, once per pass.
int outer_part(PresolveWork *w, const Plan *plan, int pass)
{
    const bool duals =
        !plan->network && plan->dual && (pass < DUAL_PASSES || plan->dual_always);
    const bool parallel = !plan->network && plan->parallel;
    TRY(run_wanted(w, {{true, pre_redundant_rows},
                       {duals, pre_dual_bounds},
                       {true, pre_implied_bounds},
                       {duals, pre_singleton_rows},
                       {duals, pre_forcing_rows},
                       {parallel && plan->dual, pre_duplicate_cols},
                       {parallel, pre_duplicate_rows}}));
    TRY(compress(w));
    TRY(run_wanted(w, {{plan->dual, pre_ineq_to_eq}, {plan->aggregate, pre_aggregate}}));
    TRY(pre_activity(w));
    const bool dependent_rows = pass == 0 && (plan->dependent & 1),
               dependent_cols = pass == 0 && (plan->dependent & 2) && plan->dual;
    return run_wanted(w, {{plan->two_rows, pre_two_rows},
                          {dependent_rows, pre_dependent_rows},
                          {dependent_cols, pre_dependent_cols}});
}

int passes(PresolveWork *w, const Plan *plan)
{
    for (int pass = 0; pass < plan->passes; pass++) {
        w->Phase = 2;
        if (pass > 0) rotate(w); // what the last pass touched becomes active
        if (!plan->network) TRY(inner_loop(w));
        if (nothing_left(w)) return 0;
        w->Phase = 1;
        if (pass > 0) rotate(w);
        const int cols = w->ColsRemoved, rows = w->RowsRemoved, equations = w->IneqToEq;
        TRY(outer_part(w, plan, pass));
        if (cols == w->ColsRemoved && rows == w->RowsRemoved && equations == w->IneqToEq)
            return 0;
    }
    return 0;
}

int finish_loop(PresolveWork *w, const Plan *plan)
{
    w->Phase = 0;
    if (!plan->network && plan->bound) TRY(run(w, pre_singleton_knapsack));
    for (;;) {
        const int cols = w->ColsRemoved;
        TRY(run(w, pre_redundant_rows));
        TRY(run(w, pre_fix_empty));
        if (cols == w->ColsRemoved) break;
    }
    return plan->bound ? run(w, pre_free_bounds) : 0;
}

int reduce(PresolveWork *w)
{
    const Plan plan = make_plan(w);
    TRY(mark_everything(w));
    w->Phase = 1;
    if (!plan.network) TRY(remove_free_rows(w));
    TRY(pre_activity(w));
    if (!plan.network && plan.bound) TRY(run(w, pre_singleton_knapsack));
    TRY(passes(w, &plan));
    return finish_loop(w, &plan);
}

// The status of a model without optimum: reductions that keep only an optimum may leave infeasible or unbounded open.
PresolveStatus final_status(const PresolveWork *w, int status)
{
    if (status == END_UNBOUNDED) return PRESOLVE_INF_OR_UNBD;
    if (status == END_INFEASIBLE && w->Env->TARV_PAR_DUALREDUCTION)
        return PRESOLVE_INF_OR_UNBD;
    return presolve_status_of(status);
}

void log_result(const PresolveWork *w)
{
    if (w->RowsRemoved > 0 || w->ColsRemoved > 0)
        TVXmsg(w->Env, "Presolve removed %d rows and %d columns\n", w->RowsRemoved,
               w->ColsRemoved);
    if (w->IneqToEq > 0)
        TVXmsg(w->Env, "Presolve changed %d inequalities to equalities\n", w->IneqToEq);
}

// A PresolveEnd, or OUT_OF_MEMORY.
int load_and_reduce(PresolveWork *w, const ModelBody *body, TVXenv *env,
                    PresolveResult **out)
{
    TRY(work_load(w, body, env));
    const int status = reduce(w);
    if (status != 0 && status != STOP) return status;
    TRY(build_reduced(w, out));
    log_result(w);
    const ModelBody *reduced = presolve_reduced(*out);
    return reduced && !all_rows_ordinary(reduced) ? END_OVERGROWN : 0;
}
} // namespace

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

int presolve_lp(const ModelBody *body, TVXenv *env, LpMethod method, PresolveResult **out,
                PresolveStatus *status, double *effort, LpClaim *claim)
{
    *out = nullptr;
    PresolveWork work;
    work.Method = method;
    work.WantsProof = claim != nullptr;
    int end = load_and_reduce(&work, body, env, out);
    if (work.Proof.size > 0) {
        const int stop = claim_finish(&work, end, claim);
        if (stop != 0) end = stop;
    }
    if (end != 0) {
        presolve_free(*out);
        *out = nullptr;
    }
    const bool failed = end == OUT_OF_MEMORY;
    *status = failed ? PRESOLVE_OK : final_status(&work, end);
    *effort += work.Work;
    work_free(&work);
    return failed ? OUT_OF_MEMORY : 0;
}
