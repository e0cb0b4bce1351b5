// aggregate_test.cpp -- columns that leave through rows: doubletons, implied free columns, free columns as slacks
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{
constexpr double INF = LP_INFINITY;

// c x + d y with a x + b y = 2 and x + y <= 40, 0 <= x <= 3, -9 <= y <= 9; optima lie on bounds of x, of y and on the row.
LpModel doubleton(double a, double b, double c, double d)
{
    LpModel lp;
    lp_add_var(&lp, c, 0, 3);
    lp_add_var(&lp, d, -9, 9);
    lp_add_row_entries(&lp, {{0, a}, {1, b}}, '=', 2);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 40);
    return lp;
}

// x = 2 y - z + 1 stands in `rows` inequalities with columns of their own; y, z and those are in [0, 5].
LpModel star(int rows, double lb, double ub)
{
    LpModel lp;
    lp_add_var(&lp, 1, lb, ub);
    lp_add_var(&lp, -1, 0, 5);
    lp_add_var(&lp, 2, 0, 5);
    lp_add_row_entries(&lp, {{0, 1}, {1, -2}, {2, 1}}, '=', 1);
    for (int i = 0; i < rows; i++) {
        const int own = lp_add_var(&lp, -1 - i, 0, 5);
        lp_add_row_entries(&lp, {{0, i % 2 ? 1.0 : -2.0}, {own, 1}}, '<', 3 + i);
    }
    return lp;
}

int without_free_nodes(PresolveWork *w)
{
    w->FreeList = -1;
    w->FreeCount = 0;
    return pre_aggregate(w);
}
} // namespace

TEST(Aggregate, doubletons_hand_their_bounds_on_whatever_the_signs)
{
    const TestEnv env;
    for (const double a : {1.0, -1.0, 2.0, -0.25})
        for (const double b : {1.0, -1.0, 4.0, -0.5})
            for (const double c : {1.0, 0.0, -1.0})
                for (const double d : {2.0, 0.0, -0.5}) {
                    const LpModel lp = doubleton(a, b, c, d);
                    const PresolveTry t = presolve_try(env.env, &lp, {pre_aggregate});
                    EXPECT_EQ(t.faults, "") << a << ' ' << b << ' ' << c << ' ' << d;
                    EXPECT_EQ(t.rows, 1);
                    EXPECT_EQ(t.cols, 1);
                    EXPECT_EQ(t.nonzeros, lp.cols.empty() ? 0 : a == b ? 0 : 1);
                }
}

TEST(Aggregate, chains_of_doubletons_collapse_to_one_column)
{
    const TestEnv env;
    LpModel lp;
    for (int j = 0; j < 9; j++) lp_add_var(&lp, j % 3 - 1, -j, 20 - 2 * j);
    for (int j = 0; j < 8; j++)
        lp_add_row_entries(&lp, {{j, j % 2 ? 1.0 : -2.0}, {j + 1, 1.5}}, '=', 0.5);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_aggregate});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.rows, 0);
    EXPECT_EQ(t.cols, 1);
}

// Each merge by a search through the dense row or the long column would exhaust the effort of a call.
TEST(Aggregate, stars_and_chains_with_dense_rows_go_within_the_effort)
{
    const TestEnv env;
    const int n = 20000;
    LpModel star, chain;
    lp_add_var(&star, -n, 0, 10);
    lp_add_var(&chain, 1, -1, 2e5);
    std::vector<std::pair<int, double>> all = {{0, 1}};
    for (int k = 1; k <= n; k++) {
        lp_add_var(&star, 1, -5, 20);
        lp_add_var(&chain, k % 3 - 1, -2e5, 2e5);
        lp_add_row_entries(&star, {{k, 1}, {0, -1}}, '=', k % 5);
        lp_add_row_entries(&chain, {{k, 1}, {k - 1, -1}}, '=', k % 7 - 3);
        all.emplace_back(k, 1);
    }
    lp_add_row_entries(&star, all, '<', 5.0 * n);
    lp_add_row_entries(&chain, all, '>', -n);
    for (const LpModel *lp : {&star, &chain}) {
        const PresolveTry t = presolve_try(env.env, lp, {pre_aggregate});
        EXPECT_EQ(t.faults, "");
        EXPECT_EQ(t.rows, 1);
        EXPECT_EQ(t.cols, 1);
    }
}

TEST(Aggregate, bounds_that_cross_in_a_doubleton_are_infeasible)
{
    const TestEnv env;
    LpModel lp;
    lp_add_var(&lp, 1, 0, 1);
    lp_add_var(&lp, 1, 5, 9);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '=', 0);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_aggregate});
    EXPECT_EQ(t.status, PRESOLVE_INFEASIBLE);
    EXPECT_GE(t.infeas_col, 0);
}

TEST(Aggregate, bounds_do_not_move_over_steep_ratios)
{
    const TestEnv env;
    LpModel flat = doubleton(1, 1e-5, 1, 1), steep = doubleton(1, 1e5, 1, 1);
    flat.lb[1] = -(flat.ub[1] = 1e9);
    steep.lb[1] = -(steep.ub[1] = 1e-6);
    steep.ub[0] = 2.05;
    EXPECT_EQ(presolve_try(env.env, &flat, {pre_aggregate}).rows, 2);
    EXPECT_EQ(presolve_try(env.env, &steep, {pre_aggregate}).rows, 2);
}

TEST(Aggregate, a_column_that_the_row_keeps_in_its_bounds_is_substituted)
{
    const TestEnv env;
    const LpModel implied = star(3, -4, 11), free = star(3, -INF, INF),
                  upper = star(3, -INF, 3), lower = star(3, -1, INF);
    for (const LpModel *lp : {&implied, &free}) {
        const PresolveTry t = presolve_try(env.env, lp, {pre_aggregate});
        EXPECT_EQ(t.faults, "");
        EXPECT_EQ(t.rows, 3);
        EXPECT_EQ(t.cols, 5);
    }
    for (const LpModel *lp : {&upper, &lower}) { // the bound is not implied: it must stay
        const PresolveTry t = presolve_try(env.env, lp, {pre_aggregate});
        EXPECT_EQ(t.faults, "");
        EXPECT_EQ(t.rows, 4);
    }
}

TEST(Aggregate, two_columns_never_vouch_for_each_other)
{
    const TestEnv env;
    LpModel
        lp; // x - y + f = 0 and y - x + g = 0 with f = g = 0: x and y imply each other's bounds
    lp_add_var(&lp, -1, 0, 4);
    lp_add_var(&lp, -1, 0, 4);
    lp_add_var(&lp, 0, 0, 0);
    lp_add_var(&lp, 0, 0, 0);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}, {2, 1}}, '=', 0);
    lp_add_row_entries(&lp, {{0, -1}, {1, 1}, {3, 1}}, '=', 0);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_aggregate, pre_aggregate});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.solution.objval, -8);
}

TEST(Aggregate, fill_is_bounded_by_the_parameter_and_by_the_nodes)
{
    const TestEnv env;
    const LpModel lp = star(30, -INF, INF); // fill (31 - 2) (3 - 2) - 2
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_aggregate}).rows, 31);
    set_parameters(env.env, {{"AggFill", 27}});
    const PresolveTry t = presolve_try(env.env, &lp, {pre_aggregate});
    EXPECT_EQ(t.rows, 30);
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(presolve_try(env.env, &lp, {without_free_nodes}).rows, 31);
}

TEST(Aggregate, fill_that_falls_on_entries_is_none)
{
    const TestEnv env;
    LpModel lp = star(30, -INF, INF);
    for (int i = 1; i <= 30; i++)
        for (const int col : {1, 2}) lp_set_entry(&lp, i, col, i % 3 + 0.5);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_aggregate});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.rows, 30);
}

TEST(Aggregate, a_pivot_that_is_small_in_row_and_column_is_refused)
{
    const TestEnv env;
    LpModel lp = star(2, -INF, INF);
    lp_set_entry(&lp, 0, 0, 1e-4);
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_aggregate}).rows, 3);
}
