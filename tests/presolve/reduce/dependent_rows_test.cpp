// dependent_rows_test.cpp -- equations and free columns that follow from others go
#include "support/dice.h"
#include "support/presolve_try.h"
#include <gtest/gtest.h>

// rank equations of random integers that hold at one point, and `more` random sums of them
static LpModel with_sums(Dice *dice, int rank, int more, bool by_columns)
{
    const int places = 2 * rank;
    std::vector<std::vector<double>> line(static_cast<size_t>(rank));
    for (auto &l : line) {
        for (int q = 0; q < places; q++)
            l.push_back(dice->chance(40) ? dice->nonzero(5) : 0);
        l[static_cast<size_t>(dice->range(0, places - 1))] = 6; // not empty
    }
    for (int k = 0; k < more; k++) {
        std::vector<double> sum(static_cast<size_t>(places), 0.0);
        for (int terms = 0; terms < 3; terms++) {
            const auto &l = line[static_cast<size_t>(dice->range(0, rank - 1))];
            const int factor = dice->nonzero(3);
            for (size_t q = 0; q < sum.size(); q++) sum[q] += factor * l[q];
        }
        const bool empty = sum == std::vector<double>(sum.size(), 0.0);
        line.push_back(empty ? line[0] : sum);
    }
    dice->shuffle(&line);
    LpModel lp;
    const int lines = static_cast<int>(line.size());
    for (int q = 0; q < (by_columns ? lines : places); q++)
        lp_add_var(&lp, 0, by_columns ? -LP_INFINITY : 0, by_columns ? LP_INFINITY : 9);
    for (int k = 0; k < (by_columns ? places : lines); k++)
        lp_add_row(&lp, by_columns ? '<' : '=', 0);
    for (int k = 0; k < lines; k++)
        for (int q = 0; q < places; q++) {
            const double a = line[static_cast<size_t>(k)][static_cast<size_t>(q)];
            const int row = by_columns ? q : k, col = by_columns ? k : q;
            lp_set_entry(&lp, row, col, a);
            if (!by_columns) lp.rhs[static_cast<size_t>(row)] += 2 * a; // x = 2
            if (by_columns) lp.obj[static_cast<size_t>(col)] -= a;      // y = -1
        }
    if (!by_columns)
        for (int j = 0; j < places; j++)
            lp.obj[static_cast<size_t>(j)] = dice->range(-3, 3);
    return lp;
}

TEST(DependentRows, no_more_than_the_rank_stays)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 40; seed++) {
        Dice dice(seed);
        const int rank = dice.range(1, 12), more = dice.range(0, 8);
        const LpModel lp = with_sums(&dice, rank, more, false);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_dependent_rows});
        ASSERT_EQ(t.faults, "") << seed;
        ASSERT_LE(t.rows, rank) << seed;
        ASSERT_EQ(t.broken, 0);
    }
}

TEST(DependentRows, another_right_hand_side_is_a_contradiction)
{
    const TestEnv env;
    for (const double off : {1e-3, 1.0}) {
        LpModel lp;
        for (int j = 0; j < 3; j++) lp_add_var(&lp, 1, 0, 10);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 2}}, '=', 6);
        lp_add_row_entries(&lp, {{0, 1}, {1, -1}, {2, 1}}, '=', 2);
        lp_add_row_entries(&lp, {{0, 3}, {1, 1}, {2, 5}}, '=', 14 + off);
        EXPECT_EQ(presolve_try(env.env, &lp, {pre_dependent_rows}).status,
                  PRESOLVE_INFEASIBLE);
        lp.rhs[2] = 14;
        EXPECT_EQ(presolve_try(env.env, &lp, {pre_dependent_rows}).rows, 2);
        lp.senses[2] = '<'; // an inequality says something else
        EXPECT_EQ(presolve_try(env.env, &lp, {pre_dependent_rows}).rows, 3);
    }
}

TEST(DependentRows, almost_dependent_rows_stay)
{
    const TestEnv env;
    for (const double off : {1e-7, 1e-9}) {
        LpModel lp;
        for (int j = 0; j < 3; j++) lp_add_var(&lp, 1, 0, 10);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 2}}, '=', 6);
        lp_add_row_entries(&lp, {{0, 2}, {1, 2 + off}, {2, 4}}, '=', 12);
        EXPECT_EQ(presolve_try(env.env, &lp, {pre_dependent_rows}).rows, 2) << off;
    }
}

TEST(DependentRows, free_columns_that_others_replace_are_zero)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 40; seed++) {
        Dice dice(seed);
        const int rank = dice.range(1, 12), more = dice.range(0, 8);
        LpModel lp = with_sums(&dice, rank, more, true);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_dependent_cols});
        ASSERT_EQ(t.faults, "") << seed;
        ASSERT_LE(t.cols, rank) << seed;
    }
    LpModel lp;
    lp_add_var(&lp, 1, -LP_INFINITY, LP_INFINITY);
    lp_add_var(&lp, 3, -LP_INFINITY, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '>', 6);
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_dependent_cols}).status, PRESOLVE_UNBOUNDED);
}
