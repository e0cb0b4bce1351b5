// singular_test.cpp -- a singular start basis, and the banner of a root relaxation
#include "simplex/sopt.h"
#include "support/model_test.h"

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
