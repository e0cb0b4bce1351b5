// model_gen_test.cpp -- the generators keep what they promise, by the exact judge
#include "support/model_gen.h"
#include "support/rational_lp.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

TEST(ModelGen, planted_answers_are_right)
{
    for (const FamilyRow &family : all_families()) {
        for (uint64_t seed = 0; seed < 40; seed++) {
            Dice dice(seed);
            const GeneratedLp g = family.generate(&dice, dice.range(3, 14));
            const RationalResult exact = rational_solve(&g.lp);
            ASSERT_NE(g.truth, Truth::UNKNOWN) << family.name;
            const LpStatus expected = g.truth == Truth::OPTIMAL      ? LpStatus::OPTIMAL
                                      : g.truth == Truth::INFEASIBLE ? LpStatus::INFEASIBLE
                                                                     : LpStatus::UNBOUNDED;
            ASSERT_EQ(exact.status, expected) << family.name << " seed " << seed << "\n"
                                              << lp_to_mps(&g.lp, "");
            if (g.has_value) {
                ASSERT_EQ(exact.value, g.value) << family.name << " seed " << seed;
            }
        }
    }
}

TEST(ModelGen, tiny_models_have_every_shape)
{
    int no_vars = 0, no_rows = 0, empty_row = 0, empty_col = 0, free_col = 0, fixed = 0,
        crossed = 0;
    int zero_obj = 0, both_infeasible = 0, maximise = 0;
    for (uint64_t seed = 0; seed < 5000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{});
        std::vector<int> row_length(lp.rhs.size(), 0);
        bool zero = true;
        for (size_t j = 0; j < lp.obj.size(); j++) {
            for (const LpEntry &e : lp.cols[j]) row_length[static_cast<size_t>(e.row)]++;
            empty_col += lp.cols[j].empty();
            free_col += lp_is_infinite(lp.lb[j]) && lp_is_infinite(lp.ub[j]);
            fixed += lp.lb[j] == lp.ub[j];
            crossed += lp.lb[j] > lp.ub[j];
            zero = zero && lp.obj[j] == 0;
        }
        for (const int length : row_length) empty_row += length == 0;
        no_vars += lp.obj.empty();
        no_rows += lp.rhs.empty();
        zero_obj += zero;
        maximise += lp.sense < 0;
        both_infeasible +=
            rational_solve(&lp).status == LpStatus::INFEASIBLE && rational_has_ray(&lp);
    }
    for (const int count : {no_vars, no_rows, empty_row, empty_col, free_col, fixed,
                            crossed, zero_obj, both_infeasible, maximise})
        EXPECT_GE(count, 20);
}

TEST(ModelGen, same_seed_same_model)
{
    Dice a(7), b(7), c(8);
    const LpModel first = gen_tiny(&a, TinyLimits{}), again = gen_tiny(&b, TinyLimits{});
    const LpModel other = gen_tiny(&c, TinyLimits{});
    EXPECT_TRUE(lp_same(&first, &again));
    EXPECT_FALSE(lp_same(&first, &other));
}
