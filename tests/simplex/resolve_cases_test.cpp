// resolve_cases_test.cpp -- a live record where rounding, tolerances or empty bounds decide, on LPs solved by hand
#include "simplex/resolve.h"
#include "simplex/sopt.h"
#include "support/inside.h"
#include "support/lp_tarvex.h"
#include "support/settings.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

namespace
{
// A live record of a small LP, solved again with one change of bounds.
struct Small {
    TestEnv env;
    TestModel model;
    sopt *s = nullptr;
    explicit Small(const LpModel &lp, int scaled = 1, const char *types = "",
                   int extended = 0)
        : model(lp_load(env.env, &lp))
    {
        const int count = int(strlen(types));
        EXPECT_EQ(TVXsetcharattrarray(model, "VType", 0, count, types), 0);
        EXPECT_EQ(TVXupdatemodel(model), 0);
        EXPECT_EQ(settings_apply(TVXgetenv(model),
                                 {{"ScaleFlag", scaled}, {"Quad", extended ? 1 : -1}}),
                  0);
        EXPECT_EQ(SimplexOptimize(&s, model.model->body, model.model->env, {}), 0);
        EXPECT_EQ(simplex_go_live(s), 0);
    }
    ~Small() { simplex_free(s); }
    ResolveOutcome solve(const BoundChange &change, const NodeBasis *basis = nullptr)
    {
        ResolveOutcome out;
        EXPECT_EQ(simplex_resolve(s, {&change, 1, basis}, &out), 0);
        return out;
    }
    // The basis in which column `out` is nonbasic with this BasisStatus and `in` basic.
    NodeBasis exchanged(int out, int in, int status)
    {
        NodeBasis basis;
        EXPECT_EQ(simplex_save_basis(s, &basis), 0);
        basis.Statuses[out] = char(-status);
        basis.Statuses[in] = 0;
        return basis;
    }
};

} // namespace

// min x + w    x + w + 1e-10 y >= 5    y - z <= 0    0 <= x <= 1,  0 <= w <= 10,  0 <= y, z
TEST(Resolve, a_tiny_entry_of_a_variable_without_bound_allows_no_proof)
{
    const double none = LP_INFINITY;
    Small lp(lp_make({{1, 0, 1}, {1, 0, 10}, {0, 0, none}, {0, 0, none}},
                     {{{1, 1, 1e-10}, '>', 5}, {{0, 0, 1, -1}, '<', 0}}),
             0);
    EXPECT_EQ(lp.solve({1, 0, 0}).Status, TVX_OPTIMAL) << "with y = 4e10";
}

// min z    z - y = 0.3    0 <= y <= 10;  y far away and back
TEST(Resolve, large_steps_leave_no_rounding_errors)
{
    for (const double far : {1e9, 1e12, 1e15}) {
        Small lp(lp_make({{1}, {0, 0, 10}}, {{{1, -1}, '=', 0.3}}));
        EXPECT_EQ(lp.solve({1, far, far}).Status, TVX_OPTIMAL);
        const ResolveOutcome out = lp.solve({1, 0, 10});
        EXPECT_EQ(out.Status, TVX_OPTIMAL);
        EXPECT_NEAR(out.Value, 0.3, 1e-9) << far;
    }
}

// min x + y    x + y >= 4    0 <= x, y <= 10; y integer and 65536 times larger where the tolerance is to be small
TEST(Resolve, bounds_and_right_hand_sides_that_exclude_every_point)
{
    const double none = LP_INFINITY;
    for (const double unit : {1.0, 1.0 / 65536}) {
        const LpModel model =
            lp_make({{1, 0, 10}, {unit, 0, 10 / unit}}, {{{1, unit}, '>', 4}});
        Small lp(model, 1, "CI");
        for (const BoundChange &empty : {BoundChange{0, none, none},
                                         {0, -none, -none},
                                         {1, none, none},
                                         {0, 5, 4},
                                         {0, 4.001, 4}}) {
            EXPECT_EQ(lp.solve(empty).Status, TVX_INFEASIBLE) << empty.Lower;
            lp.solve({1, 0, 10 / unit});
            EXPECT_NEAR(lp.solve({0, 0, 10}).Value, 4, 1e-6);
        }
        // crossed by less than the tolerance
        EXPECT_NEAR(lp.solve({0, 4 + 1e-8, 4}).Value, 4, 1e-6);
        EXPECT_EQ(lp.solve({0, 0, 10}).Status, TVX_OPTIMAL);
        const int column = 0;
        const double one = 1;
        for (const double rhs : {none, -none}) {
            const LiveRow row = {1, &column, &one, '<', rhs};
            ASSERT_EQ(simplex_append_rows(lp.s, &row, 1), 0);
            EXPECT_EQ(lp.solve({0, 0, 10}).Status, rhs > 0 ? TVX_OPTIMAL : TVX_INFEASIBLE);
        }
    }
}

// min x    x >= 3 is appended: the old point satisfies the bound of the probe.
TEST(Resolve, strong_branching_knows_the_rows_appended_since_the_last_solve)
{
    Small lp(lp_make({{1, 0, 10}, {0, 0, 10}}, {{{1, 1}, '<', 12}}));
    EXPECT_EQ(lp.solve({1, 0, 10}).Value, 0);
    const int column = 0;
    const double minus = -1;
    const LiveRow row = {1, &column, &minus, '<', -3};
    ASSERT_EQ(simplex_append_rows(lp.s, &row, 1), 0);
    StrongBranch *branch = nullptr;
    ASSERT_EQ(strong_branch_open(lp.s, &branch), 0);
    BranchOutcome out;
    ASSERT_EQ(strong_branch_probe(branch, 1, BranchSide::DOWN, 5, 1e100, &out), 0);
    EXPECT_EQ(out.Value, 3);
    strong_branch_close(branch);
}

// min x + c g + 1e-7 k    x + y >= 4    g + z = k    0 <= x <= 10, 0 <= y <= 1, 0 <= g, 0 <= z <= 1e8; k is fixed at 1,
// then at 1e7, by a solve and by a probe. With z basic, g has the reduced cost c within the tolerance.
TEST(Resolve, reduced_costs_within_the_tolerance_do_not_move_the_optimum)
{
    for (const double c : {-5e-9, -2e-8}) {
        Small lp(
            lp_make({{1, 0, 10}, {0, 0, 1}, {c, 0, LP_INFINITY}, {0, 0, 1e8}, {1e-7, 1, 1}},
                    {{{1, 1}, '>', 4}, {{0, 0, 1, 1, -1}, '=', 0}}),
            0);
        lp.solve({4, 1, 1});
        const NodeBasis basis = lp.exchanged(2, 3, AT_LOWER);
        lp.solve({4, 1, 1}, &basis);
        const double optimum = 3 + (1e-7 + c) * 1e7;
        StrongBranch *branch = nullptr;
        lp.solve({4, 1, 1e7});
        ASSERT_EQ(strong_branch_open(lp.s, &branch), 0);
        BranchOutcome probe;
        ASSERT_EQ(strong_branch_probe(branch, 4, BranchSide::UP, 1e7, 1e100, &probe), 0);
        strong_branch_close(branch);
        EXPECT_NEAR(probe.Value, optimum, 1e-6) << c;
        EXPECT_NEAR(lp.solve({4, 1e7, 1e7}).Value, optimum, 1e-6) << c;
    }
}

// min x + c f    x + y >= 4    f + z = 1e5    0 <= x <= 10, 0 <= y <= 1, f free, 0 <= z <= 2e5
TEST(Resolve, a_free_variable_of_either_sign_counts)
{
    for (const double c : {5e-7, -5e-7}) {
        Small lp(
            lp_make({{1, 0, 10}, {0, 0, 1}, {c, -LP_INFINITY, LP_INFINITY}, {0, 0, 2e5}},
                    {{{1, 1}, '>', 4}, {{0, 0, 1, 1}, '=', 1e5}}),
            0);
        lp.solve({0, 0, 10});
        const NodeBasis basis = lp.exchanged(2, 3, AT_FREE);
        lp.s->OptTol = 1e-6; // the first solve has reduced it
        EXPECT_NEAR(lp.solve({0, 0, 10}, &basis).Value, 3 - 0.05, 1e-6) << c;
    }
}

// min x + 2 y    x + y >= 4    x + y <= 8    x + 2 y <= 100    0 <= x, y <= 10; x and y basic with the last slack, in a
// search that does not repair bases
TEST(Resolve, a_singular_basis_that_may_not_be_repaired_ends_with_the_solve)
{
    Small lp(lp_make({{1, 0, 10}, {2, 0, 10}},
                     {{{1, 1}, '>', 4}, {{1, 1}, '<', 8}, {{1, 2}, '<', 100}}));
    ASSERT_EQ(settings_apply(TVXgetenv(lp.model),
                             {{"TARV_PAR_STMPFIXES", 0}, {"TARV_PAR_EXACTNORM", 1}}),
              0);
    NodeBasis basis;
    ASSERT_EQ(simplex_save_basis(lp.s, &basis), 0);
    const char statuses[] = {0, 0, 1, 1, 0};
    std::copy_n(statuses, sizeof statuses, basis.Statuses.data);
    EXPECT_EQ(lp.solve({0, 0, 10}, &basis).Value, 4);
    EXPECT_EQ(lp.solve({0, 0, 3}).Value, 5);
}

// min x + c g    x + y >= 2    h <= g    0 <= x <= 10, 0 <= y <= 1, 0 <= g <= 1e5, 0 <= h <= 1; c becomes negative
TEST(Resolve, a_variable_may_cross_its_range_though_no_value_is_that_large)
{
    Small lp(lp_make({{1, 0, 10}, {0, 0, 1}, {1, 0, 1e5}, {0, 0, 1}},
                     {{{1, 1}, '>', 2}, {{0, 0, -1, 1}, '<', 0}}));
    simplex_change_cost(lp.s, 2, -1.5e-7);
    EXPECT_NEAR(lp.solve({0, 0, 10}).Value, 1 - 0.015, 1e-6);
}

// min 1e5 x + 2e-6 g    x + y + 5e-10 g >= 4    g + h <= 1e9    0 <= x <= 100, 0 <= y <= 10, 0 <= g <= 1e6; y <= 1
// makes x basic, and g is worth its cost then, although its entry is no pivot. Further rows keep the factors for some
// updates.
TEST(Resolve, entries_too_small_for_pivots_count_after_a_long_step)
{
    LpModel model = lp_make({{1e5, 0, 100}, {0, 0, 10}, {2e-6, 0, 1e6}, {0, 0, 1e9}},
                            {{{1, 1, 5e-10}, '>', 4}, {{0, 0, 1, 1}, '<', 1e9}});
    for (int k = 0; k < 200; k++)
        lp_add_row_entries(&model, {{0, 0.001}, {lp_add_var(&model, 0, 0, 1), 1}}, '<', 5);
    Small lp(model, 0);
    lp.solve({1, 0, 10});
    EXPECT_NEAR(lp.solve({1, 0, 1}).Value, 3e5 - 48, 0.01);
}

// min x    x - y = 0.3    0 <= y <= 10, in extended precision, then in double precision
TEST(Resolve, tolerances_of_extended_precision_end_with_it)
{
    Small lp(lp_make({{1}, {0, 0, 10}}, {{{1, -1}, '=', 0.3}}), 1, "", 1);
    NodeBasis basis;
    ASSERT_EQ(simplex_save_basis(lp.s, &basis), 0);
    lp.s->OptTol = lp.s->FeasTol = 1e-13; // as wrong signs and clean may leave them
    lp.s->Env->Quad = -1;
    EXPECT_EQ(lp.solve({1, 1, 10}, &basis).Status, TVX_OPTIMAL);
    EXPECT_EQ(lp.s->Quad, 0);
    EXPECT_GE(std::min(lp.s->OptTol, lp.s->FeasTol), 1e-9);
}
