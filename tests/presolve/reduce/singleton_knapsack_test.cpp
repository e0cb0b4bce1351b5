// singleton_knapsack_test.cpp -- of columns that only relieve one row the cheapest stay
#include "support/presolve_try.h"
#include <gtest/gtest.h>

// A demand of at most 10 (x, y <= 5, wanted), covered by sources of one row with these costs and capacities.
static LpModel with_sources(char sense,
                            const std::vector<std::pair<double, double>> &sources)
{
    LpModel lp;
    lp_add_var(&lp, -4, 0, 5);
    lp_add_var(&lp, -1.5, 0, 5);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, sense, 0);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '<', 12);
    for (const auto &[cost, capacity] : sources)
        lp_set_entry(&lp, 0, lp_add_var(&lp, cost, 0, capacity), -1);
    return lp;
}

TEST(SingletonKnapsack, sources_behind_the_need_stay_unused)
{
    struct Case {
        std::vector<std::pair<double, double>> sources;
        int cols; // left
    };
    const Case cases[] = {
        {{{1, 6}, {3, 6}, {2, 6}, {5, 6}}, 4},   // 1 and 2 give 12
        {{{1, 4}, {3, 4}, {2, 4}, {5, 4}}, 5},   // 1, 2 and 3
        {{{1, 5}, {2, 5}, {3, 5}}, 5},           // exactly the need: no margin
        {{{3, LP_INFINITY}, {1, 2}, {4, 9}}, 4}, // the unlimited one ends it
        {{{1, 2}, {2, 2}}, 4},                   // not enough
    };
    const TestEnv env;
    for (const char sense : {'<', '='})
        for (const Case &c : cases) {
            const LpModel lp = with_sources(sense, c.sources);
            const PresolveTry t = presolve_try(env.env, &lp, {pre_singleton_knapsack});
            EXPECT_EQ(t.faults, "") << sense;
            EXPECT_EQ(t.cols, c.cols) << sense;
        }
}

TEST(SingletonKnapsack, it_is_a_dual_reduction)
{
    const LpModel lp = with_sources('<', {{1, 6}, {3, 6}, {2, 6}, {5, 6}});
    const TestEnv env;
    set_parameters(env.env, {{"TARV_PAR_DUALREDUCTION", 0}});
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_singleton_knapsack}).cols, 6);
}
