// input_test.cpp -- models on standard input
#include "cli/command.h"

namespace
{
static constexpr const char *PLAN_LP =
    "\n\\ a plan\nMAXIMIZE 3x + 2y\nst x + y <= 4\nx + 3y <= 6\n"
    "bounds x <= 3\nend\n";

struct CliInput : Command {
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

// The command reads on, since its end of the queue is open for writing too, until the copy is there and the signal
// comes.
TEST_F(CliInput, ASignalRemovesTheCopyOfStandardInput)
{
    ASSERT_EQ(system("mkfifo queue"), 0);
    for (const auto &[signal, code] :
         {std::pair{"INT", "130"}, {"TERM", "143"}, {"HUP", "129"}}) {
        const std::string start =
            "exec 2>said 3<>queue; env --default-signal " TARVEX_COMMAND " - <queue 3<&- & "
            "(echo NAME x; head -c 131072 /dev/zero | tr '\\0' '\\n') >&3; k=0; "
            "while [ $k -lt 6000 -a -z \"$(ls temporary)\" ]; do sleep 0.01; k=$((k+1)); "
            "done; "
            "[ $k -lt 6000 ] || exit 1; ";
        const std::string end = std::string("kill -") + signal +
                                " $!; wait $!; test $? = " + code +
                                " -a -z \"$(ls temporary)\"";
        EXPECT_EQ(system((start + end).c_str()), 0) << signal;
    }
}
} // namespace
