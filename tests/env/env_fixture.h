// env_fixture.h -- Env, an environment in an empty directory
#pragma once
#include "env/env.h"
#include "support/scratch.h"

struct Env : testing::Test {
    Scratch scratch;
    TVXenv *env = nullptr;
    void SetUp() override { ASSERT_EQ(TVXloadenv(&env, nullptr), 0); }
    void TearDown() override { TVXfreeenv(env); }
    std::string message() { return TVXgeterrormsg(env); }
};
