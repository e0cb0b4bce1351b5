// outputs_test.cpp -- files that the command writes: none that it reads, none twice, none left from an earlier call
#include "cli/command.h"
#include <sys/stat.h>
#include <unistd.h>
namespace fs = std::filesystem;

namespace
{
struct CliOutputs : Command {
    void SetUp() override
    {
        file_put("other.mps", PLAN_MODEL);
        file_put("plan.bas", "NAME plan\nENDATA\n");
        file_put("set.prm", "Presolve 0\n");
        file_put("old.json", "left over\n");
    }
    // Every file of the folder with its content.
    static std::string folder()
    {
        std::map<std::string, std::string> files;
        for (const fs::directory_entry &entry : fs::directory_iterator("."))
            if (entry.is_regular_file()) files[entry.path()] = file_get(entry.path());
        files.erase("./stdout");
        files.erase("./stderr");
        return testing::PrintToString(files);
    }
};

TEST_F(CliOutputs, NoSlipOfTheCommandLineCostsAFile)
{
    fs::create_symlink("plan.mps", "link.txt");
    fs::create_hard_link("plan.mps", "hard.txt");
    fs::create_hard_link("set.prm", "set.txt");
    file_put("tarvex.env", "# nothing\n");
    file_put("log.prm", "LogFile ./other.txt\n");
    file_put("log_model.prm", "LogFile other.mps\n");
    file_put("result.prm", "ResultFile ./plan.bas\n");
    file_put("other.txt", "text\n");
    fs::create_symlink("new.txt", "to_new.txt");
    // clang-format off
    const Words calls[] = {
        {"--json", "plan.mps", "other.mps"}, // the file to write is missing
        {"--json=other.mps", "plan.mps"}, {"--json", "x.prm", "plan.mps"}, {"--json", "x.mst", "plan.mps"},
        {"--solution=plan.mps", "plan.mps"}, {"--solution-file", "other.mps", "plan.mps"},
        {"--log-file", "plan.mps", "other.mps"}, {"LogFile=set.txt", "--params", "set.prm", "plan.mps"},
        {"--start", "plan.bas", "--json", "plan.bas", "plan.mps"},
        {"--start", "plan.bas", "ResultFile=./plan.bas", "plan.mps"},
        {"--params", "set.prm", "--json", "set.txt", "plan.mps"}, {"ResultFile=plan.mps", "plan"}, // completed
        {"--json", "tarvex.env", "plan.mps"}, {"--json", "link.txt", "plan.mps"}, {"--solution=hard.txt", "plan.mps"},
        {"--json", "../" + fs::current_path().filename().string() + "/hard.txt", "plan"},
        {"--convert", "plan.mps", "./plan.mps"}, {"--json", "new.txt", "--solution=./new.txt", "plan.mps"},
        {"--json", "new.txt", "LogFile=to_new.txt", "plan.mps"}, {"ResultFile=a.sol", "ResultFile=./a.sol", "plan.mps"},
        {"--params", "log.prm", "--solution=other.txt", "plan.mps"}, {"--params", "log_model.prm", "plan.mps"},
        {"--params", "result.prm", "--start", "plan.bas", "plan.mps"}};
    // clang-format on
    for (const Words &words : calls) {
        const std::string before = folder();
        EXPECT_EQ(run(words).exit_code, 2) << text_of(words);
        EXPECT_TRUE(is_one_line(file_get("stderr"))) << text_of(words);
        EXPECT_TRUE(folder() == before || words[1] == "log.prm") // that was no input
            << text_of(words);
    }
    // With a wrong value nothing is removed either; and a model on standard input is read as well.
    ends(2, {"--json", "old.json", "TimeLimit=soon", "plan.mps"});
    EXPECT_EQ(file_get("old.json"), "left over\n");
    EXPECT_EQ(shell("--json hard.txt - <plan.mps 2>said"), 2);
    EXPECT_EQ(file_get("plan.mps"), PLAN_MODEL);
    ends(0, {"--json", "/dev/null", "--solution=/dev/null", "LogFile=run.log",
             "ResultFile=again.mps", "plan.mps"});
}

// Whatever fails later, in the parameter file, the model, the start or the log file.
TEST_F(CliOutputs, NothingStandsFromAnEarlierCall)
{
    file_put("wrong.prm", "ResultFile named.sol\nNoSuch 1\n");
    for (const Words &last : {Words{"--params", "absent.prm", "plan.mps"},
                              {"--params", "wrong.prm", "plan.mps"},
                              {"absent.mps"},
                              {"broken.mps"},
                              {"LogFile=missing/x.log", "plan.mps"},
                              {"--start", "absent.bas", "plan.mps"}}) {
        Words words = {"--quiet",          "--json",           "r.json",
                       "--solution=r.txt", "ResultFile=r.sol", "ResultFile=r.bas",
                       "ResultFile=r.mst", "ResultFile=l.sol"};
        for (const char *file : {"r.json", "r.txt", "r.sol", "r.bas", "r.mst", "target"})
            file_put(file, "left over\n");
        fs::remove("l.sol");
        fs::create_symlink("target", "l.sol");
        words.insert(words.end(), last.begin(), last.end());
        EXPECT_EQ(run(words).exit_code, 1) << text_of(last);
        for (const char *file : {"r.txt", "r.sol", "r.bas", "r.mst"})
            EXPECT_FALSE(fs::exists(file)) << file << text_of(last);
        EXPECT_THAT(file_get("r.json"), testing::Not(HasSubstr("left over")))
            << text_of(last);
        EXPECT_EQ(file_get("target"), "") << text_of(last);
    }
    file_put("named.sol", "left over\n");
    EXPECT_EQ(run({"--params", "wrong.prm", "plan.mps"}).exit_code, 1);
    EXPECT_FALSE(fs::exists("named.sol"));
}

TEST_F(CliOutputs, WhatCannotBeRemovedIsAnError)
{
    fs::create_directory("folder.sol");
    for (const char *word :
         {"--json=folder.sol", "--solution=folder.sol", "ResultFile=folder.sol"})
        EXPECT_EQ(ends(1, {word, "plan.mps"}, "cannot be removed").out, "");
    if (geteuid() == 0) return; // the superuser removes everything
    fs::create_directory("closed");
    file_put("closed/r.sol", "left over\n");
    chmod("closed", 0500);
    EXPECT_EQ(run({"ResultFile=closed/r.sol", "plan.mps"}).exit_code, 1);
    chmod("closed", 0700);
}

TEST_F(CliOutputs, ClosedStreamsAreNoPlaceForResults)
{
    EXPECT_EQ(shell("--json - plan.mps >out.json 2>&-"), 0);
    const std::string json = file_get("out.json");
    EXPECT_EQ(json[0], '{');
    EXPECT_EQ(json.find("Optimal"), std::string::npos);
    EXPECT_EQ(shell("--json - plan.mps >&- 2>said"), 1);
    EXPECT_TRUE(is_one_line(file_get("said")));
    EXPECT_FALSE(fs::exists("-"));
    EXPECT_EQ(shell("--json - plan.mps >&- 2>&-"), 1);
    EXPECT_EQ(shell("LogFile=run.log ResultFile=r.sol plan.mps >&- 2>said"), 1);
    EXPECT_EQ(file_get("r.sol").substr(0, 10), "# Solution");
    EXPECT_EQ(shell("- <&- 2>said"), 1);
}

TEST_F(CliOutputs, AParameterFileKeepsLinksAndModes)
{
    file_put("kept.prm", "");
    chmod("kept.prm", 0640);
    fs::create_symlink("kept.prm", "link.prm");
    ends(0, {"TimeLimit=60", "ResultFile=link.prm", "plan.mps"});
    EXPECT_TRUE(fs::is_symlink("link.prm"));
    EXPECT_THAT(file_get("kept.prm"), HasSubstr("# "));
    struct stat status = {};
    ASSERT_EQ(stat("kept.prm", &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
    // A queue is written once and not read back, which would wait for ever.
    ASSERT_EQ(mkfifo("queue.prm", 0600), 0);
    EXPECT_EQ(shell("--quiet TimeLimit=60 ResultFile=queue.prm plan.mps; code=$?; wait; "
                    "exit $code",
                    "timeout 60 cat queue.prm >got & timeout 60 "),
              0);
    EXPECT_EQ(file_get("got"), "TimeLimit  60\nOutputFlag  0\n");
}
} // namespace
