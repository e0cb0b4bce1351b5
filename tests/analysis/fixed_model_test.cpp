// fixed_model_test.cpp -- models in which is fixed what a solution decides
#include "model/model.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include "support/text_model.h"
#include <cmath>

namespace
{
struct FixedModel : ModelTest {
    // Two integers, a semi-continuous variable, an SOS of two continuous ones: the optimum is another corner than Start.
    void load_mixed(int start_count)
    {
        const double start[] = {2, 3, 0, 0, 1.5};
        TVXfreemodel(model);
        model =
            model_of_text(env.env, "min - C0 - C1 + C2 - C3 - 2 C4\n"
                                   "st cap: C0 + C1 - C2 + C3 + C4 <= 8\n"
                                   "bounds C0 <= 5 C1 <= 5 2 <= C2 <= 9 C3 <= 4 C4 <= 4\n"
                                   "general C0 C1 semi-continuous C2 sos S1:: C3:1 C4:2");
        if (start_count == 0) return;
        ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, start_count, start), 0);
    }
    void none(const std::string &text)
    {
        EXPECT_EQ(TVXconverttofixed(model), nullptr);
        EXPECT_EQ(TVXgetmerrormsg(model), text);
    }
    double optimum(TVXmodel *m, int sense)
    {
        double value = 0;
        EXPECT_EQ(TVXsetintattr(m, "ModelSense", sense), 0);
        EXPECT_EQ(TVXoptimize(m), 0);
        EXPECT_EQ(TVXgetdblattr(m, "ObjVal", &value), 0);
        return value;
    }
    // The fixed model has these bounds and this least value.
    void expect_fixed(TVXmodel *fixed, const std::vector<double> &lb,
                      const std::vector<double> &ub, double value)
    {
        LpModel rest;
        ASSERT_EQ(lp_read_back(fixed, &rest), 0);
        EXPECT_EQ(rest.lb, lb);
        EXPECT_EQ(rest.ub, ub);
        EXPECT_EQ(optimum(fixed, 1), value);
    }
};
} // namespace

TEST_F(FixedModel, of_discrete_decisions_is_the_linear_rest)
{
    load_mixed(5);
    const TestModel fixed(TVXconverttofixed(model));
    ASSERT_TRUE(fixed);
    expect_fixed(fixed, {2, 3, 0, 0, 0}, {2, 3, 0, 0, 4}, -2 - 3 - 2 * 3);
    double pi = 0;
    EXPECT_EQ(TVXgetdblattrelement(fixed, "Pi", 0, &pi), 0);
    EXPECT_EQ(pi, -2);
    int is_mip = -1;
    EXPECT_EQ(TVXgetintattr(fixed, "IsMIP", &is_mip), 0);
    EXPECT_EQ(is_mip, 0);
    EXPECT_EQ(integer("IsMIP"), 1); // the source stays what it is
}

TEST_F(FixedModel, needs_values_that_the_model_allows)
{
    load_mixed(0);
    none("The model has no solution and no start to be fixed at");
    load_mixed(4);
    none("Variable C4 has no value to be fixed at");
    const struct {
        int var;
        double value;
        const char *text;
    } wrong[] = {{0, 2.5, "Variable C0 cannot be fixed at 2.5"},
                 {1, 6, "Variable C1 cannot be fixed at 6"},
                 {2, 1, "Variable C2 cannot be fixed at 1"},
                 {3, 1, "The values to be fixed at violate an SOS constraint"}};
    for (const auto &w : wrong) {
        load_mixed(5);
        ASSERT_EQ(TVXsetdblattrelement(model, "Start", w.var, w.value), 0);
        none(w.text);
    }
    EXPECT_EQ(TVXconverttofixed(nullptr), nullptr);
}

// Every point of the new model is optimal for the old one, and the old optimum is among them.
TEST_F(FixedModel, of_a_linear_model_is_the_set_of_its_optimal_solutions)
{
    for (uint64_t seed = 0; seed < 40; seed++) {
        Dice dice(seed);
        load(seed % 2 ? gen_multi_period(&dice, 8).lp : gen_planted_optimum(&dice, 12).lp);
        none("The model has no optimal solution to be fixed at");
        const double best = objective();
        const TestModel face(TVXconverttofixed(model));
        ASSERT_TRUE(face);
        for (const int sense : {1, -1})
            EXPECT_NEAR(optimum(face, sense), best, 1e-6 * (1 + std::fabs(best)));
    }
}

// The whole edge remains, and nothing else.
TEST_F(FixedModel, keeps_ties_open)
{
    model = model_of_text(env.env, "max x + y st - x - y >= -4 x - y >= -2 bounds x <= 3");
    EXPECT_EQ(objective(), 4);
    const TestModel face(TVXconverttofixed(model));
    ASSERT_TRUE(face);
    const double x_only[] = {1, 0};
    ASSERT_EQ(TVXsetdblattrarray(face, "Obj", 0, 2, x_only), 0);
    EXPECT_EQ(optimum(face, -1), 3);
    EXPECT_EQ(optimum(face, 1), 1);
}

// There is no search yet: the solution is put into the model by hand, with the noise of one that was computed.
TEST_F(FixedModel, of_a_solution_rounds_it_and_does_not_look_at_start)
{
    load_mixed(5);
    EXPECT_EQ(TVXfixedmodel(model), nullptr);
    EXPECT_STREQ(TVXgetmerrormsg(model), "The model has no solution to be fixed at");
    MipResult *result = model->mip.result =
        static_cast<MipResult *>(MemAllocZero(1, sizeof(MipResult)));
    result->has_solution = 1;
    ASSERT_EQ(array_resize(&result->x, 5), 0);
    const double x[] = {3 + 2e-5, 4 - 1e-9, 2.5, 1.5, 1e-10};
    std::copy(x, x + 5, result->x.data);
    const TestModel fixed(TVXfixedmodel(model));
    ASSERT_TRUE(fixed);
    expect_fixed(fixed, {3, 4, 2, 0, 0}, {3, 4, 9, 4, 0}, -3 - 4 + 2 - 3);
    Dice dice(1); // without integers it is a copy
    load(gen_multi_period(&dice, 8).lp);
    EXPECT_EQ(optimum(TestModel(TVXfixedmodel(model)), 1), objective());
    EXPECT_EQ(TVXfixedmodel(nullptr), nullptr);
}
