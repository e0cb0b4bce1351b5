// lp_driver_test.cpp -- the route of a linear program as a caller sees it: log lines, statuses, second solves
//
// Values and multipliers are judged in tests/models; what survives an update is in model_update_test.cpp.
#include "support/model_test.h"
#include <algorithm>
#include <cmath>
#include <sstream>

namespace
{
// min x0 + 2 x1    x0 + x1 + x2 >= 4    x0 - x1 <= 2    x0 + x2 = 3    0 <= x0 <= 2,  0 <= x1,  x2 free
// Optimum (0, 1, 3), value 2.
LpModel small_lp()
{
    return lp_make({{1, 0, 2}, {2}, {0, -LP_INFINITY}},
                   {{{1, 1, 1}, '>', 4}, {{1, -1}, '<', 2}, {{1, 0, 1}, '=', 3}});
}

struct LpDriver : ModelTest {
    Scratch folder;

    void SetUp() override
    {
        ASSERT_EQ(TVXsetintparam(env.env, "Presolve", 0), 0); // the simplex alone
        load(small_lp());
    }
    int status() { return integer("Status"); }

    // The lines of one solve, the same in the log file and on standard output; seconds replaced by "#".
    std::vector<std::string> solve_log()
    {
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        EXPECT_EQ(TVXsetstrparam(own(), "LogFile", "solve.log"), 0);
        Output output;
        EXPECT_EQ(TVXoptimize(model), 0);
        const std::string shown = output.text();
        EXPECT_EQ(TVXsetstrparam(own(), "LogFile", ""), 0);
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 0), 0);
        EXPECT_TRUE(file_get("solve.log").ends_with("\n\n" + shown));
        std::filesystem::remove("solve.log");
        std::vector<std::string> lines;
        std::istringstream in(shown);
        for (std::string line; std::getline(in, line);) {
            const size_t at = line.find(" and "), end = line.find(" seconds");
            if (at < end && end != std::string::npos)
                line.replace(at + 5, end - at - 5, "#");
            lines.push_back(line);
        }
        return lines;
    }
    std::string effort(const char *word)
    {
        char line[64];
        snprintf(line, sizeof line, "%s in %.0f iterations and # seconds", word,
                 dbl("IterCount"));
        return line;
    }
};
} // namespace

TEST_F(LpDriver, writes_its_lines_in_order_and_only_the_last_ones_for_what_is_solved)
{
    const std::string size = "Optimize a model with 3 rows, 3 columns and 7 nonzeros",
                      outcome = "Optimal objective  2.000000000e+00";
    const std::vector<std::string> lines = solve_log();
    ASSERT_GE(lines.size(), 6u);
    EXPECT_EQ(lines[0], size);
    EXPECT_EQ(lines[1], "Iteration    Objective       Primal Inf.    Dual Inf.      Time");
    EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
              (std::vector<std::string>{"", effort("Solved"), outcome}));
    const double iterations = dbl("IterCount");
    EXPECT_EQ(solve_log(), (std::vector<std::string>{size, "", effort("Solved"), outcome}));
    EXPECT_EQ(dbl("IterCount"), iterations);
    EXPECT_EQ(dbl("ObjVal"), 2);
    EXPECT_EQ(integer("SolCount"), 1);
    EXPECT_EQ(all("X", 3), all("Xn", 3));
    double value = 0;
    EXPECT_EQ(TVXgetdblattr(model, "ObjBound", &value), 10005); // of a MIP only
    EXPECT_EQ(own()->TARV_PAR_UNSCALEDVIO, -2) << "changed for the solve only";
    EXPECT_EQ(own()->MarkowitzTol, 0.0078125);
}

TEST_F(LpDriver, logs_no_objective_at_bounds_that_do_not_exist)
{
    for (const double method : {0, 1}) {
        // neither variable has an upper bound, both costs pull upwards
        load(lp_make({{1}, {2}}, {{{1, 1}, '<', 4}}, -1), {{"LPMethod", method}});
        const std::vector<std::string> lines = solve_log();
        double iterations = -1, objective = LP_INFINITY;
        ASSERT_EQ(sscanf(lines[2].c_str(), "%lf %lf", &iterations, &objective), 2);
        EXPECT_EQ(iterations, 0);
        EXPECT_LE(std::fabs(objective), 1e3) << lines[2];
    }
}

TEST_F(LpDriver, tells_how_it_ends_and_goes_on_from_a_limit)
{
    LpModel infeasible = small_lp(), unbounded = small_lp();
    infeasible.rhs[2] = -50; // x2 <= -50, so x1 must grow; forbid it
    infeasible.ub[1] = 1;
    unbounded.obj[1] = -1;
    const std::tuple<LpModel, const char *, const char *, int> ends[] = {
        {infeasible, nullptr, "Infeasible model", TVX_INFEASIBLE},
        {unbounded, nullptr, "Unbounded model", TVX_UNBOUNDED},
        {small_lp(), "IterationLimit", "Iteration limit exceeded", TVX_ITERATION_LIMIT},
        {small_lp(), "TimeLimit", "Time limit exceeded", TVX_TIME_LIMIT}};
    for (const auto &[lp, limit, said, expected] : ends) {
        load(lp);
        ASSERT_EQ(limit ? TVXsetdblparam(own(), limit, 0) : 0, 0);
        const std::vector<std::string> lines = solve_log();
        EXPECT_EQ(lines.back(), said);
        EXPECT_EQ(lines[lines.size() - 2], effort(limit ? "Stopped" : "Solved"));
        EXPECT_EQ(status(), expected);
        if (!limit) {
            double value = 0; // that other results are missing: fuzz/corpus_test.cpp
            EXPECT_EQ(TVXgetdblattrelement(model, "Xn", 0, &value), 10005);
            EXPECT_EQ(integer("SolCount"), 0); // and once more, at once:
            ASSERT_EQ(TVXoptimize(model), 0);
            EXPECT_EQ(status(), expected);
            continue;
        }
        (void)all("X", 3); // where the simplex stands
        ASSERT_EQ(TVXsetdblparam(own(), limit, 1e100), 0);
        EXPECT_EQ(objective(), 2);
        EXPECT_EQ(all("X", 3), (std::vector<double>{0, 1, 3}))
            << "not what was read before";
    }
}

TEST_F(LpDriver, tells_bounds_that_cross_by_little_in_full_and_that_there_is_no_barrier)
{
    ASSERT_EQ(TVXsetintparam(own(), "LPMethod", 2), 0);
    EXPECT_EQ(solve_log()[1], "Warning: barrier is not available, using dual simplex");
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(own()->LPMethod, 2);
    ASSERT_EQ(TVXsetdblattrelement(model, "LB", 0, 1234567.25), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 1234567), 0);
    const std::vector<std::string> lines = solve_log();
    EXPECT_EQ(std::count(lines.begin(), lines.end(),
                         "         in full, lower = 1234567.25 and upper = 1234567"),
              1);
}

TEST_F(LpDriver, solves_a_model_with_integers_once_it_is_continuous)
{
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 0.5), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "Obj", 0, -1),
              0); // optimum (0.5, 1, 2.5), value 1.5
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 0, 'I'), 0);
    EXPECT_EQ(objective(), 2); // (0, 1, 3)
    EXPECT_EQ(integer("IsMIP"), 1);
    double value = 0;
    EXPECT_EQ(TVXgetdblattrelement(model, "Pi", 0, &value), 10005)
        << "multipliers of a MIP";
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 0, 'C'), 0);
    EXPECT_EQ(objective(), 1.5);
    EXPECT_EQ(integer("IsMIP"), 0);
    EXPECT_EQ(TVXgetdblattrelement(model, "Pi", 0, &value), 0);
}
