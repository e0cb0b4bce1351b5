// basis_test.cpp -- a singular start basis, slacks of equations that leave an optimal one, and the banner of a root
// relaxation
#include "simplex/sopt.h"
#include "support/model_test.h"
#include <algorithm>

namespace
{
struct Singular : ModelTest {
    // Two equal columns, both basic.
    int solve(const std::vector<int> &statuses, bool root)
    {
        SimplexCall call;
        call.Statuses = statuses.data();
        call.Root = root;
        simplex_free(model->lp.simplex);
        model->lp.simplex = nullptr;
        EXPECT_EQ(SimplexOptimize(&model->lp.simplex, model->body, own(), call), 0);
        return simplex_status(model->lp.simplex);
    }
    void SetUp() override
    {
        load(lp_make({{1}, {1}, {3}}, {{{1, 1, 1}, '>', 4}, {{2, 2, 1}, '>', 5}}),
             {{"OutputFlag", 1}, {"Quad", 0}});
    }
};
using ReleaseSlacks = ModelTest;
} // namespace

TEST_F(Singular, basis_is_repaired_as_often_as_allowed)
{
    const std::vector<int> both = {0, 0, -1, -1, -1};
    Output output;
    EXPECT_EQ(solve(both, false), SIMPLEX_OPTIMAL);
    EXPECT_EQ(output.text().find("Warning: 1 variables dropped from basis\n"), 0U);
    ASSERT_EQ(TVXsetintparam(own(), "TARV_PAR_STMPFIXES", 0), 0);
    Output refused;
    EXPECT_EQ(solve(both, false), SIMPLEX_NUMERIC);
    EXPECT_EQ(refused.text(), "Temporary fix limit exceeded\n");
    ASSERT_EQ(settings_apply(own(), {{"TARV_PAR_STMPFIXES", 100}, {"TARV_PAR_SUBMIP", 1}}),
              0);
    EXPECT_EQ(solve(both, false), SIMPLEX_NUMERIC);
}

TEST_F(Singular, root_of_a_search_writes_its_lines_late_and_under_a_banner)
{
    const std::vector<int> slacks = {-1, -1, -1, 0, 0};
    for (const bool root : {false, true}) {
        Output output;
        EXPECT_EQ(solve(slacks, root), SIMPLEX_OPTIMAL);
        EXPECT_EQ(output.text().empty(), root);
    }
    Output output;
    log_iteration(model->lp.simplex, 1, 2, 3);
    EXPECT_EQ(output.text().find("\nRoot simplex log...\n\nIteration    Objective "), 0U);
}

TEST_F(ReleaseSlacks, equations_at_zero_get_the_dual_that_keeps_the_basis_optimal)
{
    // The second equation follows from the first.
    load(lp_make({{3, 0, 4}, {1, 0, 4}, {2, 0, 4}},
                 {{{2, -1}, '=', 0}, {{4, -2}, '=', 0}, {{0, 1, 1}, '<', 5}}),
         {{"Presolve", 0}});
    ASSERT_EQ(TVXoptimize(model), 0);
    int status[6];
    simplex_get_basis(model->lp.simplex, status);
    ASSERT_TRUE(status[3] >= 0 && status[4] >= 0); // or there is nothing to do
    ASSERT_EQ(simplex_release_slacks(model->lp.simplex, "\1\1\1"), 0);
    simplex_get_basis(model->lp.simplex, status);
    EXPECT_EQ((status[3] >= 0) + (status[4] >= 0), 1); // one is all that can leave
    EXPECT_GE(status[5], 0);                           // not an equation's
    EXPECT_EQ(std::count_if(status, status + 6, [](int s) { return s >= 0; }), 3);
    double x[3], pi[3], rc[3];
    simplex_get_primal(model->lp.simplex, x);
    simplex_get_dual(model->lp.simplex, pi, rc);
    for (int j = 0; j < 3; j++) {
        EXPECT_EQ(x[j], 0);
        EXPECT_GE(rc[j], 0);
    }
}
