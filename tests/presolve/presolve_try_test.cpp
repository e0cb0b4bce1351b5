// presolve_try_test.cpp -- the harness of the presolve tests: reduces, comes back, and sees a fault
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{

// min -x - y    x <= 4 as a row, x + y <= 6, y >= 1 as a row, 0 <= x, y
LpModel with_singleton_rows()
{
    LpModel lp;
    lp_add_var(&lp, -2, 0, LP_INFINITY);
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}}, '<', 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 6);
    lp_add_row_entries(&lp, {{1, 2}}, '>', 2);
    return lp;
}

int lose_a_row(PresolveWork *w)
{
    remove_row(w, 1, ROW_REDUNDANT);
    return pre_activity(w);
}

} // namespace

TEST(PresolveTry, single_reductions_run_alone_and_the_point_is_judged)
{
    const TestEnv env;
    const LpModel lp = with_singleton_rows();
    const PresolveTry t = presolve_try(env.env, &lp, {pre_singleton_rows});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.rows, 1);
    EXPECT_EQ(t.cols, 2);
    EXPECT_EQ(t.rows_removed, 2);
    EXPECT_EQ(t.solution.objval, -10);
    EXPECT_EQ(t.solution.pi, (std::vector<double>{-1, -1, 0}));
}

TEST(PresolveTry, nothing_is_done_without_reductions_and_all_by_presolve)
{
    const TestEnv env;
    LpModel lp = with_singleton_rows();
    lp.sense = -1; // maximise -2 x - y: the vertex (0, 1)
    const PresolveTry none = presolve_try(env.env, &lp, {}),
                      all = presolve_try_all(env.env, &lp);
    EXPECT_EQ(none.faults, "");
    EXPECT_EQ(none.rows, 3);
    EXPECT_EQ(none.solution.objval, -1);
    EXPECT_EQ(all.faults, "");
    EXPECT_LE(all.rows, 1);
    EXPECT_EQ(all.solution.objval, -1);
}

TEST(PresolveTry, a_wrong_reduction_is_seen)
{
    const TestEnv env;
    LpModel lp = with_singleton_rows();
    lp.ub = {9, 9};
    const PresolveTry t = presolve_try(env.env, &lp, {lose_a_row});
    EXPECT_NE(t.faults, "");
}
