// Every allocation of a solve and of reading its results fails in turn: the code is that of memory, the model works
// afterwards, and nothing is lost.
#include "frame/model.h"
#include "frame/runtime/memory.h"
#include "support/lp_tarvex.h"
#include <gtest/gtest.h>

#ifdef TVX_DEBUG
namespace
{

LpModel degenerate_lp()
{
    LpModel lp;
    lp.sense = -1;
    for (int j = 0; j < 6; j++)
        lp_add_var(&lp, 1 + j % 3, j % 2 ? -1 : 0, j == 5 ? LP_INFINITY : 4);
    for (int i = 0; i < 5; i++)
        lp_add_row_entries(&lp, {{i, 1}, {(i + 1) % 6, 2}, {5, 1}}, i == 3 ? '>' : '<',
                           i == 3 ? -20 : 6);
    return lp;
}

// A whole use: change, solve, read everything. The first code that is not 0.
int use(TVXmodel *model)
{
    double values[6];
    char *names[6];
    int codes[6];
    int error = TVXsetdblattrelement(model, "UB", 0, 3);
    if (!error) error = TVXsetdblattrelement(model, "Start", 2, 1);
    if (!error) error = TVXoptimize(model);
    for (const char *name : {"X", "RC"})
        if (!error) error = TVXgetdblattrarray(model, name, 0, -1, values);
    for (const char *name : {"Pi", "Slack"})
        if (!error) error = TVXgetdblattrarray(model, name, 0, -1, values);
    if (!error) error = TVXgetintattrarray(model, "VBasis", 0, -1, codes);
    if (!error) error = TVXgetstrattrarray(model, "VarName", 0, -1, names);
    if (!error) error = TVXgetdblattr(model, "DualVio", values);
    if (!error) error = TVXgetdblattr(model, "MaxCoeff", values);
    return error;
}

} // namespace

TEST(OptimizeMemory, every_failed_allocation_is_told_and_the_model_works_afterwards)
{
    const LpModel lp = degenerate_lp();
    double expected = 0;
    const int64_t before = mem_blocks_held();
    for (int64_t n = 0;; n++) {
        TestEnv env;
        TestModel model(lp_load(env.env, &lp));
        ASSERT_NE(model.model, nullptr);
        mem_fault_arm(n); // 0: the run that everything is compared with
        const int error = use(model);
        const int64_t hits = mem_fault_hits();
        mem_fault_arm(0);
        if (n > 0 && hits == 0) break;
        SCOPED_TRACE(n);
        if (error) {
            EXPECT_EQ(error, 10001);
            EXPECT_NE(TVXgetmerrormsg(model)[0], '\0');
            EXPECT_EQ(model.model->busy, 0);
            int status = -1;
            EXPECT_EQ(TVXgetintattr(model, "Status", &status), 0);
            EXPECT_EQ(use(model), 0);
        }
        double objval = 0;
        ASSERT_EQ(TVXgetdblattr(model, "ObjVal", &objval), 0);
        if (n == 0) expected = objval;
        EXPECT_NEAR(objval, expected, 1e-9);
        ASSERT_LT(n, 100000);
    }
    EXPECT_EQ(mem_blocks_held(), before);
}

TEST(OptimizeMemory, running_out_inside_the_solve_leaves_a_loaded_model_and_the_text)
{
    const LpModel lp = degenerate_lp();
    TestEnv env;
    TestModel model(lp_load(env.env, &lp));
    ASSERT_EQ(TVXupdatemodel(model), 0);
    mem_fault_arm(1);
    const int error = TVXoptimize(model);
    mem_fault_arm(0);
    EXPECT_EQ(error, 10001);
    EXPECT_STREQ(TVXgetmerrormsg(model), "Optimization exhausted available memory");
    int status = -1;
    EXPECT_EQ(TVXgetintattr(model, "Status", &status), 0);
    EXPECT_EQ(status, TVX_LOADED);
    EXPECT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(TVXgetintattr(model, "Status", &status), 0);
    EXPECT_EQ(status, TVX_OPTIMAL);
}
#endif
