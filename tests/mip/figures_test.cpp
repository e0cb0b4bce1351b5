// figures_test.cpp -- small calculations of a search: grid of objectives, pseudo-costs, packed bases, values of sets
#include "mip/objective_grid.h"
#include "mip/packed_basis.h"
#include "mip/pseudo_cost.h"
#include "mip/semi.h"
#include "mip/sos_window.h"
#include "support/inside.h"
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

// Multiples of one number have their greatest common divisor, times that number, as step.
TEST(ObjectiveGrid, step_is_the_greatest_of_which_all_costs_are_multiples)
{
    Dice dice(1);
    for (int round = 0; round < 3000; round++) {
        const double unit = dice.pick<double>({1, 0.1, 1. / 3, 0.25, 100, 1e-5, 0.7});
        std::vector<double> costs;
        int divisor = 0;
        for (int k = dice.range(1, 6); k > 0; k--) {
            const int multiple = dice.range(1, 60) * dice.pick<int>({1, 1, 4});
            divisor = std::gcd(divisor, multiple);
            costs.push_back(multiple * unit);
        }
        const double step = common_step(costs.data(), static_cast<int>(costs.size()));
        ASSERT_NEAR(step / (divisor * unit), 1, 1e-11) << unit;
    }
    const std::vector<double> none[] = {
        {1, std::sqrt(2)}, {1, 1e-9}, {1, 1 + 1e-7}, {1e10, 1}, {2, 3.14159265358979}};
    for (const std::vector<double> &costs : none)
        EXPECT_EQ(common_step(costs.data(), static_cast<int>(costs.size())), 0) << costs[1];
    EXPECT_EQ(common_step(nullptr, 0), 0);
}

// Of the values of the grid those that are better stay open, and nothing beyond the next of them does.
TEST(ObjectiveGrid, prune_values_leave_exactly_what_is_better)
{
    Dice dice(2);
    for (int round = 0; round < 3000; round++) {
        const ObjectiveGrid grid = {dice.pick<double>({1, 0.1, 1. / 3, 250, 1e-3}),
                                    dice.pick<double>({0, 0.5, -7, 1e3})};
        const int k = dice.range(-2000, 2000);
        const double value = grid.Constant + k * grid.Step,
                     better = grid.Constant + (k - 1) * grid.Step;
        const double prune = prune_value_of_incumbent(grid, value);
        ASSERT_LT(better + 1e-9 * (1 + std::fabs(better)), prune);
        ASSERT_LT(prune, value);
        ASSERT_LT(prune, better + 0.1 * grid.Step + 2e-6 * (1 + std::fabs(value)));
        // a cutoff on the grid, as computed another way, and one between two values
        const double between = dice.real(0.01, 0.99);
        ASSERT_NEAR(prune_value_of_cutoff(grid, value * (1 + 1e-15)), prune,
                    1e-9 * (1 + std::fabs(value)));
        const double above = prune_value_of_cutoff(grid, value + between * grid.Step);
        ASSERT_LT(value, above);
        ASSERT_LT(above, value + between * grid.Step);
        // bounds rise to the next value, but not over one by rounding
        ASSERT_NEAR(rounded_bound(grid, value - between * grid.Step * 0.99), value,
                    1e-9 * (1 + std::fabs(value)));
        ASSERT_NEAR(rounded_bound(grid, value + 1e-9), value,
                    1e-9 * (1 + std::fabs(value)));
    }
    for (const double step : {0., CONSTANT_OBJECTIVE}) {
        const ObjectiveGrid none = {step, 3};
        EXPECT_EQ(prune_value_of_incumbent(none, 9), 9 - 10 * 1e-10);
        EXPECT_EQ(prune_value_of_cutoff(none, -9), -9 - 10 * 1e-10);
        EXPECT_EQ(rounded_bound(none, 8.3), 8.3);
        EXPECT_EQ(prune_value_of_incumbent(none, 1e100), 1e100);
        EXPECT_EQ(prune_value_of_cutoff(none, 1e100), 1e100);
    }
    EXPECT_EQ(rounded_bound({1, 0}, -1e100), -1e100);
}

TEST(ObjectiveGrid, is_that_of_a_body_whose_costs_are_on_integers_only)
{
    const TestEnv env;
    const auto step = [&](std::vector<double> costs, std::vector<char> types) {
        LpModel lp;
        for (size_t j = 0; j < costs.size(); j++) lp_add_var(&lp, costs[j], 0, 1, types[j]);
        lp.objcon = 2;
        const TestModel model(lp_load(env.env, &lp));
        const std::vector<char> none(costs.size(), 0);
        const ObjectiveGrid grid = objective_grid(model->body, none.data());
        EXPECT_EQ(grid.Constant, 2);
        return grid.Step;
    };
    EXPECT_EQ(step({4, -6, 0}, {'B', 'I', 'C'}), 2);
    EXPECT_EQ(step({4, 6, 1e-11}, {'B', 'I', 'C'}), 2);
    EXPECT_EQ(step({4, 6, 2}, {'B', 'I', 'C'}), 0);
    EXPECT_EQ(step({4, 6, 2}, {'B', 'I', 'S'}), 0);
    EXPECT_EQ(step({-7.5}, {'I'}), 7.5);
    EXPECT_EQ(step({0, 0}, {'I', 'C'}), CONSTANT_OBJECTIVE);
}

TEST(PseudoCost, estimates_are_means_of_the_gains_per_unit_that_were_observed)
{
    PseudoCostTable table;
    ASSERT_EQ(pseudo_alloc(&table, 3), 0);
    Dice dice(3);
    std::vector<double> seen[3][2];
    for (int round = 0; round < 500; round++) {
        const int j = dice.range(0, 1), way = dice.range(0, 1); // never column 2
        const double step = dice.real(0.05, 1), gain = dice.range(-3, 30) * 0.5;
        pseudo_update(&table, j, way ? step : -step, gain);
        seen[j][way].push_back(std::max(gain, 1e-10) / step);
        for (const int k : {0, 1, 2}) {
            double mean[2] = {0, 0};
            for (const int w : {0, 1})
                for (const double one : seen[k][w])
                    mean[w] += one / static_cast<double>(seen[k][w].size());
            const GainEstimate gains = pseudo_estimate(&table, k, 0.3);
            ASSERT_NEAR(gains.Down, 0.3 * mean[0], 1e-9 * (1 + mean[0]));
            ASSERT_NEAR(gains.Up, 0.7 * mean[1], 1e-9 * (1 + mean[1]));
            ASSERT_EQ(pseudo_observations(&table, k),
                      std::min(seen[k][0].size(), seen[k][1].size()));
        }
    }
    table.Sum[1].data[2] =
        8; // known beforehand: the first observation counts if it is larger
    pseudo_update(&table, 2, 0.5, 1);
    EXPECT_EQ(pseudo_estimate(&table, 2, 0).Up, 8);
}

TEST(PackedBasis, comes_back_but_for_fixed_columns_and_the_ends_of_rows)
{
    Dice dice(4);
    for (int round = 0; round < 300; round++) {
        NodeBasis basis, back;
        basis.NumCols = dice.range(0, 70);
        basis.NumRows = dice.range(basis.NumCols == 0, 70);
        ASSERT_EQ(array_resize(&basis.Statuses, basis.NumCols + basis.NumRows), 0);
        for (char &status : basis.Statuses) status = static_cast<char>(dice.range(0, 4));
        uint32_t *packed = nullptr;
        ASSERT_EQ(basis_pack(&basis, &packed), 0);
        ASSERT_EQ(basis_unpack(packed, basis.NumCols, basis.NumRows, &back), 0);
        MemFree(packed);
        ASSERT_EQ(back.Weights.size, basis.NumRows);
        ASSERT_EQ(packed_words(basis.NumCols, basis.NumRows),
                  (2 * basis.NumCols + basis.NumRows + 31) / 32);
        for (int k = 0; k < basis.NumCols + basis.NumRows; k++) {
            const int status = basis.Statuses[k];
            const bool is_row = k >= basis.NumCols;
            ASSERT_EQ(back.Statuses[k], status == 4 || (is_row && status) ? 1 : status);
        }
    }
}

// Whatever the LP says of an integer that is whole within a tolerance, both sides of a branch leave something.
TEST(NearInteger, divides_between_the_bounds)
{
    for (const double x : {0., -1e-7, 1e-7, 1., 1 - 1e-7, 1 + 1e-7, 2., 3., 3 + 1e-7})
        for (const auto &[lower, upper] :
             {std::pair{0., 1.}, {0., 3.}, {-1e9, 1e9}, {2., 3.}, {3., 4.}}) {
            const double value = near_integer(x, lower, upper);
            EXPECT_GE(std::floor(value), lower) << x;
            EXPECT_LE(std::floor(value) + 1, upper) << x;
            const bool inside = x > lower && x < upper;
            EXPECT_LE(inside ? std::fabs(value - x) : 0, 0.5 + 1e-6);
        }
}

TEST(Semi, violation_is_the_way_to_the_nearest_allowed_value)
{
    const SemiColumn plus = {0, 1, 2, 5, SemiKind{}, false},
                     minus = {0, 1, -5, -2, SemiKind{}, false};
    for (const double x : {-1., 0., 0.5, 1., 1.5, 2., 4., 5., 6.}) {
        const double expected = x < 1 ? std::fabs(x) : x < 2 ? 2 - x : std::max(0., x - 5);
        EXPECT_EQ(semi_violation(plus, x), expected) << x;
        EXPECT_EQ(semi_violation(minus, -x), expected) << x;
    }
}

TEST(SosWindow, spans_what_is_not_zero)
{
    const TestEnv env;
    LpModel lp;
    for (int j = 0; j < 6; j++) lp_add_var(&lp, 1, -1, 1);
    lp.sets = {{1, {0}}, {2, {5, 1, 3, 2}}};
    const TestModel model(lp_load(env.env, &lp));
    MIPState state;
    state.Env = env.env;
    state.Body = model->body;
    const double tiny = 0.9 * env.env->IntFeasTol;
    const auto window = [&](std::vector<double> members, bool branch = false) {
        const auto value = [&](int j) {
            for (size_t k = 0; k < members.size(); k++)
                if (lp.sets[1].members[k] == j) return members[k];
            return 9.; // not a member
        };
        const SosWindow w =
            branch ? sos_branch_window(&state, 1, value) : sos_window(&state, 1, value);
        const int beg = model->body->sosbeg.data[1];
        return w.First < 0 ? std::pair{-1, -1} : std::pair{w.First - beg, w.Last - beg};
    };
    using Span = std::pair<int, int>;
    EXPECT_EQ(window({0, 0, 0, 0}), Span(-1, -1));
    EXPECT_EQ(window({0, -1, 0, 0}), Span(1, 1));
    EXPECT_EQ(window({1, 0, 0, -1}), Span(0, 3));
    EXPECT_EQ(window({tiny, 1, 1, -tiny}), Span(1, 2));
    // a branch sees what is below the tolerance, but not where larger members violate the constraint
    EXPECT_EQ(window({tiny, 1, 1, -tiny}, true), Span(0, 3));
    EXPECT_EQ(window({tiny, 1, 1, 1}, true), Span(1, 3));
    EXPECT_EQ(window({1e-13, 1, 1, 0}, true), Span(1, 2));
    for (const auto &[first, last, one, two] : {std::tuple{-1, -1, true, true},
                                                {3, 3, true, true},
                                                {3, 4, false, true},
                                                {3, 5, false, false}}) {
        EXPECT_EQ((SosWindow{first, last}.fits(1)), one);
        EXPECT_EQ((SosWindow{first, last}.fits(2)), two);
    }
}
