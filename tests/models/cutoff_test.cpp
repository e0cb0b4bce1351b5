// cutoff_test.cpp -- a cutoff ends a solve only when no point is better, on tiny LPs judged exactly
#include "support/model_gen.h"
#include "support/rational_lp.h"
#include "support/settings.h"
#include "support/solve_judge.h"
#include <cmath>
#include <gtest/gtest.h>

namespace
{
constexpr double CLOSE =
    1e-6; // a cutoff nearer to the optimum, relatively, may go either way

// In the form of a minimisation.
void judge(const LpModel &lp, const RationalResult &truth, double cutoff,
           const LpSolution &solution)
{
    if (truth.status == LpStatus::UNBOUNDED) {
        EXPECT_NE(solution.status, TVX_CUTOFF);
    } else if (truth.status == LpStatus::OPTIMAL) {
        const double optimum = lp.sense * truth.value.get_d(),
                     size = CLOSE * (1 + std::fabs(optimum));
        if (optimum < cutoff - size) {
            EXPECT_EQ(judge_exact(&lp, &truth, true, &solution), "");
        }
        if (optimum > cutoff + size) {
            EXPECT_EQ(solution.status, TVX_CUTOFF);
        }
    }
}
} // namespace

TEST(Cutoff, ends_a_solve_only_when_no_point_is_better)
{
    const int runs = campaign("TARVEX_CUTOFF_RUNS", 400),
              first = campaign("TARVEX_CUTOFF_SEED", 1);
    TestEnv env;
    for (int seed = first; seed < first + runs && !testing::Test::HasFailure(); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        const LpModel lp = gen_tiny(&dice, {});
        const RationalResult truth = rational_solve(&lp);
        const double optimum =
            truth.status == LpStatus::OPTIMAL ? truth.value.get_d() : dice.range(-9, 9);
        for (const double step : {-1.0, -1e-3, 0.0, 1e-3, 1.0}) {
            const double cutoff = optimum + step * (1 + std::fabs(optimum));
            for (const int method : {0, 1})
                for (const int presolve : {-1, 0}) {
                    TestModel model(lp_load(env.env, &lp));
                    ASSERT_EQ(settings_apply(TVXgetenv(model), {{"Cutoff", cutoff},
                                                                {"LPMethod", method},
                                                                {"Presolve", presolve}}),
                              0);
                    LpSolution solution;
                    ASSERT_EQ(lp_solve(model, &solution), 0);
                    SCOPED_TRACE(testing::Message() << "cutoff " << cutoff << ", method "
                                                    << method << ", presolve " << presolve);
                    judge(lp, truth, lp.sense * cutoff, solution);
                }
        }
    }
}
