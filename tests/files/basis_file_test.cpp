// basis_file_test.cpp -- bases, starts and solutions through files: exactly what was written comes back
#include "files/files.h"
#include "files/files_support.h"

struct BasisFile : Files {
    std::vector<int> vbasis, cbasis;

    // Names of the first of n elements, odd ones of every kind, also twice.
    static std::vector<std::string> odd_names(Dice *dice, int n)
    {
        // clang-format off
        static const std::string numbered[] = {
            "C0", "C1", "C0000000", "C0000001", "R0", "R1", "R0000001", "a_long_row_name"},
            names[] = {
            "a b", "a", " a", "a ", "a  1", "\xc3\xa9t\xc3\xa9 \xe2\x82\xac", "\xe9", "", "#", "# b", "ENDATA",
            "XL", "1e5", "-inf", "a\tb", "c\nd", "x", "X", "b c", "b", "c", "2", "a long name", "a long name 2",
            std::string(255, 'n'), std::string(256, 'n'), std::string(70000, 'l')};
        // clang-format on
        std::vector<std::string> list;
        const bool odd = dice->chance(50);
        for (int k = dice->chance(30) ? 0 : dice->range(0, n); k > 0; k--)
            list.push_back(odd ? names[dice->range(0, std::size(names) - 1)]
                               : numbered[dice->range(0, std::size(numbered) - 1)]);
        return list;
    }
    // n integer columns and m rows with bounds of all kinds, a random basis of them, and a solution as a search would
    // leave it.
    void make(Dice *dice, int n, int m)
    {
        LpModel lp;
        for (int j = 0; j < n; j++)
            lp_add_var(&lp, 0, dice->chance(40) ? -LP_INFINITY : 0,
                       dice->chance(40) ? LP_INFINITY : 1);
        for (int i = 0; i < m; i++) lp_add_row(&lp, '<', 0);
        take(lp, odd_names(dice, n), odd_names(dice, m));
        std::string types(n, 'I');
        ASSERT_EQ(TVXsetcharattrarray(model, "VType", 0, n, types.data()), 0);
        ASSERT_EQ(TVXupdatemodel(model), 0);
        std::vector<double> x;
        for (int j = 0; j < n; j++) x.push_back(j + 3);
        give_solution(x);
        std::vector<int> all(n + m, 1);
        for (int k = 0; k < m; k++) all[k] = TVX_BASIC;
        dice->shuffle(&all);
        vbasis.assign(all.begin(), all.begin() + n);
        cbasis.assign(all.begin() + n, all.end());
        for (int &status : vbasis)
            if (status != TVX_BASIC) status = -dice->range(1, 3);
        for (int &status : cbasis)
            if (status != TVX_BASIC) status = TVX_NONBASIC_LOWER;
    }
    std::string read_bas(const std::string &text)
    {
        EXPECT_EQ(read_into("b.bas", text), 0);
        return model_message();
    }
};

TEST_F(BasisFile, EveryBasisAndEveryStartComeBackUnderAnyNames)
{
    Dice dice(5);
    for (int k = 0; k < 600; k++) {
        make(&dice, dice.range(1, 9), dice.range(1, 9));
        remove("b.bas");
        ASSERT_EQ(
            basis_write(model->body, model->env, vbasis.data(), cbasis.data(), "b.bas"), 0);
        ASSERT_EQ(read_into("b.bas"), 0);
        ASSERT_EQ(model_message(), "") << file_get("b.bas");
        std::vector<int> written = vbasis;
        written.insert(written.end(), cbasis.begin(), cbasis.end());
        ASSERT_EQ(basis(), written) << file_get("b.bas");
        ASSERT_EQ(log, "");
        ASSERT_EQ(TVXwrite(model, "s.mst"), 0);
        ASSERT_EQ(read_into("s.mst"), 0) << message();
        for (int j = 0; j < model->body->numvars; j++)
            ASSERT_EQ(start(j), j + 3) << file_get("s.mst");
    }
}

TEST_F(BasisFile, HasTheClassicFormAndReadsThatOfOtherPrograms)
{
    ASSERT_EQ(read(mps_with("RHS\nBOUNDS\n UP B Y 4\nENDATA\n")), 0);
    const int v[] = {TVX_BASIC, TVX_NONBASIC_UPPER};
    const int c[] = {TVX_BASIC, TVX_NONBASIC_LOWER};
    ASSERT_EQ(basis_write(model->body, model->env, v, c, "b.bas"), 0);
    EXPECT_EQ(file_get("b.bas"), "NAME TEST 2 Variables 2 Constraints\n"
                                 " XL X         R2      \n"
                                 " UL Y       \n"
                                 "ENDATA\n");
    EXPECT_EQ(read_bas("NAME          TEST  Rows 2  Cols 2\n* comment\n XU X R2 1.5\n UL Y "
                       "4.0\n ?? Z\n\nENDATA\n XL Y R1\n"),
              "");
    EXPECT_EQ(basis(), (std::vector<int>{0, -2, 0, -1}));
    EXPECT_EQ(read_bas(" xl Y R1\n ll X\n"), "");
    EXPECT_EQ(basis(), (std::vector<int>{-1, 0, -1, 0}));
}

TEST_F(BasisFile, UnknownNamesEndTheReadAndLeaveTheirMessage)
{
    ASSERT_EQ(read(mps_with("RHS\nENDATA\n")), 0);
    EXPECT_EQ(read_bas(" XL X R2\n"), "");
    EXPECT_EQ(log, "Warning: no ENDATA in file b.bas\n");
    const std::vector<int> before = basis();
    EXPECT_EQ(read_bas(" XL Y R1\n UL NONE\nENDATA\n"),
              "MPS reader: variable name NONE doesn't exist\n");
    EXPECT_EQ(log, "Error: variable name NONE doesn't exist\n");
    EXPECT_EQ(read_bas(" XL Y NONE\nENDATA\n"),
              "MPS reader: row name NONE doesn't exist\n");
    EXPECT_EQ(log, "Error: row name NONE doesn't exist\n");
    EXPECT_EQ(basis(), before);
    EXPECT_EQ(read_bas(std::string(" XL Y\0R1\n", 9)),
              "File b.bas is no text file: control character in line 1\n");
}

TEST_F(BasisFile, NumberedNamesStandForElementsWithoutName)
{
    take(lp_make({{}, {}, {}}, {{{}, '<', 1}, {{}, '<', 1}}), {}, {});
    EXPECT_EQ(read_bas(" XL C1 R0000001\n XL C0000002 R0\nENDATA\n"), "");
    EXPECT_EQ(basis(), (std::vector<int>{-1, 0, 0, -1, -1}));
    EXPECT_EQ(read_bas(" XL C3 R0\nENDATA\n"),
              "MPS reader: variable name C3 doesn't exist\n");
}

TEST_F(BasisFile, WhatIsNoBasisIsNeitherReadNorWritten)
{
    ASSERT_EQ(read(mps_with("RHS\nENDATA\n")), 0);
    EXPECT_EQ(read_bas(" XL X R1\n XL Y R1\nENDATA\n"), "");
    EXPECT_EQ(log, "Warning, invalid warm-start basis discarded\n");
    EXPECT_TRUE(basis().empty());
    ASSERT_EQ(TVXsetdblattrelement(model, "Obj", 0, 77), 0);
    EXPECT_EQ(read_bas(" XL X R1\nENDATA\n"), "");
    EXPECT_NE(model->body->obj[0], 77); // reading is no update
    remove("b.bas");
    EXPECT_EQ(TVXwrite(model, "b.bas"), TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_EQ(model_message(), "Unable to retrieve basis for current model");
    const int v[] = {TVX_BASIC, TVX_BASIC}, c[] = {TVX_BASIC, TVX_NONBASIC_LOWER};
    EXPECT_EQ(basis_write(model->body, model->env, v, c, "b.bas"),
              TVX_ERROR_DATA_NOT_AVAILABLE);
    EXPECT_FALSE(std::filesystem::exists("b.bas"));
    ASSERT_EQ(read("ROWS\n N C\nCOLUMNS\n X C 1\nRHS\nENDATA\n"), 0); // no rows
    EXPECT_EQ(read_bas(" UL NONE\n") + log, "");
}

// ---- Starts and solutions ----

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
