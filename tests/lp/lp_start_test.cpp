// lp_start_test.cpp -- what a solve starts from, when several things are there
#include "lp/lp_form.h"
#include "lp/lp_start.h"
#include "simplex/sopt.h"
#include "support/model_test.h"
#include "support/structured_gen.h"

struct LpStartTest : ModelTest {
    // Stopped amid the reduced model.
    void SetUp() override
    {
        load(generated(gen_multi_period, 30, 5), {{"Presolve", 1}, {"IterationLimit", 5}});
        ASSERT_EQ(TVXoptimize(model), 0);
        ASSERT_NE(model->lp.form, nullptr);
    }
    LpFrom chosen(bool given, bool newer)
    {
        std::vector<int> slacks(static_cast<size_t>(integer("NumVars")), -1);
        slacks.resize(slacks.size() + static_cast<size_t>(integer("NumConstrs")), 0);
        LpStart start;
        EXPECT_EQ(lp_start_choose(&model->lp,
                                  {given ? slacks.data() : nullptr, nullptr, newer},
                                  &start),
                  0);
        if (start.from == LpFrom::BASIS) {
            EXPECT_EQ(start.statuses.size, static_cast<int64_t>(slacks.size()));
        }
        return start.from;
    }
};

TEST_F(LpStartTest, a_basis_given_since_comes_first_then_the_form_the_record_and_any_basis)
{
    EXPECT_EQ(chosen(false, false), LpFrom::FORM);
    EXPECT_EQ(chosen(true, false), LpFrom::FORM);
    EXPECT_EQ(chosen(true, true), LpFrom::BASIS);
    EXPECT_EQ(model->lp.form, nullptr) << "what it displaces is gone";
    EXPECT_EQ(model->lp.simplex, nullptr);
    EXPECT_EQ(chosen(true, false), LpFrom::BASIS);
    EXPECT_EQ(chosen(false, false), LpFrom::SCRATCH);
    SetUp();
    ASSERT_EQ(TVXsetintparam(own(), "Presolve", 0), 0);
    EXPECT_EQ(chosen(true, false), LpFrom::MODEL) << "where the limit has stopped it";
    model->lp.status = TVX_LOADED;
    EXPECT_EQ(chosen(true, false), LpFrom::RECORD);
}

TEST_F(LpStartTest, the_dual_form_is_solved_by_the_other_method)
{
    for (const SimplexMethod method : {METHOD_PRIMAL, METHOD_DUAL}) {
        ASSERT_EQ(TVXresetmodel(model), 0);
        ASSERT_EQ(settings_apply(own(), {{"PreDual", 1}, {"LPMethod", method}}), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
        ASSERT_NE(model->lp.form, nullptr);
        ASSERT_NE(model->lp.form->dual, nullptr);
        EXPECT_EQ(model->lp.form->simplex->AskedMethod, 1 - method);
    }
}
