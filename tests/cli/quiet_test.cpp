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
        {{"--quiet", "plan.mps"}, 0},
        {{"--output-flag", "off", "--no-such-option", "plan.mps"}, 2},
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
    file_put("tarvex.env", "OutputFlag 1\nNoSuch 1\n");                // that of the folder
    ends(0, {"OutputFlag=0", "--solution", "plan.mps"}, "# Solution"); // asked for
    file_put("quiet.prm", "OutputFlag 0\n");
    EXPECT_EQ(run({"--params", "quiet.prm", "absent.mps"}).err, "");
    ends(1, {"--params", "quiet.prm", "OutputFlag=1", "absent.mps"}); // takes it back
}

TEST_F(CliQuiet, OneThreadMeansNoOther)
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

} // namespace
