// thresholds_test.cpp -- reductions at their thresholds, under parameters and where conclusions rest on each other; what
// rounding leaves of sums does not end a model, and is nothing to pivot on
//
// That they find what they look for, and what comes of it, is counted and judged in reductions_test.cpp.
#include "presolve/errors.h"
#include "support/model_test.h"
#include "support/presolve_try.h"

namespace
{
constexpr double INF = LP_INFINITY;
using Errors = ModelTest;
const std::vector<LpColumn> SQUARE = {{-1, 0, 1}, {-1, 0, 1}};

// Three columns with costs -2, 3, 1 in [0, 5] and a row of their own, and a column that stands in the first row only.
LpModel with_singleton(double cost, double lb, double ub, double a, char sense)
{
    return lp_make({{-2, 0, 5}, {3, 0, 5}, {1, 0, 5}, {cost, lb, ub}},
                   {{{1, 2, -1, a}, sense, 4}, {{1, 1, 1, 0}, '=', 9}});
}

// x + y with a x + b y = 2 and x + y <= 40
LpModel doubleton(double b, double ub_x, double size_y)
{
    return lp_make({{1, 0, ub_x}, {1, -size_y, size_y}},
                   {{{1, b}, '=', 2}, {{1, 1}, '<', 40}});
}

// x = 2 y - z + 1 stands in `rows` inequalities with columns of their own; y, z and those are in [0, 5].
LpModel star(int rows)
{
    LpModel lp = lp_make({{1, -INF, INF}, {-1, 0, 5}, {2, 0, 5}}, {{{1, -2, 1}, '=', 1}});
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

TEST(Rows, go_or_contradict_by_the_tolerance)
{
    for (const double excess : {-1.0, 5e-7, 1e-5, 1e-3}) {
        SCOPED_TRACE(excess);
        const bool within = excess < 1e-6;
        expect_left(lp_make(SQUARE, {{{1, 1}, '<', 2 - excess}}), {pre_redundant_rows},
                    within ? 0 : 1);
        expect_end(lp_make(SQUARE, {{{}, '<', -excess}}), {pre_redundant_rows},
                   within ? 0 : END_INFEASIBLE);
    }
    // The third row is the sum of the others, almost.
    for (const double off : {1e-7, 1e-3})
        expect_end(
            lp_make({{1, 0, 10}, {1, 0, 10}, {1, 0, 10}},
                    {{{1, 1, 2}, '=', 6}, {{1, -1, 1}, '=', 2}, {{2, 0, 3}, '=', 8 + off}}),
            {pre_dependent_rows}, off < 1e-6 ? 0 : END_INFEASIBLE);
    // Entries go while their sum is a thousandth of the tolerance, at the middle of what they add.
    for (const double entry : {9e-10, 1.5e-9, 1e-7}) {
        const PresolveTry t =
            expect_left(lp_make(SQUARE, {{{1, entry}, '<', 0.5}}), {pre_redundant_rows}, 1);
        EXPECT_EQ(t.coefs_changed, entry < 1e-9 ? 1 : 0) << entry;
        EXPECT_EQ(t.reduced.rhs[0], entry < 1e-9 ? 0.5 - entry / 2 : 0.5) << entry;
    }
    LpModel lp = lp_make({{-1}, {-1}}, {{{1, 1}, '<', 4}, {{1, -1}, '>', 4 + 1e-7}});
    expect_end(lp, {pre_implied_bounds}, 0);
    lp.rhs[1] = 5;
    expect_end(lp, {pre_implied_bounds}, END_INFEASIBLE);
}

TEST(Rows, that_are_almost_the_same_stay)
{
    const std::vector<LpColumn> columns(4, {-1, 0, 10});
    for (const double off : {1e-7, 1e-9})
        expect_left(lp_make(columns, {{{1, 1, 2}, '=', 6}, {{2, 2 + off, 4}, '=', 12}}),
                    {pre_dependent_rows}, 2);
    for (const double off : {1e-5, 1e-8})
        expect_left(lp_make(columns, {{{1, 2}, '<', 4}, {{1 + off, 2}, '<', 4}}),
                    {pre_duplicate_rows}, 2);
    for (const double off : {1e-6, 1e-9}) { // the sum would lose digits
        const LpModel lp =
            lp_make(columns, {{{1, 1, 1, 0}, '=', 3}, {{2, 2, 2 + off, 1}, '<', 8}});
        EXPECT_EQ(expect_left(lp, {pre_two_rows}, 2).nonzeros, 7);
    }
}

TEST(Rows, that_rest_on_each_other_do_not_all_go)
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
    // v <= 9.9 gives w <= 8.9 gives v <= 9.8, so the first row looks redundant; but without it the others allow
    // v >= 10, and with it nothing at all.
    const PresolveTry t = reduced_by(
        lp_make({{-1, -1000}, {-1, -1000}, {-1, 0, 0}},
                {{{1, 0, 1}, '<', 9.9}, {{-1, 1, 0}, '<', -1}, {{1, -2, 0}, '<', -8}}),
        {pre_implied_bounds});
    EXPECT_EQ(t.rows, 3);
    EXPECT_EQ(t.reduced_status, TVX_INFEASIBLE);
}

TEST(Columns, free_ones_get_the_bound_that_the_method_likes)
{
    const LpModel lp =
        lp_make({{1, -INF, INF}, {-1}}, {{{1, 1}, '<', 6}, {{2, -1}, '>', -6}});
    for (const double method : {0, 1, 2}) {
        const PresolveTry t =
            expect_left(lp, {pre_free_bounds}, 2, 2, {{"LPMethod", method}});
        EXPECT_EQ(t.reduced.ub[0] < 1e20, method == 2);
        EXPECT_EQ(t.reduced.ub[1] < 1e20, method == 1);
        EXPECT_GT(t.reduced.ub[0], 6.001) << "no feasible point may touch it";
        EXPECT_GT(t.reduced.ub[1], 9) << "no feasible point may touch it";
    }
}

TEST(Columns, leave_unless_they_are_small_in_their_row_or_parameters_keep_them)
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
    for (const double factor : {1.0, 1e7}) { // scales too far apart, or bases to be crushed
        const LpModel parallel =
            lp_make({{3, 0, 2}, {1, 0, 2}, {factor, -1, 4}},
                    {{{1, 1, factor}, '>', 1}, {{-1, 1, factor}, '<', 4}});
        expect_left(parallel, {pre_duplicate_cols}, 2, factor > 1 ? 3 : 2);
        expect_left(parallel, {pre_duplicate_cols}, 2, 3, {{"PreCrush", 1}});
    }
    // Of many that want to fill one row the best sets its price, and the others do not pay.
    LpModel lp;
    std::vector<std::pair<int, double>> row;
    for (int j = 0; j < 500; j++)
        row.emplace_back(lp_add_var(&lp, -1 - (j * 37 % 101), 0.01 * (j % 3), INF),
                         1 + j % 5);
    lp_add_row_entries(&lp, row, '<', 700);
    expect_left(lp, {pre_columns, pre_columns}, -1, 0);
}

TEST(Columns, that_never_pay_go_to_their_lower_bounds)
{
    // A demand that is covered at cost 1 by the first column; the last of the smaller costs is within the tolerance.
    const auto dear = [](double cost) {
        return lp_make({{1}, {cost, 0, 8}}, {{{1, 2}, '>', 10}});
    };
    const PresolveTry t = expect_left(dear(2.5), {pre_dual_bounds}, 1, 1);
    EXPECT_EQ(t.solution.x, (std::vector<double>{10, 0}));
    EXPECT_EQ(t.solution.rc[1], 0.5);
    for (const double cost : {1.5, 2.0, 2.0 + 1e-7})
        expect_left(dear(cost), {pre_dual_bounds}, 1, 2);
    expect_left(dear(2.5), {pre_dual_bounds}, 1, 2, {{"TARV_PAR_DUALREDUCTION", 0}});
    // Each of two would be fixed if the other stood: one has to stay. y <= 1/2 by either: the third is too dear.
    const LpModel pair =
        lp_make({{1}, {1}, {10, 0, 5}}, {{{2, 1, 1}, '>', 8}, {{1, 2, 1}, '>', 8}});
    EXPECT_EQ(expect_left(pair, {pre_dual_bounds}, -1, 2).solution.x[2], 0);
    // x stands in one equation that implies its bounds: y is at most 1, and the other column costs more than that.
    const PresolveTry implied = expect_left(
        lp_make({{1, 0, 20}, {3, 0, 7}}, {{{1, 1}, '=', 10}}), {pre_dual_bounds}, -1, 1);
    EXPECT_EQ(implied.solution.x, (std::vector<double>{10, 0}));
    EXPECT_GE(implied.reduced.ub[0], 1e20) << "what the conclusion rests on must hold";
    // A demand of at most 10 (x, y <= 5, wanted); two of four sources give 12, the others stay unused.
    LpModel lp = lp_make({{-4, 0, 5}, {-1.5, 0, 5}}, {{{1, 1}, '<', 0}, {{1, 2}, '<', 12}});
    for (const double cost : {1, 3, 2, 5})
        lp_set_entry(&lp, 0, lp_add_var(&lp, cost, 0, 6), -1);
    expect_left(lp, {pre_singleton_knapsack}, 2, 4);
    expect_left(lp, {pre_singleton_knapsack}, 2, 6, {{"TARV_PAR_DUALREDUCTION", 0}});
}

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

TEST(Aggregate, is_bounded_by_fill_nodes_steep_ratios_and_small_pivots)
{
    const LpModel crossing = lp_make({{1, 0, 1}, {1, 5, 9}}, {{{1, -1}, '=', 0}});
    EXPECT_GE(expect_end(crossing, {pre_aggregate}, END_INFEASIBLE).infeas_col, 0);
    for (const LpModel &lp : {doubleton(1e-5, 3, 1e9), doubleton(1e5, 2.05, 1e-6)})
        EXPECT_EQ(reduced_by(lp, {pre_aggregate}).rows, 2);
    LpModel lp = star(30); // fill (31 - 2) (3 - 2) - 2
    expect_left(lp, {pre_aggregate}, 31);
    expect_left(lp, {pre_aggregate}, 30, -1, {{"AggFill", 27}});
    expect_left(lp, {without_free_nodes}, 31, -1, {{"AggFill", 27}});
    for (int i = 1; i <= 30; i++) // fill that falls on entries is none
        for (const int col : {1, 2}) lp_set_entry(&lp, i, col, i % 3 + 0.5);
    expect_left(lp, {pre_aggregate}, 30);
    lp = star(2);
    lp_set_entry(&lp, 0, 0, 1e-4); // a pivot that is small in row and column
    EXPECT_EQ(reduced_by(lp, {pre_aggregate}).rows, 3);
}

// x0 + x1 = 1 after the first row is put into the second, which leaves 1e-9 of x1 and of the right-hand side.
TEST_F(Errors, entries_remember_the_size_of_their_terms)
{
    load(lp_make({{0, -INF, INF}, {0, -INF, INF}, {0, -INF, INF}},
                 {{{1, 1.0 / 3, 1}, '=', 1}, {{3, 1 + 1e-9, 3}, '=', 3}}));
    PresolveWork w;
    ASSERT_EQ(work_load(&w, model->body, model->env), 0);
    ASSERT_EQ(mark_everything(&w) + pre_activity(&w) + pre_aggregate(&w), 0);
    int seen = 0;
    for (int p = 0; p < w.Nodes.size; p++) {
        const PresolveNode &node = w.Nodes[p];
        if (node.col < 0 || std::fabs(node.value) > 1e-3) continue;
        seen++;
        EXPECT_NEAR(w.EntrySize[p], 1, 0.1);
        EXPECT_FALSE(errors_allow(&w, p, 1e-9, 1e-9)) << "nine digits lost";
        for (const double size : {1e-60, 1e60, 1e300}) { // beyond any shorter number type
            w.Nodes[p].value = size * 1e-9;
            set_entry_size(&w, p, size);
            EXPECT_EQ(size_of_entry(&w, p), size);
            EXPECT_FALSE(errors_allow(&w, p, 0, 0));
        }
    }
    EXPECT_EQ(seen, 1);
    work_free(&w);
}

TEST_F(Errors, costs_that_are_rounding_do_not_make_a_model_unbounded)
{
    for (const double scale : {1.0, 1e5, 1e9}) { // 0.1 + 0.2 is not 0.3, at this size
        LpModel lp = lp_make(
            {{0.1 * scale, -INF, INF}, {0.2 * scale, -INF, INF}, {-0.3 * scale, -INF, INF}},
            {{{1, 0, -1}, '=', 0}, {{0, 1, -1}, '=', 0}});
        expect_end(lp, {pre_columns, pre_aggregate, pre_fix_empty}, 0);
        lp.obj[2] -= 1e-3 * scale; // and this is a cost
        expect_end(lp, {pre_columns, pre_aggregate, pre_fix_empty}, END_UNBOUNDED);
    }
}
