// solve_test.cpp -- models, parameters, starts, result files and the printed solution, as a user runs them
#include "cli/command.h"
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
using testing::HasSubstr;
using testing::Not;

namespace
{

class CliSolve : public Command
{
  public:
    void SetUp() override
    {
        file_put("plan.mps", PLAN_MODEL);
        file_put("never.mps", INFEASIBLE_MODEL);
    }
    // A failure at work: code 1 and one line that holds `words`.
    Outcome fails(const std::vector<std::string> &arguments, const std::string &words) const
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exit_code, 1);
        EXPECT_TRUE(is_one_line(outcome.err));
        EXPECT_THAT(outcome.err, HasSubstr(words));
        return outcome;
    }
    Outcome solves(const std::vector<std::string> &arguments) const
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exit_code, 0);
        EXPECT_EQ(outcome.err, "");
        return outcome;
    }
};

TEST_F(CliSolve, SolvedInfeasibleAndLimitedModelsAllEndWithZero)
{
    EXPECT_THAT(solves({"plan.mps"}).out, HasSubstr("Optimal objective"));
    EXPECT_THAT(solves({"Presolve=0", "never.mps"}).out, HasSubstr("Infeasible model"));
    EXPECT_THAT(solves({"Presolve=0", "IterationLimit=0", "plan.mps"}).out,
                HasSubstr("Iteration limit"));
}

TEST_F(CliSolve, FilesThatAreNoModelsAreErrors)
{
    file_put("broken.mps", "ROWS\n what is this\n");
    std::filesystem::create_directory("folder.mps");
    fails({"absent.mps"}, "absent.mps");
    fails({"folder.mps"}, "folder.mps");
    fails({"broken.mps"}, "line 2");
}

TEST_F(CliSolve, AModelThatFailsDoesNotKeepTheNextFromBeingSolved)
{
    const Outcome outcome = fails({"plan.mps", "absent.mps", "never.mps"}, "absent.mps");
    EXPECT_LT(outcome.out.find("plan: 2 rows"), outcome.out.find("never: 1 rows"));
    EXPECT_THAT(outcome.out, HasSubstr("never: 1 rows"));
}

TEST_F(CliSolve, TheSolutionIsPrintedByName)
{
    const Outcome outcome = solves({"OutputFlag=0", "--solution", "plan.mps", "never.mps"});
    EXPECT_EQ(outcome.out,
              "# Solution for model plan: optimal\n# Objective value 11\nx 3\ny 1\n"
              "# No solution for model never: infeasible\n");
}

TEST_F(CliSolve, NamesOfParametersIgnoreCaseAndUnderscores)
{
    EXPECT_THAT(solves({"presolve=0", "iteration_LIMIT=0", "plan.mps"}).out,
                HasSubstr("Iteration limit"));
    EXPECT_THAT(solves({"TimeLimit=inf", "TARV_PAR_BIGM=1e6", "plan.mps"}).out,
                HasSubstr("Optimal objective"));
}

TEST_F(CliSolve, TheCommandLineWinsOverParameterFiles)
{
    file_put("set.prm", "Presolve 0\nIterationLimit 0\n");
    EXPECT_THAT(solves({"--params", "set.prm", "plan.mps"}).out,
                HasSubstr("Iteration limit"));
    EXPECT_THAT(solves({"IterationLimit=100", "--params", "set.prm", "plan.mps"}).out,
                HasSubstr("Optimal objective"));
    fails({"--params", "absent.prm", "plan.mps"}, "absent.prm");
}

TEST_F(CliSolve, ALineOfAParameterFileThatCannotBeUsedIsAnError)
{
    for (const char *line : {"TimeLimt 5", "MIPFocus 4", "Threads 1.5", "Threads",
                             "Threads 1 2", "LogFile missing/run.log", "Threads\x01 1"}) {
        file_put("set.prm", std::string("# mine\nPresolve 0 # off\n") + line + "\n");
        EXPECT_THAT(fails({"--params", "set.prm", "plan.mps"}, "'set.prm' line 3: ").out,
                    Not(HasSubstr("Optimal objective")))
            << line;
    }
    file_put("set.prm", "ResultFile plan.sol\n");
    solves({"ResultFile=", "--params", "set.prm", "plan.mps"});
    EXPECT_FALSE(std::filesystem::exists("plan.sol"));
    solves({"--params", "set.prm", "plan.mps"});
    EXPECT_THAT(file_get("plan.sol"), HasSubstr("x 3\n"));
}

TEST_F(CliSolve, TheLogGoesToAFileAsWell)
{
    solves({"LogFile=run.log", "plan.mps"});
    EXPECT_THAT(file_get("run.log"), HasSubstr("Optimal objective"));
    fails({"LogFile=missing/run.log", "plan.mps"}, "missing/run.log");
}

TEST_F(CliSolve, ResultFilesAreWritten)
{
    solves({"ResultFile=plan.sol", "Result_File=again.MPS", "plan.mps"});
    EXPECT_THAT(file_get("plan.sol"), HasSubstr("x 3\ny 1\n"));
    EXPECT_THAT(file_get("again.MPS"), HasSubstr("ENDATA"));
    solves({"Presolve=0", "IterationLimit=0", "ResultFile=plan.sol", "plan.mps"});
    EXPECT_THAT(file_get("plan.sol"), HasSubstr("\n# Not optimal (iteration limit): "));
}

TEST_F(CliSolve, AnOlderResultFileDoesNotPassForTheResult)
{
    for (const char *file : {"x.sol", "x.bas", "x.mst"}) {
        file_put(file, "older\n");
        const std::string result = std::string("ResultFile=") + file;
        EXPECT_THAT(solves({result, "Presolve=1", "never.mps"}).out,
                    HasSubstr("There is nothing to write: infeasible"));
        EXPECT_FALSE(std::filesystem::exists(file)) << file;
    }
    file_put("whole.lp", "min x st c: x >= 1 general x end\n");
    file_put("x.sol", "older\n");
    fails({"ResultFile=x.sol", "whole.lp"}, "whole.lp");
    EXPECT_FALSE(std::filesystem::exists("x.sol"));
}

TEST_F(CliSolve, ABasisWrittenIsABasisToStartFrom)
{
    solves({"Presolve=0", "ResultFile=plan.bas", "plan.mps"});
    EXPECT_THAT(solves({"Presolve=0", "plan.mps"}).out,
                Not(HasSubstr("Solved in 0 iterations")));
    EXPECT_THAT(solves({"Presolve=0", "--start", "plan.bas", "plan.mps"}).out,
                HasSubstr("Solved in 0 iterations"));
}

TEST_F(CliSolve, AStartThatDoesNotFitIsAnError)
{
    file_put("other.bas", "NAME other\n XL stranger  hours\nENDATA\n");
    EXPECT_THAT(fails({"--start", "other.bas", "plan.mps"}, "stranger").out,
                Not(HasSubstr("Optimal objective")));
    fails({"--start", "absent.bas", "plan.mps"}, "absent.bas");
}

TEST_F(CliSolve, AFileNameMayHoldAnEqualsSign)
{
    file_put("a=b.mps", PLAN_MODEL);
    solves({"a=b.mps"});
    solves({"./a=b.mps"});
    file_put("TimeLimit=5", PLAN_MODEL);
    EXPECT_EQ(run({"TimeLimit=5"}).exit_code,
              2); // a parameter, whatever stands in the folder
}

TEST_F(CliSolve, OutputThatCannotBeWrittenIsAnError)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    const std::string call =
        std::string(TARVEX_COMMAND) + " --solution plan.mps >/dev/full 2>said";
    EXPECT_EQ(WEXITSTATUS(system(call.c_str())), 1);
    EXPECT_TRUE(is_one_line(file_get("said")));
}

} // namespace
