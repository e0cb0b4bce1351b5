// release_slacks_test.cpp -- slacks of equations leave an optimal basis, which stays optimal
#include "simplex/simplex.h"
#include "support/inside.h"
#include "support/solve_judge.h"
#include <algorithm>
#include <gtest/gtest.h>

TEST(ReleaseSlacks, equations_at_zero_get_the_dual_that_keeps_the_basis_optimal)
{
    const TestEnv env;
    LpModel lp = lp_make({{3.0, 0, 4}, {1.0, 0, 4}, {2.0, 0, 4}},
                         {{{2, -1}, '=', 0},
                          {{4, -2}, '=', 0}, // follows from the first
                          {{0, 1, 1}, '<', 5}});
    const TestModel model(lp_load(env.env, &lp));
    ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "Presolve", 0), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    TVXmodel *inside = model;
    int status[6];
    simplex_get_basis(inside->lp.simplex, status);
    ASSERT_TRUE(status[3] >= 0 && status[4] >= 0); // or there is nothing to do
    ASSERT_EQ(simplex_release_slacks(inside->lp.simplex, "\1\1\1"), 0);
    simplex_get_basis(inside->lp.simplex, status);
    EXPECT_EQ((status[3] >= 0) + (status[4] >= 0), 1); // one is all that can leave
    EXPECT_GE(status[5], 0);                           // not an equation's
    EXPECT_EQ(std::count_if(status, status + 6, [](int s) { return s >= 0; }), 3);
    double x[3], pi[3], rc[3];
    simplex_get_primal(inside->lp.simplex, x);
    simplex_get_dual(inside->lp.simplex, pi, rc);
    for (int j = 0; j < 3; j++) {
        EXPECT_EQ(x[j], 0);
        EXPECT_GE(rc[j], 0);
    }
}
