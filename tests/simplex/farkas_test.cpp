// farkas_test.cpp -- infeasibilities that are told from rounding only by exact multipliers
#include "support/solve_judge.h"
#include <gtest/gtest.h>

static constexpr int DOUBLINGS = 17;
static constexpr double START = 1e-5;

// x0 = START, each variable twice the one before, the last one at most `end`: the first row has multiplier 2^17.
static LpModel doubling_chain(double end)
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

TEST(Farkas, large_multipliers_do_not_hide_an_infeasibility)
{
    const TestEnv env;
    const double last = START * (1 << DOUBLINGS);
    for (const double lp_method : {0, 1})
        for (const double scale : {0, 1})
            for (const double quad : {0, 1}) {
                const Settings settings = {
                    {"LPMethod", lp_method}, {"ScaleFlag", scale}, {"Quad", quad}};
                const LpModel infeasible = doubling_chain(last - 0.01),
                              feasible = doubling_chain(last);
                EXPECT_EQ(solve_and_judge(env.env, &infeasible, settings), "")
                    << settings_text(settings);
                EXPECT_EQ(solve_and_judge(env.env, &feasible, settings), "")
                    << settings_text(settings);
            }
}
