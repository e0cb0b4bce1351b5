// lp_start_test.cpp -- what a solve starts from, when several things are there; a point that stands in the result alone
#include "lp/lp_form.h"
#include "lp/lp_start.h"
#include "model/attribute_cache.h"
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
        std::vector<int> slacks(integer("NumVars"), -1);
        slacks.resize(slacks.size() + integer("NumConstrs"), 0);
        LpStart start;
        EXPECT_EQ(lp_start_choose(&model->lp,
                                  {given ? slacks.data() : nullptr, nullptr, newer},
                                  &start),
                  0);
        if (start.from == LpFrom::BASIS) {
            EXPECT_EQ(start.statuses.size, int64_t(slacks.size()));
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

// As a solver without simplex record leaves it.
TEST_F(ModelTest, a_point_without_simplex_record_has_all_attributes_but_those_of_a_basis)
{
    const LpModel lp = generated(gen_blending, 20, 3);
    load(lp);
    LpSolution with, without;
    ASSERT_EQ(lp_solve(model, &with), 0);
    ASSERT_EQ(with.status, TVX_OPTIMAL);
    LpSolve *solve = &model->lp;
    const int n = lp.num_vars(), m = lp.num_rows();
    std::vector<double> rc(n);
    ASSERT_EQ(array_resize(&solve->result->x, n), 0);
    ASSERT_EQ(array_resize(&solve->result->pi, m), 0);
    lp_get_x(solve, solve->result->x.data);
    lp_get_duals(solve, solve->result->pi.data, rc.data());
    solve->result->has_point = solve->result->has_duals = 1;
    lp_drop_simplex(solve);
    solve->result->quality = Quality{};
    attributes_clear_solution(model);
    EXPECT_EQ(all("X", with.x.size()), with.x);
    EXPECT_EQ(all("Pi", with.pi.size()), with.pi);
    EXPECT_EQ(all("Slack", with.slack.size()), with.slack);
    const std::vector<double> costs = all("RC", with.rc.size());
    for (size_t j = 0; j < costs.size(); j++) EXPECT_NEAR(costs[j], with.rc[j], 1e-9) << j;
    EXPECT_EQ(dbl("ObjVal"), with.objval);
    EXPECT_EQ(integer("SolCount"), 1);
    EXPECT_LE(dbl("ConstrVio"), 1e-6);
    EXPECT_LE(dbl("DualVio"), 1e-6);
    double value = 0;
    int code = 0;
    for (const char *name : {"Kappa", "N2Kappa"})
        EXPECT_EQ(TVXgetdblattr(model, name, &value), 10005) << name;
    for (const char *name : {"SAObjLow", "SARHSUp"})
        EXPECT_EQ(TVXgetdblattrelement(model, name, 0, &value), 10005) << name;
    EXPECT_EQ(TVXgetintattrelement(model, "VBasis", 0, &code), 10005);
    EXPECT_EQ(objective(), with.objval); // the next solve begins anew
}
