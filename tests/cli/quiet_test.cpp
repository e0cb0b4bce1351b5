// quiet_test.cpp -- silence under OutputFlag=0, and no thread under Threads=1
#include "cli/command.h"
#include <csignal>

namespace
{

class CliQuiet : public Command
{
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static constexpr bool SANITIZED = true; // the sanitizers start threads of their own
#else
static constexpr bool SANITIZED = false;
#endif

// Exit codes tell all that a silent run has to say.
TEST_F(CliQuiet, OutputFlagZeroIsSilentOnBothStreamsAlsoAboutErrors)
{
    file_put("plan.mps", PLAN_MODEL);
    file_put("never.mps", INFEASIBLE_MODEL);
    file_put("set.prm", "Presolve 0\n");
    file_put("plan.bas", "NAME plan\nENDATA\n");
    file_put("broken.mps", "ROWS\n what is this\n");
    file_put("tarvex.env", "OutputFlag 0\nPresolve 0\nNoSuch 1\n");
    const std::pair<std::vector<std::string>, int> calls[] = {
        {{"plan.mps", "never.mps"}, 0},
        {{"LogFile=run.log", "ResultFile=plan.sol", "plan.mps"}, 0},
        {{"--params", "set.prm", "--start", "plan.bas", "plan.mps"}, 0},
        {{"broken.mps"}, 1},
        {{"LogFile=no/such/folder/log", "plan.mps"}, 1},
        {{"--params", "absent.prm", "plan.mps"}, 1},
        {{"ResultFile=no/such/folder/plan.sol", "plan.mps"}, 1},
        {{"--start", "absent.bas", "plan.mps"}, 1},
        {{}, 2},
        {{"--no-such-option", "plan.mps"}, 2},
        {{"NoSuchParameter=1", "plan.mps"}, 2},
    };
    for (const auto &[words, code] : calls) {
        std::vector<std::string> call = words;
        call.push_back("Output_Flag=0");
        const Outcome outcome = run(call);
        EXPECT_EQ(outcome.exit_code, code) << (words.empty() ? "" : words[0]);
        EXPECT_EQ(outcome.out + outcome.err, "");
    }
    file_put("tarvex.env", "OutputFlag 1\nNoSuch 1\n"); // that of the folder
    const Outcome outcome = run({"OutputFlag=0", "--solution", "plan.mps"});
    EXPECT_EQ(outcome.out.substr(0, 10), "# Solution"); // asked for, so printed
    EXPECT_EQ(outcome.err, "");
}

TEST_F(CliQuiet, AParameterFileCanAskForSilenceAndTheCommandLineTakeItBack)
{
    file_put("quiet.prm", "OutputFlag 0\n");
    const Outcome silent = run({"--params", "quiet.prm", "absent.mps"});
    EXPECT_EQ(silent.exit_code, 1);
    EXPECT_EQ(silent.err, "");
    const Outcome told = run({"--params", "quiet.prm", "OutputFlag=1", "absent.mps"});
    EXPECT_TRUE(is_one_line(told.err));
}

TEST_F(CliQuiet, OneThreadMeansNoOther)
{
    if (SANITIZED) GTEST_SKIP() << "sanitizers start threads of their own";
    file_put("plan.mps", PLAN_MODEL);
    file_put("never.mps", INFEASIBLE_MODEL);
    for (const char *method : {"LPMethod=0", "LPMethod=1"})
        for (const char *presolve : {"Presolve=-1", "Presolve=0"}) {
            const Outcome outcome =
                run({"Threads=1", method, presolve, "plan.mps", "never.mps"},
                    Confine::ONE_THREAD);
            EXPECT_NE(outcome.exit_code, -SIGSYS) << "a thread or process was started";
            EXPECT_EQ(outcome.exit_code, 0);
        }
}

TEST_F(CliQuiet, TheGuardAgainstThreadsWorks)
{
    if (SANITIZED) GTEST_SKIP() << "sanitizers start threads of their own";
    file_put("plan.mps.gz", "not compressed at all"); // reading it starts gzip
    EXPECT_EQ(run({"plan.mps.gz"}, Confine::ONE_THREAD).exit_code, -SIGSYS);
}

} // namespace
