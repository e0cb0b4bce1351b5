// presolve_mip.cpp -- presolve of a model with integers, SOS or semi-continuous columns: the order of the reductions
//
// Method      Rounds of passes. A pass has a cheap inner loop that is repeated as long as something changes, and then
//             the more expensive reductions, once. The passes end when one removes nothing, or with their budget; then
//             reductions over the whole model close the round. The rounds end when one gains little. With parameter
//             Presolve 0 the model is only brought into the form that the search reads.
// Out         The reduced model with the data for postsolve, or a final status.
#include "presolve/integer/facts.h"
#include "presolve/passes.h"
#include "runtime/clock.h"
#include <cmath>

namespace
{
constexpr int PASSES_LEVEL1 = 10, PASSES = 50, UNLIMITED = 2000000000;

// After this number of inner rounds changed coefficients, or changed bounds, alone cause no further one.
constexpr int COEF_ROUNDS = 9, BOUND_ROUNDS = 5;

constexpr int DUAL_PASSES = 3; // passes with dual_bounds

// Effort, per entry and at least, after which a pass of a round has to gain this share to be followed by another one:
// where each pass makes a few steps of a long chain, time would grow faster than the model.
constexpr double PATIENCE = 20, PATIENCE_LEAST = 5e7, PASS_GAIN = 0.005;

constexpr int ROUNDS = 5;
// Share of rows, columns and coefficients that a round has to change to be followed by another one, and with more effort.
constexpr double GAIN = 0.05, SMALL_GAIN = 0.01;

constexpr double NOTHING = 1e-13; // smaller sides and costs are zero

// Options of a run, resolved.
struct Plan {
    bool dual = false, bound = false, parallel = false, aggregate = false, coef = false;
    bool dependent_rows = false, dependent_cols = false, two_rows = false;
    bool two_rows_at_end = false, subset_rows = false, dual_slack = false, thorough = false;
    bool probe_simple = false, probe = false, cliques = false, clique_rows = false;
    int passes = 0;
};

Plan make_plan(const PresolveWork *w)
{
    const TVXenv *env = w->Env;
    Plan plan;
    plan.dual = env->TARV_PAR_DUALREDUCTION != 0;
    plan.bound = env->TARV_PAR_PREBOUND != 0;
    plan.coef = env->TARV_PAR_PRECOEFFICIENT != 0;
    plan.parallel = env->TARV_PAR_PREPARALLEL != 0;
    plan.aggregate = env->Aggregate != 0;
    plan.dependent_rows = env->PreDepRow > 0;
    plan.dependent_cols = env->PreDepRow != 0 && plan.dual;
    plan.two_rows = env->TARV_PAR_PRETWOROWS != 0 && env->Presolve != 1;
    plan.two_rows_at_end = env->TARV_PAR_PRETWOROWS == 2;
    plan.probe_simple = env->TARV_PAR_PREPROBE0 != 0;
    plan.probe = w->ProbeLevel > 0;
    plan.cliques = env->TARV_PAR_PRECLIQUE != 0;
    plan.clique_rows = env->TARV_PAR_PRECLIQSUB != 0;
    plan.subset_rows = env->TARV_PAR_PRESUBROW != 0;
    plan.dual_slack = env->TARV_PAR_PREDUALSLACK != 0 && plan.dual;
    plan.thorough = env->Presolve == 2 || w->ProbeLevel >= 2;
    plan.passes = env->PrePasses >= 0  ? env->PrePasses
                  : env->Presolve == 2 ? UNLIMITED
                  : env->Presolve == 1 ? PASSES_LEVEL1
                                       : PASSES;
    return plan;
}

// The cheap reductions, as long as something changes.
int inner_loop(PresolveWork *w, const Plan *plan)
{
    for (int round = 1;; round++) {
        const int cols = w->ColsRemoved, rows = w->RowsRemoved, bounds = w->BoundsChanged,
                  coefs = w->CoefsChanged;
        presolve_log(w);
        TRY(run_steps(w, {{true, pre_columns},
                          {true, pre_redundant_rows},
                          {plan->bound, pre_row_bounds},
                          {true, pre_singleton_rows},
                          {true, pre_relabel_binaries},
                          {plan->coef, pre_binary_coefficients},
                          {plan->aggregate, pre_binary_equation}}));
        TRY(sweep_marked(w));
        if (cols == w->ColsRemoved && rows == w->RowsRemoved &&
            (coefs == w->CoefsChanged || round >= COEF_ROUNDS) &&
            (bounds == w->BoundsChanged || round > BOUND_ROUNDS))
            return 0;
        rotate(w);
    }
}

// The more expensive reductions, once per pass.
int outer_part(PresolveWork *w, const Plan *plan, int pass)
{
    TRY(run_steps(w, {{true, pre_sos_fixings},
                      {true, pre_semi_fixings},
                      {plan->coef, pre_scale_int_columns},
                      {plan->coef, pre_row_integrality},
                      {plan->dual && pass < DUAL_PASSES, pre_dual_bounds},
                      {plan->dual_slack, pre_dual_slack},
                      {plan->parallel && plan->dual, pre_duplicate_cols},
                      {plan->parallel, pre_duplicate_rows},
                      {plan->dual, pre_dominated_columns},
                      {plan->coef, pre_coef_rows},
                      {plan->coef, pre_subset_coefs},
                      {plan->subset_rows, pre_subset_rows},
                      {plan->clique_rows, pre_clique_rows}}));
    TRY(compress(w));
    TRY(run_steps(w, {{plan->dual, pre_ineq_to_eq}, {plan->aggregate, pre_aggregate}}));
    TRY(pre_activity(w));
    TRY(run_steps(w, {{plan->bound && plan->dual, pre_bound_dual},
                      {plan->cliques, pre_cliques},
                      {plan->cliques, pre_clique_merge},
                      {plan->two_rows, pre_two_rows},
                      {pass == 0 && plan->dependent_rows, pre_dependent_rows},
                      {pass == 0 && plan->dependent_cols, pre_dependent_cols}}));
    presolve_log(w);
    return 0;
}

// What stood at the beginning of a round or a pass.
struct Standing {
    int rows, cols, coefs;
};

Standing standing(const PresolveWork *w)
{
    return {w->NumRows - w->RowsRemoved, w->NumCols - w->ColsRemoved, w->CoefsChanged};
}

// Share of the model that has changed.
double gain_since(const PresolveWork *w, const Standing &before)
{
    const Standing now = standing(w);
    if (now.rows <= 0 || now.cols <= 0 || w->NumNz == 0) return 0;
    return static_cast<double>(now.coefs - before.coefs) / static_cast<double>(w->NumNz) +
           static_cast<double>(before.rows - now.rows) / before.rows +
           static_cast<double>(before.cols - now.cols) / before.cols;
}

// The passes of one round.
int passes(PresolveWork *w, const Plan *plan, int round)
{
    const double patience =
        w->Work + PATIENCE * static_cast<double>(w->NumNz) + PATIENCE_LEAST;
    for (int pass = 0; pass < plan->passes; pass++) {
        const Standing before = standing(w);
        const bool first = pass == 0 && round == 0;
        w->Phase = 2;
        if (!first) rotate(w); // what was touched becomes active
        TRY(inner_loop(w, plan));
        if (nothing_left(w)) return 0;
        w->Phase = 1;
        if (!first) rotate(w);
        const int cols = w->ColsRemoved, rows = w->RowsRemoved, equations = w->IneqToEq;
        TRY(outer_part(w, plan, pass));
        if (cols == w->ColsRemoved && rows == w->RowsRemoved && equations == w->IneqToEq)
            return 0;
        if (w->Work > patience && gain_since(w, before) < PASS_GAIN) return 0;
    }
    return 0;
}

// The reductions over the whole model at the end of a round.
int close_round(PresolveWork *w, const Plan *plan)
{
    w->Phase = 0;
    return run_steps(w, {{plan->bound && plan->dual, pre_singleton_knapsack},
                         {plan->probe_simple, pre_probe_simple},
                         {plan->probe, pre_probe},
                         {plan->clique_rows, pre_clique_rows},
                         {plan->two_rows_at_end, pre_two_rows}});
}

int rounds(PresolveWork *w, const Plan *plan)
{
    const double least = plan->thorough ? SMALL_GAIN : GAIN;
    for (int round = 0; round < ROUNDS; round++) {
        const Standing before = standing(w);
        TRY(passes(w, plan, round));
        TRY(close_round(w, plan));
        if (gain_since(w, before) < least) break;
    }
    if (w->ProbeLevel >= 2) TRY(run_reduction(w, pre_probe_quick));
    return 0;
}

int clear_rounding(PresolveWork *w)
{
    for (int i = 0; i < w->NumRows; i++)
        if (is_live_row(w, i) && std::fabs(w->Rhs.data[i]) < NOTHING) w->Rhs.data[i] = 0;
    for (int j = 0; j < w->NumCols; j++)
        if (std::fabs(w->Obj.data[j]) < NOTHING) w->Obj.data[j] = 0;
    return presolve_check(w);
}

int close(PresolveWork *w, const Plan *plan)
{
    w->Phase = 0;
    TRY(run_steps(w, {{true, pre_sos_fixings},
                      {true, pre_semi_fixings},
                      {w->Env->Presolve != 0, pre_tiny_coefficients}}));
    TRY(remove_empty_lines(w));
    if (plan->dual && w->Env->Presolve != 0 && w->Components) {
        TRY(run_reduction(w, pre_components));
        TRY(remove_empty_lines(w));
    }
    return clear_rounding(w);
}

int reduce_steps(PresolveWork *w)
{
    const Plan plan = make_plan(w);
    TRY(pre_round_int_bounds(w));
    TRY(mark_everything(w));
    w->Phase = 1;
    TRY(remove_free_rows(w));
    TRY(pre_activity(w));
    if (w->Env->Presolve != 0) {
        if (plan.bound) TRY(run_reduction(w, pre_singleton_knapsack));
        TRY(rounds(w, &plan));
    }
    return close(w, &plan);
}

// Sets and semi-continuous columns are also settled where the step limit has stopped everything else: the form of the
// reduced model needs it.
int reduce(PresolveWork *w)
{
    const int status = reduce_steps(w);
    if (status != STOP) return status;
    TRY(pre_sos_fixings(w));
    TRY(pre_semi_fixings(w));
    return STOP;
}

void log_result(const PresolveWork *w)
{
    if (w->Env->Presolve == 0) return;
    log_removed(w);
    log_tightened(w);
    log_equations(w);
    TVXmsg(w->Env, "Presolve time: %.2fs\n", WallClock() - w->StartTime);
}
} // namespace

int presolve_mip(const ModelBody *body, TVXenv *env, int probe_level, PresolveResult **out,
                 PresolveStatus *status, double *effort, const ComponentSolver *components)
{
    PresolveWork work;
    work.Components = components;
    work.Method = static_cast<LpMethod>(env->LPMethod);
    work.IsMip = 1;
    work.ProbeLevel = probe_level;
    int end = load_and_reduce(&work, body, env, reduce, out);
    if (*out && end == 0) end = facts_to_result(&work, *out);
    if (*out) log_result(&work);
    return presolve_end(&work, end, out, status, effort);
}
