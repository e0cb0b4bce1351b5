// forcing_rows_test.cpp -- rows that their columns satisfy only at their bounds
#include "support/presolve_try.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

// Boxes with rows of any kind around a vertex of them; some of the rows allow nothing but that vertex.
TEST(ForcingRows, fix_their_columns_and_get_a_dual_that_repairs_all_reduced_costs)
{
    int forced = 0;
    const TestEnv env;
    for (uint64_t seed = 0; seed < 600; seed++) {
        Dice dice(seed);
        LpModel lp;
        const int n = dice.range(3, 8);
        std::vector<double> vertex;
        for (int j = 0; j < n; j++) {
            lp_add_var(&lp, dice.range(-4, 4), dice.range(-3, 0), dice.range(1, 4));
            vertex.push_back(dice.chance(50) ? lp.lb[j] : lp.ub[j]);
        }
        for (int i = dice.range(1, 4); i > 0; i--) {
            std::vector<std::pair<int, double>> entries;
            const bool forcing = dice.chance(50);
            double activity = 0;
            for (int j = 0; j < n; j++) {
                if (dice.chance(50)) continue;
                const bool low = vertex[j] == lp.lb[j];
                const double a =
                    forcing ? (low ? 1 : -1) * dice.range(1, 3) : dice.nonzero(3);
                entries.push_back({j, a});
                activity += a * vertex[j];
            }
            if (entries.size() < 2) continue;
            for (auto &[j, a] : entries)
                a *= i % 2 ? 1 : -1; // the greatest activity counts
            const char side = i % 2 ? '<' : '>';
            lp_add_row_entries(&lp, entries, dice.chance(30) ? '=' : side,
                               (i % 2 ? 1 : -1) * activity);
        }
        if (lp.num_rows() == 0) continue;
        const PresolveTry t = presolve_try(env.env, &lp, {pre_forcing_rows});
        EXPECT_EQ(t.faults, "") << lp_to_mps(&lp, std::to_string(seed));
        EXPECT_EQ(t.status, 0) << seed;
        forced += t.cols_removed >= 2;
    }
    EXPECT_GT(forced, 200);
}
