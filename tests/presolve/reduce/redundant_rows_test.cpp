// redundant_rows_test.cpp -- rows go that no point within the bounds violates, entries that no point shows, and no others
#include "support/presolve_try.h"
#include <gtest/gtest.h>

// max x + y with both at most 1
static LpModel square()
{
    LpModel lp;
    lp.sense = -1;
    for (int j = 0; j < 2; j++) lp_add_var(&lp, 1, 0, 1);
    return lp;
}

TEST(RedundantRows, a_row_that_bounds_violate_by_more_than_the_tolerance_stays)
{
    const TestEnv env;
    for (const double excess : {-1.0, 5e-7, 1e-5, 1e-3}) {
        LpModel lp = square();
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 2 - excess);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_redundant_rows});
        EXPECT_EQ(t.faults, "") << excess;
        EXPECT_EQ(t.rows_removed, excess < 1e-6 ? 1 : 0) << excess;
    }
}

TEST(RedundantRows, an_empty_row_is_a_contradiction_beyond_the_tolerance)
{
    const TestEnv env;
    for (const double below : {5e-7, 1e-5, 1e-3}) {
        LpModel lp = square();
        lp_add_row(&lp, '<', -below);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_redundant_rows});
        EXPECT_EQ(t.status, below < 1e-6 ? 0 : PRESOLVE_INFEASIBLE) << below;
        EXPECT_EQ(t.rows_removed, below < 1e-6 ? 1 : 0) << below;
    }
}

TEST(RedundantRows, entries_go_while_their_sum_is_a_thousandth_of_the_tolerance)
{
    const TestEnv env;
    for (const double entry : {9e-10, 1.5e-9, 1e-7}) {
        LpModel lp = square();
        lp_add_row_entries(&lp, {{0, 1}, {1, entry}}, '<', 0.5);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_redundant_rows});
        EXPECT_EQ(t.faults, "") << entry;
        EXPECT_EQ(t.coefs_changed, entry < 1e-9 ? 1 : 0) << entry;
        EXPECT_EQ(t.reduced.rhs[0], entry < 1e-9 ? 0.5 - entry / 2 : 0.5)
            << "at the middle";
    }
}
