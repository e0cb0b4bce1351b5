// dual_ratio_test.cpp -- long steps of the dual simplex
#include "support/model_test.h"
#include <algorithm>
#include <numeric>

using DualRatio = ModelTest;

// min c x with the sum of all x at least `need`, x between 0 and 1: the cheapest are taken, and one step passes them
// all.
TEST_F(DualRatio, a_step_over_thousands_of_breakpoints_ends_at_the_right_one)
{
    for (const int values : {2, 50, 1000000}) { // many ties, some, none
        Dice dice(static_cast<uint64_t>(values));
        constexpr int VARS = 5000, NEED = 3000;
        LpModel lp;
        std::vector<double> cost;
        std::vector<std::pair<int, double>> row;
        for (int j = 0; j < VARS; j++) {
            cost.push_back(dice.range(1, values));
            row.push_back({lp_add_var(&lp, cost.back(), 0, 1), 1});
        }
        lp_add_row_entries(&lp, row, '>', NEED);
        load(lp, {{"Presolve", 0}});
        std::sort(cost.begin(), cost.end());
        EXPECT_EQ(objective(), std::accumulate(cost.begin(), cost.begin() + NEED, 0.0));
        EXPECT_LE(dbl("IterCount"), 10);
    }
}
