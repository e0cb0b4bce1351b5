// solution_files_test.cpp -- MIP starts and solutions
#include "files/files_support.h"
#include "model/model_store.h"

class SolutionFiles : public Files
{
  protected:
    // The small model with X integer, and a solution as a search would leave it.
    void solved(double x, double y)
    {
        ASSERT_EQ(read(mps_with("RHS\nBOUNDS\n LI B X 0\nENDATA\n")), 0);
        model->mip.result = record_create<MipResult>();
        ASSERT_NE(model->mip.result, nullptr);
        model->mip.result->status = TVX_OPTIMAL;
        model->mip.result->has_solution = 1;
        model->mip.result->sol_count = 1;
        ASSERT_EQ(array_resize(&model->mip.result->x, 2), 0);
        model->mip.result->x[0] = x;
        model->mip.result->x[1] = y;
    }
    int read_start(const std::string &text)
    {
        file_put("s.mst", text);
        Output output;
        const int code = TVXread(model, "s.mst");
        log = output.text();
        return code;
    }
    double start(int j)
    {
        double value = 0;
        EXPECT_EQ(TVXupdatemodel(model), 0);
        EXPECT_EQ(TVXgetdblattrelement(model, "Start", j, &value), 0);
        return value;
    }
};

TEST_F(SolutionFiles, ValuesAreWrittenWithAllTheirDigits)
{
    solved(12345678, 1.0 / 3);
    ASSERT_EQ(TVXwrite(model, "s.sol"), 0) << TVXgetmerrormsg(model);
    EXPECT_EQ(file_get("s.sol"),
              "# Solution for model TEST\nX 12345678\nY 0.3333333333333333\n");
    ASSERT_EQ(TVXwrite(model, "s.mst"), 0);
    EXPECT_EQ(file_get("s.mst"), "# MIP start\nX 12345678\n");
    Output output;
    ASSERT_EQ(TVXread(model, "s.mst"), 0);
    EXPECT_EQ(start(0), 12345678);
}

TEST_F(SolutionFiles, WithoutASolutionThereIsNoFile)
{
    ASSERT_EQ(read(mps_with("RHS\nENDATA\n")), 0);
    Output output;
    EXPECT_EQ(TVXwrite(model, "s.sol"), TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_EQ(TVXwrite(model, "s.mst"), TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_EQ(output.text(), "No solution available to write to MIP start file\n");
    EXPECT_FALSE(std::filesystem::exists("s.sol"));
    EXPECT_FALSE(std::filesystem::exists("s.mst"));
}

TEST_F(SolutionFiles, AStartSetsTheVariablesItNames)
{
    ASSERT_EQ(read(mps_with("RHS\nENDATA\n")), 0);
    ASSERT_EQ(read_start("# MIP start\r\n\n   Y \t2.5 # behind\nNONE 3\nC0 4\n"), 0);
    EXPECT_EQ(
        log,
        "Unknown variable 'NONE' in MIP start - ignored\n"
        "Unknown variable 'C0' in MIP start - ignored\n2 unknown variables in MIP start\n");
    EXPECT_EQ(start(1), 2.5);
    EXPECT_GT(start(0), 1e99);
}

TEST_F(SolutionFiles, StartsKnowNamesWithBlanksAndDefaultNames)
{
    ASSERT_EQ(read("NAME\nROWS\n N  C\nCOLUMNS\n    A B       C                    1\n"
                   "    A         C                    1\nRHS\nENDATA\n"),
              0);
    ASSERT_EQ(read_start("A B 1\nA 2\n"), 0);
    EXPECT_EQ(start(0), 1);
    EXPECT_EQ(start(1), 2);
    TVXfreemodel(model);
    ASSERT_EQ(TVXnewmodel(env, &model, "m", 2, nullptr, nullptr, nullptr, nullptr, nullptr),
              0);
    ASSERT_EQ(read_start("C0000001 3\nC0 4\n"), 0);
    EXPECT_EQ(log, "");
    EXPECT_EQ(start(0), 4);
    EXPECT_EQ(start(1), 3);
}

TEST_F(SolutionFiles, AMalformedStartSetsNothing)
{
    ASSERT_EQ(read(mps_with("RHS\nENDATA\n")), 0);
    for (const char *line : {"X", "X nan", "X 1,5", "X inf", "X 1e999"}) {
        EXPECT_EQ(read_start(std::string("Y 2\n") + line + "\n"), TVX_ERROR_FILE_READ);
        EXPECT_EQ(log, std::string("Error at line 2 of MIP start:\n") + line + "\n");
        EXPECT_EQ(std::string(TVXgetmerrormsg(model)),
                  std::string("MIP start: name and value expected at line 2:\n") + line);
        double value = 0;
        EXPECT_EQ(TVXgetdblattrelement(model, "Start", 1, &value),
                  TVX_ERROR_DATA_NOT_AVAILABLE);
    }
    EXPECT_EQ(read_start(std::string("Y\0 2\n", 5)), TVX_ERROR_FILE_READ);
}

TEST_F(SolutionFiles, AStartOfAnotherModelDoesNotFloodTheLog)
{
    ASSERT_EQ(read(mps_with("RHS\nENDATA\n")), 0);
    std::string text;
    for (int k = 0; k < 5000; k++) text += "n" + std::to_string(k) + " 1\n";
    ASSERT_EQ(read_start(text), 0);
    EXPECT_LT(log.size(), 10000u);
    EXPECT_NE(log.find("5000 unknown variables"), std::string::npos);
}
