// The route of a linear program as a caller sees it: log lines, statuses, results, what a second solve does.
#include "frame/model.h"
#include "frame/optimize.h"
#include "support/lp_tarvex.h"
#include "support/scratch.h"
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace
{

// min x0 + 2 x1    x0 + x1 + x2 >= 4    x0 - x1 <= 2    x0 + x2 = 3    0 <= x0 <= 2,  0 <= x1,  x2 free
// Optimum (0, 1, 3), value 2, Pi = (2, 0, -2), RC = (1, 0, 0), Slack = (0, 3, 0).
LpModel small_lp()
{
    LpModel lp;
    lp_add_var(&lp, 1, 0, 2);
    lp_add_var(&lp, 2, 0, LP_INFINITY);
    lp_add_var(&lp, 0, -LP_INFINITY, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '>', 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '<', 2);
    lp_add_row_entries(&lp, {{0, 1}, {2, 1}}, '=', 3);
    return lp;
}

LpModel negated(LpModel lp)
{
    lp.sense = -lp.sense;
    lp.objcon = -lp.objcon;
    for (double &c : lp.obj) c = -c;
    return lp;
}

struct LpDriver : testing::Test {
    Scratch folder;
    TestEnv env;
    TVXmodel *model = nullptr;

    void TearDown() override { TVXfreemodel(model); }

    void load(const LpModel &lp)
    {
        TVXfreemodel(model);
        model = lp_load(env.env, &lp);
        ASSERT_NE(model, nullptr);
    }
    TVXenv *own() { return TVXgetenv(model); }
    int status()
    {
        int value = -1;
        EXPECT_EQ(TVXgetintattr(model, "Status", &value), 0);
        return value;
    }
    double dbl(const char *name)
    {
        double value = -12345;
        EXPECT_EQ(TVXgetdblattr(model, name, &value), 0) << name;
        return value;
    }
    std::vector<double> all(const char *name)
    {
        std::vector<double> values(3, -12345);
        EXPECT_EQ(TVXgetdblattrarray(model, name, 0, -1, values.data()), 0) << name;
        return values;
    }

    // The lines of one solve in the log file, seconds replaced by "#".
    std::vector<std::string> solve_log()
    {
        const std::string file = (folder.path / "solve.log").string();
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        EXPECT_EQ(TVXsetstrparam(own(), "LogFile", file.c_str()), 0);
        testing::internal::CaptureStdout();
        EXPECT_EQ(TVXoptimize(model), 0);
        const std::string shown = testing::internal::GetCapturedStdout();
        EXPECT_EQ(TVXsetstrparam(own(), "LogFile", ""), 0);
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 0), 0);
        std::vector<std::string> lines;
        std::ifstream log(file);
        std::string text;
        for (std::string line; std::getline(log, line);) lines.push_back(line);
        unlink(file.c_str());
        EXPECT_GE(lines.size(), 3u);
        lines.erase(lines.begin(), lines.begin() + 3); // blank, logging started, blank
        for (const std::string &line : lines) text += line + "\n";
        EXPECT_EQ(text, shown) << "standard output and log file differ";
        for (std::string &line : lines)
            if (const size_t at = line.find(" and "); at != std::string::npos)
                if (line.find(" seconds", at) != std::string::npos)
                    line.replace(at + 5, line.find(" seconds") - at - 5, "#");
        return lines;
    }
};

} // namespace

TEST_F(LpDriver, shows_the_solution_in_the_callers_signs)
{
    for (const int sense : {1, -1}) {
        SCOPED_TRACE(sense);
        load(sense == 1 ? small_lp() : negated(small_lp()));
        ASSERT_EQ(TVXoptimize(model), 0);
        ASSERT_EQ(status(), TVX_OPTIMAL);
        const std::vector<double> x{0, 1, 3}, slack{0, 3, 0};
        const std::vector<double> pi{2.0 * sense, 0, -2.0 * sense}, rc{1.0 * sense, 0, 0};
        EXPECT_EQ(all("X"), x);
        EXPECT_EQ(all("Xn"), x);
        EXPECT_EQ(all("Slack"), slack);
        EXPECT_EQ(all("Pi"), pi);
        EXPECT_EQ(all("RC"), rc);
        EXPECT_EQ(dbl("ObjVal"), 2 * sense);
        int count = 0, basis[3] = {};
        EXPECT_EQ(TVXgetintattr(model, "SolCount", &count), 0);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(TVXgetintattrarray(model, "VBasis", 0, -1, basis), 0);
        EXPECT_EQ(basis[0], TVX_NONBASIC_LOWER);
        EXPECT_EQ(basis[1], TVX_BASIC);
        EXPECT_EQ(TVXgetintattrarray(model, "CBasis", 0, -1, basis), 0);
        EXPECT_EQ(basis[0], TVX_NONBASIC_LOWER);
        EXPECT_EQ(basis[1], TVX_BASIC);
        for (const char *name :
             {"BoundVio", "ConstrVio", "ConstrSVio", "ConstrResidual", "DualVio",
              "DualSVio", "DualResidual", "ComplVio", "IntVio"})
            EXPECT_LE(dbl(name), 1e-12) << name;
        double value = 0;
        EXPECT_EQ(TVXgetdblattr(model, "ObjBound", &value), 10005); // of a MIP only
        EXPECT_GE(dbl("NodeCount"), 0);
        EXPECT_GE(dbl("Runtime"), 0);
    }
}

TEST_F(LpDriver, shows_a_basis_at_upper_bounds_and_a_slack_of_a_greater_row)
{
    LpModel lp; // max 3 x0 + x1,  x0 + x1 >= -7,  x1 - x0 = 1,  x0 <= 4, x1 <= 100
    lp.sense = -1;
    lp.objcon = 10;
    lp_add_var(&lp, 3, 0, 4);
    lp_add_var(&lp, 1, 0, 100);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '>', -7);
    lp_add_row_entries(&lp, {{0, -1}, {1, 1}}, '=', 1);
    load(lp);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(dbl("ObjVal"), 10 + 12 + 5);
    double slack[2], pi[2], rc[2];
    int basis[2];
    ASSERT_EQ(TVXgetdblattrarray(model, "Slack", 0, -1, slack), 0);
    ASSERT_EQ(TVXgetdblattrarray(model, "Pi", 0, -1, pi), 0);
    ASSERT_EQ(TVXgetdblattrarray(model, "RC", 0, -1, rc), 0);
    ASSERT_EQ(TVXgetintattrarray(model, "VBasis", 0, -1, basis), 0);
    EXPECT_EQ(slack[0], -7 - 9);
    EXPECT_EQ(pi[0], 0);
    EXPECT_EQ(pi[1], 1); // one more on the right lets x1 grow by one
    EXPECT_EQ(rc[0], 4); // max: at least 0 at an upper bound
    EXPECT_EQ(basis[0], TVX_NONBASIC_UPPER);
}

TEST_F(LpDriver, writes_its_lines_in_order)
{
    load(small_lp());
    ASSERT_EQ(TVXsetintparam(own(), "Presolve", 0), 0);
    const std::vector<std::string> lines = solve_log();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "Optimize a model with 3 rows, 3 columns and 7 nonzeros");
    EXPECT_EQ(lines[1], "Iteration    Objective       Primal Inf.    Dual Inf.      Time");
    const size_t end = lines.size();
    EXPECT_EQ(lines[end - 3], "");
    char solved[64];
    snprintf(solved, sizeof solved, "Solved in %.0f iterations and # seconds",
             dbl("IterCount"));
    EXPECT_EQ(lines[end - 2], solved);
    EXPECT_EQ(lines[end - 1], "Optimal objective  2.000000000e+00");
}

TEST_F(LpDriver, logs_no_objective_at_bounds_that_do_not_exist)
{
    LpModel lp; // neither variable has an upper bound, both costs pull upwards
    lp.sense = -1;
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_var(&lp, 2, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 4);
    for (const int method : {0, 1}) {
        load(lp);
        ASSERT_EQ(TVXsetintparam(own(), "Presolve", 0), 0);
        ASSERT_EQ(TVXsetintparam(own(), "LPMethod", method), 0);
        const std::vector<std::string> lines = solve_log();
        double iterations = -1, objective = LP_INFINITY;
        ASSERT_EQ(sscanf(lines[2].c_str(), "%lf %lf", &iterations, &objective), 2);
        EXPECT_EQ(iterations, 0);
        EXPECT_LE(std::fabs(objective), 1e3) << lines[2];
    }
}

TEST_F(LpDriver, does_not_solve_again_what_is_solved)
{
    load(small_lp());
    ASSERT_EQ(TVXoptimize(model), 0);
    const double iterations = dbl("IterCount");
    char solved[64];
    snprintf(solved, sizeof solved, "Solved in %.0f iterations and # seconds", iterations);
    const std::vector<std::string> expected{
        "Optimize a model with 3 rows, 3 columns and 7 nonzeros", "", solved,
        "Optimal objective  2.000000000e+00"};
    EXPECT_EQ(solve_log(), expected);
    EXPECT_EQ(dbl("IterCount"), iterations);
    EXPECT_EQ(dbl("ObjVal"), 2);
}

TEST_F(LpDriver, tells_infeasible_from_unbounded_and_shows_no_solution)
{
    LpModel infeasible = small_lp();
    infeasible.rhs[2] = -50; // x2 <= -50, so x1 must grow; forbid it
    infeasible.ub[1] = 1;
    LpModel unbounded = small_lp();
    unbounded.obj[1] = -1;
    const std::pair<LpModel, int> cases[] = {{infeasible, TVX_INFEASIBLE},
                                             {unbounded, TVX_UNBOUNDED}};
    for (const auto &[lp, expected] : cases) {
        load(lp);
        const std::vector<std::string> lines = solve_log();
        EXPECT_EQ(lines.back(),
                  expected == TVX_INFEASIBLE ? "Infeasible model" : "Unbounded model");
        EXPECT_EQ(lines[lines.size() - 2].rfind("Solved in ", 0), 0u);
        EXPECT_EQ(status(), expected);
        double value = 0;
        int i = 0;
        for (const char *name : {"X", "RC", "Xn"})
            EXPECT_EQ(TVXgetdblattrelement(model, name, 0, &value), 10005) << name;
        for (const char *name : {"Pi", "Slack"})
            EXPECT_EQ(TVXgetdblattrelement(model, name, 0, &value), 10005) << name;
        for (const char *name : {"ObjVal", "BoundVio", "DualVioSum"})
            EXPECT_EQ(TVXgetdblattr(model, name, &value), 10005) << name;
        EXPECT_EQ(TVXgetintattrelement(model, "VBasis", 0, &i), 10005);
        EXPECT_EQ(TVXgetintattr(model, "DualVioIndex", &i), 10005);
        EXPECT_GE(dbl("IterCount"), 0);
        EXPECT_EQ(TVXgetintattr(model, "SolCount", &i), 0);
        EXPECT_EQ(i, 0);
        ASSERT_EQ(TVXoptimize(model), 0); // once more, at once
        EXPECT_EQ(status(), expected);
    }
}

TEST_F(LpDriver, stops_at_a_limit_and_goes_on_from_there)
{
    load(small_lp());
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 0), 0);
    std::vector<std::string> lines = solve_log();
    ASSERT_EQ(status(), TVX_ITERATION_LIMIT);
    EXPECT_EQ(lines[lines.size() - 2], "Stopped in 0 iterations and # seconds");
    EXPECT_EQ(lines.back(), "Iteration limit exceeded");
    (void)all("X"); // where the simplex stands
    (void)dbl("ObjVal");
    (void)dbl("BoundVio");
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 1e100), 0);
    ASSERT_EQ(TVXsetdblparam(own(), "TimeLimit", 0), 0);
    lines = solve_log();
    ASSERT_EQ(status(), TVX_TIME_LIMIT);
    EXPECT_EQ(lines.back(), "Time limit exceeded");
    ASSERT_EQ(TVXsetdblparam(own(), "TimeLimit", 1e100), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("ObjVal"), 2);
    EXPECT_EQ(all("X"), (std::vector<double>{0, 1, 3}))
        << "what was read at the limit is forgotten";
}

TEST_F(LpDriver, an_update_of_content_takes_the_results_away_and_one_of_names_does_not)
{
    load(small_lp());
    ASSERT_EQ(TVXoptimize(model), 0);
    const std::vector<double> x = all("X");
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 0, "first"), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(all("X"), x);
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 1), 0);
    EXPECT_EQ(all("X"), x) << "still there before the update";
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(status(), TVX_LOADED);
    double value = 0;
    EXPECT_EQ(TVXgetdblattrelement(model, "X", 0, &value), 10005);
    EXPECT_EQ(TVXgetdblattr(model, "ObjVal", &value), 10005);
    EXPECT_EQ(TVXgetdblattr(model, "IterCount", &value), 10005);
    EXPECT_EQ(TVXgetdblattr(model, "DualVio", &value), 10005);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(dbl("ObjVal"), 2);
}

TEST_F(LpDriver, starts_from_the_basis_of_the_caller)
{
    load(small_lp());
    const int vbasis[] = {TVX_NONBASIC_LOWER, TVX_BASIC, TVX_BASIC};
    const int cbasis[] = {TVX_NONBASIC_LOWER, TVX_BASIC, TVX_NONBASIC_LOWER};
    ASSERT_EQ(TVXsetintattrarray(model, "VBasis", 0, -1, vbasis), 0);
    ASSERT_EQ(TVXsetintattrarray(model, "CBasis", 0, -1, cbasis), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("IterCount"), 0);
    EXPECT_EQ(dbl("ObjVal"), 2);
}

TEST_F(LpDriver, a_basis_set_after_a_limit_is_newer_than_the_stopped_simplex)
{
    load(small_lp());
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 0), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    ASSERT_EQ(status(), TVX_ITERATION_LIMIT);
    const int vbasis[] = {TVX_NONBASIC_LOWER, TVX_BASIC, TVX_BASIC};
    const int cbasis[] = {TVX_NONBASIC_LOWER, TVX_BASIC, TVX_NONBASIC_LOWER};
    ASSERT_EQ(TVXsetintattrarray(model, "VBasis", 0, -1, vbasis), 0);
    ASSERT_EQ(TVXsetintattrarray(model, "CBasis", 0, -1, cbasis), 0);
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 1e100), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("IterCount"), 0);
}

TEST_F(LpDriver, an_incomplete_basis_is_discarded_with_a_warning)
{
    load(small_lp());
    ASSERT_EQ(TVXsetintattrelement(model, "VBasis", 0, TVX_BASIC), 0);
    const std::vector<std::string> lines = solve_log();
    EXPECT_EQ(lines[0], "Warning, invalid warm-start basis discarded");
    EXPECT_EQ(status(), TVX_OPTIMAL);
}

TEST_F(LpDriver, says_that_there_is_no_barrier_and_solves_by_dual_simplex)
{
    load(small_lp());
    ASSERT_EQ(TVXsetintparam(own(), "LPMethod", 2), 0);
    const std::vector<std::string> lines = solve_log();
    EXPECT_EQ(lines[1], "Warning: barrier is not available, using dual simplex");
    EXPECT_EQ(status(), TVX_OPTIMAL);
    int method = 0;
    ASSERT_EQ(TVXgetintparam(own(), "LPMethod", &method), 0);
    EXPECT_EQ(method, 2);
}

TEST_F(LpDriver, restores_what_it_changes_for_one_solve)
{
    load(small_lp());
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(own()->TARV_PAR_UNSCALEDVIO, -2);
    EXPECT_EQ(own()->MarkowitzTol, 0.0078125);
    EXPECT_EQ(own()->OutputFlag, 0);
}

TEST_F(LpDriver, solves_models_without_rows_or_columns)
{
    load(LpModel{});
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("ObjVal"), 0);

    LpModel no_rows;
    no_rows.objcon = 5;
    lp_add_var(&no_rows, 1, -3, 10);
    lp_add_var(&no_rows, -1, -3, 10);
    load(no_rows);
    ASSERT_EQ(TVXoptimize(model), 0);
    ASSERT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("ObjVal"), 5 - 3 - 10);
    double x[2];
    ASSERT_EQ(TVXgetdblattrarray(model, "X", 0, -1, x), 0);
    EXPECT_EQ(x[0], -3);
    EXPECT_EQ(x[1], 10);

    LpModel no_columns;
    lp_add_row(&no_columns, '<', 3);
    load(no_columns);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    double slack = 0;
    ASSERT_EQ(TVXgetdblattrelement(model, "Slack", 0, &slack), 0);
    EXPECT_EQ(slack, 3);

    lp_add_row(&no_columns, '>', 1); // 0 >= 1
    load(no_columns);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_INFEASIBLE);
}

TEST_F(LpDriver, prints_nothing_when_output_is_off)
{
    load(small_lp());
    testing::internal::CaptureStdout();
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(LpDriver, writes_the_result_file_or_says_that_it_cannot)
{
    load(small_lp());
    ASSERT_EQ(TVXsetstrparam(own(), "ResultFile", "result.sol"), 0);
    std::vector<std::string> lines = solve_log();
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 3], "");
    EXPECT_EQ(lines[lines.size() - 2], "Wrote requested result file 'result.sol'");
    EXPECT_EQ(lines[lines.size() - 1], "");
    EXPECT_EQ(access("result.sol", R_OK), 0);
    ASSERT_EQ(TVXsetstrparam(own(), "ResultFile", "no/such/folder/result.sol"), 0);
    lines = solve_log();
    EXPECT_EQ(lines[lines.size() - 2],
              "WARNING: unable to write requested result file 'no/such/folder/result.sol'");
    EXPECT_STREQ(TVXgetmerrormsg(model), "");
}

TEST_F(LpDriver, dumps_model_and_parameters_when_asked)
{
    load(small_lp());
    ASSERT_EQ(TVXsetintparam(own(), "TARV_PAR_DUMP", 1), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(access("tarvex.rew", R_OK), 0);
    EXPECT_EQ(access("tarvex.prm", R_OK), 0);
}

TEST_F(LpDriver, refuses_what_needs_a_search_and_solves_it_once_it_is_continuous)
{
    load(small_lp());
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 0, 'I'), 0);
    EXPECT_EQ(TVXoptimize(model), 10016);
    EXPECT_STREQ(TVXgetmerrormsg(model),
                 "Only continuous models can be solved: this one has 1 integer or "
                 "semi-continuous variables and 0 SOS constraints");
    EXPECT_EQ(status(), TVX_LOADED);
    double value = 0;
    EXPECT_EQ(TVXgetdblattr(model, "ObjVal", &value), 10005);
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 0, 'C'), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("ObjVal"), 2);
}

TEST(ObjectiveIsBounded, needs_a_finite_bound_where_each_cost_would_run)
{
    TestEnv env;
    const auto bounded = [&](int sense, double cost, double lb, double ub) {
        LpModel lp;
        lp.sense = sense;
        lp_add_var(&lp, cost, lb, ub);
        TestModel model(lp_load(env.env, &lp));
        TVXmodel *given = model;
        return objective_is_bounded(given->env, given->body);
    };
    EXPECT_TRUE(bounded(1, 1, 0, LP_INFINITY));
    EXPECT_FALSE(bounded(1, -1, 0, LP_INFINITY));
    EXPECT_TRUE(bounded(-1, -1, 0, LP_INFINITY));
    EXPECT_FALSE(bounded(-1, 1, 0, LP_INFINITY));
    EXPECT_FALSE(bounded(1, 1, -LP_INFINITY, 0));
    EXPECT_TRUE(bounded(1, 0, -LP_INFINITY, LP_INFINITY));
}
