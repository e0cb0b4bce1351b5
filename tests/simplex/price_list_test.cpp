// price_list_test.cpp -- the best of many against a plain search
#include "simplex/price_list.h"
#include "support/dice.h"
#include <cmath>
#include <gtest/gtest.h>

TEST(PriceList, finds_the_best_of_all_whatever_has_changed)
{
    for (uint64_t seed = 0; seed < 40; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const int dim = dice.pick<int>({1, 5, 50, 1000});
        PriceList<double> list;
        ASSERT_EQ(price_list_alloc(&list, dim), 0);
        std::vector<double> merit(static_cast<size_t>(dim));
        for (int step = 0; step < 400; step++) {
            for (int k = dice.range(0, std::min(dim, 20)); k >= 0; k--) {
                const int i = dice.range(0, dim - 1);
                merit[i] = dice.chance(40) ? 0 : std::pow(10, dice.real(-12, 3));
                price_list_set(&list, i, merit[i]);
            }
            if (dice.chance(3)) price_list_reset(&list);
            const double most = *std::max_element(merit.begin(), merit.end());
            const int best = price_list_best(&list);
            ASSERT_EQ(best < 0 ? 0 : merit[best], most) << "step " << step;
            if (best >= 0 && dice.chance(50)) price_list_set(&list, best, merit[best] = 0);
        }
    }
}
