// parameters_test.cpp -- parameters by name and from files
#include "frame/env.h"
#include "frame/parameter_table.h"
#include "support/scratch.h"
#include <cmath>
#include <limits>
#include <string>
#include <vector>

class Parameters : public testing::Test
{
  protected:
    Scratch scratch;
    TVXenv *env = nullptr;
    void SetUp() override { ASSERT_EQ(TVXloadenv(&env, nullptr), 0); }
    void TearDown() override { TVXfreeenv(env); }

    int get_int(const char *name)
    {
        int value = -12345;
        EXPECT_EQ(TVXgetintparam(env, name, &value), 0) << name;
        return value;
    }
    double get_dbl(const char *name)
    {
        double value = -12345;
        EXPECT_EQ(TVXgetdblparam(env, name, &value), 0) << name;
        return value;
    }
    std::string get_str(const char *name)
    {
        char value[TVX_PARAM_LENGTH + 1] = "?";
        EXPECT_EQ(TVXgetstrparam(env, name, value), 0) << name;
        return value;
    }
    // What reading a file of this text prints.
    std::string read(const std::string &text)
    {
        file_put("t.prm", text);
        Output output;
        EXPECT_EQ(TVXreadparams(env, "t.prm"), 0);
        EXPECT_STREQ(TVXgeterrormsg(env), "");
        return output.text();
    }
    std::string written()
    {
        EXPECT_EQ(TVXwriteparams(env, "w.prm"), 0);
        return file_get("w.prm");
    }
};

// ---- Every row ----

struct IntRow {
    const char *name;
    int minimum, maximum, value;
};
struct DblRow {
    const char *name;
    double minimum, maximum, value;
};
#define NOTHING(...)
#define INT_ROW(name, minimum, maximum, value) {#name, minimum, maximum, value},
#define DBL_ROW(name, minimum, maximum, value) {#name, minimum, maximum, value},
#define NAME_ROW(name, ...) #name,
static const std::vector<IntRow> int_rows = {PUBLIC_PARAMETERS(
    INT_ROW, NOTHING, NOTHING) HIDDEN_PARAMETERS(INT_ROW, NOTHING, NOTHING)};
static const std::vector<DblRow> dbl_rows = {PUBLIC_PARAMETERS(
    NOTHING, DBL_ROW, NOTHING) HIDDEN_PARAMETERS(NOTHING, DBL_ROW, NOTHING)};

TEST_F(Parameters, IntRowsKeepTheirRangeAndDefault)
{
    EXPECT_EQ(int_rows.size() + dbl_rows.size() + 4, 63u + 59u);
    for (const IntRow &row : int_rows) {
        const std::string name = row.name;
        const int value = name == "Threads" ? ProcessorCount() : row.value;
        int info[4] = {};
        ASSERT_EQ(TVXgetparamtype(env, row.name), 1) << name;
        ASSERT_EQ(TVXgetintparaminfo(env, row.name, &info[0], &info[1], &info[2], &info[3]),
                  0);
        EXPECT_TRUE(info[0] == value && info[1] == row.minimum && info[2] == row.maximum &&
                    info[3] == value)
            << name;
        EXPECT_EQ(TVXgetintparaminfo(env, row.name, nullptr, nullptr, nullptr, nullptr), 0);
        for (const int bound : {row.minimum, row.maximum}) {
            ASSERT_EQ(TVXsetintparam(env, row.name, bound), 0) << name;
            ASSERT_EQ(get_int(row.name), bound) << name;
        }
        if (row.minimum > -2000000000) {
            ASSERT_EQ(TVXsetintparam(env, row.name, row.minimum - 1),
                      TVX_ERROR_VALUE_OUT_OF_RANGE);
            ASSERT_EQ(TVXgeterrormsg(env),
                      "Unable to set parameter " + name + " to value " +
                          std::to_string(row.minimum - 1) + " (minimum is " +
                          std::to_string(row.minimum) + ")");
        }
        if (row.maximum < 2000000000) {
            ASSERT_EQ(TVXsetintparam(env, row.name, row.maximum + 1),
                      TVX_ERROR_VALUE_OUT_OF_RANGE);
            ASSERT_EQ(TVXgeterrormsg(env),
                      "Unable to set parameter " + name + " to value " +
                          std::to_string(row.maximum + 1) + " (maximum is " +
                          std::to_string(row.maximum) + ")");
        }
        ASSERT_EQ(get_int(row.name), row.maximum) << name; // unchanged by the failures
        double number = 0;
        ASSERT_EQ(TVXgetdblparam(env, row.name, &number), TVX_ERROR_UNKNOWN_PARAMETER);
        ASSERT_EQ(TVXgeterrormsg(env), "Wrong type for parameter: " + name);
    }
    ASSERT_EQ(TVXresetparams(env), 0);
    EXPECT_EQ(written(), "");
}

TEST_F(Parameters, DoubleRowsKeepTheirRangeAndDefault)
{
    for (const DblRow &row : dbl_rows) {
        double info[4] = {};
        ASSERT_EQ(TVXgetparamtype(env, row.name), 2) << row.name;
        ASSERT_EQ(TVXgetdblparaminfo(env, row.name, &info[0], &info[1], &info[2], &info[3]),
                  0);
        EXPECT_TRUE(info[0] == row.value && info[1] == row.minimum &&
                    info[2] == row.maximum && info[3] == row.value)
            << row.name;
        EXPECT_EQ(TVXgetdblparaminfo(env, row.name, nullptr, nullptr, nullptr, nullptr), 0);
        for (const double bound : {row.minimum, row.maximum}) {
            ASSERT_EQ(TVXsetdblparam(env, row.name, bound), 0) << row.name;
            ASSERT_EQ(get_dbl(row.name), bound) << row.name;
        }
        const double infinity = std::numeric_limits<double>::infinity();
        const bool unbounded = row.maximum == 1e100;
        ASSERT_EQ(TVXsetdblparam(env, row.name, infinity),
                  unbounded ? 0 : TVX_ERROR_VALUE_OUT_OF_RANGE);
        if (row.minimum > -1e100) {
            ASSERT_EQ(TVXsetdblparam(env, row.name, std::nextafter(row.minimum, -infinity)),
                      TVX_ERROR_VALUE_OUT_OF_RANGE);
        }
        ASSERT_EQ(TVXsetdblparam(env, row.name, std::nan("")),
                  TVX_ERROR_VALUE_OUT_OF_RANGE);
        ASSERT_EQ(get_dbl(row.name), row.maximum) << row.name;
        ASSERT_EQ(TVXsetintparam(env, row.name, 1), TVX_ERROR_UNKNOWN_PARAMETER);
    }
}

TEST_F(Parameters, DoubleRangeErrorsSayWhatIsAllowed)
{
    EXPECT_EQ(TVXsetdblparam(env, "Cutoff", 1e300), 0);
    EXPECT_EQ(get_dbl("Cutoff"), 1e100);
    EXPECT_EQ(TVXsetdblparam(env, "FeasibilityTol", 0.5), 10008);
    EXPECT_STREQ(TVXgeterrormsg(env),
                 "Unable to set parameter FeasibilityTol to value 0.5 (maximum is 0.01)");
    EXPECT_EQ(TVXsetdblparam(env, "time_limit", -1e300), 10008);
    EXPECT_STREQ(TVXgeterrormsg(env),
                 "Unable to set parameter TimeLimit to value -1e+100 (minimum is 0)");
}

TEST_F(Parameters, StringsHoldTheirFirst512Characters)
{
    char current[TVX_PARAM_LENGTH + 1];
    char standard[TVX_PARAM_LENGTH + 1];
    EXPECT_EQ(TVXgetparamtype(env, "NodefileDir"), 3);
    EXPECT_EQ(TVXsetstrparam(env, "NodefileDir", std::string(600, 'd').c_str()), 0);
    EXPECT_EQ(TVXgetstrparaminfo(env, "NodefileDir", current, standard), 0);
    EXPECT_EQ(current, std::string(512, 'd'));
    EXPECT_STREQ(standard, ".");
    EXPECT_EQ(TVXgetstrparaminfo(env, "ResultFile", nullptr, nullptr), 0);
    EXPECT_EQ(TVXresetparams(env), 0);
    EXPECT_EQ(get_str("NodefileDir"), std::string(512, 'd')); // strings are not reset
    EXPECT_EQ(TVXsetstrparam(env, "NodefileDir", ""), 0);
    EXPECT_EQ(get_str("NodefileDir"), "");
}

// ---- Names ----

TEST_F(Parameters, NamesIgnoreCaseAndInnerUnderscores)
{
    for (const char *name : {"TimeLimit", "TIMELIMIT", "time_limit", "T_i_m_e_limit__"}) {
        EXPECT_EQ(TVXsetdblparam(env, name, 17), 0) << name;
        EXPECT_EQ(get_dbl("TimeLimit"), 17);
        EXPECT_EQ(TVXresetparams(env), 0);
    }
    EXPECT_EQ(TVXsetdblparam(env, "tarvparbigm", 2e6), 0);
    EXPECT_EQ(get_dbl("TARV_PAR_BIGM"), 2e6);
}

TEST_F(Parameters, UnknownNamesAreNamedInTheMessage)
{
    int value = 0;
    for (const char *name : {"NoSuch", "_TimeLimit", "", "Time Limit", "%s%n"}) {
        EXPECT_EQ(TVXgetintparam(env, name, &value), 10007);
        EXPECT_EQ(TVXgeterrormsg(env), std::string("Unknown parameter: ") + name);
        EXPECT_EQ(TVXgetparamtype(env, name), -1);
    }
    EXPECT_EQ(TVXgetintparam(env, std::string(5000, 'n').c_str(), &value), 10007);
    EXPECT_EQ(TVXgetintparam(env, "EndPublic", &value), 10007);
    EXPECT_STREQ(TVXgeterrormsg(env), "Wrong type for parameter: EndPublic");
    EXPECT_EQ(TVXgetparamtype(env, "EndPublic"), -1);
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "EndPublic 1"), 10007);
    EXPECT_STREQ(TVXgeterrormsg(env), "Unknown parameter: EndPublic");
}

TEST_F(Parameters, PublicNamesCanBeListedInTableOrder)
{
    const char *names[] = {PUBLIC_PARAMETERS(NAME_ROW, NAME_ROW, NAME_ROW)};
    char *name = nullptr;
    ASSERT_EQ(TVXgetnumparams(env), 63);
    for (int k = 0; k < 63; k++) {
        ASSERT_EQ(TVXgetparamname(env, k, &name), 0);
        EXPECT_STREQ(name, names[k]);
    }
    for (const int k : {63, 64, -1, 2000000000}) {
        EXPECT_EQ(TVXgetparamname(env, k, &name), TVX_ERROR_INVALID_ARGUMENT);
        EXPECT_EQ(name, nullptr);
    }
    EXPECT_EQ(TVXgetparamname(env, 0, nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXgetnumparams(nullptr), 0);
}

TEST_F(Parameters, NullArgumentsAreRefused)
{
    int i = 0;
    double d = 0;
    char s[TVX_PARAM_LENGTH + 1];
    for (TVXenv *handle : {static_cast<TVXenv *>(nullptr), env}) {
        EXPECT_EQ(TVXgetintparam(handle, nullptr, &i), 10002);
        EXPECT_EQ(TVXgetdblparam(handle, nullptr, &d), 10002);
        EXPECT_EQ(TVXgetstrparam(handle, nullptr, s), 10002);
        EXPECT_EQ(TVXgetintparam(handle, "Cuts", nullptr), 10002);
        EXPECT_EQ(TVXgetdblparam(handle, "Cutoff", nullptr), 10002);
        EXPECT_EQ(TVXgetstrparam(handle, "LogFile", nullptr), 10002);
        EXPECT_EQ(TVXsetintparam(handle, nullptr, 1), 10002);
        EXPECT_EQ(TVXsetdblparam(handle, nullptr, 1), 10002);
        EXPECT_EQ(TVXsetstrparam(handle, nullptr, "x"), 10002);
        for (const char *name : {"LogFile", "Dummy", "ResultFile"})
            EXPECT_EQ(TVXsetstrparam(handle, name, nullptr), 10002);
        EXPECT_EQ(TVXgetintparaminfo(handle, nullptr, &i, &i, &i, &i), 10002);
        EXPECT_EQ(TVXgetdblparaminfo(handle, nullptr, &d, &d, &d, &d), 10002);
        EXPECT_EQ(TVXgetstrparaminfo(handle, nullptr, s, s), 10002);
        EXPECT_EQ(TVXreadparams(handle, nullptr), 10002);
        EXPECT_EQ(TVXwriteparams(handle, nullptr), 10002);
        EXPECT_EQ(TVXgetparamtype(handle, nullptr), -1);
    }
    EXPECT_EQ(TVXresetparams(nullptr), 10002);
}

TEST_F(Parameters, DummySetsAnyNumberByText)
{
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "Presolve 2"), 0);
    EXPECT_EQ(get_int("Presolve"), 2);
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "  time_limit\t1.5d1 x"), 0);
    EXPECT_EQ(get_dbl("TimeLimit"), 15);
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "Presolve 1.9"), 0);
    EXPECT_EQ(get_int("Presolve"), 1);
    EXPECT_EQ(get_str("Dummy"), "");
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "Presolve 1e300"), 10008);
    EXPECT_STREQ(TVXgeterrormsg(env),
                 "Unable to set parameter Presolve to value 2000000000 (maximum is 2)");
    for (const char *text : {"", "Presolve", "Presolve x", "Presolve 2x", "NoSuch 1",
                             "LogFile 1", "Presolve nan"})
        EXPECT_EQ(TVXsetstrparam(env, "Dummy", text), 10007) << text;
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", (std::string(4000, 'n') + " 1").c_str()), 10007);
    EXPECT_EQ(get_int("Presolve"), 1);
}

TEST_F(Parameters, AMasterWithModelsWarnsOnce)
{
    static constexpr char warning[] =
        "Warning: parameter changes on this environment will not affect existing models.\n";
    Output quiet;
    ASSERT_EQ(TVXsetintparam(env, "Cuts", 1), 0);
    EXPECT_EQ(quiet.text(), ""); // no model yet
    TVXenv *copy = nullptr;
    ASSERT_EQ(env_copy(&copy, env, LogReopen::NO), 0);
    Output output;
    TVXsetintparam(copy, "Cuts", 2); // a model's own environment
    TVXsetintparam(env, "OutputFlag", 0);
    TVXsetintparam(env, "OutputFlag", 1); // off: not printed, still to come
    TVXsetintparam(env, "Cuts", 2);
    TVXsetdblparam(env, "Cutoff", 2);
    TVXsetstrparam(env, "ResultFile", "x");
    EXPECT_EQ(output.text(), warning);
    env_free(copy);
}

// ---- Files ----

TEST_F(Parameters, WhatIsWrittenReadsBack)
{
    ASSERT_EQ(TVXsetintparam(env, "MIPFocus", 2), 0);
    ASSERT_EQ(TVXsetdblparam(env, "TimeLimit", 12.5), 0);
    ASSERT_EQ(TVXsetdblparam(env, "Cutoff", -1e100), 0);
    ASSERT_EQ(TVXsetintparam(env, "TARV_PAR_ITEST", -2000000000), 0);
    ASSERT_EQ(TVXsetintparam(env, "TARV_PAR_MASTERENVWARN", 0), 0);
    ASSERT_EQ(TVXsetstrparam(env, "ResultFile", "r.sol"), 0);
    const std::string text = written();
    EXPECT_EQ(
        text,
        "Cutoff  -1e+100\nTimeLimit  12.5\nMIPFocus  2\nTARV_PAR_ITEST  -2000000000\n");
    ASSERT_EQ(TVXwriteparams(env, "w.prm.gz"), 0);
    for (const char *file : {"w.prm", "w.prm.gz"}) {
        ASSERT_EQ(TVXresetparams(env), 0);
        Output output;
        ASSERT_EQ(TVXreadparams(env, file), 0);
        EXPECT_EQ(output.text(), "Set parameter Cutoff to value -1e+100\n"
                                 "Set parameter TimeLimit to value 12.5\n"
                                 "Set parameter MIPFocus to value 2\n"
                                 "Set parameter TARV_PAR_ITEST to value -2e+09\n");
        EXPECT_EQ(written(), text);
    }
}

TEST_F(Parameters, EveryLineOfAFileIsToldInTheLog)
{
    EXPECT_EQ(read("# only\n#comments 1\n"), "");
    EXPECT_EQ(read("Presolve  5\n"), "Failed to set parameter Presolve to value 5\n");
    EXPECT_EQ(read("\tpre_solve\t 1.9 trailing words\r\n"),
              "Set parameter pre_solve to value 1.9\n");
    EXPECT_EQ(get_int("Presolve"), 1);
    EXPECT_EQ(read("TimeLimit 2x"), "Failed to set parameter TimeLimit to value 2x\n");
    EXPECT_EQ(read("TimeLimit nan"), "Failed to set parameter TimeLimit to value nan\n");
    EXPECT_EQ(read("TimeLimit inf"), "Set parameter TimeLimit to value inf\n");
    EXPECT_EQ(get_dbl("TimeLimit"), 1e100);
    EXPECT_EQ(read("EndPublic 1\n"), "Failed to set parameter EndPublic to value 1\n");
    EXPECT_EQ(
        read("NodefileDir nodes\nResultFile 12\n"),
        "Set parameter NodefileDir to value nodes\nSet parameter ResultFile to value 12\n");
    EXPECT_EQ(get_str("NodefileDir"), "nodes");
    EXPECT_EQ(get_str("ResultFile"), ""); // numbers are no strings
    EXPECT_EQ(read(" # x\nNoSuch 1\nCuts 2\n"),
              "Warning: unknown parameter # in t.prm\n"
              "Warning: unknown parameter NoSuch in t.prm\n"
              "Set parameter Cuts to value 2\n"
              "2 warnings while reading parameter file t.prm\n");
}

TEST_F(Parameters, BlankLinesArePassedOver)
{
    EXPECT_EQ(read("\xef\xbb\xbf\n \t\r\nCuts 1\r\r\n\n\x1a"),
              "Set parameter Cuts to value 1\n");
    EXPECT_EQ(get_int("Cuts"), 1);
}

TEST_F(Parameters, LongLinesAreTakenApart)
{
    // 159 characters: the name and blanks; the next piece starts a new line.
    EXPECT_EQ(
        read("Cuts" + std::string(155, ' ') + "Presolve 2\n"),
        "Failed to set parameter Cuts to value \nSet parameter Presolve to value 2\n");
    const std::string name(1000, 'n');
    const std::string said = read(name + " 1\n");
    EXPECT_NE(
        said.find("Warning: unknown parameter " + std::string(159, 'n') + " in t.prm\n"),
        std::string::npos);
    EXPECT_NE(said.find("\n7 warnings while reading"), std::string::npos);
    EXPECT_EQ(read("#" + std::string(158, ' ') + "Presolve 1\n"), ""); // but no comment
}

TEST_F(Parameters, AFileThatIsNoTextIsAnErrorWithItsLine)
{
    file_put("t.prm", std::string("Cuts 1\r\n\xff\xfe\nMIPFocus 1\0 2\n", 25));
    Output output;
    EXPECT_EQ(TVXreadparams(env, "t.prm"), 10012);
    EXPECT_STREQ(TVXgeterrormsg(env),
                 "Parameter file t.prm is no text file: control character in line 3");
    EXPECT_EQ(output.text(), "Set parameter Cuts to value 1\nWarning: unknown parameter "
                             "\xff\xfe in t.prm\n1 warnings while reading parameter file "
                             "t.prm\n");
}

TEST_F(Parameters, FilesThatCannotBeUsedAreErrors)
{
    EXPECT_EQ(TVXreadparams(env, "none.prm"), 10003);
    EXPECT_STREQ(TVXgeterrormsg(env), "Unable to read parameter file none.prm");
    EXPECT_EQ(TVXreadparams(env, "."), 10003);
    file_put("bad.prm.gz", "not compressed");
    EXPECT_EQ(TVXreadparams(env, "bad.prm.gz"), 10012);
    EXPECT_STREQ(TVXgeterrormsg(env), "Unable to read parameter file bad.prm.gz");
    EXPECT_EQ(TVXwriteparams(env, "no/such/w.prm"), 10003);
    EXPECT_STREQ(TVXgeterrormsg(env), "Unable to write to parameter file no/such/w.prm");
    ASSERT_EQ(TVXsetintparam(env, "Cuts", 1), 0);
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_EQ(TVXwriteparams(env, "/dev/full"), 10013);
        EXPECT_STREQ(TVXgeterrormsg(env), "Unable to write to parameter file /dev/full");
    }
}

TEST(ParameterFile, TheStartReadsTarvexEnvOfTheCurrentDirectory)
{
    const Scratch scratch;
    file_put("tarvex.env", "Presolve 2\nNoSuch 1\nLogFile b.log\nOutputFlag 0\nCuts 9\n");
    Output output;
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, "a.log"), 0);
    const std::string said = "Set parameter Presolve to value 2\n"
                             "Warning: unknown parameter NoSuch in tarvex.env\n";
    EXPECT_EQ(output.text(),
              said + "Set parameter LogFile to value b.log\n"); // then silence
    EXPECT_STREQ(TVXgeterrormsg(env), "");
    int value = 0;
    EXPECT_EQ(TVXgetintparam(env, "Presolve", &value), 0);
    EXPECT_EQ(value, 2);
    char name[TVX_PARAM_LENGTH + 1];
    EXPECT_EQ(TVXgetstrparam(env, "LogFile", name), 0);
    EXPECT_STREQ(name, "b.log");
    TVXfreeenv(env);
    EXPECT_NE(file_get("a.log").find(said), std::string::npos);
    EXPECT_NE(file_get("b.log").find("Set parameter LogFile to value b.log\n"),
              std::string::npos);
}

#ifdef TVX_DEBUG
TEST_F(Parameters, SettingReadingAndWritingNeedNoMemory)
{
    file_put("t.prm", "Cuts 1\nTimeLimit 3\nLogFile a.log\nNoSuch 2\n");
    Output output;
    mem_fault_arm(1);
    EXPECT_EQ(TVXreadparams(env, "t.prm"), 0);
    EXPECT_EQ(TVXwriteparams(env, "w.prm"), 0);
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "Presolve 2"), 0);
    EXPECT_EQ(TVXresetparams(env), 0);
    EXPECT_EQ(mem_fault_hits(), 0);
    mem_fault_arm(0);
    EXPECT_EQ(file_get("w.prm"), "TimeLimit  3\nCuts  1\n");
}
#endif
