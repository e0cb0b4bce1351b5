// release_slacks_test.cpp -- slacks of equations leave an optimal basis, which stays optimal
#include "simplex/simplex.h"
#include "support/model_test.h"
#include <algorithm>

using ReleaseSlacks = ModelTest;

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
