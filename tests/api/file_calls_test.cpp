// dispatch_test.cpp -- file names: types, completion, compression, odd characters, files that cannot be written
#include "api/file_calls.h"
#include "files/files_support.h"
#include <cstdlib>

class Dispatch : public Files
{
  protected:
    void make()
    {
        ASSERT_EQ(read(mps_with("RHS\n    RHS       R1                   4\nENDATA\n")), 0);
    }
    std::string model_message() { return TVXgetmerrormsg(model); }
};

TEST_F(Dispatch, TheEndOfANameGivesItsType)
{
    const std::pair<const char *, int> names[] = {
        {"a.mps", FILE_MPS},    {"model.mps.bz2", FILE_MPS}, {"A.MPS", FILE_MPS},
        {".rew.gz", FILE_REW},  {"x.lp", FILE_LP},           {"x.rlp", FILE_RLP},
        {"x.ilp.gz", FILE_ILP}, {"x.mps.mst", FILE_MST},     {"x.sol", FILE_SOL},
        {"x.bas", FILE_BAS},    {"x.prm", FILE_PRM}};
    for (const auto &[name, type] : names) EXPECT_EQ(file_type(name), type) << name;
    for (const char *name :
         {"", "mps", "x", "x.mps ", "x.mps.zip", "x.mpsx", ".gz", "x.gz"})
        EXPECT_EQ(file_type(name), FILE_UNKNOWN) << name;
}

TEST_F(Dispatch, NamesAreCompletedInOrder)
{
    make();
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
}

TEST_F(Dispatch, WhatCannotBeReadSaysSo)
{
    make();
    for (const char *name : {"x.txt", "x.sol"}) file_put(name, "");
    const std::string none = "No 'filename' argument supplied",
                      unknown = "Unknown file type for file 'x.txt'",
                      closed = "Unable to open file 'none.bas' for input";
    const struct {
        const char *name;
        int code;
        std::string text;
    } cases[] = {{"t.mps", 10012, "Can't import file 't.mps' into a model"},
                 {"x.sol", 10012, "Can't import file 'x.sol' into a model"},
                 {"x.txt", 10012, unknown},
                 {"none.bas", 10003, closed},
                 {nullptr, 10003, none}};
    for (const auto &one : cases) {
        EXPECT_EQ(TVXread(model, one.name), one.code);
        EXPECT_EQ(model_message(), one.text);
    }
    EXPECT_EQ(read_file("none.mps"), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(message(), "Unable to open file 'none.mps' for input");
    EXPECT_EQ(read_file("x.txt"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(message(), unknown);
    EXPECT_EQ(read_file("x.sol"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(TVXreadmodel(env, nullptr, &model), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(message(), none);
    EXPECT_EQ(TVXreadmodel(env, "x", nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXreadmodel(nullptr, "x", &model), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(model, nullptr);
    EXPECT_EQ(TVXread(nullptr, "x"), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXwrite(nullptr, "x"), TVX_ERROR_NULL_ARGUMENT);
}

TEST_F(Dispatch, ParametersGoToTheModelsOwnEnvironment)
{
    make();
    ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "Cuts", 2), 0);
    ASSERT_EQ(TVXwrite(model, "p.prm"), 0) << model_message();
    ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "Cuts", 0), 0);
    Output output;
    ASSERT_EQ(TVXread(model, "p.prm"), 0);
    int cuts = -2;
    EXPECT_EQ(TVXgetintparam(TVXgetenv(model), "Cuts", &cuts), 0);
    EXPECT_EQ(cuts, 2);
    EXPECT_EQ(TVXgetintparam(env, "Cuts", &cuts), 0);
    EXPECT_EQ(cuts, -1);
}

// ---- Writing ----

TEST_F(Dispatch, WhatCannotBeWrittenSaysSo)
{
    make();
    EXPECT_EQ(TVXwrite(model, "x.txt"), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(model_message(), "Unknown file type for file 'x.txt'");
    EXPECT_EQ(TVXwrite(model, nullptr), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(model_message(), "No 'filename' argument supplied");
    EXPECT_EQ(TVXwrite(model, "no/such/directory/x.mps"), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(model_message(), "Unable to open file 'no/such/directory/x.mps' for output");
}

TEST_F(Dispatch, AFullDiskIsAFailureAndLeavesTheDeviceAlone)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full here";
    make();
    std::filesystem::create_symlink("/dev/full", "x.mps");
    EXPECT_EQ(TVXwrite(model, "x.mps"), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(model_message(), "File x.mps cannot be written to its end\n");
    EXPECT_TRUE(std::filesystem::is_symlink("x.mps"));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    std::filesystem::create_symlink("/dev/full", "x.mps.gz");
    EXPECT_EQ(TVXwrite(model, "x.mps.gz"), TVX_ERROR_FILE_WRITE);
}

TEST_F(Dispatch, AFileThatFailsHalfWayIsRemoved)
{
    make();
    const char *path = getenv("PATH");
    const std::string saved = path ? path : "";
    std::filesystem::create_directory("bin");
    file_put("bin/gzip", "#!/bin/sh\nhead -c 5\nexit 1\n");
    std::filesystem::permissions("bin/gzip", std::filesystem::perms::owner_all);
    setenv("PATH", (scratch.path / "bin").string().append(":").append(saved).c_str(), 1);
    EXPECT_EQ(TVXwrite(model, "x.mps.gz"), TVX_ERROR_FILE_WRITE);
    EXPECT_FALSE(std::filesystem::exists("x.mps.gz"));
    setenv("PATH", scratch.path.c_str(), 1); // no gzip at all
    file_put("y.mps.GZ", "old");
    for (const std::string name : {"x.mps.gz", "y.mps.GZ"}) {
        EXPECT_EQ(TVXwrite(model, name.c_str()), TVX_ERROR_FILE_WRITE);
        EXPECT_EQ(model_message(),
                  "File " + name + " needs the command gzip, which cannot be started\n");
    }
    EXPECT_EQ(file_get("y.mps.GZ"), "old");
    EXPECT_FALSE(std::filesystem::exists("x.mps.gz"));
    setenv("PATH", saved.c_str(), 1);
}

TEST_F(Dispatch, CompressedFilesThatAreDamagedAreErrors)
{
    make();
    ASSERT_EQ(TVXwrite(model, "x.mps.gz"), 0);
    const std::string whole = file_get("x.mps.gz");
    ASSERT_EQ(read_file("x.mps.gz"), 0);
    std::string broken = whole;
    broken[broken.size() - 5] ^= 1; // the check sum
    for (const std::string &text : {whole.substr(0, whole.size() - 4), whole.substr(0, 20),
                                    broken, std::string("NAME\n")}) {
        file_put("y.mps.gz", text);
        EXPECT_EQ(read_file("y.mps.gz"), TVX_ERROR_FILE_READ);
        EXPECT_EQ(message(),
                  "File y.mps.gz cannot be read to its end: it is cut short or damaged\n");
        EXPECT_EQ(model, nullptr);
    }
}

TEST_F(Dispatch, LongFileNamesAreRefusedNotCut)
{
    const std::string name(5000, 'x');
    EXPECT_EQ(read_file(name + ".mps"), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(message().substr(0, 25), "Unable to open file 'xxxx");
    make();
    EXPECT_EQ(TVXwrite(model, (name + ".mps").c_str()), TVX_ERROR_FILE_WRITE);
}

TEST_F(Dispatch, LpFilesGoThroughTheSameDoors)
{
    make();
    ASSERT_EQ(TVXwrite(model, "x.lp.gz"), 0);
    EXPECT_EQ(read_file("x"), 0) << message();
    EXPECT_EQ(log.find("Read LP format model from file x.lp.gz\nReading time = "), 0u);
    ASSERT_EQ(TVXwrite(model, "y.RLP.bz2"), 0);
    EXPECT_EQ(read_file("y.RLP.bz2"), 0) << message();
    EXPECT_EQ(column("C0000001"), 1);
    EXPECT_EQ(read("min x\nend", "z.ilp"), 0) << message();
    EXPECT_EQ(TVXwrite(model, "z.ilp"), TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_EQ(model_message(), "No IIS available for current model");
    Output output;
    EXPECT_EQ(TVXwrite(model, "no/such/directory/x.lp"), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(output.text(), "Unable to write to file 'no/such/directory/x.lp'\n");
}
