// The closing lines of a MIP, from results made by hand.
#include "frame/model.h"
#include "frame/optimize_log.h"
#include "support/lp_tarvex.h"
#include <cstring>
#include <gtest/gtest.h>

namespace
{

struct MipEpilogue : testing::Test {
    TestEnv env;
    TVXmodel *model = nullptr;

    void SetUp() override
    {
        const double ub[] = {10, 10};
        ASSERT_EQ(
            TVXnewmodel(env.env, &model, nullptr, 2, nullptr, nullptr, ub, "II", nullptr),
            0);
        ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "OutputFlag", 1), 0);
        model->mip_result = static_cast<MipResult *>(MemAllocZero(1, sizeof(MipResult)));
        MipResult *result = model->mip_result;
        result->status = TVX_OPTIMAL;
        result->node_count = 12;
        result->iter_count = 345;
        result->thread_count = 2;
        result->objval = 100;
        result->objbound = 99;
    }
    void TearDown() override { TVXfreemodel(model); }

    // Everything from the line behind "Thread count" on.
    std::string closing(int error)
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(log_mip_epilogue(model, error), 0);
        const std::string text = testing::internal::GetCapturedStdout();
        const std::string explored = "\nExplored 12 nodes (345 simplex iterations) in ";
        EXPECT_EQ(text.substr(0, explored.size()), explored);
        const size_t threads = text.find("Thread count was 2 (of ");
        EXPECT_NE(threads, std::string::npos);
        return text.substr(text.find('\n', threads) + 1);
    }
};

} // namespace

TEST_F(MipEpilogue, tells_status_values_and_gap)
{
    EXPECT_EQ(closing(0), "\nOptimal solution found (tolerance 1.00e-04)\n"
                          "Best objective 1.0000000000e+02, best bound 9.9000000000e+01, "
                          "gap 1.0000%\n");
}

TEST_F(MipEpilogue, has_a_line_for_every_status)
{
    const std::pair<int, const char *> lines[] = {
        {TVX_INFEASIBLE, "Model is infeasible\n"},
        {TVX_INF_OR_UNBD, "Model is infeasible or unbounded\n"},
        {TVX_UNBOUNDED, "Model is unbounded\n"},
        {TVX_CUTOFF, "Model objective exceeds cutoff\n"},
        {TVX_ITERATION_LIMIT, "Iteration limit reached\n"},
        {TVX_NODE_LIMIT, "Node limit reached\n"},
        {TVX_TIME_LIMIT, "Time limit reached\n"},
        {TVX_SOLUTION_LIMIT, "Solution limit reached\n"},
        {TVX_INTERRUPTED, "Solve interrupted\n"},
    };
    for (const auto &[status, line] : lines) {
        model->mip_result->status = status;
        EXPECT_EQ(closing(0).rfind(std::string("\n") + line + "Best objective", 0), 0u)
            << line;
    }
    EXPECT_EQ(closing(10011).rfind("\nSolve interrupted (error code 10011)\nBest", 0), 0u);
}

TEST_F(MipEpilogue, a_gap_needs_two_finite_values_and_an_objective_off_zero)
{
    MipResult *result = model->mip_result;
    const auto last_line = [&] {
        const std::string text = closing(0);
        return text.substr(text.find("Best objective"));
    };
    result->objval = 1e100;
    EXPECT_EQ(last_line(), "Best objective -, best bound 9.9000000000e+01, gap -\n");
    result->objval = 1e-7;
    EXPECT_EQ(last_line(),
              "Best objective 1.0000000000e-07, best bound 9.9000000000e+01, gap -\n");
    result->objval = result->objbound = 0;
    EXPECT_EQ(last_line(),
              "Best objective 0.0000000000e+00, best bound 0.0000000000e+00, gap 0.0%\n");
    result->objval = -50;
    result->objbound = -1e100;
    EXPECT_EQ(last_line(), "Best objective -5.0000000000e+01, best bound -, gap -\n");
}

TEST_F(MipEpilogue, warns_of_a_solution_that_violates_the_tolerances)
{
    const double x[] = {0.5, 0};
    model->mip_result->has_solution = 1;
    ASSERT_EQ(array_copy(&model->mip_result->x, x, 2), 0);
    EXPECT_NE(closing(0).find(
                  "Warning: max integrality violation (5.0000e-01) exceeds tolerance\n"
                  "Best objective"),
              std::string::npos);
    double value = 0;
    EXPECT_EQ(TVXgetdblattr(model, "IntVio", &value), 0);
    EXPECT_EQ(value, 0.5);
    int index = -1;
    EXPECT_EQ(TVXgetintattr(model, "IntVioIndex", &index), 0);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(TVXgetdblattr(model, "DualVio", &value), 10005); // not for a MIP
    EXPECT_EQ(TVXgetdblattrelement(model, "Pi", 0, &value), 10006);
    EXPECT_EQ(TVXgetdblattrelement(model, "RC", 0, &value), 10005);
}

TEST_F(MipEpilogue, results_are_read_from_the_record_of_the_mip)
{
    double value = 0;
    int count = 0;
    EXPECT_EQ(TVXgetdblattr(model, "ObjBound", &value), 0);
    EXPECT_EQ(value, 99);
    EXPECT_EQ(TVXgetdblattr(model, "NodeCount", &value), 0);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(TVXgetdblattrelement(model, "X", 0, &value), 10005); // no solution
    model->mip_result->sol_count = 3;
    EXPECT_EQ(TVXgetintattr(model, "SolCount", &count), 0);
    EXPECT_EQ(count, 3);
    for (const int status : {TVX_INFEASIBLE, TVX_INF_OR_UNBD, TVX_UNBOUNDED}) {
        model->mip_result->status = status;
        EXPECT_EQ(TVXgetintattr(model, "Status", &count), 0);
        EXPECT_EQ(count, status);
        EXPECT_EQ(TVXgetdblattr(model, "ObjVal", &value), 10005);
        EXPECT_EQ(TVXgetdblattr(model, "ObjBound", &value), 10005);
    }
}
