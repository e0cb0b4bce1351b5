// file_calls_test.cpp -- the calls that read and write files: types, completion, compression, what cannot be used
#include "files/files_support.h"
#include <cstdlib>

struct FileCalls : Files {
    void SetUp() override
    {
        Files::SetUp();
        ASSERT_EQ(read(mps_with("RHS\n    RHS       R1                   4\nENDATA\n")), 0);
    }
    // What TVXwrite says when it fails with this code.
    std::string unwritten(const char *name, int code)
    {
        Output output;
        EXPECT_EQ(TVXwrite(model, name), code);
        return TVXgetmerrormsg(model);
    }
};

TEST_F(FileCalls, NamesAreCompletedInOrder)
{
    ASSERT_EQ(TVXwrite(model, "a.mps.bz2"), 0);
    EXPECT_EQ(read_file("a"), 0);
    EXPECT_NE(log.find("Read MPS format model from file a.mps.bz2\nReading time = "),
              std::string::npos);
    EXPECT_NE(log.find("TEST: 2 rows, 2 columns, 3 nonzeros\n"), std::string::npos) << log;
    EXPECT_EQ(read_file("a.mps"), 0);
    file_put("a.mps.gz", "not compressed");
    EXPECT_EQ(read_file("a"), TVX_ERROR_FILE_READ) << "the .gz comes first";
    std::filesystem::create_directory("a.mps");
    EXPECT_EQ(read_file("a"), TVX_ERROR_FILE_READ);
    std::filesystem::remove("a.mps.gz");
    EXPECT_EQ(read_file("a"), 0) << "a directory is no file";
    ASSERT_EQ(TVXwrite(model, "x.LP.gz"), 0);
    ASSERT_EQ(read_file("x.LP"), 0) << message();
    EXPECT_EQ(log.find("Read LP format model from file x.LP.gz\nReading time = "), 0u);
}

TEST_F(FileCalls, WhatCannotBeReadSaysSo)
{
    for (const char *name : {"x.txt", "x.sol", "x.mps ", "x.mps.zip", ".gz"})
        file_put(name, "NAME\n");
    const std::string none = "No 'filename' argument supplied",
                      open = "Unable to open file '", input = "' for input",
                      import = "Can't import file '",
                      unknown = "Unknown file type for file '", long_name(5000, 'x');
    const struct {
        const char *name;
        int code;
        std::string text;
        // clang-format off
    } into[] = {{"t.mps", 10012, import + "t.mps' into a model"}, {"x.sol", 10012, import + "x.sol' into a model"},
                {"x.txt", 10012, unknown + "x.txt'"}, {"none.bas", 10003, open + "none.bas" + input},
                {nullptr, 10003, none}},
      alone[] = {{"none.mps", 10003, open + "none.mps" + input}, {long_name.c_str(), 10003, open + "xxxx"},
                 {"x.txt", 10012, unknown + "x.txt'"}, {"x.sol", 10012, ""}, {"x.mps ", 10012, unknown},
                 {"x.mps.zip", 10012, unknown}, {".gz", 10012, unknown}, {nullptr, 10003, none}};
    // clang-format on
    for (const auto &one : into) {
        EXPECT_EQ(TVXread(model, one.name), one.code);
        EXPECT_EQ(TVXgetmerrormsg(model), one.text);
    }
    TVXmodel *made = nullptr;
    for (const auto &one : alone) {
        Output output;
        made = model; // must be overwritten
        EXPECT_EQ(TVXreadmodel(env, one.name, &made), one.code) << one.text;
        EXPECT_TRUE(message().starts_with(one.text)) << message();
        EXPECT_EQ(made, nullptr);
    }
    testing::internal::CaptureStderr(); // the commands complain there
    for (const std::string end : {".gz", ".bz2"}) {
        ASSERT_EQ(TVXwrite(model, ("x.mps" + end).c_str()), 0);
        std::string sum = file_get("x.mps" + end);
        const std::string cut = sum.substr(0, sum.size() - 4);
        sum[sum.size() - 5] ^= 1; // the check sum
        for (const std::string &bytes : {cut, sum, std::string("NAME\n")}) {
            file_put("bad.mps" + end, bytes);
            Output output;
            EXPECT_EQ(TVXreadmodel(env, ("bad.mps" + end).c_str(), &made), 10012);
            EXPECT_EQ(message(),
                      "File bad.mps" + end +
                          " cannot be read to its end: it is cut short or damaged\n");
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(TVXreadmodel(env, "x", nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXreadmodel(nullptr, "x", &made), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(TVXread(nullptr, "x"), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXwrite(nullptr, "x"), TVX_ERROR_NULL_ARGUMENT);
}

TEST_F(FileCalls, WhatCannotBeWrittenSaysSoAndLeavesNoHalfFile)
{
    EXPECT_EQ(unwritten("x.txt", 10013), "Unknown file type for file 'x.txt'");
    EXPECT_EQ(unwritten(nullptr, 10013), "No 'filename' argument supplied");
    EXPECT_EQ(unwritten("no/such/x.mps", 10013),
              "Unable to open file 'no/such/x.mps' for output");
    unwritten(std::string(5000, 'x').append(".mps").c_str(), 10013);
    EXPECT_EQ(unwritten("z.ilp", TVX_ERROR_DATA_NOT_AVAILABLE),
              "No IIS available for current model");
    Output output;
    EXPECT_EQ(TVXwrite(model, "no/such/x.lp"), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(output.text(), "Unable to write to file 'no/such/x.lp'\n");
    if (std::filesystem::exists("/dev/full")) {
        std::filesystem::create_symlink("/dev/full", "f.mps");
        EXPECT_EQ(unwritten("f.mps", 10013), "File f.mps cannot be written to its end\n");
        EXPECT_TRUE(std::filesystem::is_symlink("f.mps"));
        EXPECT_TRUE(std::filesystem::exists("/dev/full"));
        for (const char *name : {"f.mps.gz", "f.mps.bz2"}) {
            std::filesystem::create_symlink("/dev/full", name);
            unwritten(name, 10013);
        }
    }
    const std::string path = getenv("PATH");
    std::filesystem::create_directory("bin");
    file_put("bin/gzip", "#!/bin/sh\nhead -c 5\nexit 1\n");
    std::filesystem::permissions("bin/gzip", std::filesystem::perms::owner_all);
    setenv("PATH", (scratch.path.string() + "/bin:" + path).c_str(), 1);
    unwritten("x.mps.gz", 10013);
    EXPECT_FALSE(std::filesystem::exists("x.mps.gz"));
    setenv("PATH", scratch.path.c_str(), 1); // no gzip at all
    file_put("y.mps.GZ", "old");
    for (const std::string name : {"x.mps.gz", "y.mps.GZ"})
        EXPECT_EQ(unwritten(name.c_str(), 10013),
                  "File " + name + " needs the command gzip, which cannot be started\n");
    EXPECT_NE(read_file("y.mps.GZ"), 0);
    EXPECT_EQ(file_get("y.mps.GZ"), "old");
    EXPECT_FALSE(std::filesystem::exists("x.mps.gz"));
    setenv("PATH", path.c_str(), 1);
}
