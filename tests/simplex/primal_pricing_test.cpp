// Every pricing of the primal finds the same answers; the most degenerate models end without perturbation too.
#include "simplex/sopt.h"
#include "support/lp_tarvex.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

namespace
{
struct Answer {
    int status = 0;
    double value = 0;
    double iterations = 0;
};

Answer solve_primal(TVXenv *env, const LpModel *lp, int pricing, int partial,
                    double perturb)
{
    const TestModel model(lp_load(env, lp));
    TVXenv *own = TVXgetenv(model);
    EXPECT_EQ(TVXsetintparam(own, "SimplexPricing", pricing), 0);
    EXPECT_EQ(TVXsetintparam(own, "TARV_PAR_PRIMALPARTIAL", partial), 0);
    EXPECT_EQ(TVXsetdblparam(own, "PerturbValue", perturb), 0);
    EXPECT_EQ(TVXsetdblparam(own, "IterationLimit", 50000), 0);
    EXPECT_EQ(SimplexOptimize(model, METHOD_PRIMAL, nullptr, nullptr, nullptr, nullptr), 0);
    const sopt *s = model.model->simplex;
    return {s->Status, s->Obj, s->NPvt};
}

// More columns than rows by far: the automatic choice begins with partial pricing.
LpModel wide_covering(Dice *dice, int rows, int columns)
{
    LpModel lp;
    lp.senses.assign(static_cast<size_t>(rows), '>');
    for (int i = 0; i < rows; i++) lp.rhs.push_back(dice->range(1, 9));
    for (int j = 0; j < columns; j++) {
        lp.obj.push_back(dice->range(1, 50));
        lp.lb.push_back(0);
        lp.ub.push_back(dice->chance(30) ? dice->range(1, 3) : LP_INFINITY);
        std::vector<LpEntry> column;
        for (int i = 0; i < rows; i++)
            if (dice->chance(40)) column.push_back({i, double(dice->range(1, 5))});
        lp.cols.push_back(column);
    }
    for (int i = 0; i < rows; i++) { // one column that covers each row without limit
        lp.obj.push_back(100);
        lp.lb.push_back(0);
        lp.ub.push_back(LP_INFINITY);
        lp.cols.push_back({{i, 1.0}});
    }
    return lp;
}
} // namespace

TEST(PrimalPricing, every_kind_finds_the_same_answer)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 40; seed++) {
        Dice dice(seed + 77);
        const FamilyRow &family = dice.pick(all_families());
        const LpModel lp = seed % 4 == 0 ? wide_covering(&dice, 8, 300)
                                         : family.generate(&dice, dice.range(5, 40)).lp;
        const Answer first = solve_primal(env.env, &lp, -1, 0, 0.0002);
        ASSERT_NE(first.status, SIMPLEX_ITERATION_LIMIT) << "seed " << seed;
        for (const int kind : {1, 2, 3, 10, 20, 30}) { // 10 to 30: the partial kinds
            const Answer other =
                solve_primal(env.env, &lp, kind < 10 ? kind : 0, kind / 10, 0.0002);
            ASSERT_EQ(other.status, first.status)
                << family.name << " seed " << seed << " kind " << kind;
            if (first.status != SIMPLEX_OPTIMAL) continue;
            EXPECT_NEAR(other.value, first.value, 1e-6 * (1 + std::abs(first.value)))
                << family.name << " seed " << seed << " kind " << kind;
        }
    }
}

TEST(PrimalPricing, degenerate_models_end_without_perturbation)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 12; seed++) {
        Dice dice(seed + 5);
        const LpModel lp = (seed % 2 ? gen_assignment(&dice, 25) : gen_cone(&dice, 40)).lp;
        const Answer with = solve_primal(env.env, &lp, -1, 0, 0.0002);
        for (const int pricing : {-1, 0, 1, 2, 3}) {
            const Answer without = solve_primal(env.env, &lp, pricing, 0, 0);
            ASSERT_EQ(without.status, with.status) << "seed " << seed << ' ' << pricing;
            if (with.status != SIMPLEX_OPTIMAL) continue;
            EXPECT_NEAR(without.value, with.value, 1e-6 * (1 + std::abs(with.value)));
        }
    }
}
