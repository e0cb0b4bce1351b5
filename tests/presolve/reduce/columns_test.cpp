// columns_test.cpp -- the column pass: singletons, dominated columns, and inequalities that become equations
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{
constexpr double INF = LP_INFINITY;

struct Slack {
    const char *name;
    double cost, lb, ub, a;
    char sense;
    int rows, cols; // that are left of 2 and 4
};

// Three columns with costs -2, 3, 1 in [0, 5] and a row of their own, and the column in question in the first row.
LpModel with_singleton(const Slack &s, double turn)
{
    LpModel lp;
    lp_add_var(&lp, turn * -2, 0, 5);
    lp_add_var(&lp, turn * 3, 0, 5);
    lp_add_var(&lp, turn * 1, 0, 5);
    lp_add_var(&lp, s.cost, s.lb, s.ub);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}, {2, -1}, {3, s.a}}, s.sense, 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '=', 9);
    return lp;
}
} // namespace

TEST(Columns, singletons_leave_where_no_bound_of_theirs_matters)
{
    const std::vector<Slack> slacks = {
        {"free in an equation", 3, -INF, INF, 2, '=', 1, 3},
        {"free against a row", -1, -INF, INF, 2, '<', 1, 3},
        {"free against a row, a < 0", 1, -INF, INF, -2, '<', 1, 3},
        {"bounds implied by the equation", -4, -20, 20, 1, '=', 1, 3},
        {"bounds of which one is implied", 0.5, 0, 20, 1, '=', 2, 3},
        {"slack of an equation", 0, 0, INF, 1, '=', 2, 3},
        {"slack with cost", 0.25, 1, INF, 1, '=', 2, 3},
        {"slack downwards", 0, -INF, 2, 1, '=', 2, 3},
        {"slack downwards with cost", -3, -INF, 2, 4, '=', 2, 3},
        {"surplus", 0, 0, INF, -1, '=', 2, 3},
        {"surplus with cost", 4, 1, INF, -0.125, '=', 2, 3},
        {"surplus downwards", 2, -INF, 1, -0.3, '=', 2, 3},
        {"slack that pays against a row", -1, 1, INF, 2, '<', 2, 3},
        {"slack that pays against a row, a < 0", 3, -INF, 1, -3, '<', 2, 3},
        {"goes to its bound", 2, -1, 6, 2, '<', 2, 3},
        {"goes to its upper bound", -2, -1, 6, -2, '<', 2, 3},
        {"bounds that matter", 0, 0, 2, 1, '=', 2, 4},
        {"bound on the side of the row matters", -1, -INF, 2, 2, '<', 2, 4},
        {"an entry too small beside the row", 0, 0, INF, 1e-4, '=', 2, 4},
    };
    const TestEnv env;
    for (const Slack &s : slacks)
        for (const double turn :
             {1, -1, 0}) { // the row's slack basic, nonbasic, degenerate
            const LpModel lp = with_singleton(s, turn);
            const PresolveTry t = presolve_try(env.env, &lp, {pre_columns});
            EXPECT_EQ(t.faults, "") << s.name << lp_to_mps(&lp, "");
            EXPECT_EQ(t.reduced_status, TVX_OPTIMAL) << s.name;
            EXPECT_EQ(t.rows, s.rows) << s.name;
            EXPECT_EQ(t.cols, s.cols) << s.name;
        }
}

// Each of them wants to fill the row; once the best has set its price, the others do not pay.
TEST(Columns, of_many_slacks_the_best_leaves_and_the_others_are_fixed)
{
    const TestEnv env;
    LpModel lp;
    std::vector<std::pair<int, double>> row;
    for (int j = 0; j < 500; j++) {
        lp_add_var(&lp, -1 - (j * 37 % 101), 0.01 * (j % 3), INF);
        row.emplace_back(j, 1 + j % 5);
    }
    lp_add_row_entries(&lp, row, '<', 700);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_columns, pre_columns});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.cols, 0);
}

TEST(Columns, a_column_that_frees_its_rows_takes_them_along)
{
    const TestEnv env;
    for (const double lb : {-INF, 0.0, 50.0}) { // a row decides, or the bound
        LpModel lp;
        lp_add_var(&lp, 0, lb, INF);
        lp_add_var(&lp, -1, 0, 4);
        lp_add_var(&lp, -1, 0, 4);
        lp_add_row_entries(&lp, {{0, 1}, {1, -1}, {2, -2}}, '>', 1);
        lp_add_row_entries(&lp, {{0, -2}, {1, 3}}, '<', 1);
        lp_add_row_entries(&lp, {{1, 1}, {2, 1}}, '<', 5);
        PresolveTry t = presolve_try(env.env, &lp, {pre_columns});
        EXPECT_EQ(t.faults, "");
        EXPECT_EQ(t.rows, 1);
        EXPECT_EQ(t.cols, 2);
        EXPECT_GE(t.solution.x[0], lb);
        lp.obj[0] = -1; // for ever
        t = presolve_try(env.env, &lp, {pre_columns});
        EXPECT_EQ(t.status, PRESOLVE_UNBOUNDED);
        EXPECT_EQ(t.infeas_col, 0);
    }
}

TEST(Columns, parameters_keep_columns)
{
    const TestEnv env;
    set_parameters(env.env, {{"TARV_PAR_DUALREDUCTION", 0}, {"TARV_PAR_PRESINGLECOL", 0}});
    LpModel lp = with_singleton({"", 3, -INF, INF, 2, '=', 0, 0}, 1);
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_columns}).cols, 4);
    lp = with_singleton({"", 2, -1, 6, 2, '<', 0, 0}, 1);
    EXPECT_EQ(presolve_try(env.env, &lp, {pre_columns}).cols, 4);
}

TEST(Columns, bounds_that_cross_are_infeasible)
{
    const TestEnv env;
    LpModel lp = with_singleton({"", 3, 2, 1, 2, '=', 0, 0}, 1);
    const PresolveTry t = presolve_try(env.env, &lp, {pre_columns});
    EXPECT_EQ(t.status, PRESOLVE_INFEASIBLE);
    EXPECT_EQ(t.infeas_col, 3);
}

TEST(IneqToEq, the_only_row_that_holds_a_column_back_is_tight)
{
    struct Case {
        const char *name;
        double cost, ub;
        int equations;
    };
    const TestEnv env;
    for (const Case &c :
         {Case{"nothing else", -1, INF, 1}, Case{"without cost", 0, INF, 1},
          Case{"a bound out of reach", -1, 30, 1}, Case{"a bound at the point", -1, 9, 0},
          Case{"a cost", 1, INF, 0}}) {
        LpModel lp;
        lp_add_var(&lp, c.cost, 0, c.ub);
        lp_add_var(&lp, 1, 0, 5);
        lp_add_var(&lp, 1, 0, 5);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 2}}, '<', 9);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '>', 3);
        lp_add_row_entries(&lp, {{1, 1}, {2, -1}}, '=', 1);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_ineq_to_eq});
        EXPECT_EQ(t.faults, "") << c.name;
        EXPECT_EQ(t.ineq_to_eq, c.equations) << c.name;
    }
}
