// The basis from which the primal starts is a basis, and no worse than the slacks by orders of magnitude.
#include "simplex/sopt.h"
#include "support/inside.h"
#include "support/lp_tarvex.h"
#include "support/settings.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

namespace
{
// The record of a primal run that ends before its first iteration.
const sopt *start(const TestModel &model)
{
    EXPECT_EQ(settings_apply(TVXgetenv(model), {{"IterationLimit", 0}, {"ScaleFlag", 0}}),
              0);
    EXPECT_EQ(simplex_alone(model, {.Method = METHOD_PRIMAL}), 0);
    return model.model->lp.simplex;
}
} // namespace

TEST(PrimalStart, makes_a_basis_that_needs_no_repair)
{
    const TestEnv env;
    int improved = 0;
    for (uint64_t seed = 0; seed < 60; seed++) {
        Dice dice(seed + 5);
        const FamilyRow &family = dice.pick(all_families());
        const LpModel lp = family.generate(&dice, dice.range(5, 40)).lp;
        const TestModel model(lp_load(env.env, &lp));
        const sopt *s = start(model);
        int basics = 0;
        for (int j = 0; j < s->NumVars; j++) {
            if (!is_basic(s, j)) continue;
            ASSERT_EQ(s->BasisHead.data[s->VStat.data[j]], j) << family.name;
            basics++;
        }
        EXPECT_EQ(basics, s->NumRows);
        EXPECT_EQ(s->SingularCount, 0) << family.name << " seed " << seed;
        improved += !is_slack_basis(s);
    }
    EXPECT_GT(improved, 10);
}

TEST(PrimalStart, gives_up_a_basis_whose_values_explode)
{
    LpModel lp; // 0.1 x_0 = 1, 0.1 x_i = x_i-1, x_6 <= 5
    for (int i = 0; i < 7; i++) lp_add_var(&lp, 0, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 0.1}}, '=', 1);
    for (int i = 1; i < 7; i++) lp_add_row_entries(&lp, {{i, 0.1}, {i - 1, -1}}, '=', 0);
    lp_add_row_entries(&lp, {{6, 1}}, '<', 5);
    const TestEnv env;
    const TestModel model(lp_load(env.env, &lp));
    EXPECT_TRUE(is_slack_basis(start(model)));
}
