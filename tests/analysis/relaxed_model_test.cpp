// relaxed_model_test.cpp -- the linear relaxation, and the model of least violation
#include "support/model_test.h"
#include "support/model_text.h"
#include "support/structured_gen.h"
#include <cmath>

namespace
{
constexpr std::nullptr_t NONE = nullptr;

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
        const double obj[] = {1, 2, 3, 4, 5, 6}, lb[] = {0.5, 0, 2, -4, 3, -1},
                     ub[] = {5.5, 9, 6, -3, 1, 1e30};
        const int ind[] = {0, 1, 2, 3, 4, 5}, sos[] = {0, 1}, type = 1, beg = 0;
        const double val[] = {1, 1, 1, 1, 1, 1}, weight[] = {1, 2};
        ASSERT_EQ(TVXnewmodel(env.env, &model, "mixed", 6, obj, lb, ub, "IBSNSC", NONE), 0);
        ASSERT_EQ(TVXaddconstr(model, 6, ind, val, '>', 8, "cover"), 0);
        ASSERT_EQ(TVXaddsos(model, 1, 2, &type, &beg, sos, weight), 0);
        update();
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

// x + y <= 4, x - y >= 7, x + 2 y = 12 with x <= 6, y >= 0.
TEST_F(RelaxedModel, feasibility_measures_each_side)
{
    LpModel lp;
    lp.sense = -1;
    lp_add_var(&lp, 1, 0, 6);
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '>', 7);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '=', 12);
    load(lp);
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
    ASSERT_EQ(TVXsetdblattrelement(elastic, "LB", 0, 7), 0); // bounds are not given way
    EXPECT_EQ(value_of(elastic), HUGE_VAL);
}
