// presolved_model_test.cpp -- the reduced model as a model of its own
//
// That its optimum is that of its source is looked at in fuzz/corpus_test.cpp, for all settings.
#include "support/model_test.h"
#include "support/structured_gen.h"
#include "support/text_model.h"
#include <cmath>

namespace
{
struct PresolvedModel : ModelTest {
    double value_of(TVXmodel *m)
    {
        double value = 0;
        EXPECT_EQ(TVXoptimize(m), 0);
        EXPECT_EQ(TVXgetdblattr(m, "ObjVal", &value), 0);
        return value;
    }
};
} // namespace

TEST_F(PresolvedModel, is_smaller_has_the_same_value_and_the_names_of_what_is_left)
{
    for (uint64_t seed = 0; seed < 30; seed++) {
        Dice dice(seed);
        load(gen_multi_period(&dice, 12).lp);
        const double value = value_of(model), iterations = dbl("IterCount");
        const TestModel reduced(TVXpresolvemodel(model));
        ASSERT_TRUE(reduced);
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
    model = model_of_text(env.env, "max 2 x st c: x <= 3");
    const TestModel nothing(TVXpresolvemodel(model));
    ASSERT_TRUE(nothing);
    EXPECT_EQ(value_of(nothing), 6);
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 0, -1), 0);
    update();
    EXPECT_EQ(TVXpresolvemodel(model), nullptr);
    EXPECT_NE(std::string(TVXgetmerrormsg(model)).find("no optimal solution"),
              std::string::npos);
    EXPECT_EQ(TVXpresolvemodel(nullptr), nullptr);
}

TEST_F(PresolvedModel, is_stopped_like_a_solve_but_not_by_what_came_before)
{
    Dice dice(3);
    load(gen_multi_period(&dice, 12).lp);
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
    EXPECT_EQ(TVXpresolvemodel(model), nullptr);
    EXPECT_EQ(refused, 1);
    EXPECT_STREQ(TVXgetmerrormsg(model), "Presolve leaves no model: it was interrupted");
    ASSERT_EQ(TVXsetcallbackfunc(model, nullptr, nullptr), 0);
    EXPECT_GT(value_of(model), -1e100);
}

TEST_F(PresolvedModel, and_all_other_derived_models_have_names)
{
    const std::pair<TVXmodel *(*)(TVXmodel *), std::string> cases[] = {
        {TVXpresolvemodel, "_presolved"},
        {TVXfixedmodel, "_fixed"},
        {TVXconverttofixed, "_fixed"},
        {TVXrelaxmodel, "_relaxed"},
        {TVXfeasibility, "_feasibility"}};
    Dice dice(9);
    LpModel empty; // all of it is gone after presolve
    lp_add_var(&empty, 1, 2, 5);
    for (const LpModel &lp : {gen_multi_period(&dice, 12).lp, empty})
        for (const char *name : {"", "plan"}) {
            load(lp);
            ASSERT_EQ(TVXsetstrattr(model, "ModelName", name), 0);
            value_of(model);
            for (const auto &[make, suffix] : cases) {
                const TestModel derived(make(model));
                ASSERT_TRUE(derived) << suffix;
                char *found = nullptr;
                ASSERT_EQ(TVXgetstrattr(derived, "ModelName", &found), 0);
                EXPECT_EQ(found, name + suffix);
            }
        }
}
