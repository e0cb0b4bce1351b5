// changes.h -- a live model goes through random changes and must agree with fresh copies of itself
#pragma once
#include "fuzz/api_model.h"
#include "support/solve_judge.h"
#include <gtest/gtest.h>

// An optimum whose point violates something by nearly the tolerance: another run may rightly prove infeasibility.
inline bool lives_on_tolerance(TVXmodel *model)
{
    double bound = 0, constraint = 0;
    return TVXgetdblattr(model, "BoundVio", &bound) == 0 &&
           TVXgetdblattr(model, "ConstrVio", &constraint) == 0 &&
           std::max(bound, constraint) > 1e-7;
}

// Takes the model. A few changes at a time; then a copy must give the same by the other method. Half of the last
// changes are left to TVXoptimize.
inline void expect_agreement_through_changes(Dice *dice, TVXmodel *made,
                                             const Settings &settings)
{
    constexpr int ROUNDS = 6;
    LpModel lp;
    ASSERT_EQ(lp_read_back(made, &lp), 0);
    ApiModel live(dice, made);
    live.player.linear = true;
    ASSERT_TRUE(live.from_lp(lp));
    ASSERT_EQ(settings_apply(live.env(), settings), 0);
    for (int round = 0; round < ROUNDS && live.to_lp(&lp); round++) {
        SCOPED_TRACE(round);
        const int lp_method = dice->range(0, 1);
        LpSolution warm, fresh;
        ASSERT_EQ(TVXsetintparam(live.env(), "LPMethod", lp_method), 0);
        ASSERT_EQ(lp_solve(live.model, &warm), 0);
        const TestModel copy(TVXcopymodel(live.model));
        ASSERT_TRUE(copy);
        ASSERT_EQ(
            settings_apply(TVXgetenv(copy), {{"LPMethod", 1 - lp_method}, {"Presolve", 0}}),
            0);
        ASSERT_EQ(lp_solve(copy, &fresh), 0);
        if (lives_on_tolerance(live.model) || lives_on_tolerance(copy)) break;
        ASSERT_EQ(same_outcome(&warm, &fresh), "") << "method " << lp_method << "\n"
                                                   << lp_to_mps(&lp, "");
        for (int k = dice->range(1, 3); k > 0; k--) {
            live.player.step();
            live.player.reference.update();
            const bool now = k > 1 || dice->chance(50);
            ASSERT_EQ(now ? TVXupdatemodel(live.model) : 0, 0);
        }
        ASSERT_EQ(live.player.wrong, "");
    }
}
