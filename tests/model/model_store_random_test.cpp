// Random sequences of calls against the plain reference: after every update, copy and reset the
// model must read exactly as the reference says, and calls that fail must leave no trace.
#include "model/store_player.h"
#include "support/lp_tarvex.h"
#include <gtest/gtest.h>

static void check_copy(const StorePlayer &player)
{
    TVXmodel *copy = TVXcopymodel(player.model);
    ASSERT_NE(copy, nullptr);
    StoreReference expected = player.reference;
    expected.name = player.reference.name.value_or("(null)") + "_copy";
    EXPECT_EQ(compare(copy, expected), "");
    EXPECT_EQ(TVXfreemodel(copy), 0);
}

TEST(StoreRandom, reads_as_the_reference_says)
{
    const TestEnv env;
    const LpModel empty;
    for (uint64_t game = 0; game < 1000; game++) {
        SCOPED_TRACE(game);
        Dice dice(game);
        const TestModel model(lp_load(env.env, &empty));
        StorePlayer player;
        player.dice = &dice;
        player.model = model;
        for (int round = 0; round < 12; round++) {
            for (int k = dice.range(0, 9); k > 0; k--) player.step();
            ASSERT_EQ(player.wrong, "");
            ASSERT_EQ(compare(model, player.reference), "") << "pending changes show";
            if (dice.chance(25)) check_copy(player);
            const auto make_real = dice.chance(10) ? TVXresetmodel : TVXupdatemodel;
            ASSERT_EQ(make_real(model), 0);
            player.reference.update();
            ASSERT_EQ(compare(model, player.reference), "") << "round " << round;
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}
