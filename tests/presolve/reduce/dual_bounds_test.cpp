// dual_bounds_test.cpp -- bounds on duals fix columns and make equations, and what they rest on stays
#include "support/presolve_try.h"
#include <gtest/gtest.h>

// A plan with capacities: x is made at cost 1 without limit and covers a demand at any rate, so that the demand's price
// is at most 1, and what costs more than it covers is not used.
static LpModel dear_column(double dear_cost)
{
    LpModel lp;
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_var(&lp, dear_cost, 0, 8);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '>', 10);
    return lp;
}

TEST(DualBounds, a_column_that_never_pays_goes_to_its_lower_bound)
{
    const TestEnv env;
    const LpModel lp = dear_column(2.5);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_dual_bounds});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.cols, 1);
    EXPECT_EQ(t.solution.x, (std::vector<double>{10, 0}));
    EXPECT_EQ(t.solution.rc[1], 0.5);
}

TEST(DualBounds, a_column_that_may_pay_stays)
{
    const TestEnv env;
    for (const double cost : {1.5, 2.0, 2.0 + 1e-7}) { // the last is within the tolerance
        const LpModel lp = dear_column(cost);
        EXPECT_EQ(presolve_try(env.env, &lp, {pre_dual_bounds}).cols, 2) << cost;
    }
}

TEST(DualBounds, nothing_is_done_when_dual_reductions_are_off)
{
    const TestEnv env;
    set_parameters(env.env, {{"TARV_PAR_DUALREDUCTION", 0}});
    const LpModel lp = dear_column(2.5);
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_dual_bounds}).cols, 2);
}

// y of the first row is exactly 3 by the free column, so the row is tight and z is worth its upper bound.
TEST(DualBounds, a_row_with_a_price_becomes_an_equation)
{
    const TestEnv env;
    LpModel lp;
    lp_add_var(&lp, 3, -LP_INFINITY, LP_INFINITY);
    lp_add_var(&lp, 1, 0, 4);
    lp_add_var(&lp, 1, 0, 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, -1}}, '>', 2);
    lp_add_row_entries(&lp, {{1, 1}, {2, 1}}, '<', 7);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '<', 50);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_dual_bounds});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.ineq_to_eq, 1);
    EXPECT_EQ(t.reduced.senses[0], '=');
}

// Each of the two columns would be fixed if the other one stood: one has to stay.
TEST(DualBounds, columns_that_rest_on_each_other_do_not_both_go)
{
    const TestEnv env;
    LpModel lp;
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_var(&lp, 10, 0, 5);
    lp_add_row_entries(&lp, {{0, 2}, {1, 1}, {2, 1}}, '>', 8);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}, {2, 1}}, '>', 8);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_dual_bounds});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.cols, 2); // y <= 1/2 by either column, so the third is too dear
    EXPECT_EQ(t.solution.x[2], 0);
}

// x stands in one equation that implies its bounds: y is at most 1, and the other column costs more than that.
TEST(DualBounds, a_bound_that_a_row_implies_counts_as_absent_and_goes)
{
    const TestEnv env;
    LpModel lp;
    lp_add_var(&lp, 1, 0, 20);
    lp_add_var(&lp, 3, 0, 7);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '=', 10);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_dual_bounds});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.cols, 1);
    EXPECT_EQ(t.solution.x, (std::vector<double>{10, 0}));
    EXPECT_GE(t.reduced.ub[0], 1e20) << "what the conclusion rests on must hold";
}

TEST(DualBounds, a_dual_that_cannot_be_feasible_is_reported)
{
    const TestEnv env;
    LpModel lp;
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, -2}}, '<', 3);
    lp_add_row_entries(&lp, {{0, -2}, {1, 1}}, '<', 3); // (1, 1) is a ray
    const PresolveTry t = presolve_try(env.env, &lp, {pre_dual_bounds});
    EXPECT_TRUE(t.status == PRESOLVE_UNBOUNDED || t.reduced_status == TVX_UNBOUNDED);
}
