// tolerances_test.cpp -- what a tolerance may cost: nothing of the objective, and no infeasibility
#include "support/solve_judge.h"
#include <gtest/gtest.h>

namespace
{

// Right by the exact judge under either method, scaling and precision, with presolve and without.
void expect_right(const LpModel &lp)
{
    const TestEnv env;
    for (const double lp_method : {0, 1})
        for (const double scale : {0, 1})
            for (const double quad : {0, 1})
                for (const double presolve : {-1, 0}) {
                    const Settings settings = {{"LPMethod", lp_method},
                                               {"ScaleFlag", scale},
                                               {"Quad", quad},
                                               {"Presolve", presolve}};
                    EXPECT_EQ(solve_and_judge(env.env, &lp, settings), "")
                        << settings_text(settings);
                }
}

// x0 = START, each variable twice the one before, the last one at most `end`: the first row has multiplier 2^17.
constexpr int DOUBLINGS = 17;
constexpr double START = 1e-5;
LpModel doubling_chain(double end)
{
    LpModel lp;
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}}, '=', START);
    for (int k = 1; k <= DOUBLINGS; k++) {
        lp_add_var(&lp, 1, 0, LP_INFINITY);
        lp_add_row_entries(&lp, {{k - 1, 2}, {k, -1}}, '=', 0);
    }
    lp_add_row_entries(&lp, {{DOUBLINGS, 1}}, '<', end);
    return lp;
}

// min x0 + cost x1, x0 >= 1, x1 >= 0, with a row on x1
LpModel two_variables(double cost, char sense, double rhs)
{
    LpModel lp;
    lp_add_var(&lp, 1, 1, LP_INFINITY);
    lp_add_var(&lp, cost, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{1, 1}}, sense, rhs);
    return lp;
}

} // namespace

TEST(Farkas, large_multipliers_do_not_hide_an_infeasibility)
{
    const double last = START * (1 << DOUBLINGS);
    expect_right(doubling_chain(last - 0.01));
    expect_right(doubling_chain(last));
}

// In each, what the tolerance would allow is half a per cent of the objective.
TEST(Finish, what_the_tolerances_allow_does_not_cost_digits_of_the_objective)
{
    expect_right(two_variables(-5e-7, '<', 1e4)); // a small reduced cost
    expect_right(two_variables(1e4, '>', 5e-7));  // a small violation
}

TEST(Finish, a_model_that_is_feasible_within_the_tolerance_only_stays_so_at_any_price)
{
    LpModel lp;
    lp_add_var(&lp, 1e4, 0, 1 - 5e-7);
    lp_add_row_entries(&lp, {{0, 1}}, '>', 1);
    const TestEnv env;
    for (const double lp_method : {0, 1})
        for (const double scale : {0, 1}) {
            const TestModel model(lp_load(env.env, &lp));
            LpSolution solution;
            ASSERT_EQ(settings_apply(TVXgetenv(model),
                                     {{"LPMethod", lp_method}, {"ScaleFlag", scale}}),
                      0);
            ASSERT_EQ(lp_solve(model, &solution), 0);
            EXPECT_EQ(solution.status, TVX_OPTIMAL);
        }
}
