// two_rows_test.cpp -- equations cancel entries of other rows; random models full of parallel lines
#include "support/dice.h"
#include "support/presolve_try.h"
#include "support/solve_judge.h"
#include <gtest/gtest.h>

TEST(TwoRows, an_equation_takes_its_entries_out_of_other_rows)
{
    const TestEnv env;
    for (const char sense : {'<', '>', '='})
        for (const double cost : {1.0, -1.0}) {
            LpModel lp;
            for (int j = 0; j < 5; j++) lp_add_var(&lp, cost * (j + 1), 0, 4);
            lp_add_row_entries(&lp, {{0, 1}, {1, 2}, {2, -1}}, '=', 3);
            lp_add_row_entries(&lp, {{0, 2}, {1, 4}, {2, -2}, {3, 1}, {4, 1}}, sense, 8);
            lp_add_row_entries(&lp, {{0, 1}, {3, -1}, {4, 2}}, '<', 5); // shares one: stays
            const PresolveTry t = presolve_try(env.env, &lp, {pre_two_rows});
            EXPECT_EQ(t.faults, "") << sense << cost;
            EXPECT_EQ(t.nonzeros, 8);
        }
}

TEST(TwoRows, sums_that_would_lose_digits_are_not_formed)
{
    const TestEnv env;
    for (const double third : {2 + 1e-6, 2 + 1e-9}) {
        LpModel lp;
        for (int j = 0; j < 4; j++) lp_add_var(&lp, -1, 0, 4);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '=', 3);
        lp_add_row_entries(&lp, {{0, 2}, {1, 2}, {2, third}, {3, 1}}, '<', 8);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_two_rows});
        EXPECT_EQ(t.nonzeros, 7);
        EXPECT_EQ(t.faults, "");
    }
}

// Multiples of lines of a small core, slack columns, bounds of all kinds.
static LpModel full_of_multiples(Dice *dice)
{
    const int cols = dice->range(1, 4), rows = dice->range(1, 4);
    LpModel lp;
    lp.sense = dice->chance(80) ? 1 : -1;
    for (int j = 0; j < cols; j++) lp_add_var(&lp, dice->range(-4, 8), 0, LP_INFINITY);
    for (int i = 0; i < rows; i++) {
        std::vector<std::pair<int, double>> entries;
        for (int j = 0; j < cols; j++) entries.emplace_back(j, dice->range(-2, 2));
        lp_add_row_entries(&lp, entries, '<', 0);
    }
    for (int more = dice->range(0, 4); more > 0; more--) {
        const int j = dice->range(0, lp.num_vars() - 1), f = dice->nonzero(2);
        const double cost = f * lp.obj[static_cast<size_t>(j)];
        const int k = lp_add_var(&lp, cost + (dice->chance(50) ? dice->range(-2, 2) : 0), 0,
                                 LP_INFINITY);
        for (const LpEntry &e : std::vector<LpEntry>(lp.cols[static_cast<size_t>(j)]))
            lp_set_entry(&lp, e.row, k, f * e.value);
    }
    for (int more = dice->range(0, 4); more > 0; more--) {
        const int i = dice->range(0, lp.num_rows() - 1), f = dice->nonzero(2);
        const int k = lp_add_row(&lp, '<', 0);
        for (int j = 0; j < lp.num_vars(); j++)
            lp_set_entry(&lp, k, j, f * lp_get_entry(&lp, i, j));
    }
    for (int more = dice->range(0, 3); more > 0; more--)
        lp_set_entry(&lp, dice->range(0, lp.num_rows() - 1),
                     lp_add_var(&lp, dice->range(0, 2), 0, LP_INFINITY), dice->nonzero(2));
    std::vector<double> x;
    for (size_t j = 0; j < lp.obj.size(); j++) {
        lp.lb[j] = dice->chance(60) ? 0 : dice->range(-3, 1);
        x.push_back(lp.lb[j] + dice->range(0, 2));
        if (dice->chance(50)) lp.ub[j] = x[j] + dice->range(0, 3);
        if (dice->chance(20)) lp.lb[j] = -LP_INFINITY;
    }
    const std::vector<long double> activity = lp_activity(&lp, x);
    for (size_t i = 0; i < lp.rhs.size(); i++) {
        lp.senses[i] = dice->pick(std::vector<char>{'<', '>', '=', '='});
        lp.rhs[i] = static_cast<double>(activity[i]) + (dice->chance(3) ? 1 : 0);
    }
    return lp;
}

TEST(TwoRows, models_full_of_multiples_have_the_answer_of_the_exact_judge)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed + 777);
        const LpModel lp = full_of_multiples(&dice);
        ASSERT_EQ(solve_and_judge(env.env, &lp, {{"Presolve", 2}}), "")
            << lp_to_mps(&lp, std::to_string(seed));
    }
}
