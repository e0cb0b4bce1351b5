// lp_point_test.cpp -- a point that stands in the result alone, as a solver without simplex record leaves it
#include "model/attribute_cache.h"
#include "support/model_test.h"
#include "support/structured_gen.h"

TEST_F(ModelTest, a_point_without_simplex_record_has_all_attributes_but_those_of_a_basis)
{
    const LpModel lp = generated(gen_blending, 20, 3);
    load(lp);
    LpSolution with, without;
    ASSERT_EQ(lp_solve(model, &with), 0);
    ASSERT_EQ(with.status, TVX_OPTIMAL);
    LpSolve *solve = &model->lp;
    const int n = lp.num_vars(), m = lp.num_rows();
    std::vector<double> rc(static_cast<size_t>(n));
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
