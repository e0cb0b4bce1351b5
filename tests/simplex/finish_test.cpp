// finish_test.cpp -- what a solution within the tolerances is still worth to the user
#include "support/solve_judge.h"
#include <gtest/gtest.h>

TEST(Finish, small_reduced_costs_of_large_variables_do_not_cost_digits_of_the_objective)
{
    LpModel lp; // half a per cent of the objective comes from a cost below OptimalityTol
    lp_add_var(&lp, 1, 1, LP_INFINITY);
    lp_add_var(&lp, -5e-7, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{1, 1}}, '<', 1e4);
    const TestEnv env;
    for (const double lp_method : {0, 1})
        for (const double scale : {0, 1})
            EXPECT_EQ(solve_and_judge(env.env, &lp,
                                      {{"LPMethod", lp_method}, {"ScaleFlag", scale}}),
                      "");
}

TEST(Finish, small_violations_at_high_prices_do_not_cost_digits_of_the_objective)
{
    LpModel
        lp; // a violation below FeasibilityTol would save half a per cent of the objective
    lp_add_var(&lp, 1, 1, LP_INFINITY);
    lp_add_var(&lp, 1e4, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{1, 1}}, '>', 5e-7);
    const TestEnv env;
    for (const double lp_method : {0, 1})
        for (const double scale : {0, 1})
            EXPECT_EQ(solve_and_judge(env.env, &lp,
                                      {{"LPMethod", lp_method}, {"ScaleFlag", scale}}),
                      "");
}

TEST(Finish, a_model_that_is_feasible_within_the_tolerance_only_stays_so_at_any_price)
{
    LpModel lp;
    const int x = lp_add_var(&lp, 1e4, 0, 1 - 5e-7);
    lp_add_row_entries(&lp, {{x, 1}}, '>', 1);
    const TestEnv env;
    for (const double lp_method : {0, 1})
        for (const double scale : {0, 1}) {
            const TestModel model(lp_load(env.env, &lp));
            ASSERT_EQ(settings_apply(
                          TVXgetenv(model),
                          {{"LPMethod", lp_method}, {"ScaleFlag", scale}, {"Presolve", 0}}),
                      0);
            LpSolution solution;
            ASSERT_EQ(lp_solve(model, &solution), 0);
            EXPECT_EQ(solution.status, TVX_OPTIMAL);
        }
}
