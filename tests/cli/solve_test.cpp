// solve_test.cpp -- parameters and their files, starts, result files, the printed solution; silence and threads
#include "cli/command.h"
#include <csignal>
#include <sys/stat.h>
namespace fs = std::filesystem;

using CliSolve = Command;

TEST_F(CliSolve, ParametersAreWordsOrOptionsOrLinesOfAFile)
{
    file_put("set.prm", "Presolve off\nIterationLimit 0\n");
    const Case cases[] = {
        {"Optimal objective", {"plan.mps"}},
        {"Infeasible model", {"Presolve=0", "never.mps"}},
        {"Iteration limit", {"presolve=0", "iteration_LIMIT=0", "plan.mps"}},
        {"Optimal objective", {"TimeLimit=inf", "TARV_PAR_BIGM=1e6", "plan.mps"}},
        {"Iteration limit",
         {"--method", "Primal", "--presolve=off", "--Iteration-Limit", "0", "--mip-gap",
          "0.1", "ScaleFlag=off", "--threads=1", "plan.mps"}},
        {"Iteration limit", {"--params", "set.prm", "plan.mps"}},
        {"Optimal objective", {"IterationLimit=100", "--params", "set.prm", "plan.mps"}},
        {"Optimal objective", {"plan"}}, // plan.mps
    };
    for (const auto &one : cases) ends(0, one.words, one.said);
    ends(0, {"--log-file", "run.log", "--result-file", "x.sol", "--", "plan.mps"});
    EXPECT_THAT(file_get("run.log"), HasSubstr("Optimal objective"));
    EXPECT_TRUE(fs::exists("x.sol"));
    ASSERT_EQ(mkfifo("set.fifo", 0600), 0); // a file that can be read only once
    EXPECT_EQ(shell("--params set.fifo Presolve=0 plan.mps >said",
                    "echo IterationLimit 0 >set.fifo & timeout 60 "),
              0);
    EXPECT_THAT(file_get("said"), HasSubstr("Iteration limit"));
}

TEST_F(CliSolve, ALineOfAParameterFileThatCannotBeUsedIsAnError)
{
    for (const char *line : {"TimeLimt 5", "MIPFocus 4", "Threads 1.5", "Threads",
                             "Threads 1 2", "LogFile missing/run.log", "Threads\x01 1"}) {
        file_put("set.prm", std::string("# mine\nPresolve 0 # off\n") + line + "\n");
        EXPECT_THAT(ends(1, {"--params", "set.prm", "plan.mps"}, "'set.prm' line 3: ").out,
                    Not(HasSubstr("Optimal objective")))
            << line;
    }
    file_put("set.prm", "ResultFile plan.sol\n");
    ends(0, {"ResultFile=", "--params", "set.prm", "plan.mps"});
    EXPECT_FALSE(fs::exists("plan.sol"));
    ends(0, {"--params", "set.prm", "plan.mps"});
    EXPECT_THAT(file_get("plan.sol"), HasSubstr("x 3\n"));
}

TEST_F(CliSolve, TheSolutionIsPrintedByName)
{
    EXPECT_EQ(ends(0, {"OutputFlag=0", "--solution", "plan.mps", "never.mps"}).out,
              "# Solution for model plan: optimal\n# Objective value 11\nx 3\ny 1\n"
              "# No solution for model never: infeasible\n");
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    EXPECT_EQ(shell("--solution plan.mps >/dev/full 2>said"), 1);
    EXPECT_TRUE(is_one_line(file_get("said")));
}

TEST_F(CliSolve, ResultFilesAreThoseOfThisSolve)
{
    ends(0, {"ResultFile=plan.sol", "Result_File=again.MPS", "plan.mps"});
    EXPECT_THAT(file_get("plan.sol"), HasSubstr("x 3\ny 1\n"));
    EXPECT_THAT(file_get("again.MPS"), HasSubstr("ENDATA"));
    for (const char *file : {"x.sol", "x.bas", "x.mst"})
        for (const char *model : {"never.mps", "never_whole.lp"}) {
            file_put(file, "older\n");
            ends(0, {std::string("ResultFile=") + file, "Presolve=1", model},
                 "There is nothing to write: infeasible");
            EXPECT_FALSE(fs::exists(file)) << file;
        }
    ends(0, {"ResultFile=whole.sol", "ResultFile=whole.mst", "whole.lp"});
    EXPECT_THAT(file_get("whole.sol"), HasSubstr("x 2\n"));
    ends(0, {"--start", "whole.mst", "Presolve=0", "whole.lp"},
         "Loaded MIP start with objective 2");
    ends(0, {"Presolve=0", "ResultFile=plan.bas", "plan.mps"});
    const char *const none = "Solved in 0 iterations";
    EXPECT_THAT(ends(0, {"Presolve=0", "plan.mps"}).out, Not(HasSubstr(none)));
    ends(0, {"Presolve=0", "--start", "plan.bas", "plan.mps"}, none);
}

TEST_F(CliSolve, AnyFileNameIsTakenAsItStands)
{
    for (const char *name :
         {"[a,b].mps", "[].mps", "a b.mps", "'q'.mps", "-x.mps", "--y.mps", "a=b.mps"}) {
        file_put(name, PLAN_MODEL);
        ends(0, {"--json", "[out]", "--", name});
        EXPECT_THAT(file_get("[out]"), HasSubstr("optimal")) << name;
    }
    ends(0, {"a=b.mps"});
    ends(0, {"./a=b.mps"});
    ends(1, {"[ok.mps]"}, "'[ok.mps]'");
    ends(0, {"--json=--odd", "plan.mps"});
    EXPECT_TRUE(fs::exists("--odd"));
}

// ---- Silence, threads ----

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static constexpr bool SANITIZED = true; // the sanitizers start threads of their own
#else
static constexpr bool SANITIZED = false;
#endif

// Exit codes tell all that a silent run has to say.
TEST_F(CliSolve, OutputFlagZeroIsSilentOnBothStreamsAlsoAboutErrors)
{
    file_put("set.prm", "Presolve 0\n");
    file_put("plan.bas", "NAME plan\nENDATA\n");
    file_put("tarvex.env", "OutputFlag 0\nPresolve 0\nNoSuch 1\n");
    // clang-format off
    const std::pair<Words, int> calls[] = {
        {{"plan.mps", "never.mps"}, 0},
        {{"LogFile=run.log", "ResultFile=plan.sol", "--params", "set.prm", "--start", "plan.bas", "plan.mps"}, 0},
        {{"broken.mps"}, 1}, {{"LogFile=no/such/folder/log", "plan.mps"}, 1},
        {{"--params", "absent.prm", "plan.mps"}, 1}, {{"ResultFile=no/such/folder/plan.sol", "plan.mps"}, 1},
        {{"--start", "absent.bas", "plan.mps"}, 1}, {{"--quiet", "plan.mps"}, 0}, {{}, 2},
        {{"--no-such-option", "plan.mps"}, 2}, {{"NoSuchParameter=1", "plan.mps"}, 2}};
    // clang-format on
    for (const auto &[words, code] : calls) {
        Words call = words;
        call.push_back("Output_Flag=0");
        const Outcome outcome = run(call);
        EXPECT_EQ(outcome.exit_code, code) << (words.empty() ? "" : words[0]);
        EXPECT_EQ(outcome.out + outcome.err, "");
    }
    file_put("tarvex.env", "OutputFlag 1\nNoSuch 1\n");                // that of the folder
    ends(0, {"OutputFlag=0", "--solution", "plan.mps"}, "# Solution"); // asked for
    file_put("quiet.prm", "OutputFlag 0\n");
    EXPECT_EQ(run({"--params", "quiet.prm", "absent.mps"}).err, "");
    ends(1, {"--params", "quiet.prm", "OutputFlag=1", "absent.mps"}); // takes it back
}

TEST_F(CliSolve, OneThreadMeansNoOther)
{
    if (SANITIZED) GTEST_SKIP() << "sanitizers start threads of their own";
    for (const char *method : {"LPMethod=0", "LPMethod=1"})
        for (const char *presolve : {"Presolve=-1", "Presolve=0"})
            EXPECT_EQ(run({"Threads=1", method, presolve, "plan.mps", "never.mps"},
                          Confine::ONE_THREAD)
                          .exit_code,
                      0);
    file_put("plan.mps.gz", "not compressed at all"); // reading it starts gzip
    EXPECT_EQ(run({"plan.mps.gz"}, Confine::ONE_THREAD).exit_code, -SIGSYS);
}
