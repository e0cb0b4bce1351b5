// implied_bounds_pass_test.cpp -- rows go because of bounds that others imply, never because of themselves
#include "support/presolve_try.h"
#include <gtest/gtest.h>

// Columns without upper bounds, minimising -sum.
static LpModel falling(int count)
{
    LpModel lp;
    for (int j = 0; j < count; j++) lp_add_var(&lp, -1, 0, LP_INFINITY);
    return lp;
}

TEST(ImpliedBounds, a_row_that_others_imply_goes)
{
    const TestEnv env;
    LpModel lp = falling(3);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 4);         // both at most 4
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 2}}, '<', 9); // z at most 4.5
    lp_add_row_entries(&lp, {{0, 1}, {2, 1}}, '<', 8.5);       // so this never binds
    const PresolveTry t = presolve_try(env.env, &lp, {pre_implied_bounds});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.rows, 2);
    EXPECT_GE(t.reduced.ub[0], 1e20) << "the bounds of the model stay";
}

// Columns 1 to 3 are fixed: each row alone implies the others.
TEST(ImpliedBounds, rows_that_imply_each_other_do_not_all_go)
{
    const TestEnv env;
    LpModel lp = falling(4);
    for (int j = 1; j <= 3; j++) {
        lp.ub[static_cast<size_t>(j)] = 0;
        lp_add_row_entries(&lp, {{0, 1}, {j, 1}}, '<', 4);
    }
    const PresolveTry t = presolve_try(env.env, &lp, {pre_implied_bounds});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.rows, 1);
    EXPECT_EQ(t.solution.objval, -4);
}

// v <= 9.9 gives w <= 8.9 gives v <= 9.8, so the first row looks redundant; but without it the others allow v >= 10,
// and with it nothing at all.
TEST(ImpliedBounds, a_chain_back_to_the_row_itself_is_seen)
{
    const TestEnv env;
    LpModel lp = falling(3);
    lp.lb = {-1000, -1000, 0};
    lp.ub[2] = 0;
    lp_add_row_entries(&lp, {{0, 1}, {2, 1}}, '<', 9.9);
    lp_add_row_entries(&lp, {{1, 1}, {0, -1}}, '<', -1);
    lp_add_row_entries(&lp, {{0, 1}, {1, -2}}, '<', -8);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_implied_bounds});
    EXPECT_EQ(t.rows, 3);
    EXPECT_EQ(t.reduced_status, TVX_INFEASIBLE);
}

TEST(ImpliedBounds, a_contradiction_of_several_rows_is_found)
{
    const TestEnv env;
    LpModel lp = falling(2);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '>', 5);
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_implied_bounds}).status, PRESOLVE_INFEASIBLE);
    lp.rhs[1] = 4 + 1e-7; // only within the tolerance
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_implied_bounds}).status, 0);
}

// Column 0 is free, column 1 has a lower bound.
static LpModel without_bounds()
{
    LpModel lp;
    lp_add_var(&lp, 1, -LP_INFINITY, LP_INFINITY);
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 6);
    lp_add_row_entries(&lp, {{0, 2}, {1, -1}}, '>', -6);
    return lp;
}

TEST(FreeBounds, what_the_method_likes_gets_a_bound)
{
    const LpModel lp = without_bounds();
    for (const double method : {0, 1, 2}) {
        const TestEnv env;
        set_parameters(env.env, {{"LPMethod", method}});
        const PresolveTry t = presolve_try(env.env, &lp, {pre_free_bounds});
        EXPECT_EQ(t.faults, "");
        EXPECT_EQ(t.solution.objval, -6);
        EXPECT_EQ(t.reduced.ub[0] < 1e20, method == 2);
        EXPECT_EQ(t.reduced.ub[1] < 1e20, method == 1);
        EXPECT_GT(t.reduced.ub[0], 6.001) << "no feasible point may touch it";
        EXPECT_GT(t.reduced.ub[1], 9) << "no feasible point may touch it";
    }
}
