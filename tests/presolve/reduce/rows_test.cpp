// rows_test.cpp -- reductions of rows on models where it is known what goes and what must stay: redundant, dependent
// and parallel rows, rows that bounds of others imply, and equations that cancel entries of other rows
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{
constexpr double INF = LP_INFINITY;
const std::vector<LpColumn> SQUARE = {{-1, 0, 1}, {-1, 0, 1}};
} // namespace

TEST(RedundantRows, a_row_that_bounds_violate_by_more_than_the_tolerance_stays)
{
    for (const double excess : {-1.0, 5e-7, 1e-5, 1e-3}) {
        SCOPED_TRACE(excess);
        expect_left(lp_make(SQUARE, {{{1, 1}, '<', 2 - excess}}), {pre_redundant_rows},
                    excess < 1e-6 ? 0 : 1);
    }
}

TEST(RedundantRows, an_empty_row_is_a_contradiction_beyond_the_tolerance)
{
    for (const double below : {5e-7, 1e-5, 1e-3}) {
        SCOPED_TRACE(below);
        const LpModel lp = lp_make(SQUARE, {{{}, '<', -below}});
        if (below < 1e-6)
            EXPECT_EQ(reduced_by(lp, {pre_redundant_rows}).rows_removed, 1);
        else
            expect_end(lp, {pre_redundant_rows}, END_INFEASIBLE);
    }
}

TEST(RedundantRows, entries_go_while_their_sum_is_a_thousandth_of_the_tolerance)
{
    for (const double entry : {9e-10, 1.5e-9, 1e-7}) {
        SCOPED_TRACE(entry);
        const PresolveTry t =
            expect_left(lp_make(SQUARE, {{{1, entry}, '<', 0.5}}), {pre_redundant_rows}, 1);
        EXPECT_EQ(t.coefs_changed, entry < 1e-9 ? 1 : 0);
        EXPECT_EQ(t.reduced.rhs[0], entry < 1e-9 ? 0.5 - entry / 2 : 0.5)
            << "at the middle";
    }
}

TEST(DependentRows, another_right_hand_side_is_a_contradiction)
{
    LpModel lp = lp_make({{1, 0, 10}, {1, 0, 10}, {1, 0, 10}},
                         {{{1, 1, 2}, '=', 6}, {{1, -1, 1}, '=', 2}, {{3, 1, 5}, '=', 14}});
    expect_left(lp, {pre_dependent_rows}, 2);
    for (const double off : {1e-3, 1.0}) {
        lp.rhs[2] = 14 + off;
        expect_end(lp, {pre_dependent_rows}, END_INFEASIBLE);
    }
    lp.senses[2] = '<'; // an inequality says something else
    expect_left(lp, {pre_dependent_rows}, 3);
    for (const double off : {1e-7, 1e-9}) { // almost dependent
        lp = lp_make({{1, 0, 10}, {1, 0, 10}, {1, 0, 10}},
                     {{{1, 1, 2}, '=', 6}, {{2, 2 + off, 4}, '=', 12}});
        EXPECT_EQ(reduced_by(lp, {pre_dependent_rows}).rows, 2) << off;
    }
}

TEST(DependentRows, free_columns_that_others_replace_are_zero)
{
    const LpModel lp = lp_make({{1, -INF, INF}, {3, -INF, INF}}, {{{1, 2}, '>', 6}});
    expect_end(lp, {pre_dependent_cols}, END_UNBOUNDED);
}

TEST(DuplicateRows, almost_parallel_rows_stay)
{
    for (const double off : {1e-5, 1e-8})
        expect_left(
            lp_make({{-1, 0, 10}, {1, 0, 10}}, {{{1, 2}, '<', 4}, {{1 + off, 2}, '<', 4}}),
            {pre_duplicate_rows}, 2);
}

TEST(ImpliedBounds, rows_go_because_of_bounds_that_others_imply)
{
    const LpModel lp =
        lp_make({{-1}, {-1}, {-1}}, {{{1, 1, 0}, '<', 4},     // both at most 4
                                     {{1, 1, 2}, '<', 9},     // the third at most 4.5
                                     {{1, 0, 1}, '<', 8.5}}); // so this never binds
    EXPECT_GE(expect_left(lp, {pre_implied_bounds}, 2).reduced.ub[0], 1e20)
        << "the bounds of the model stay";
    // Two columns are fixed: each row alone implies the others.
    const LpModel alike =
        lp_make({{-1}, {-1, 0, 0}, {-1, 0, 0}}, {{{1, 1, 0}, '<', 4}, {{1, 0, 1}, '<', 4}});
    EXPECT_EQ(expect_left(alike, {pre_implied_bounds}, 1).solution.objval, -4);
}

// v <= 9.9 gives w <= 8.9 gives v <= 9.8, so the first row looks redundant; but without it the others allow v >= 10,
// and with it nothing at all.
TEST(ImpliedBounds, a_chain_back_to_the_row_itself_is_seen)
{
    const PresolveTry t = reduced_by(
        lp_make({{-1, -1000}, {-1, -1000}, {-1, 0, 0}},
                {{{1, 0, 1}, '<', 9.9}, {{-1, 1, 0}, '<', -1}, {{1, -2, 0}, '<', -8}}),
        {pre_implied_bounds});
    EXPECT_EQ(t.rows, 3);
    EXPECT_EQ(t.reduced_status, TVX_INFEASIBLE);
}

TEST(ImpliedBounds, a_contradiction_of_several_rows_is_found)
{
    LpModel lp = lp_make({{-1}, {-1}}, {{{1, 1}, '<', 4}, {{1, -1}, '>', 5}});
    expect_end(lp, {pre_implied_bounds}, END_INFEASIBLE);
    lp.rhs[1] = 4 + 1e-7; // only within the tolerance
    EXPECT_EQ(reduced_by(lp, {pre_implied_bounds}).status, 0);
}

TEST(FreeBounds, what_the_method_likes_gets_a_bound)
{
    const LpModel lp =
        lp_make({{1, -INF, INF}, {-1}}, {{{1, 1}, '<', 6}, {{2, -1}, '>', -6}});
    for (const double method : {0, 1, 2}) {
        const PresolveTry t =
            expect_left(lp, {pre_free_bounds}, 2, 2, {{"LPMethod", method}});
        EXPECT_EQ(t.solution.objval, -6);
        EXPECT_EQ(t.reduced.ub[0] < 1e20, method == 2);
        EXPECT_EQ(t.reduced.ub[1] < 1e20, method == 1);
        EXPECT_GT(t.reduced.ub[0], 6.001) << "no feasible point may touch it";
        EXPECT_GT(t.reduced.ub[1], 9) << "no feasible point may touch it";
    }
}

TEST(TwoRows, almost_equal_entries_stay)
{
    for (const double third : {2 + 1e-6, 2 + 1e-9}) // the sum would lose digits
        EXPECT_EQ(expect_left(lp_make({{-1, 0, 4}, {-1, 0, 4}, {-1, 0, 4}, {-1, 0, 4}},
                                      {{{1, 1, 1, 0}, '=', 3}, {{2, 2, third, 1}, '<', 8}}),
                              {pre_two_rows}, 2)
                      .nonzeros,
                  7);
}
