// closing_line_test.cpp -- what the closing line says of a solve that has run out of memory
#include "model/model.h"
#include "support/model_test.h"
#include "support/structured_gen.h"

#ifdef TVX_DEBUG

namespace
{
struct ClosingLine : ModelTest {
    // The closing line of a solve whose request number `fail_at` fails, with all behind it; 0: none fails.
    std::string solve(int fail_at, int *code)
    {
        EXPECT_EQ(TVXresetmodel(model), 0);
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        Output output;
        mem_fault_arm(fail_at);
        *code = TVXoptimize(model);
        mem_fault_arm(0);
        const std::string shown = output.text();
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 0), 0);
        const size_t at = shown.find(*code ? "Stopped in " : "Solved in ");
        if (at == std::string::npos) return "";
        return shown.substr(at, shown.find(" iterations", at) - at);
    }
};
} // namespace

// A solve that fails behind the last pivot has made as many iterations as one that succeeds.
TEST_F(ClosingLine, tells_the_iterations_done_before_memory_ran_out)
{
    Dice dice(5);
    ASSERT_EQ(TVXsetintparam(env.env, "Presolve", 0), 0);
    load(gen_multi_period(&dice, 12).lp);
    int code = 0;
    const std::string whole = solve(0, &code);
    ASSERT_EQ(code, 0);
    const std::string done = whole.substr(whole.find(" in "));
    ASSERT_NE(done, " in 0");
    bool told = false;
    for (int fail_at = 1;; fail_at++) {
        const std::string line = solve(fail_at, &code);
        if (!code) break;
        ASSERT_EQ(code, TVX_ERROR_OUT_OF_MEMORY);
        told = told || line == "Stopped" + done;
    }
    EXPECT_TRUE(told);
}

#endif
