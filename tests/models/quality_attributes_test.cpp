// quality_attributes_test.cpp -- the quality attributes against an independent computation, wherever a solve stopped
//
// Tiny models of every shape, solved to the end or stopped after a few iterations, where nothing is optimal or even
// feasible. The published models of collection_test are measured too.
#include "support/lp_tarvex.h"
#include "support/model_gen.h"
#include "support/quality_check.h"
#include <gtest/gtest.h>

TEST(QualityAttributes, agree_with_an_independent_computation_wherever_the_solve_stopped)
{
    static constexpr uint64_t MODELS = 3000;
    const TestEnv env;
    int stopped = 0, optimal = 0;
    for (uint64_t seed = 0; seed < MODELS && !testing::Test::HasFailure(); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        TinyLimits limits;
        limits.scaled_percent = 50;
        const LpModel lp = gen_tiny(&dice, limits);
        const TestModel model(lp_load(env.env, &lp));
        ASSERT_NE(model.model, nullptr);
        const bool scaled = dice.chance(30);
        ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "Presolve", 0),
                  0); // or there is no point
        ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "ScaleFlag", scaled), 0);
        ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "LPMethod", dice.range(0, 1)), 0);
        const double limit = dice.chance(70) ? dice.range(0, 4) : 1e100;
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", limit), 0);
        LpSolution solution;
        ASSERT_EQ(lp_solve(model, &solution), 0);
        if (solution.status != TVX_OPTIMAL && solution.status != TVX_ITERATION_LIMIT)
            continue;
        (solution.status == TVX_OPTIMAL ? optimal : stopped)++;
        ASSERT_EQ(lp_read_point(model, &solution), 0);
        EXPECT_EQ(check_quality(model, &lp, &solution,
                                scaled ? QualityScaling::SCALED : QualityScaling::UNSCALED),
                  std::vector<std::string>{});
    }
    EXPECT_GT(optimal, 200);
    EXPECT_GT(stopped, 200);
}
