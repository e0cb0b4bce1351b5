// starts_test.cpp -- where the methods begin: the primal's basis, and variables under the dual's perturbed costs; and
// long steps of the dual
#include "simplex/dual.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <cmath>
#include <numeric>

namespace
{
constexpr int VARS = 300, ROWS = 60, ROWS_OF_VAR = 12;

// Rows of sums that are at most 1, over columns that cost nothing, and apart from them min -y with y at most 1: y goes
// to its upper bound without a pivot, and nothing else has to move.
LpModel packing(double upper)
{
    LpModel lp;
    for (int i = 0; i < ROWS; i++) lp_add_row(&lp, '<', 1);
    for (int j = 0; j < VARS; j++) {
        lp_add_var(&lp, 0, 0, upper);
        for (int k = 0; k < ROWS_OF_VAR; k++) lp_set_entry(&lp, (j + k * k) % ROWS, j, 1);
    }
    lp_add_var(&lp, -1, 0, 1);
    return lp;
}

struct Starts : ModelTest {
    sopt *solved_by(SimplexMethod method, const LpModel &lp, const Settings &settings = {})
    {
        load(lp, settings);
        EXPECT_EQ(simplex_alone(model, {.Method = method}), 0);
        return model->lp.simplex;
    }
    // The record of a primal run that ends before its first iteration.
    const sopt *begun(const LpModel &lp)
    {
        return solved_by(METHOD_PRIMAL, lp, {{"IterationLimit", 0}, {"ScaleFlag", 0}});
    }
    double dual_iterations(const LpModel &lp, double optimum)
    {
        const sopt *s = solved_by(METHOD_DUAL, lp);
        EXPECT_EQ(s->Status, SIMPLEX_OPTIMAL);
        EXPECT_NEAR(s->Obj, optimum, 1e-9);
        return s->NPvt;
    }
};
using PrimalStart = Starts;
using DualStart = Starts;
using DualRatio = ModelTest;
} // namespace

// ---- The primal: a basis that is one, and no worse than the slacks by orders of magnitude ----

TEST_F(PrimalStart, makes_a_basis_that_needs_no_repair)
{
    int improved = 0;
    for (uint64_t seed = 0; seed < 60; seed++) {
        Dice dice(seed + 5);
        const FamilyRow &family = dice.pick(all_families());
        const sopt *s = begun(family.generate(&dice, dice.range(5, 40)).lp);
        int basics = 0;
        for (int j = 0; j < s->NumVars; j++) {
            if (!is_basic(s, j)) continue;
            ASSERT_EQ(s->BasisHead[s->VStat[j]], j) << family.name;
            basics++;
        }
        EXPECT_EQ(basics, s->NumRows);
        EXPECT_EQ(s->SingularCount, 0) << family.name << " seed " << seed;
        improved += !is_slack_basis(s);
    }
    EXPECT_GT(improved, 10);
}

TEST_F(PrimalStart, gives_up_a_basis_whose_values_explode)
{
    LpModel lp; // 0.1 x_0 = 1, 0.1 x_i = x_i-1, x_6 <= 5
    for (int i = 0; i < 7; i++) lp_add_var(&lp, 0, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 0.1}}, '=', 1);
    for (int i = 1; i < 7; i++) lp_add_row_entries(&lp, {{i, 0.1}, {i - 1, -1}}, '=', 0);
    lp_add_row_entries(&lp, {{6, 1}}, '<', 5);
    EXPECT_TRUE(is_slack_basis(begun(lp)));
}

// ---- The dual ----

// Perturbed costs of basic slacks would give the columns reduced costs below zero: boxed ones would begin at their
// upper bounds, all rows violated, and others would ask for a phase 1. With sum x + t = 50 and t basic from the start
// all x cost as much as t, so their reduced costs are zero though their costs are not.
TEST_F(DualStart, perturbation_goes_by_reduced_costs_and_moves_no_column_to_the_other_bound)
{
    for (const double upper : {1.0, LP_INFINITY})
        EXPECT_EQ(dual_iterations(packing(upper), -1), 0) << "upper bound " << upper;
    LpModel lp = packing(1);
    lp_add_row(&lp, '=', 50);
    for (int j = 0; j < VARS; j++) {
        lp.obj[j] = -1;
        lp_set_entry(&lp, ROWS, j, 1);
    }
    lp_set_entry(&lp, ROWS, lp_add_var(&lp, -1, 0, LP_INFINITY), 1);
    EXPECT_EQ(dual_iterations(lp, -51), 0);
}

// Whenever a run stalls, and each time further.
TEST_F(DualStart, perturbation_of_a_stalled_run_moves_reduced_costs_away_from_zero)
{
    sopt *s = solved_by(METHOD_DUAL, packing(1));
    int moved = 0;
    for (int j = 0; j < s->NumVars; j++) s->Double->Cbar[j] = 0;
    for (int round = 0; round < 2; round++) {
        const Array<double> &cbar = s->Double->Cbar;
        const double before = std::fabs(cbar[0]);
        dual_perturb_costs(s, s->Double);
        EXPECT_GT(std::fabs(cbar[0]), before);
        for (int j = 0; j < s->NumVars; j++) {
            moved += cbar[j] != 0;
            EXPECT_GE(s->VStat[j] == AT_UPPER ? -cbar[j] : cbar[j], 0) << j;
        }
    }
    EXPECT_GT(moved, VARS);
}

// min c x with the sum of all x at least `need`, x between 0 and 1: the cheapest are taken, and one step passes them
// all.
TEST_F(DualRatio, a_step_over_thousands_of_breakpoints_ends_at_the_right_one)
{
    for (const int values : {2, 50, 1000000}) { // many ties, some, none
        Dice dice(values);
        constexpr int COSTS = 5000, NEED = 3000;
        LpModel lp;
        std::vector<double> cost;
        std::vector<std::pair<int, double>> row;
        for (int j = 0; j < COSTS; j++) {
            cost.push_back(dice.range(1, values));
            row.push_back({lp_add_var(&lp, cost.back(), 0, 1), 1});
        }
        lp_add_row_entries(&lp, row, '>', NEED);
        load(lp, {{"Presolve", 0}});
        std::sort(cost.begin(), cost.end());
        EXPECT_EQ(objective(), std::accumulate(cost.begin(), cost.begin() + NEED, 0.0));
        EXPECT_LE(dbl("IterCount"), 10);
    }
}
