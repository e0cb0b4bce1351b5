// shrink_test.cpp -- a planted fault is cut down to what causes it
#include "support/model_gen.h"
#include "support/shrink.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

TEST(Shrink, keeps_only_what_the_fault_needs)
{
    // The "fault": a negative entry in a '<' row, with one setting.
    const Fails fails = [](const LpModel &lp, const Settings &settings) {
        bool negative = false;
        for (const std::vector<LpEntry> &col : lp.cols)
            for (const LpEntry &e : col)
                negative = negative ||
                           (e.value < 0 && lp.senses[static_cast<size_t>(e.row)] == '<');
        bool set = false;
        for (const auto &[name, value] : settings) set = set || name == "Quad";
        return negative && set;
    };
    Dice dice(1);
    LpModel lp = gen_planted_optimum(&dice, 20).lp;
    Settings settings = {{"LPMethod", 0}, {"Quad", 1}, {"ScaleFlag", 0}};
    ASSERT_TRUE(fails(lp, settings));
    shrink(&lp, &settings, fails);
    EXPECT_TRUE(fails(lp, settings));
    EXPECT_EQ(settings.size(), 1u);
    EXPECT_EQ(lp.num_rows(), 1);
    EXPECT_EQ(lp.num_vars(), 1);
    EXPECT_EQ(lp.num_entries(), 1);
    EXPECT_EQ(lp_get_entry(&lp, 0, 0), -1);
    EXPECT_EQ(lp.rhs[0], 0);
    EXPECT_EQ(lp.obj[0], 0);
}
