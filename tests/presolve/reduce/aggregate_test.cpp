// aggregate_test.cpp -- columns that leave through rows: doubletons, implied free columns, free columns as slacks
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{
constexpr double INF = LP_INFINITY;

// c x + d y with a x + b y = 2 and x + y <= 40; optima lie on bounds of x, of y and on the row.
LpModel doubleton(double a, double b, double c, double d)
{
    return lp_make({{c, 0, 3}, {d, -9, 9}}, {{{a, b}, '=', 2}, {{1, 1}, '<', 40}});
}

// x = 2 y - z + 1 stands in `rows` inequalities with columns of their own; y, z and those are in [0, 5].
LpModel star(int rows, double lb, double ub)
{
    LpModel lp = lp_make({{1, lb, ub}, {-1, 0, 5}, {2, 0, 5}}, {{{1, -2, 1}, '=', 1}});
    for (int i = 0; i < rows; i++)
        lp_add_row_entries(
            &lp, {{0, i % 2 ? 1.0 : -2.0}, {lp_add_var(&lp, -1 - i, 0, 5), 1}}, '<', 3 + i);
    return lp;
}

int without_free_nodes(PresolveWork *w)
{
    w->FreeList = -1;
    w->FreeCount = 0;
    return pre_aggregate(w);
}
} // namespace

// Each merge by a search through the dense row or the long column would exhaust the effort of a call.
TEST(Aggregate, stars_and_chains_with_dense_rows_go_within_the_effort)
{
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
        const PresolveTry t = reduced_by(*lp, {pre_aggregate});
        EXPECT_EQ(t.faults, "");
        EXPECT_TRUE(t.rows == 1 && t.cols == 1) << t.rows << " " << t.cols;
    }
}

TEST(Aggregate, bounds_do_not_move_where_they_cross_or_over_steep_ratios)
{
    const LpModel crossing = lp_make({{1, 0, 1}, {1, 5, 9}}, {{{1, -1}, '=', 0}});
    EXPECT_GE(expect_end(crossing, {pre_aggregate}, END_INFEASIBLE).infeas_col, 0);
    LpModel flat = doubleton(1, 1e-5, 1, 1), steep = doubleton(1, 1e5, 1, 1);
    flat.lb[1] = -(flat.ub[1] = 1e9);
    steep.lb[1] = -(steep.ub[1] = 1e-6);
    steep.ub[0] = 2.05;
    for (const LpModel &lp : {flat, steep})
        EXPECT_EQ(reduced_by(lp, {pre_aggregate}).rows, 2);
}

TEST(Aggregate, fill_is_bounded_by_the_parameter_and_by_the_nodes)
{
    LpModel lp = star(30, -INF, INF); // fill (31 - 2) (3 - 2) - 2
    expect_left(lp, {pre_aggregate}, 31);
    expect_left(lp, {pre_aggregate}, 30, -1, {{"AggFill", 27}});
    expect_left(lp, {without_free_nodes}, 31, -1, {{"AggFill", 27}});
    for (int i = 1; i <= 30; i++) // fill that falls on entries is none
        for (const int col : {1, 2}) lp_set_entry(&lp, i, col, i % 3 + 0.5);
    expect_left(lp, {pre_aggregate}, 30);
    lp = star(2, -INF, INF);
    lp_set_entry(&lp, 0, 0, 1e-4); // a pivot that is small in row and column
    EXPECT_EQ(reduced_by(lp, {pre_aggregate}).rows, 3);
}
