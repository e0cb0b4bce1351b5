// columns_test.cpp -- reductions of columns on models where it is known what goes and what must stay: singletons,
// dominated and parallel columns, what bounds on duals decide, and inequalities that become equations
#include "presolve/reduce/merged_columns.h"
#include "support/dice.h"
#include "support/presolve_try.h"
#include <cmath>
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
    return lp_make(
        {{turn * -2, 0, 5}, {turn * 3, 0, 5}, {turn * 1, 0, 5}, {s.cost, s.lb, s.ub}},
        {{{1, 2, -1, s.a}, s.sense, 4}, {{1, 1, 1, 0}, '=', 9}});
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
    for (const Slack &s : slacks)
        for (const double turn :
             {1, -1, 0}) { // the row's slack basic, nonbasic, degenerate
            SCOPED_TRACE(s.name);
            const PresolveTry t =
                expect_left(with_singleton(s, turn), {pre_columns}, s.rows, s.cols);
            EXPECT_EQ(t.reduced_status, TVX_OPTIMAL);
        }
    const Settings kept = {{"TARV_PAR_DUALREDUCTION", 0}, {"TARV_PAR_PRESINGLECOL", 0}};
    for (const Slack &s : {slacks[0], slacks[14]}) // parameters keep them
        expect_left(with_singleton(s, 1), {pre_columns}, 2, 4, kept);
    const LpModel crossed = with_singleton({"", 3, 2, 1, 2, '=', 0, 0}, 1);
    EXPECT_EQ(expect_end(crossed, {pre_columns}, END_INFEASIBLE).infeas_col, 3);
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

TEST(Columns, a_column_that_frees_its_rows_takes_them_along)
{
    for (const double lb : {-INF, 0.0, 50.0}) { // a row decides, or the bound
        LpModel lp =
            lp_make({{0, lb}, {-1, 0, 4}, {-1, 0, 4}},
                    {{{1, -1, -2}, '>', 1}, {{-2, 3, 0}, '<', 1}, {{0, 1, 1}, '<', 5}});
        EXPECT_GE(expect_left(lp, {pre_columns}, 1, 2).solution.x[0], lb);
        lp.obj[0] = -1; // for ever
        EXPECT_EQ(expect_end(lp, {pre_columns}, END_UNBOUNDED).infeas_col, 0);
    }
}

TEST(IneqToEq, the_only_row_that_holds_a_column_back_is_tight)
{
    const struct {
        const char *name;
        double cost, ub;
        int equations;
    } cases[] = {{"nothing else", -1, INF, 1},
                 {"without cost", 0, INF, 1},
                 {"a bound out of reach", -1, 30, 1},
                 {"a bound at the point", -1, 9, 0},
                 {"a cost", 1, INF, 0}};
    for (const auto &c : cases) {
        const LpModel lp =
            lp_make({{c.cost, 0, c.ub}, {1, 0, 5}, {1, 0, 5}},
                    {{{1, 1, 2}, '<', 9}, {{1, 1, 1}, '>', 3}, {{0, 1, -1}, '=', 1}});
        EXPECT_EQ(expect_left(lp, {pre_ineq_to_eq}, 3, 3).ineq_to_eq, c.equations)
            << c.name;
    }
}

// ---- Parallel columns ----

namespace
{
struct Parallel {
    double factor, cost, lb, ub;
};

// z with columns of one direction in  1 <= sum + z <= 6,  sum - z <= 4
LpModel with_parallel_columns(const std::vector<Parallel> &columns)
{
    LpModel lp = lp_make({{3, 0, 2}}, {{{1}, '>', 1}, {{-1}, '<', 4}});
    for (const Parallel &c : columns) {
        const int j = lp_add_var(&lp, c.cost, c.lb, c.ub);
        for (const int i : {0, 1}) lp_set_entry(&lp, i, j, c.factor);
    }
    return lp;
}
} // namespace

TEST(DuplicateCols, dear_ones_go_to_a_bound_and_equal_ones_merge)
{
    const struct {
        const char *name;
        std::vector<Parallel> columns; // of (1, 1) in the two rows
        int cols; // left, with the one of another direction; 0: unbounded
    } cases[] = {
        {"a cheaper one without upper bound", {{1, 1, 0, INF}, {1, 2, 0, 5}}, 2},
        {"the same with a factor", {{2, 2, 0, INF}, {-1, -2, -3, 0}}, 2},
        {"a dearer one without lower bound", {{1, 1, -1, 2}, {1, 2, -INF, 5}}, 2},
        {"bounds on both sides", {{1, 1, 0, 2}, {1, 2, 0, 5}}, 3},
        {"a ray at a profit", {{1, 1, 0, INF}, {1, 2, -INF, 5}}, 0},
        {"equal costs", {{1, 1, 0, 2}, {1, 1, -1, INF}}, 2},
        {"equal prices", {{1, 1, 0, 0.5}, {-2, -2, -1, 0.25}, {4, 4, 0, 1}}, 2},
        {"a free column in two parts", {{1, 1, 0, INF}, {-1, -1, 0, INF}}, 2},
        {"two free columns", {{1, 0, -INF, INF}, {2, 0, -INF, INF}}, 2},
        {"two of each", {{1, 1, 0, 1}, {1, 2, 0, 1}, {2, 2, 0, 1}, {2, 4, 0, 1}}, 3},
        {"scales too far apart", {{1, 1, 0, 1}, {1e7, 1e7, 0, 1}}, 3},
    };
    for (const auto &c : cases)
        for (const double sign : {1.0, -1.0}) { // the mirror image: x -> -x in each column
            SCOPED_TRACE(c.name);
            std::vector<Parallel> columns = c.columns;
            if (sign < 0)
                for (Parallel &k : columns) k = {-k.factor, -k.cost, -k.ub, -k.lb};
            const LpModel lp = with_parallel_columns(columns);
            if (c.cols == 0)
                expect_end(lp, {pre_duplicate_cols}, END_UNBOUNDED);
            else
                expect_left(lp, {pre_duplicate_cols}, 2, c.cols);
        }
    // A basis that is to be crushed keeps merged columns.
    expect_left(with_parallel_columns({{1, 1, 0, 2}, {1, 1, -1, 4}}), {pre_duplicate_cols},
                2, 3, {{"PreCrush", 1}});
}

TEST(DuplicateCols, a_sum_is_split_with_one_column_at_a_bound_and_the_other_within_its_own)
{
    Dice dice(1);
    for (int k = 0; k < 2000; k++) {
        MergedPair pair = {};
        pair.f = dice.nonzero(4);
        const auto draw = [&dice](double *lb, double *ub) {
            *lb = dice.range(-5, 5);
            *ub = *lb + dice.range(0, 6);
            if (dice.chance(30)) *lb = -1e30;
            if (dice.chance(30)) *ub = 1e30;
        };
        draw(&pair.lb_p, &pair.ub_p);
        draw(&pair.lb_q, &pair.ub_q);
        const double least = pair.lb_p + pair.f * (pair.f > 0 ? pair.lb_q : pair.ub_q),
                     most = pair.ub_p + pair.f * (pair.f > 0 ? pair.ub_q : pair.lb_q),
                     sum = std::fmin(std::fmax(dice.real(-40, 40), least), most);
        double p = 0, q = 0;
        const int code = -static_cast<int>(split_merged_columns(&pair, 1e30, sum, &p, &q));
        EXPECT_NEAR(p + pair.f * q, sum, 1e-12);
        EXPECT_TRUE(p >= pair.lb_p - 1e-12 && p <= pair.ub_p + 1e-12);
        EXPECT_TRUE(q >= pair.lb_q - 1e-12 && q <= pair.ub_q + 1e-12);
        const double at[] = {0, pair.lb_q, pair.ub_q, pair.lb_p, pair.ub_p};
        EXPECT_EQ(at[code], code < 3 ? q : p);
    }
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

// y of the first row is exactly 3 by the free column, so the row is tight and z is worth its upper bound.
TEST(DualBounds, a_row_with_a_price_becomes_an_equation)
{
    const PresolveTry t = expect_left(
        lp_make({{3, -INF, INF}, {1, 0, 4}, {1, 0, 4}},
                {{{1, 1, -1}, '>', 2}, {{0, 1, 1}, '<', 7}, {{1, 2, 0}, '<', 50}}),
        {pre_dual_bounds}, -1);
    EXPECT_EQ(t.ineq_to_eq, 1);
    EXPECT_EQ(t.reduced.senses[0], '=');
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
    // (1, 1) is a ray: no dual is feasible
    const PresolveTry u = reduced_by(
        lp_make({{-1}, {-1}}, {{{1, -2}, '<', 3}, {{-2, 1}, '<', 3}}), {pre_dual_bounds});
    EXPECT_TRUE(u.status == END_UNBOUNDED || u.reduced_status == TVX_UNBOUNDED);
}

// A demand of at most 10 (x, y <= 5, wanted), covered by sources of one row with these costs and capacities.
TEST(SingletonKnapsack, sources_behind_the_need_stay_unused)
{
    const struct {
        std::vector<std::pair<double, double>> sources;
        int cols; // left
    } cases[] = {
        {{{1, 6}, {3, 6}, {2, 6}, {5, 6}}, 4}, // 1 and 2 give 12
        {{{1, 4}, {3, 4}, {2, 4}, {5, 4}}, 5}, // 1, 2 and 3
        {{{1, 5}, {2, 5}, {3, 5}}, 5},         // exactly the need: no margin
        {{{3, INF}, {1, 2}, {4, 9}}, 4},       // the unlimited one ends it
        {{{1, 2}, {2, 2}}, 4},                 // not enough
    };
    for (const char sense : {'<', '='})
        for (const auto &c : cases) {
            LpModel lp = lp_make({{-4, 0, 5}, {-1.5, 0, 5}},
                                 {{{1, 1}, sense, 0}, {{1, 2}, '<', 12}});
            for (const auto &[cost, capacity] : c.sources)
                lp_set_entry(&lp, 0, lp_add_var(&lp, cost, 0, capacity), -1);
            expect_left(lp, {pre_singleton_knapsack}, 2, c.cols);
            expect_left(lp, {pre_singleton_knapsack}, 2, lp.num_vars(),
                        {{"TARV_PAR_DUALREDUCTION", 0}});
        }
}
