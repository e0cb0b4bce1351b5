// columns_test.cpp -- reductions of columns at their thresholds and under parameters; that they find what they look for,
// and what comes of it, is counted and judged in reductions_test.cpp
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{
constexpr double INF = LP_INFINITY;

// Three columns with costs -2, 3, 1 in [0, 5] and a row of their own, and a column that stands in the first row only.
LpModel with_singleton(double cost, double lb, double ub, double a, char sense)
{
    return lp_make({{-2, 0, 5}, {3, 0, 5}, {1, 0, 5}, {cost, lb, ub}},
                   {{{1, 2, -1, a}, sense, 4}, {{1, 1, 1, 0}, '=', 9}});
}
} // namespace

TEST(Columns, singletons_leave_unless_they_are_small_in_their_row_or_parameters_keep_them)
{
    const Settings kept = {{"TARV_PAR_DUALREDUCTION", 0}, {"TARV_PAR_PRESINGLECOL", 0}};
    expect_left(with_singleton(0, 0, INF, 1e-4, '='), {pre_columns}, 2, 4);
    const LpModel free = with_singleton(3, -INF, INF, 2, '='),
                  dear = with_singleton(2, -1, 6, 2, '<');
    expect_left(free, {pre_columns}, 1, 3);
    expect_left(dear, {pre_columns}, 2, 3);
    for (const LpModel &lp : {free, dear}) expect_left(lp, {pre_columns}, 2, 4, kept);
    EXPECT_EQ(expect_end(with_singleton(3, 2, 1, 2, '='), {pre_columns}, END_INFEASIBLE)
                  .infeas_col,
              3);
}

// Each of them wants to fill the row; once the best has set its price, the others do not pay.
TEST(Columns, of_many_slacks_the_best_leaves_and_the_others_are_fixed)
{
    LpModel lp;
    std::vector<std::pair<int, double>> row;
    for (int j = 0; j < 500; j++)
        row.emplace_back(lp_add_var(&lp, -1 - (j * 37 % 101), 0.01 * (j % 3), INF),
                         1 + j % 5);
    lp_add_row_entries(&lp, row, '<', 700);
    expect_left(lp, {pre_columns, pre_columns}, -1, 0);
}

TEST(DuplicateCols, stay_where_scales_are_too_far_apart_or_a_basis_is_to_be_crushed)
{
    const auto parallel = [](double factor) {
        return lp_make({{3, 0, 2}, {1, 0, 2}, {factor, -1, 4}},
                       {{{1, 1, factor}, '>', 1}, {{-1, 1, factor}, '<', 4}});
    };
    expect_left(parallel(1), {pre_duplicate_cols}, 2, 2);
    expect_left(parallel(1e7), {pre_duplicate_cols}, 2, 3);
    expect_left(parallel(1), {pre_duplicate_cols}, 2, 3, {{"PreCrush", 1}});
}

// ---- Bounds on duals ----

// A demand that is covered at cost 1 by the first column: what costs more than it covers is not used.
TEST(DualBounds, a_column_that_never_pays_goes_to_its_lower_bound)
{
    const auto dear = [](double cost) {
        return lp_make({{1}, {cost, 0, 8}}, {{{1, 2}, '>', 10}});
    };
    const PresolveTry t = expect_left(dear(2.5), {pre_dual_bounds}, 1, 1);
    EXPECT_EQ(t.solution.x, (std::vector<double>{10, 0}));
    EXPECT_EQ(t.solution.rc[1], 0.5);
    for (const double cost : {1.5, 2.0, 2.0 + 1e-7}) // the last is within the tolerance
        expect_left(dear(cost), {pre_dual_bounds}, 1, 2);
    expect_left(dear(2.5), {pre_dual_bounds}, 1, 2, {{"TARV_PAR_DUALREDUCTION", 0}});
}

// Each of two columns would be fixed if the other stood: one has to stay. y <= 1/2 by either: the third is too dear.
TEST(DualBounds, columns_that_rest_on_each_other_do_not_both_go)
{
    const LpModel lp =
        lp_make({{1}, {1}, {10, 0, 5}}, {{{2, 1, 1}, '>', 8}, {{1, 2, 1}, '>', 8}});
    EXPECT_EQ(expect_left(lp, {pre_dual_bounds}, -1, 2).solution.x[2], 0);
}

// x stands in one equation that implies its bounds: y is at most 1, and the other column costs more than that.
TEST(DualBounds, a_bound_that_a_row_implies_counts_as_absent_and_goes)
{
    const PresolveTry t = expect_left(lp_make({{1, 0, 20}, {3, 0, 7}}, {{{1, 1}, '=', 10}}),
                                      {pre_dual_bounds}, -1, 1);
    EXPECT_EQ(t.solution.x, (std::vector<double>{10, 0}));
    EXPECT_GE(t.reduced.ub[0], 1e20) << "what the conclusion rests on must hold";
}

// A demand of at most 10 (x, y <= 5, wanted); two of four sources give 12.
TEST(SingletonKnapsack, sources_behind_the_need_stay_unused)
{
    LpModel lp = lp_make({{-4, 0, 5}, {-1.5, 0, 5}}, {{{1, 1}, '<', 0}, {{1, 2}, '<', 12}});
    for (const double cost : {1, 3, 2, 5})
        lp_set_entry(&lp, 0, lp_add_var(&lp, cost, 0, 6), -1);
    expect_left(lp, {pre_singleton_knapsack}, 2, 4);
    expect_left(lp, {pre_singleton_knapsack}, 2, 6, {{"TARV_PAR_DUALREDUCTION", 0}});
}
