// The presets of MIPFocus: applied where a parameter has its default, in a copy of the caller's environment.
#include "mip/mip.h"
#include "support/lp_tarvex.h"
#include <gtest/gtest.h>

TEST(MipFocus, presets_respect_what_the_caller_chose_and_leave_his_environment_alone)
{
    TestEnv given;
    TVXenv *env = given.env, *own = nullptr;
    env->MIPFocus = 3;
    env->Cuts = 0; // the caller's choice
    ASSERT_EQ(env_variant(&own, env), 0);
    mip_focus_apply(own);
    EXPECT_EQ(own->Cuts, 0);
    EXPECT_EQ(own->CutAggPasses, 20);
    EXPECT_EQ(own->Presolve, 2);
    EXPECT_EQ(own->TARV_PAR_ASPIRE, 0.2);
    EXPECT_EQ(own->TARV_PAR_CUTORTHTOL, 0.99);
    EXPECT_EQ(own->RINS, -1);
    env_free(own);
    EXPECT_EQ(env->CutAggPasses, -1);
    EXPECT_EQ(env->Presolve, -1);
}
