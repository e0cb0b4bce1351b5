// duplicate_cols_test.cpp -- of parallel columns the dear ones go to a bound and equal ones are one
#include "presolve/reduce/merged_columns.h"
#include "support/dice.h"
#include "support/presolve_try.h"
#include <cmath>
#include <gtest/gtest.h>

namespace
{
constexpr double INF = LP_INFINITY;
struct Column {
    double factor, cost, lb, ub;
};
struct Case {
    const char *name;
    std::vector<Column> columns; // of (1, 1) in the two rows
    int cols;                    // left, with the one of another direction
    int status;
};
} // namespace

// z with columns of one direction in  1 <= sum + z <= 6,  sum - z <= 4
static LpModel with_parallel_columns(const std::vector<Column> &columns)
{
    LpModel lp;
    lp_add_row(&lp, '>', 1);
    lp_add_row(&lp, '<', 4);
    for (const Column &c : columns) {
        const int j = lp_add_var(&lp, c.cost, c.lb, c.ub);
        lp_set_entry(&lp, 0, j, c.factor);
        lp_set_entry(&lp, 1, j, c.factor);
    }
    const int z = lp_add_var(&lp, 3, 0, 2);
    lp_set_entry(&lp, 0, z, 1);
    lp_set_entry(&lp, 1, z, -1);
    return lp;
}

TEST(DuplicateCols, dear_ones_go_to_a_bound_and_equal_ones_merge)
{
    const Case cases[] = {
        {"a cheaper one without upper bound", {{1, 1, 0, INF}, {1, 2, 0, 5}}, 2, 0},
        {"the same with a factor", {{2, 2, 0, INF}, {-1, -2, -3, 0}}, 2, 0},
        {"a dearer one without lower bound", {{1, 1, -1, 2}, {1, 2, -INF, 5}}, 2, 0},
        {"bounds on both sides", {{1, 1, 0, 2}, {1, 2, 0, 5}}, 3, 0},
        {"a ray at a profit", {{1, 1, 0, INF}, {1, 2, -INF, 5}}, 0, 5},
        {"equal costs", {{1, 1, 0, 2}, {1, 1, -1, INF}}, 2, 0},
        {"equal prices", {{1, 1, 0, 0.5}, {-2, -2, -1, 0.25}, {4, 4, 0, 1}}, 2, 0},
        {"a free column in two parts", {{1, 1, 0, INF}, {-1, -1, 0, INF}}, 2, 0},
        {"two free columns", {{1, 0, -INF, INF}, {2, 0, -INF, INF}}, 2, 0},
        {"two of each", {{1, 1, 0, 1}, {1, 2, 0, 1}, {2, 2, 0, 1}, {2, 4, 0, 1}}, 3, 0},
        {"scales too far apart", {{1, 1, 0, 1}, {1e7, 1e7, 0, 1}}, 3, 0},
    };
    const TestEnv env;
    for (const Case &c : cases)
        for (const double sign : {1.0, -1.0}) { // the mirror image: x -> -x in each column
            std::vector<Column> columns = c.columns;
            if (sign < 0)
                for (Column &k : columns) k = {-k.factor, -k.cost, -k.ub, -k.lb};
            const LpModel lp = with_parallel_columns(columns);
            const PresolveTry t = presolve_try(env.env, &lp, {pre_duplicate_cols});
            EXPECT_EQ(t.status, c.status) << c.name;
            EXPECT_EQ(t.faults, "") << c.name << " " << sign;
            EXPECT_EQ(t.cols, c.cols) << c.name << " " << sign;
        }
}

TEST(DuplicateCols, a_basis_that_is_to_be_crushed_keeps_merged_columns)
{
    const TestEnv env;
    set_parameters(env.env, {{"PreCrush", 1}});
    const LpModel lp = with_parallel_columns({{1, 1, 0, 2}, {1, 1, -1, 4}});
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_duplicate_cols}).cols, 3);
}

TEST(DuplicateCols, a_sum_is_split_with_one_column_at_a_bound_and_the_other_within_its_own)
{
    Dice dice(1);
    for (int k = 0; k < 2000; k++) {
        MergedPair pair = {};
        pair.f = dice.nonzero(4);
        double least = 0, most = 0;
        const auto draw = [&dice](double *lb, double *ub) {
            *lb = dice.range(-5, 5);
            *ub = *lb + dice.range(0, 6);
            if (dice.chance(30)) *lb = -1e30;
            if (dice.chance(30)) *ub = 1e30;
        };
        draw(&pair.lb_p, &pair.ub_p);
        draw(&pair.lb_q, &pair.ub_q);
        least = pair.lb_p + pair.f * (pair.f > 0 ? pair.lb_q : pair.ub_q);
        most = pair.ub_p + pair.f * (pair.f > 0 ? pair.ub_q : pair.lb_q);
        const double sum = std::fmin(std::fmax(dice.real(-40, 40), least), most);
        double p = 0, q = 0;
        const Split split = split_merged_columns(&pair, 1e30, sum, &p, &q);
        EXPECT_NEAR(p + pair.f * q, sum, 1e-12);
        EXPECT_TRUE(p >= pair.lb_p - 1e-12 && p <= pair.ub_p + 1e-12);
        EXPECT_TRUE(q >= pair.lb_q - 1e-12 && q <= pair.ub_q + 1e-12);
        const double at[] = {0, pair.lb_q, pair.ub_q, pair.lb_p, pair.ub_p};
        const int code = -static_cast<int>(split);
        EXPECT_EQ(at[code], code < 3 ? q : p);
    }
}
