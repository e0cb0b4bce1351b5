// input_test.cpp -- models on standard input, parameters as options, and what is said to somebody who mistypes
#include "cli/command.h"
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
using testing::HasSubstr;

namespace
{

static constexpr const char *PLAN_LP =
    "\n\\ a plan\nMAXIMIZE 3x + 2y\nst x + y <= 4\nx + 3y <= 6\n"
    "bounds x <= 3\nend\n";

class CliInput : public Command
{
  public:
    void SetUp() override
    {
        file_put("plan.mps", PLAN_MODEL);
        std::filesystem::create_directory("temporary");
        setenv("TMPDIR", (std::filesystem::current_path() / "temporary").c_str(), 1);
    }
    void TearDown() override
    {
        EXPECT_TRUE(std::filesystem::is_empty("temporary"));
        unsetenv("TMPDIR");
    }
    void refuses(const std::vector<std::string> &arguments, const std::string &words,
                 int code = 2) const
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exit_code, code);
        EXPECT_TRUE(is_one_line(outcome.err));
        EXPECT_THAT(outcome.err, HasSubstr(words));
    }
};

TEST_F(CliInput, AModelOnStandardInputIsKnownByItsText)
{
    const std::string mark = "\xef\xbb\xbf";
    for (const std::string &text :
         {std::string(PLAN_MODEL), "* a comment\n" + std::string(PLAN_MODEL),
          mark + "\r\n\r\n" + PLAN_MODEL, std::string(PLAN_LP), mark + PLAN_LP})
        EXPECT_THAT(run_with_input({"--solution", "-"}, text).out,
                    HasSubstr("\nx 3\ny 1\n"))
            << text;
    EXPECT_EQ(run_with_input({"--format", "lp", "-"}, PLAN_MODEL).exit_code, 1);
    ASSERT_EQ(system("gzip -k plan.mps"), 0);
    const std::string packed = file_get("plan.mps.gz");
    EXPECT_THAT(run_with_input({"-"}, packed).err, HasSubstr("--format"));
    EXPECT_EQ(run_with_input({"--format=MPS", "-"}, packed).exit_code, 0);
    EXPECT_EQ(run_with_input({"--convert", "-", "out.lp"}, PLAN_MODEL).exit_code, 0);
    EXPECT_EQ(run_with_input({"plan.mps", "-"}, PLAN_LP).exit_code, 0);
}

TEST_F(CliInput, StandardInputThatIsNoModelIsAnError)
{
    for (const char *text : {"", "\n \n", "what is this\n"}) {
        const Outcome outcome = run_with_input({"-"}, text);
        EXPECT_EQ(outcome.exit_code, 1);
        EXPECT_TRUE(is_one_line(outcome.err));
    }
    const Outcome broken = run_with_input({"-"}, "ROWS\n what is this\n");
    EXPECT_THAT(broken.err, HasSubstr("standard input: MPS read error at line 2"));
    EXPECT_THAT(broken.err, testing::Not(HasSubstr("temporary")));
    refuses({"-", "-"}, "once");
    refuses({"--format", "xls", "-"}, "mps or lp");
    refuses({"--format", "mps", "plan.mps"}, "standard input");
    setenv("TMPDIR", "/no/such/folder", 1);
    const Outcome nowhere = run_with_input({"-"}, PLAN_MODEL);
    EXPECT_EQ(nowhere.exit_code, 1);
    EXPECT_THAT(nowhere.err, HasSubstr("TMPDIR"));
}

// Waits, a minute at most, until the copy of standard input is there.
static bool copy_appears()
{
    for (int k = 0; k < 6000; k++) {
        if (!std::filesystem::is_empty("temporary")) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

TEST_F(CliInput, ASignalRemovesTheCopyOfStandardInput)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            dup2(ends[0], STDIN_FILENO);
            close(ends[0]);
            close(ends[1]); // else it would wait for itself
            execl(TARVEX_COMMAND, TARVEX_COMMAND, "-", nullptr);
            _exit(127);
        }
        close(ends[0]);
        const std::string text = "NAME x\n" + std::string(1 << 17, '\n'); // more is to come
        EXPECT_EQ(write(ends[1], text.data(), text.size()),
                  static_cast<ssize_t>(text.size()));
        EXPECT_TRUE(copy_appears());
        kill(child, signal);
        int state = 0;
        waitpid(child, &state, 0);
        close(ends[1]);
        EXPECT_TRUE(WIFSIGNALED(state) && WTERMSIG(state) == signal);
        EXPECT_TRUE(std::filesystem::is_empty("temporary"));
    }
}

TEST_F(CliInput, ParametersAreOptionsAndValuesHaveWords)
{
    const Outcome outcome =
        run({"--method", "Primal", "--presolve=off", "--Iteration-Limit", "0", "--mip-gap",
             "0.1", "ScaleFlag=off", "--threads=1", "plan.mps"});
    EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("Iteration limit"));
    EXPECT_EQ(run({"--quiet", "plan.mps"}).out, "");
    EXPECT_EQ(run({"--output-flag", "off", "--no-such-option", "plan.mps"}).err, "");
    file_put("set.prm", "Presolve off\nIterationLimit 0\n");
    EXPECT_THAT(run({"--params", "set.prm", "plan.mps"}).out, HasSubstr("Iteration limit"));
    EXPECT_EQ(run({"--log-file", "run.log", "--result-file", "x.sol", "--", "plan.mps"})
                  .exit_code,
              0);
    EXPECT_TRUE(std::filesystem::exists("run.log") && std::filesystem::exists("x.sol"));
    refuses({"plan.mps", "--time-limit"}, "needs a value");
    refuses({"--time-limit", "--presolve", "plan.mps"}, "'--time-limit' needs a value");
    refuses({"--method", "--", "plan.mps"}, "needs a value");
    refuses({"--time-limit", "plan.mps"},
            "'plan.mps' was taken for the value of TimeLimit");
    refuses({"--method", "dul", "plan.mps"}, "primal, dual, barrier");
}

TEST_F(CliInput, WhoMistypesIsToldWhatMayBeMeant)
{
    refuses({"--tme-limit", "5", "plan.mps"}, "did you mean '--time-limit'");
    refuses({"--solutoin", "plan.mps"}, "did you mean '--solution'");
    refuses({"TimLimit=5", "plan.mps"}, "did you mean 'TimeLimit'");
    refuses({"--parameters", "Pressolve"}, "did you mean 'Presolve'");
    file_put("set.prm", "FeasTol 1e-7\nFeasibilityTl 1e-7\n");
    refuses({"--params", "set.prm", "plan.mps"}, "line 1", 1);
    refuses({"afiro"}, "none with .mps", 1);
    file_put("plan.txt", PLAN_MODEL);
    refuses({"plan.txt"}, "tarvex - <FILE", 1);
    EXPECT_EQ(run({"plan"}).exit_code, 0); // plan.mps
}

TEST_F(CliInput, AParameterIsExplained)
{
    file_put("tarvex.env", "LPMethod 0\n");
    const Outcome outcome = run({"--parameters", "lp_method", "TARV_PAR_BIGM"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.out,
                HasSubstr("LPMethod: int, 0 to 2, default 1\n  set to 0 by tarvex.env\n"));
    EXPECT_THAT(outcome.out, HasSubstr("  Words: primal (0), dual (1), barrier (2)\n"));
    EXPECT_THAT(outcome.out,
                HasSubstr("\nTARV_PAR_BIGM: double, 10000 to 1e+13, default 1e+06\n"
                          "  Not used yet."));
}

} // namespace
