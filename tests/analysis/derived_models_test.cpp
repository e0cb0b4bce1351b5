// derived_models_test.cpp -- models that are made of a model: fixed, presolved, relaxed, and the one of least violation
//
// That optima of presolved and fixed models are those of their sources is looked at in fuzz/corpus_test.cpp, for all
// settings.
#include "model/model.h"
#include "support/model_test.h"
#include "support/model_text.h"
#include "support/structured_gen.h"
#include <cmath>

namespace
{
struct Derived : ModelTest {
    // Of the optimum; infinite when there is none.
    static double value_of(TVXmodel *m)
    {
        int status = 0;
        double value = HUGE_VAL;
        EXPECT_EQ(TVXoptimize(m), 0);
        EXPECT_EQ(TVXgetintattr(m, "Status", &status), 0);
        EXPECT_EQ(TVXgetdblattr(m, "ObjVal", &value), status == TVX_OPTIMAL ? 0 : 10005);
        return status == TVX_INFEASIBLE ? HUGE_VAL : value;
    }
    static double optimum(TVXmodel *m, int sense)
    {
        EXPECT_EQ(TVXsetintattr(m, "ModelSense", sense), 0);
        return value_of(m);
    }
    static void expect_bounds(TVXmodel *m, const std::vector<double> &lb,
                              const std::vector<double> &ub)
    {
        LpModel lp;
        ASSERT_EQ(lp_read_back(m, &lp), 0);
        EXPECT_EQ(lp.lb, lb);
        EXPECT_EQ(lp.ub, ub);
    }
    void load_family(uint64_t seed)
    {
        load(seed % 2 ? generated(gen_multi_period, 8, seed)
                      : generated(gen_planted_optimum, 12, seed));
    }
    // Two integers, a semi-continuous variable, an SOS of two continuous ones: the optimum is another corner than
    // Start.
    void load_mixed(int start_count)
    {
        const double start[] = {2, 3, 0, 0, 1.5};
        load("min - C0 - C1 + C2 - C3 - 2 C4 st cap: C0 + C1 - C2 + C3 + C4 <= 8\n"
             "bounds C0 <= 5 C1 <= 5 2 <= C2 <= 9 C3 <= 4 C4 <= 4\n"
             "general C0 C1 semi-continuous C2 sos S1:: C3:1 C4:2");
        if (start_count == 0) return;
        ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, start_count, start), 0);
    }
    void none(TVXmodel *(*make)(TVXmodel *), const std::string &text)
    {
        EXPECT_EQ(make(model), nullptr);
        EXPECT_EQ(TVXgetmerrormsg(model), text);
    }
};
using FixedModel = Derived;
using PresolvedModel = Derived;
using RelaxedModel = Derived;
} // namespace

TEST_F(FixedModel, of_discrete_decisions_is_the_linear_rest)
{
    load_mixed(5);
    const TestModel fixed(TVXconverttofixed(model));
    ASSERT_TRUE(fixed);
    expect_bounds(fixed, {2, 3, 0, 0, 0}, {2, 3, 0, 0, 4});
    EXPECT_EQ(optimum(fixed, 1), -2 - 3 - 2 * 3);
    double pi = 0; // which only a linear model has
    EXPECT_EQ(TVXgetdblattrelement(fixed, "Pi", 0, &pi), 0);
    EXPECT_EQ(pi, -2);
    EXPECT_EQ(integer("IsMIP"), 1); // the source stays what it is
}

TEST_F(FixedModel, needs_values_that_the_model_allows)
{
    load_mixed(0);
    none(TVXconverttofixed, "The model has no solution and no start to be fixed at");
    load_mixed(4);
    none(TVXconverttofixed, "Variable C4 has no value to be fixed at");
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
        none(TVXconverttofixed, w.text);
    }
}

// Every point of the new model is optimal for the old one; and the whole edge remains where there is one.
TEST_F(FixedModel, of_a_linear_model_is_the_set_of_its_optimal_solutions)
{
    for (uint64_t seed = 0; seed < 40; seed++) {
        load_family(seed);
        none(TVXconverttofixed, "The model has no optimal solution to be fixed at");
        const double best = objective();
        const TestModel face(TVXconverttofixed(model));
        for (const int sense : {1, -1})
            EXPECT_NEAR(optimum(face, sense), best, 1e-6 * (1 + std::fabs(best)));
    }
    load("max x + y st - x - y >= -4 x - y >= -2 bounds x <= 3");
    EXPECT_EQ(objective(), 4);
    const TestModel face(TVXconverttofixed(model));
    const double x_only[] = {1, 0};
    ASSERT_EQ(TVXsetdblattrarray(face, "Obj", 0, 2, x_only), 0);
    EXPECT_EQ(optimum(face, -1), 3);
    EXPECT_EQ(optimum(face, 1), 1);
}

// The solution is put into the model by hand, with rounding errors that those of a search do not have.
TEST_F(FixedModel, of_a_solution_rounds_it_and_does_not_look_at_start)
{
    load_mixed(5);
    none(TVXfixedmodel, "The model has no solution to be fixed at");
    MipResult *result = model->mip.result = record_create<MipResult>();
    result->has_solution = 1;
    const double x[] = {3 + 2e-5, 4 - 1e-9, 2.5, 1.5, 1e-10};
    ASSERT_EQ(array_copy(&result->x, x, 5), 0);
    const TestModel fixed(TVXfixedmodel(model));
    ASSERT_TRUE(fixed);
    expect_bounds(fixed, {3, 4, 2, 0, 0}, {3, 4, 9, 4, 0});
    EXPECT_EQ(optimum(fixed, 1), -3 - 4 + 2 - 3);
    load_family(1); // without integers it is a copy
    EXPECT_EQ(optimum(TestModel(TVXfixedmodel(model)), 1), objective());
}

TEST_F(PresolvedModel, is_smaller_has_the_same_value_and_the_names_of_what_is_left)
{
    for (uint64_t seed = 0; seed < 30; seed++) {
        load(generated(gen_multi_period, 12, seed));
        const double value = value_of(model), iterations = dbl("IterCount");
        const TestModel reduced(TVXpresolvemodel(model));
        EXPECT_EQ(dbl("IterCount"), iterations) << "the source keeps its figures";
        EXPECT_NEAR(value_of(reduced), value, 1e-6 * (1 + std::fabs(value)));
        int vars = 0;
        ASSERT_EQ(TVXgetintattr(reduced, "NumVars", &vars), 0);
        EXPECT_LT(vars, integer("NumVars"));
        for (int j = 0, k = 0; j < vars; j++, k++) {
            char *name = nullptr;
            ASSERT_EQ(TVXgetstrattrelement(reduced, "VarName", j, &name), 0);
            while (k < integer("NumVars") && text("VarName", k) != name) k++;
            ASSERT_LT(k, integer("NumVars")) << name;
        }
        ASSERT_EQ(TVXsetintparam(own(), "Presolve", 0), 0);
        ASSERT_EQ(TVXgetintattr(TestModel(TVXpresolvemodel(model)), "NumVars", &vars), 0);
        EXPECT_EQ(vars, integer("NumVars")) << "without presolve it is the whole model";
    }
}

TEST_F(PresolvedModel, may_be_empty_or_not_exist)
{
    load("max 2 x st c: x <= 3");
    EXPECT_EQ(value_of(TestModel(TVXpresolvemodel(model))), 6);
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 0, -1), 0);
    update();
    EXPECT_EQ(TVXpresolvemodel(model), nullptr);
    EXPECT_NE(std::string(TVXgetmerrormsg(model)).find("no optimal solution"),
              std::string::npos);
}

TEST_F(PresolvedModel, is_stopped_like_a_solve_but_not_by_what_came_before)
{
    load_family(3);
    TVXterminate(model); // nothing runs: nothing happens
    EXPECT_TRUE(TestModel(TVXpresolvemodel(model)));
    int refused = 0;
    const TVXcallback stop = [](TVXmodel *m, void *, int where, void *refused_out) {
        if (where != TVX_WHERE_PRESOLVE) return 0;
        EXPECT_EQ(TVXpresolvemodel(m), nullptr); // from within
        ++*static_cast<int *>(refused_out);
        TVXterminate(m);
        return 0;
    };
    ASSERT_EQ(TVXsetcallbackfunc(model, stop, &refused), 0);
    none(TVXpresolvemodel, "Presolve leaves no model: it was interrupted");
    EXPECT_EQ(refused, 1);
    ASSERT_EQ(TVXsetcallbackfunc(model, nullptr, nullptr), 0);
    EXPECT_GT(value_of(model), -1e100);
}

TEST_F(RelaxedModel, holds_every_point_of_the_model)
{
    load("min a + 2 b + 3 c + 4 d + 5 e + 6 f st cover: a + b + c + d + e + f >= 8\n"
         "bounds 0.5 <= a <= 5.5 b <= 9 2 <= c <= 6 -4 <= d <= -3 3 <= e <= 1\n"
         "f >= -1 general a d binary b semi-continuous c d e sos S1:: a:1 b:2");
    const std::string before = model_text(model);
    const TestModel relaxed(TVXrelaxmodel(model));
    ASSERT_TRUE(relaxed);
    expect_bounds(relaxed, {1, 0, 0, -4, 0, -1}, {5, 1, 6, 0, 1, LP_INFINITY});
    EXPECT_EQ(value_of(relaxed), 5 + 2 * 1 + 3 * 6 - 4 * 3 + 0 - 6 * 1);
    EXPECT_EQ(model_text(model), before);
}

TEST_F(RelaxedModel, feasibility_is_zero_exactly_for_feasible_models)
{
    for (uint64_t seed = 0; seed < 20; seed++) {
        load_family(seed);
        ASSERT_EQ(TVXsetdblparam(own(), "Cutoff", -1e9), 0);
        EXPECT_NEAR(value_of(TestModel(TVXfeasibility(model))), 0, 1e-9);
        load(generated(gen_planted_infeasible, 12, seed));
        EXPECT_GT(value_of(TestModel(TVXfeasibility(model))), 1e-6);
    }
}

TEST_F(RelaxedModel, feasibility_measures_each_side)
{
    load("max x + y st R0: x + y <= 4 R1: x - y >= 7 R2: x + 2 y = 12 bounds x <= 6");
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

TEST_F(Derived, models_have_names_and_need_a_source)
{
    const std::pair<TVXmodel *(*)(TVXmodel *), std::string> cases[] = {
        {TVXpresolvemodel, "_presolved"},
        {TVXfixedmodel, "_fixed"},
        {TVXconverttofixed, "_fixed"},
        {TVXrelaxmodel, "_relaxed"},
        {TVXfeasibility, "_feasibility"}};
    const LpModel gone = lp_make({{1, 2, 5}}, {}); // after presolve
    for (const LpModel &lp : {generated(gen_multi_period, 12, 9), gone})
        for (const char *name : {"", "plan"}) {
            load(lp);
            ASSERT_EQ(TVXsetstrattr(model, "ModelName", name), 0);
            value_of(model);
            for (const auto &[make, suffix] : cases) {
                const TestModel derived(make(model));
                char *found = nullptr;
                ASSERT_EQ(TVXgetstrattr(derived, "ModelName", &found), 0);
                EXPECT_EQ(found, name + suffix);
                EXPECT_EQ(make(nullptr), nullptr);
            }
        }
}
