// two_rows_test.cpp -- equations cancel entries of other rows
#include "support/presolve_try.h"
#include <gtest/gtest.h>

TEST(TwoRows, an_equation_takes_its_entries_out_of_other_rows)
{
    const TestEnv env;
    for (const char sense : {'<', '>', '='})
        for (const double cost : {1.0, -1.0}) {
            LpModel lp;
            for (int j = 0; j < 5; j++) lp_add_var(&lp, cost * (j + 1), 0, 4);
            lp_add_row_entries(&lp, {{0, 1}, {1, 2}, {2, -1}}, '=', 3);
            lp_add_row_entries(&lp, {{0, 2}, {1, 4}, {2, -2}, {3, 1}, {4, 1}}, sense, 8);
            lp_add_row_entries(&lp, {{0, 1}, {3, -1}, {4, 2}}, '<', 5); // shares one: stays
            const PresolveTry t = presolve_try(env.env, &lp, {pre_two_rows});
            EXPECT_EQ(t.faults, "") << sense << cost;
            EXPECT_EQ(t.nonzeros, 8);
        }
}

TEST(TwoRows, sums_that_would_lose_digits_are_not_formed)
{
    const TestEnv env;
    for (const double third : {2 + 1e-6, 2 + 1e-9}) {
        LpModel lp;
        for (int j = 0; j < 4; j++) lp_add_var(&lp, -1, 0, 4);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '=', 3);
        lp_add_row_entries(&lp, {{0, 2}, {1, 2}, {2, third}, {3, 1}}, '<', 8);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_two_rows});
        EXPECT_EQ(t.nonzeros, 7);
        EXPECT_EQ(t.faults, "");
    }
}
