// relaxed_model_test.cpp -- the linear relaxation, and the model of least violation
#include "support/model_test.h"
#include "support/model_text.h"
#include "support/structured_gen.h"
#include "support/text_model.h"
#include <cmath>

namespace
{
struct RelaxedModel : ModelTest {
    // Of the optimum; infinite when there is none.
    double value_of(TVXmodel *m)
    {
        int status = 0;
        double value = HUGE_VAL;
        EXPECT_EQ(TVXoptimize(m), 0);
        EXPECT_EQ(TVXgetintattr(m, "Status", &status), 0);
        EXPECT_EQ(TVXgetdblattr(m, "ObjVal", &value), status == TVX_OPTIMAL ? 0 : 10005);
        return status == TVX_INFEASIBLE ? HUGE_VAL : value;
    }
    void load_mixed()
    {
        model = model_of_text(
            env.env, "min a + 2 b + 3 c + 4 d + 5 e + 6 f\n"
                     "st cover: a + b + c + d + e + f >= 8\n"
                     "bounds 0.5 <= a <= 5.5 b <= 9 2 <= c <= 6 -4 <= d <= -3 3 <= e <= 1\n"
                     "f >= -1 general a d binary b semi-continuous c d e\n"
                     "sos S1:: a:1 b:2");
    }
};
} // namespace

TEST_F(RelaxedModel, holds_every_point_of_the_model)
{
    load_mixed();
    const std::string before = model_text(model);
    const TestModel relaxed(TVXrelaxmodel(model));
    ASSERT_TRUE(relaxed);
    LpModel lp;
    ASSERT_EQ(lp_read_back(relaxed, &lp), 0);
    EXPECT_EQ(lp.lb, (std::vector<double>{1, 0, 0, -4, 0, -1}));
    EXPECT_EQ(lp.ub, (std::vector<double>{5, 1, 6, 0, 1, LP_INFINITY}));
    EXPECT_EQ(value_of(relaxed), 5 + 2 * 1 + 3 * 6 - 4 * 3 + 0 - 6 * 1);
    EXPECT_EQ(model_text(model), before);
    EXPECT_EQ(TVXrelaxmodel(nullptr), nullptr);
}

TEST_F(RelaxedModel, feasibility_is_zero_exactly_for_feasible_models)
{
    for (uint64_t seed = 0; seed < 20; seed++) {
        Dice dice(seed);
        load(seed % 2 ? gen_multi_period(&dice, 8).lp : gen_planted_optimum(&dice, 12).lp);
        ASSERT_EQ(TVXsetdblparam(own(), "Cutoff", -1e9), 0);
        const TestModel feasible(TVXfeasibility(model));
        EXPECT_NEAR(value_of(feasible), 0, 1e-9);
        load(gen_planted_infeasible(&dice, 12).lp);
        const TestModel infeasible(TVXfeasibility(model));
        EXPECT_GT(value_of(infeasible), 1e-6);
    }
    EXPECT_EQ(TVXfeasibility(nullptr), nullptr);
}

TEST_F(RelaxedModel, feasibility_measures_each_side)
{
    model = model_of_text(env.env, "max x + y st R0: x + y <= 4 R1: x - y >= 7\n"
                                   "R2: x + 2 y = 12 bounds x <= 6");
    const TestModel elastic(TVXfeasibility(model));
    EXPECT_EQ(value_of(elastic), 2 + 1 + 6); // at (6, 0) or beyond
    const double point[] = {6, 0};           // its violations are the new variables
    for (const char *bound : {"LB", "UB"})
        ASSERT_EQ(TVXsetdblattrarray(elastic, bound, 0, 2, point), 0);
    EXPECT_EQ(value_of(elastic), 9);
    const std::pair<const char *, double> expected[] = {
        {"R0_above", 2}, {"R1_below", 1}, {"R2_above", 0}, {"R2_below", 6}};
    for (int k = 0; k < 4; k++) {
        char *name = nullptr;
        double value = NAN;
        ASSERT_EQ(TVXgetstrattrelement(elastic, "VarName", 2 + k, &name), 0);
        EXPECT_STREQ(name, expected[k].first);
        ASSERT_EQ(TVXgetdblattrelement(elastic, "X", 2 + k, &value), 0);
        EXPECT_EQ(value, expected[k].second) << name;
    }
    ASSERT_EQ(TVXsetdblattrelement(elastic, "LB", 0, 7), 0); // bounds are not relaxed
    EXPECT_EQ(value_of(elastic), HUGE_VAL);
}
