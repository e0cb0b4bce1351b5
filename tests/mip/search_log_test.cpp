// search_log_test.cpp -- the lines of a search, from records made by hand
#include "mip/search_log.h"
#include "runtime/clock.h"
#include "support/lp_tarvex.h"
#include "support/scratch.h"

namespace
{
constexpr const char *HEADER =
    "\n    Nodes    |    Current Node    |     Objective Bounds      |     Work\n"
    " Expl Unexpl |  Obj  Depth IntInf | Incumbent    BestBd   Gap | It/Node Time\n\n";

struct SearchLog : testing::Test {
    TestEnv env;
    ModelBody body;
    MIPState state;
    NodeLPResult result;
    NodeData parent_data = {}, data = {};
    TreeNode parent = {}, node = {};

    void SetUp() override
    {
        ASSERT_EQ(TVXsetintparam(env.env, "OutputFlag", 1), 0);
        body.sense = 1;
        state.Env = env.env;
        state.Body = &body;
        state.StartTime = WallClock();
        state.RootIterations = 100;
        node.Parent = &parent;
        parent.Data = &parent_data;
        node.Data = &data;
        data.Status = NODE_FRACTIONAL;
        data.Result = &result;
        result.Fractionals = 4;
        result.SosViolated = 2;
    }
    std::string line()
    {
        Output output;
        node_log_line(&state, &node);
        return output.text();
    }
    std::string solution_line()
    {
        Output output;
        heuristic_log_line(&state);
        return output.text();
    }
    // A line, without the header.
    std::string forced()
    {
        state.HeaderPrinted = true;
        state.ForcedLine = state.Nodes;
        return line();
    }
    std::string column(size_t from, size_t width) // of a line
    {
        return forced().substr(from, width);
    }
    void bounds(double incumbent, double bound)
    {
        state.Pool.Incumbent = incumbent;
        state.Store.GlobalBound = bound;
    }
};
} // namespace

TEST_F(SearchLog, a_node_and_a_solution_have_their_columns)
{
    bounds(1e100, -1e100);
    data.LPObjective = 12.5;
    data.Depth = 3;
    EXPECT_EQ(
        line(),
        std::string(HEADER) +
            "     0     0   12.50000    3    6                           -           0s\n");
    state.Nodes = 12;
    state.Iterations = 160;
    state.DepthOffset = 10;
    bounds(20, 12.25);
    EXPECT_EQ(
        forced(),
        "    12     0   12.50000   13    6   20.00000   12.25000  38.8%   5.0    0s\n");
    data.Status = NODE_INTEGRAL;
    EXPECT_EQ(
        line(),
        "*   12     0              13      20.0000000   12.25000  38.8%   5.0    0s\n");
    EXPECT_EQ(
        solution_line(),
        "H   12     0                      20.0000000   12.25000  38.8%   5.0    0s\n");
    body.sense = -1;
    EXPECT_EQ(
        solution_line(),
        "H   12     0                     -20.0000000  -12.25000  38.8%   5.0    0s\n");
    state.RootIterations = -1;
    EXPECT_EQ(solution_line(), "Found heuristic solution: objective -20.0000000\n");
    state.Recursive = true;
    EXPECT_EQ(solution_line() + line(), "");
}

TEST_F(SearchLog, numbers_use_the_room_of_their_column)
{
    const struct {
        double value;
        const char *narrow, *wide;
    } cases[] = {{0, "   0.00000", "   0.0000000"},
                 {0.123456789, "   0.12346", "   0.1234568"},
                 {999.5, " 999.50000", " 999.5000000"},
                 {-999.5, "-999.50000", "-999.5000000"},
                 {1234.5, "1234.50000", "1234.5000000"},
                 {-1234.5, "-1234.5000", "-1234.500000"},
                 {1234567, "1234567.00", "1234567.0000"},
                 {-1234567, "-1234567.0", "-1234567.000"},
                 {12345678, "1.2346e+07", "1.234568e+07"},
                 {-12345678, "-1.235e+07", "-1.23457e+07"},
                 {-1.5e101, "-1.500e+101", "-1.50000e+101"}};
    state.Nodes = 5;
    for (const auto &one : cases) {
        bounds(1e99, -1e200);
        data.LPObjective = one.value;
        const std::string shown = forced();
        EXPECT_EQ(shown.substr(13, shown.find(' ', 23) - 13), one.narrow);
        bounds(one.value, one.value);
        EXPECT_EQ(solution_line().substr(32, std::string(one.wide).size()), one.wide);
    }
}

TEST_F(SearchLog, other_columns_have_words_for_what_has_no_number)
{
    state.Nodes = 5;
    bounds(20, 10);
    for (const auto &[status, word] : {std::pair{NODE_FAILED, "    failed"},
                                       {NODE_INFEASIBLE, "infeasible"},
                                       {NODE_CUTOFF, "    cutoff"},
                                       {NODE_EXPLODED, "  exploded"}}) {
        data.Status = status;
        EXPECT_EQ(column(13, 20), word + std::string("    0     "));
    }
    data.Status = NODE_FRACTIONAL;
    data.LPObjective = 3; // below the bound of all nodes
    EXPECT_EQ(column(13, 10), "  10.00000");
    bounds(1e100, 1e100);
    EXPECT_EQ(column(45, 17), "infeasible     - ");
    const struct {
        double incumbent, bound;
        const char *gap;
    } gaps[] = {{20, 20, "   0.0%"},     {20, 20 - 1e-11, "   0.0%"},
                {100, 99.9, "  0.10%"},  {100, 90.06, "  9.94%"},
                {100, 90.04, "  10.0%"}, {100, 1, "  99.0%"},
                {100, 0.4, "   100%"},   {-1, -5, "   400%"},
                {1e-7, -1, "     - "},   {100, -1e100, "     - "},
                {0, 0, "   0.0%"}};
    for (const auto &one : gaps) {
        bounds(one.incumbent, one.bound);
        EXPECT_EQ(column(55, 7), one.gap) << one.incumbent << " " << one.bound;
    }
    for (const auto &[iterations, mean] : {std::pair{100., "   0.0"},
                                           {350., "  50.0"},
                                           {597., "  99.4"},
                                           {598., "   100"}}) {
        state.Iterations = iterations;
        EXPECT_EQ(column(62, 6), mean);
    }
    state.StartTime = WallClock() - 12.2;
    EXPECT_EQ(column(68, 7), "   12s\n");
}

// The grid of objectives shows in the bound, and never above the incumbent.
TEST_F(SearchLog, bound_is_the_next_possible_objective)
{
    state.Grid = {5, 1};
    bounds(26, 12);
    EXPECT_EQ(search_bound(&state, true), 16);
    EXPECT_EQ(search_bound(&state, false), 12);
    bounds(14, 12);
    EXPECT_EQ(search_bound(&state, true), 14);
    bounds(11, 12);
    EXPECT_EQ(search_bound(&state, false), 11);
}

TEST_F(SearchLog, a_line_is_due_at_the_start_for_solutions_when_forced_and_at_ticks)
{
    env.env->DisplayInterval = 1000;
    EXPECT_NE(line(), ""); // the first
    state.Nodes = 5;
    EXPECT_EQ(line(), "");
    state.ForcedLine = 5;
    EXPECT_NE(line(), "");
    state.Nodes = 6;
    EXPECT_EQ(line(), "");
    data.Status = NODE_INTEGRAL;
    EXPECT_NE(line(), "");
    data.Status = NODE_CUTOFF;
    state.StartTime -= 1001;
    EXPECT_NE(line(), "");
    EXPECT_EQ(line(), "");
    node.Parent = nullptr; // the root, again
    state.ForcedLine = 6;
    EXPECT_EQ(line(), "");
}
