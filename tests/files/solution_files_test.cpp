// solution_files_test.cpp -- MIP starts and solutions
#include "files/files_support.h"

struct SolutionFiles : Files {
    void SetUp() override
    {
        Files::SetUp();
        ASSERT_EQ(read(mps_with("RHS\nBOUNDS\n LI B X 0\nENDATA\n")), 0);
    }
    int read_start(const std::string &text) { return read_into("s.mst", text); }
};

TEST_F(SolutionFiles, ValuesAreWrittenWithAllTheirDigits)
{
    give_solution({12345678, 1.0 / 3});
    ASSERT_EQ(TVXwrite(model, "s.sol"), 0) << model_message();
    EXPECT_EQ(file_get("s.sol"),
              "# Solution for model TEST\nX 12345678\nY 0.3333333333333333\n");
    ASSERT_EQ(TVXwrite(model, "s.mst"), 0);
    EXPECT_EQ(file_get("s.mst"), "# MIP start\nX 12345678\n");
}

TEST_F(SolutionFiles, WithoutASolutionThereIsNoFile)
{
    Output output;
    EXPECT_EQ(TVXwrite(model, "s.sol"), TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_EQ(TVXwrite(model, "s.mst"), TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_EQ(output.text(), "No solution available to write to MIP start file\n");
    EXPECT_FALSE(std::filesystem::exists("s.sol") || std::filesystem::exists("s.mst"));
}

TEST_F(SolutionFiles, AStartSetsTheVariablesItNames)
{
    ASSERT_EQ(read_start("# MIP start\r\n\n   Y \t2.5 # behind\nNONE 3\nC0 4\n"), 0);
    EXPECT_EQ(log, "Unknown variable 'NONE' in MIP start - ignored\n"
                   "Unknown variable 'C0' in MIP start - ignored\n"
                   "2 unknown variables in MIP start\n");
    EXPECT_EQ(start(1), 2.5);
    EXPECT_GT(start(0), 1e99);
    std::string text; // of another model: does not flood the log
    for (int k = 0; k < 5000; k++) text += "n" + std::to_string(k) + " 1\n";
    ASSERT_EQ(read_start(text), 0);
    EXPECT_LT(log.size(), 10000u);
    EXPECT_NE(log.find("5000 unknown variables"), std::string::npos);
    TVXfreemodel(model); // default names, with any number of digits
    ASSERT_EQ(TVXnewmodel(env, &model, "m", 2, nullptr, nullptr, nullptr, nullptr, nullptr),
              0);
    ASSERT_EQ(read_start("C0000001 3\nC0 4\n"), 0);
    EXPECT_EQ(log, "");
    EXPECT_EQ(start(0), 4);
    EXPECT_EQ(start(1), 3);
}

TEST_F(SolutionFiles, AMalformedStartSetsNothing)
{
    for (const char *line : {"X", "X nan", "X 1,5", "X inf", "X 1e999"}) {
        EXPECT_EQ(read_start(std::string("Y 2\n") + line + "\n"), TVX_ERROR_FILE_READ);
        EXPECT_EQ(log, std::string("Error at line 2 of MIP start:\n") + line + "\n");
        EXPECT_EQ(model_message(),
                  std::string("MIP start: name and value expected at line 2:\n") + line);
        double value = 0;
        EXPECT_EQ(TVXgetdblattrelement(model, "Start", 1, &value),
                  TVX_ERROR_DATA_NOT_AVAILABLE);
    }
    EXPECT_EQ(read_start(std::string("Y\0 2\n", 5)), TVX_ERROR_FILE_READ);
}
