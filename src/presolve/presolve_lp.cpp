// presolve_lp.cpp -- presolve of a continuous model: the order of the reductions
//
// Method      Passes, each of a cheap inner loop (columns, singleton rows, forcing rows) that is repeated until it
//             removes nothing, and then once the more expensive reductions. Reductions process the rows and columns
//             that earlier ones touched. The passes end when one removes nothing, or with their budget; empty columns
//             and rows are removed last.
// Out         The reduced model with the data for postsolve, or a final status.
#include "presolve/claim.h"
#include "presolve/passes.h"

namespace
{
constexpr int PASSES_LEVEL1 = 3, PASSES = 10;

// After this number of rounds a changed bound alone causes no further round.
constexpr int INNER_ROUNDS = 5;

constexpr int DUAL_PASSES = 5; // passes with dual_bounds, unless Presolve is 2

// Options of a run, resolved.
struct Plan {
    bool network = false, dual = false, bound = false, parallel = false, aggregate = false;
    int dependent = 0, passes = 0;
    bool two_rows = false, dual_always = false;
};

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

// The cheap reductions, until they remove nothing.
int inner_loop(PresolveWork *w)
{
    for (int round = 1;; round++) {
        const int cols = w->ColsRemoved, rows = w->RowsRemoved, bounds = w->BoundsChanged;
        presolve_log(w);
        TRY(run_reduction(w, pre_columns));
        TRY(run_reduction(w, pre_singleton_rows));
        TRY(run_reduction(w, pre_forcing_rows));
        TRY(sweep_marked(w));
        if (cols == w->ColsRemoved && rows == w->RowsRemoved &&
            (bounds == w->BoundsChanged || round > INNER_ROUNDS))
            return 0;
        rotate(w);
    }
}

// The more expensive reductions, once per pass.
int outer_part(PresolveWork *w, const Plan *plan, int pass)
{
    const bool duals =
        !plan->network && plan->dual && (pass < DUAL_PASSES || plan->dual_always);
    const bool parallel = !plan->network && plan->parallel;
    TRY(run_steps(w, {{true, pre_redundant_rows},
                      {duals, pre_dual_bounds},
                      {true, pre_implied_bounds},
                      {duals, pre_singleton_rows},
                      {duals, pre_forcing_rows},
                      {parallel && plan->dual, pre_duplicate_cols},
                      {parallel, pre_duplicate_rows}}));
    presolve_log(w);
    TRY(compress(w));
    TRY(run_steps(w, {{plan->dual, pre_ineq_to_eq}, {plan->aggregate, pre_aggregate}}));
    presolve_log(w);
    TRY(pre_activity(w));
    const bool dependent_rows = pass == 0 && (plan->dependent & 1),
               dependent_cols = pass == 0 && (plan->dependent & 2) && plan->dual;
    TRY(run_steps(w, {{plan->two_rows, pre_two_rows},
                      {dependent_rows, pre_dependent_rows},
                      {dependent_cols, pre_dependent_cols}}));
    presolve_log(w);
    return 0;
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
    if (!plan->network && plan->bound) TRY(run_reduction(w, pre_singleton_knapsack));
    TRY(remove_empty_lines(w));
    return plan->bound ? run_reduction(w, pre_free_bounds) : 0;
}

int reduce(PresolveWork *w)
{
    const Plan plan = make_plan(w);
    TRY(mark_everything(w));
    w->Phase = 1;
    if (!plan.network) TRY(remove_free_rows(w));
    TRY(pre_activity(w));
    if (!plan.network && plan.bound) TRY(run_reduction(w, pre_singleton_knapsack));
    TRY(passes(w, &plan));
    return finish_loop(w, &plan);
}

} // namespace

int presolve_lp(const ModelBody *body, TVXenv *env, LpMethod method, PresolveResult **out,
                PresolveStatus *status, double *effort, LpClaim *claim)
{
    PresolveWork work;
    work.Method = method;
    work.WantsProof = claim != nullptr;
    int end = load_and_reduce(&work, body, env, reduce, out);
    if (*out) {
        log_removed(&work);
        log_equations(&work);
    }
    if (work.Proof.size > 0) {
        const int stop = claim_finish(&work, end, claim);
        if (stop != 0) end = stop;
    }
    return presolve_end(&work, end, out, status, effort);
}
