// The presets of MIPFocus: applied where a parameter has its default, and taken back.
#include "api/optimize.h"
#include "support/lp_tarvex.h"
#include <gtest/gtest.h>

TEST(MipFocus, presets_respect_what_the_caller_chose_and_are_taken_back)
{
    TestEnv given;
    TVXenv *env = given.env;
    env->MIPFocus = 3;
    env->Cuts = 0; // the caller's choice
    const MipFocusSaved saved = mip_focus_apply(env);
    EXPECT_EQ(env->Cuts, 0);
    EXPECT_EQ(env->CutAggPasses, 20);
    EXPECT_EQ(env->Presolve, 2);
    EXPECT_EQ(env->TARV_PAR_ASPIRE, 0.2);
    EXPECT_EQ(env->TARV_PAR_CUTORTHTOL, 0.99);
    EXPECT_EQ(env->RINS, -1);
    mip_focus_restore(env, saved);
    EXPECT_EQ(env->CutAggPasses, -1);
    EXPECT_EQ(env->Presolve, -1);
    EXPECT_EQ(env->TARV_PAR_ASPIRE, 1);
    EXPECT_EQ(env->TARV_PAR_CUTORTHTOL, 0.95);
}
