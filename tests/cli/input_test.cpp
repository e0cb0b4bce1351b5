// input_test.cpp -- models on standard input
#include "cli/command.h"
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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
        std::filesystem::create_directory("temporary");
        setenv("TMPDIR", (std::filesystem::current_path() / "temporary").c_str(), 1);
    }
    void TearDown() override
    {
        EXPECT_TRUE(std::filesystem::is_empty("temporary"));
        unsetenv("TMPDIR");
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

} // namespace
