// mip_test.cpp -- the closing lines of a MIP, from results made by hand, and the presets of MIPFocus
#include "mip/mip.h"
#include "model/model.h"
#include "support/model_test.h"

namespace
{
struct MipEpilogue : ModelTest {
    MipResult *result = nullptr;

    void SetUp() override
    {
        load("min 0 x + 0 y bounds x <= 10 y <= 10 general x y");
        ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        result = model->mip.result = record_create<MipResult>();
        model->mip.body = model->body;
        model->mip.env = model->env;
        result->status = TVX_OPTIMAL;
        result->node_count = 12;
        result->iter_count = 345;
        result->thread_count = 2;
        result->objval = 100;
        result->objbound = 99;
    }
    // Everything from the line behind "Thread count" on.
    std::string closing(int error = 0)
    {
        Output output;
        EXPECT_EQ(mip_log_result(&model->mip, error), 0);
        const std::string text = output.text();
        EXPECT_TRUE(text.starts_with("\nExplored 12 nodes (345 simplex iterations) in "))
            << text;
        const size_t threads = text.find("Thread count was 2 (of ");
        EXPECT_NE(threads, std::string::npos);
        return text.substr(text.find('\n', threads) + 1);
    }
};
} // namespace

TEST_F(MipEpilogue, has_a_line_for_every_status)
{
    std::string lines;
    for (int status = TVX_OPTIMAL; status <= TVX_INTERRUPTED; status++) {
        result->status = status;
        const std::string text = closing();
        lines += text.substr(0, text.find("\nBest"));
    }
    EXPECT_EQ(lines, "\nOptimal solution found (tolerance 1.00e-04)\nModel is infeasible"
                     "\nModel is infeasible or unbounded\nModel is unbounded"
                     "\nModel objective exceeds cutoff\nIteration limit reached"
                     "\nNode limit reached\nTime limit reached\nSolution limit reached"
                     "\nSolve interrupted");
    EXPECT_TRUE(closing(10011).starts_with("\nSolve interrupted (error code 10011)\nBest"));
}

TEST_F(MipEpilogue, a_gap_needs_two_finite_values_and_an_objective_off_zero)
{
    const struct {
        double objval, objbound;
        const char *line;
    } cases[] = {{100, 99, "1.0000000000e+02, best bound 9.9000000000e+01, gap 1.0000%"},
                 {1e100, 99, "-, best bound 9.9000000000e+01, gap -"},
                 {1e-7, 99, "1.0000000000e-07, best bound 9.9000000000e+01, gap -"},
                 {0, 0, "0.0000000000e+00, best bound 0.0000000000e+00, gap 0.0%"},
                 {-50, -1e100, "-5.0000000000e+01, best bound -, gap -"}};
    for (const auto &one : cases) {
        result->objval = one.objval;
        result->objbound = one.objbound;
        EXPECT_TRUE(closing().ends_with(std::string("\nBest objective ") + one.line + "\n"))
            << one.line;
    }
}

TEST_F(MipEpilogue, results_are_read_from_the_record_of_the_mip)
{
    double value = 0;
    EXPECT_EQ(dbl("ObjBound"), 99);
    EXPECT_EQ(dbl("NodeCount"), 12);
    EXPECT_EQ(TVXgetdblattrelement(model, "X", 0, &value), 10005); // no solution
    const double x[] = {0.5, 0};
    result->has_solution = result->sol_count = 1;
    ASSERT_EQ(array_copy(&result->x, x, 2), 0);
    EXPECT_NE(closing().find("Warning: max integrality violation (5.0000e-01) exceeds "
                             "tolerance\nBest objective"),
              std::string::npos);
    EXPECT_EQ(dbl("IntVio"), 0.5);
    EXPECT_EQ(integer("IntVioIndex"), 0);
    EXPECT_EQ(integer("SolCount"), 1);
    const double other[] = {1, 7};
    ASSERT_EQ(array_copy(&result->others, other, 2), 0);
    result->other_count = 1;
    for (const int number : {0, 1, 2}) {
        ASSERT_EQ(TVXsetintparam(own(), "SolutionNumber", number), 0);
        EXPECT_EQ(TVXgetdblattrelement(model, "Xn", 1, &value), number < 2 ? 0 : 10005);
        EXPECT_EQ(value, number == 0 ? 0 : 7);
    }
    EXPECT_EQ(TVXgetdblattr(model, "DualVio", &value), 10005); // not for a MIP
    EXPECT_EQ(TVXgetdblattrelement(model, "RC", 0, &value), 10005);
    for (result->status = TVX_INFEASIBLE; result->status <= TVX_UNBOUNDED; result->status++)
        for (const char *name : {"ObjVal", "ObjBound"})
            EXPECT_EQ(TVXgetdblattr(model, name, &value), 10005) << result->status;
}

// Applied where a parameter has its default, in a copy of the caller's environment.
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
    EXPECT_EQ(own->TARV_PAR_ASPIRE, 0.2);
    env_free(own);
    EXPECT_EQ(env->CutAggPasses, -1);
}
