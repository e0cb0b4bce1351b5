// dispatch_test.cpp -- file names: types, completion, compression, odd characters, files that cannot be written
#include "files/dispatch.h"
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
    EXPECT_EQ(file_type("a.mps"), FILE_MPS);
    EXPECT_EQ(file_type("model.mps.bz2"), FILE_MPS);
    EXPECT_EQ(file_type("A.MPS"), FILE_MPS);
    EXPECT_EQ(file_type(".rew.gz"), FILE_REW);
    EXPECT_EQ(file_type("x.lp"), FILE_LP);
    EXPECT_EQ(file_type("x.rlp"), FILE_RLP);
    EXPECT_EQ(file_type("x.ilp.gz"), FILE_ILP);
    EXPECT_EQ(file_type("x.mps.mst"), FILE_MST);
    EXPECT_EQ(file_type("x.sol"), FILE_SOL);
    EXPECT_EQ(file_type("x.bas"), FILE_BAS);
    EXPECT_EQ(file_type("x.prm"), FILE_PRM);
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
    EXPECT_EQ(read_file("none.mps"), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(message(), "Unable to open file 'none.mps' for input");
    file_put("x.txt", "");
    EXPECT_EQ(read_file("x.txt"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(message(), "Unknown file type for file 'x.txt'");
    file_put("x.sol", "");
    EXPECT_EQ(read_file("x.sol"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(TVXreadmodel(env, nullptr, &model), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(message(), "No 'filename' argument supplied");
    EXPECT_EQ(TVXreadmodel(env, "x", nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXreadmodel(nullptr, "x", &model), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(model, nullptr);
    EXPECT_EQ(TVXread(nullptr, "x"), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXwrite(nullptr, "x"), TVX_ERROR_NULL_ARGUMENT);
}

TEST_F(Dispatch, OnlySideFilesAreReadIntoAModel)
{
    make();
    EXPECT_EQ(TVXread(model, "t.mps"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(model_message(), "Can't import file 't.mps' into a model");
    file_put("x.sol", "X 1\n");
    EXPECT_EQ(TVXread(model, "x.sol"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(model_message(), "Can't import file 'x.sol' into a model");
    file_put("x.txt", "");
    EXPECT_EQ(TVXread(model, "x.txt"), TVX_ERROR_FILE_READ);
    EXPECT_EQ(model_message(), "Unknown file type for file 'x.txt'");
    EXPECT_EQ(TVXread(model, "none.bas"), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(model_message(), "Unable to open file 'none.bas' for input");
    EXPECT_EQ(TVXread(model, nullptr), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(model_message(), "No 'filename' argument supplied");
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
    for (const char *name : {"x.mps.gz", "y.mps.GZ"}) {
        EXPECT_EQ(TVXwrite(model, name), TVX_ERROR_FILE_WRITE);
        EXPECT_EQ(model_message(),
                  std::string("File ") + name +
                      " needs the command gzip, which cannot be started\n");
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

TEST_F(Dispatch, AnyFileNameWorks)
{
    make();
    TVXmodel *first = model;
    model = nullptr;
    for (const char *name :
         {"with blanks", "it's", "a;touch oops", "-dash", "$(touch oops)", "`x`",
          "tab\there", "new\nline", "\"quoted\"", "a|b", "*", "\xc3\xa9"})
        for (const char *suffix : {".mps", ".mps.gz", ".rew.bz2"}) {
            const std::string file = std::string(name) + suffix;
            ASSERT_EQ(TVXwrite(first, file.c_str()), 0) << file << TVXgetmerrormsg(first);
            ASSERT_EQ(read_file(file), 0) << file << message();
            EXPECT_EQ(model_difference(first, model, Names::IGNORE), "") << file;
        }
    EXPECT_FALSE(std::filesystem::exists("oops"));
    TVXfreemodel(first);
}

TEST_F(Dispatch, LongFileNamesAreRefusedNotCut)
{
    const std::string name(5000, 'x');
    EXPECT_EQ(read_file(name + ".mps"), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(message().substr(0, 25), "Unable to open file 'xxxx");
    make();
    EXPECT_EQ(TVXwrite(model, (name + ".mps").c_str()), TVX_ERROR_FILE_WRITE);
}

TEST_F(Dispatch, FormsOfLaterBuildsAreRefused)
{
    make();
    for (const char *name : {"x.lp", "x.rlp.gz", "x.ilp"}) {
        file_put(name, "Minimize\n x\nEnd\n");
        if (file_type(name) == FILE_LP && read_file(name) == 0)
            GTEST_SKIP() << "this build reads LP files";
        EXPECT_EQ(read_file(name), TVX_ERROR_FILE_READ) << name;
        EXPECT_EQ(message().find("LP files cannot be read yet"), 0u) << message();
        make();
        EXPECT_EQ(TVXwrite(model, name), TVX_ERROR_FILE_WRITE) << name;
        EXPECT_EQ(model_message().find("LP files cannot be written yet"), 0u);
    }
}
