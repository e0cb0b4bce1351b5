// reductions_test.cpp -- each reduction alone on random models: the truth stays, postsolve ends in an optimal basis,
// and it does find what it looks for; a wrong reduction is seen
#include "support/hostile_gen.h"
#include "support/model_gen.h"
#include "support/presolve_try.h"
#include "support/rational_lp.h"
#include <gtest/gtest.h>

// Multiples of lines of a small core, slack columns, bounds of all kinds.
static LpModel full_of_multiples(Dice *dice)
{
    const int cols = dice->range(1, 4), rows = dice->range(1, 4);
    LpModel lp;
    lp.sense = dice->chance(80) ? 1 : -1;
    for (int j = 0; j < cols; j++) lp_add_var(&lp, dice->range(-4, 8), 0, LP_INFINITY);
    for (int i = 0; i < rows; i++) {
        std::vector<std::pair<int, double>> entries;
        for (int j = 0; j < cols; j++) entries.emplace_back(j, dice->range(-2, 2));
        lp_add_row_entries(&lp, entries, '<', 0);
    }
    for (int more = dice->range(0, 4); more > 0; more--) {
        const int j = dice->range(0, lp.num_vars() - 1), f = dice->nonzero(2);
        const double cost = f * lp.obj[j];
        const int k = lp_add_var(&lp, cost + (dice->chance(50) ? dice->range(-2, 2) : 0), 0,
                                 LP_INFINITY);
        for (const LpEntry &e : std::vector<LpEntry>(lp.cols[j]))
            lp_set_entry(&lp, e.row, k, f * e.value);
    }
    for (int more = dice->range(0, 4); more > 0; more--) {
        const int i = dice->range(0, lp.num_rows() - 1), f = dice->nonzero(2);
        const int k = lp_add_row(&lp, '<', 0);
        for (int j = 0; j < lp.num_vars(); j++)
            lp_set_entry(&lp, k, j, f * lp_get_entry(&lp, i, j));
    }
    for (int more = dice->range(0, 3); more > 0; more--)
        lp_set_entry(&lp, dice->range(0, lp.num_rows() - 1),
                     lp_add_var(&lp, dice->range(0, 2), 0, LP_INFINITY), dice->nonzero(2));
    std::vector<double> x;
    for (size_t j = 0; j < lp.obj.size(); j++) {
        lp.lb[j] = dice->chance(60) ? 0 : dice->range(-3, 1);
        x.push_back(lp.lb[j] + dice->range(0, 2));
        if (dice->chance(50)) lp.ub[j] = x[j] + dice->range(0, 3);
        if (dice->chance(20)) lp.lb[j] = -LP_INFINITY;
    }
    const std::vector<long double> activity = lp_activity(&lp, x);
    for (size_t i = 0; i < lp.rhs.size(); i++) {
        lp.senses[i] = dice->pick(std::vector<char>{'<', '>', '=', '='});
        lp.rhs[i] = double(activity[i]) + (dice->chance(3) ? 1 : 0);
    }
    return lp;
}

// Odd models with a few columns of one row.
static LpModel with_singletons(Dice *dice)
{
    LpModel lp = gen_tiny(dice, TinyLimits{.max_vars = 5, .max_rows = 5});
    for (int k = lp.num_rows() > 0 ? dice->range(0, 4) : 0; k > 0; k--) {
        const int j =
            lp_add_var(&lp, dice->range(-3, 3), dice->pick<double>({-LP_INFINITY, -2, 0}),
                       dice->pick<double>({0, 3, LP_INFINITY}));
        lp_set_entry(&lp, dice->range(0, lp.num_rows() - 1), j, dice->nonzero(3));
    }
    return lp;
}

// Small models that contradict themselves in one row or column more.
static LpModel contradictory(Dice *dice)
{
    LpModel lp = gen_tiny(dice, {.max_vars = 5, .max_rows = 5});
    const int m = lp.num_rows(), n = lp.num_vars();
    if (n > 0 && dice->chance(10)) { // free columns, and the sum of two at less cost
        for (int j = 0; j < n; j++) lp.lb[j] = -LP_INFINITY, lp.ub[j] = LP_INFINITY;
        const int a = dice->range(0, n - 1), b = dice->range(0, n - 1);
        const int sum = lp_add_var(&lp, lp.obj[a] + lp.obj[b] + dice->nonzero(1),
                                   -LP_INFINITY, LP_INFINITY);
        for (int i = 0; i < m; i++)
            lp_set_entry(&lp, i, sum, lp_get_entry(&lp, i, a) + lp_get_entry(&lp, i, b));
        return lp;
    }
    if (dice->chance(20)) { // a column that nothing stops
        const int j = lp_add_var(&lp, -lp.sense, 0, LP_INFINITY);
        for (int i = 0; i < m; i++)
            if (lp.senses[i] != '=' && dice->chance(50))
                lp_set_entry(&lp, i, j, lp.senses[i] == '<' ? -1 : 1);
        return lp;
    }
    if (m > 0) contradict_rows(dice, &lp, dice->nonzero(1));
    return lp;
}

// What ends a model must be proved, but for few proofs that reductions may lose.
TEST(Reductions, keep_the_truth_and_find_what_they_look_for)
{
    const struct {
        const char *name;
        std::initializer_list<Reduction> reductions;
        int effect; // on all models: what it is today, but for 0.5 %
        int claims; // at least
        // clang-format off
    } rows[] = {
        {"singleton_rows", {pre_singleton_rows, pre_redundant_rows}, 3217, 50},
        {"forcing_rows", {pre_forcing_rows}, 228, 0}, {"redundant_rows", {pre_redundant_rows}, 1290, 0},
        {"aggregate", {pre_aggregate, pre_aggregate, pre_redundant_rows}, 5153, 50},
        {"duplicate_rows", {pre_duplicate_rows, pre_aggregate}, 4024, 50},
        {"dependent_rows", {pre_dependent_rows}, 252, 30}, {"dependent_cols", {pre_dependent_cols}, 17, 10},
        {"two_rows", {pre_two_rows}, 5097, 0}, {"ineq_to_eq", {pre_ineq_to_eq, pre_columns}, 3892, 0},
        {"columns", {pre_columns, pre_ineq_to_eq, pre_columns}, 3623, 50}, {"fix_empty", {pre_fix_empty}, 1490, 20},
        {"dual_bounds", {pre_dual_bounds}, 1072, 50}, {"duplicate_cols", {pre_duplicate_cols}, 1406, 20},
        {"singleton_knapsack", {pre_singleton_knapsack}, 104, 0}, {"implied_bounds", {pre_implied_bounds}, 311, 50}};
    // clang-format on
    for (const auto &row : rows) {
        int effect = 0, ends = 0, proofs = 0;
        for (uint64_t seed = 0; seed < 2000; seed++) {
            Dice dice(seed);
            const LpModel lp = seed >= 1200    ? contradictory(&dice)
                               : seed % 3 == 0 ? gen_tiny(&dice, TinyLimits{})
                               : seed % 3 == 1 ? with_singletons(&dice)
                                               : full_of_multiples(&dice);
            const RationalResult truth = rational_solve(&lp);
            if (truth.crossed >= 0) continue; // such models are not reduced
            const PresolveTry t = reduced_by(lp, row.reductions, {{"AggFill", 1000}});
            effect += t.effect;
            ends += t.status != 0;
            proofs += t.status != 0 && t.proved;
            const bool optimal = truth.status == LpStatus::OPTIMAL;
            const int status = t.status ? t.status : t.reduced_status;
            EXPECT_EQ(t.faults, "") << row.name << seed << "\n" << lp_to_mps(&lp, "");
            EXPECT_EQ(status == 0 || status == TVX_OPTIMAL, optimal)
                << row.name << seed << "\n"
                << lp_to_mps(&lp, "");
        }
        EXPECT_GE(effect, row.effect) << row.name;
        EXPECT_GE(proofs, std::max<double>(row.claims, 0.95 * ends)) << row.name;
    }
}

TEST(PresolveTry, postsolve_is_judged_and_a_wrong_reduction_seen)
{
    // min -2 x - y,  x <= 4 as a row,  x + y <= 6,  y >= 1 as a row
    LpModel lp =
        lp_make({{-2}, {-1}}, {{{1, 0}, '<', 4}, {{1, 1}, '<', 6}, {{0, 2}, '>', 2}});
    const PresolveTry t = expect_left(lp, {pre_singleton_rows}, 1, 2);
    EXPECT_EQ(t.solution.objval, -10);
    EXPECT_EQ(t.solution.pi, (std::vector<double>{-1, -1, 0}));
    expect_left(lp, {}, 3, 2);
    lp.ub = {9, 9};
    const Reduction lose_a_row = [](PresolveWork *w) {
        remove_row(w, 1, ROW_REDUNDANT);
        return pre_activity(w);
    };
    EXPECT_NE(reduced_by(lp, {lose_a_row}).faults, "");
}
