// A start from any point ends in a vertex with the right answer.
#include "simplex/sopt.h"
#include "support/lp_tarvex.h"
#include "support/structured_gen.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace
{
// A point within the bounds, on them here and there; free variables anywhere.
std::vector<double> draw_point(const LpModel *lp, Dice *dice)
{
    std::vector<double> x;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const double low = lp_is_infinite(lp->lb[j])
                               ? (lp_is_infinite(lp->ub[j]) ? -10 : lp->ub[j] - 10)
                               : lp->lb[j];
        const double high = lp_is_infinite(lp->ub[j]) ? low + 10 : lp->ub[j];
        x.push_back(dice->chance(30)   ? low
                    : dice->chance(20) ? std::clamp(0.0, low, high)
                                       : dice->real(low, high));
    }
    return x;
}

int superbasics_left(const sopt *s)
{
    int count = 0;
    for (int j = 0; j < s->NumVars; j++) count += is_superbasic(s, j);
    return count;
}
} // namespace

TEST(PrimalSuper, a_start_from_a_point_ends_in_a_vertex_with_the_same_answer)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 60; seed++) {
        Dice dice(seed + 31);
        const FamilyRow &family = dice.pick(all_families());
        const LpModel lp = family.generate(&dice, dice.range(4, 40)).lp;
        const TestModel plain(lp_load(env.env, &lp)), started(lp_load(env.env, &lp));
        ASSERT_TRUE(plain.model && started.model);
        ASSERT_EQ(SimplexOptimize(plain, METHOD_DUAL, nullptr, nullptr, nullptr, nullptr),
                  0);
        const std::vector<double> x = draw_point(&lp, &dice);
        ASSERT_EQ(
            SimplexOptimize(started, METHOD_DUAL, nullptr, nullptr, x.data(), nullptr), 0);
        const sopt *a = plain.model->simplex, *b = started.model->simplex;
        ASSERT_EQ(a->Status, b->Status) << family.name << " seed " << seed;
        if (b->Status == SIMPLEX_INFEASIBLE) continue;
        EXPECT_EQ(superbasics_left(b), 0) << family.name << " seed " << seed;
        EXPECT_EQ(b->Superbasics, 0) << family.name << " seed " << seed;
        if (b->Status != SIMPLEX_OPTIMAL) continue;
        EXPECT_NEAR(a->Obj, b->Obj, 1e-6 * (1 + std::abs(a->Obj)))
            << family.name << " seed " << seed;
    }
}

TEST(PrimalSuper, a_limit_amid_the_pushes_leaves_a_start_for_the_next_solve)
{
    const TestEnv env;
    Dice dice(5);
    const LpModel lp = gen_blending(&dice, 30).lp;
    const TestModel plain(lp_load(env.env, &lp)), started(lp_load(env.env, &lp));
    ASSERT_EQ(SimplexOptimize(plain, METHOD_DUAL, nullptr, nullptr, nullptr, nullptr), 0);
    const std::vector<double> x = draw_point(&lp, &dice);
    ASSERT_EQ(TVXsetdblparam(TVXgetenv(started), "IterationLimit", 3), 0);
    ASSERT_EQ(SimplexOptimize(started, METHOD_AUTO, nullptr, nullptr, x.data(), nullptr),
              0);
    ASSERT_EQ(started.model->simplex->Status, SIMPLEX_ITERATION_LIMIT);
    EXPECT_GT(superbasics_left(started.model->simplex), 0);
    ASSERT_EQ(TVXsetdblparam(TVXgetenv(started), "IterationLimit", 1e9), 0);
    ASSERT_EQ(SimplexOptimize(started, METHOD_AUTO, nullptr, nullptr, nullptr, nullptr), 0);
    const sopt *a = plain.model->simplex, *b = started.model->simplex;
    ASSERT_EQ(a->Status, b->Status);
    EXPECT_EQ(superbasics_left(b), 0);
    EXPECT_NEAR(a->Obj, b->Obj, 1e-6 * (1 + std::abs(a->Obj)));
}
