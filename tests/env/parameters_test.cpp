// parameters_test.cpp -- parameters by name and from files
#include "env/env_fixture.h"
#include "env/parameter_rows.h"
#include <cmath>
#include <sstream>
#include <vector>

using namespace std::string_literals;

struct Parameters : Env {
    // What reading a file of this text prints.
    std::string read(const std::string &text)
    {
        file_put("t.prm", text);
        Output output;
        EXPECT_EQ(TVXreadparams(env, "t.prm"), 0);
        EXPECT_EQ(message(), "");
        return output.text();
    }
    std::string written()
    {
        EXPECT_EQ(TVXwriteparams(env, "w.prm"), 0);
        return file_get("w.prm");
    }
};

// ---- Every row ----

#define NAME_ROW(name, ...) #name,

// Value, minimum, maximum and default as the library tells them.
static std::vector<double> info(TVXenv *env, const ParameterRow &row)
{
    int i[4] = {};
    double d[4] = {};
    EXPECT_EQ(row.is_int ? TVXgetintparaminfo(env, row.name, i, i + 1, i + 2, i + 3)
                         : TVXgetdblparaminfo(env, row.name, d, d + 1, d + 2, d + 3),
              0);
    return row.is_int ? std::vector<double>(i, i + 4) : std::vector<double>(d, d + 4);
}

TEST_F(Parameters, NumbersKeepTheirRangeAndDefault)
{
    EXPECT_EQ(parameter_rows.size() + 4, 63u + 59u);
    for (const ParameterRow &row : parameter_rows) {
        const std::string name = row.name;
        SCOPED_TRACE(name);
        const double value = name == "Threads" ? ProcessorCount() : row.value;
        ASSERT_EQ(TVXgetparamtype(env, row.name), row.is_int ? 1 : 2);
        ASSERT_EQ(info(env, row),
                  (std::vector<double>{value, row.minimum, row.maximum, value}));
        const double largest = row.is_int ? 2000000000 : 1e100; // no value is further
        for (const bool low : {true, false}) {
            const double bound = low ? row.minimum : row.maximum, way = low ? -1 : 1;
            ASSERT_EQ(row.set(env, bound), 0);
            ASSERT_EQ(info(env, row)[0], bound);
            if (std::fabs(bound) >= largest) continue;
            ASSERT_EQ(row.set(env, row.is_int ? bound + way : way * HUGE_VAL), 10008);
            std::ostringstream text;
            text << "Unable to set parameter " << name << " to value ";
            if (row.is_int) text.precision(10);
            text << (row.is_int ? bound + way : way * largest) << " ("
                 << (low ? "minimum is " : "maximum is ") << bound << ")";
            ASSERT_EQ(message(), text.str());
            ASSERT_EQ(info(env, row)[0], bound); // unchanged by the failure
            if (row.is_int) continue;
            ASSERT_EQ(row.set(env, std::nextafter(bound, way * HUGE_VAL)), 10008);
            ASSERT_EQ(row.set(env, NAN), 10008);
        }
        double number = 0;
        ASSERT_EQ(row.is_int ? TVXgetdblparam(env, row.name, &number)
                             : TVXsetintparam(env, row.name, 1),
                  TVX_ERROR_UNKNOWN_PARAMETER);
        ASSERT_EQ(message(), "Wrong type for parameter: " + name);
    }
    ASSERT_EQ(TVXresetparams(env), 0);
    EXPECT_EQ(written(), "");
    EXPECT_EQ(TVXsetdblparam(env, "TimeLimit", HUGE_VAL), 0);
    EXPECT_EQ(env->TimeLimit, 1e100);
}

TEST_F(Parameters, StringsHoldTheirFirst512Characters)
{
    char given[TVX_PARAM_LENGTH + 1], current[TVX_PARAM_LENGTH + 1],
        standard[TVX_PARAM_LENGTH + 1];
    EXPECT_EQ(TVXgetparamtype(env, "NodefileDir"), 3);
    EXPECT_EQ(TVXsetstrparam(env, "NodefileDir", std::string(600, 'd').c_str()), 0);
    EXPECT_EQ(TVXresetparams(env), 0); // strings are not reset
    EXPECT_EQ(TVXgetstrparam(env, "NodefileDir", given), 0);
    EXPECT_EQ(TVXgetstrparaminfo(env, "NodefileDir", current, standard), 0);
    EXPECT_EQ(current, std::string(512, 'd'));
    EXPECT_STREQ(given, current);
    EXPECT_STREQ(standard, ".");
}

// ---- Names ----

TEST_F(Parameters, NamesIgnoreCaseAndInnerUnderscoresAndUnknownOnesAreTold)
{
    for (const char *name : {"TimeLimit", "TIMELIMIT", "time_limit", "T_i_m_e_limit__"}) {
        EXPECT_EQ(TVXsetdblparam(env, name, 17), 0) << name;
        EXPECT_EQ(env->TimeLimit, 17);
        EXPECT_EQ(TVXresetparams(env), 0);
    }
    int value = 0;
    for (const char *name : {"NoSuch", "_TimeLimit", "", "Time Limit", "%s%n"}) {
        EXPECT_EQ(TVXgetintparam(env, name, &value), 10007);
        EXPECT_EQ(message(), std::string("Unknown parameter: ") + name);
        EXPECT_EQ(TVXgetparamtype(env, name), -1);
    }
    EXPECT_EQ(TVXgetintparam(env, std::string(5000, 'n').c_str(), &value), 10007);
    EXPECT_EQ(TVXgetintparam(env, "EndPublic", &value), 10007);
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "EndPublic 1"), 10007);
    EXPECT_EQ(message(), "Unknown parameter: EndPublic");
}

TEST_F(Parameters, PublicNamesCanBeListedInTableOrder)
{
    char *name = nullptr;
    int k = 0;
    for (const char *expected : {PUBLIC_PARAMETERS(NAME_ROW, NAME_ROW, NAME_ROW)}) {
        ASSERT_EQ(TVXgetparamname(env, k++, &name), 0);
        EXPECT_STREQ(name, expected);
    }
    EXPECT_EQ(TVXgetnumparams(env), k);
    for (const int bad : {k, -1, 2000000000}) {
        EXPECT_EQ(TVXgetparamname(env, bad, &name), TVX_ERROR_INVALID_ARGUMENT);
        EXPECT_EQ(name, nullptr);
    }
}

TEST_F(Parameters, NullArgumentsAreRefused)
{
    int i = 0;
    double d = 0;
    char s[TVX_PARAM_LENGTH + 1];
    for (TVXenv *handle : {static_cast<TVXenv *>(nullptr), env}) {
        for (const int code :
             {TVXgetintparam(handle, nullptr, &i), TVXgetdblparam(handle, nullptr, &d),
              TVXgetstrparam(handle, nullptr, s), TVXgetintparam(handle, "Cuts", nullptr),
              TVXgetdblparam(handle, "Cutoff", nullptr),
              TVXgetstrparam(handle, "LogFile", nullptr),
              TVXsetintparam(handle, nullptr, 1), TVXsetdblparam(handle, nullptr, 1),
              TVXsetstrparam(handle, nullptr, "x"),
              TVXsetstrparam(handle, "LogFile", nullptr),
              TVXsetstrparam(handle, "Dummy", nullptr),
              TVXgetintparaminfo(handle, nullptr, &i, &i, &i, &i),
              TVXgetdblparaminfo(handle, nullptr, &d, &d, &d, &d),
              TVXgetstrparaminfo(handle, nullptr, s, s), TVXreadparams(handle, nullptr),
              TVXwriteparams(handle, nullptr)})
            EXPECT_EQ(code, TVX_ERROR_NULL_ARGUMENT);
        EXPECT_EQ(TVXgetparamtype(handle, nullptr), -1);
    }
    EXPECT_EQ(TVXgetintparaminfo(env, "Cuts", nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TVXgetdblparaminfo(env, "Cutoff", nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(TVXgetstrparaminfo(env, "ResultFile", nullptr, nullptr), 0);
    EXPECT_EQ(TVXresetparams(nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXgetparamname(env, 0, nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXgetnumparams(nullptr), 0);
}

TEST_F(Parameters, DummySetsAnyNumberByText)
{
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "  time_limit\t1.5d1 x"), 0);
    EXPECT_EQ(env->TimeLimit, 15);
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "Presolve 1.9"), 0);
    EXPECT_EQ(env->Presolve, 1);
    EXPECT_STREQ(env->Dummy, "");
    EXPECT_EQ(TVXsetstrparam(env, "Dummy", "Presolve 1e300"), 10008);
    EXPECT_EQ(message(),
              "Unable to set parameter Presolve to value 2000000000 (maximum is 2)");
    const std::string none, long_name(4000, 'n');
    for (const std::string &text :
         {none, long_name, "Presolve"s, "Presolve 2x"s, "LogFile 1"s, "Presolve nan"s})
        EXPECT_EQ(TVXsetstrparam(env, "Dummy", text.c_str()), 10007) << text;
    EXPECT_EQ(env->Presolve, 1);
}

TEST_F(Parameters, AMasterWithModelsWarnsOnce)
{
    Output quiet;
    ASSERT_EQ(TVXsetintparam(env, "Cuts", 1), 0);
    EXPECT_EQ(quiet.text(), ""); // no model yet
    TVXenv *copy = nullptr;
    ASSERT_EQ(env_copy(&copy, env, EnvFiles::NONE), 0);
    Output output;
    TVXsetintparam(copy, "Cuts", 2); // a model's own environment
    TVXsetintparam(env, "OutputFlag", 0);
    TVXsetintparam(env, "OutputFlag", 1); // off: not printed, still to come
    TVXsetdblparam(env, "Cutoff", 2);
    TVXsetstrparam(env, "ResultFile", "x");
    EXPECT_EQ(output.text(), "Warning: parameter changes on this environment will not "
                             "affect existing models.\n");
    env_free(copy);
}

// ---- Files ----

// That every value comes back is looked at by fuzz/corpus_test.cpp.
TEST_F(Parameters, WhatDiffersFromItsDefaultIsWrittenAndToldWhenItIsRead)
{
    ASSERT_EQ(TVXsetdblparam(env, "TimeLimit", 12.5), 0);
    ASSERT_EQ(TVXsetdblparam(env, "Cutoff", -1e100), 0);
    ASSERT_EQ(TVXsetintparam(env, "TARV_PAR_ITEST", -2000000000), 0);
    ASSERT_EQ(TVXsetintparam(env, "TARV_PAR_MASTERENVWARN", 0), 0);
    ASSERT_EQ(TVXsetstrparam(env, "ResultFile", "r.sol"), 0);
    const std::string text = written();
    EXPECT_EQ(text, "Cutoff  -1e+100\nTimeLimit  12.5\nTARV_PAR_ITEST  -2000000000\n");
    ASSERT_EQ(TVXwriteparams(env, "w.prm.gz"), 0);
    ASSERT_EQ(system("gzip -d <w.prm.gz | cmp - w.prm"), 0);
#ifdef TVX_DEBUG
    mem_fault_arm(1); // needs no memory
#endif
    EXPECT_EQ(read(text), "Set parameter Cutoff to value -1e+100\n"
                          "Set parameter TimeLimit to value 12.5\n"
                          "Set parameter TARV_PAR_ITEST to value -2e+09\n");
#ifdef TVX_DEBUG
    EXPECT_EQ(mem_fault_hits(), 0);
    mem_fault_arm(0);
#endif
}

TEST_F(Parameters, EveryLineOfAFileIsToldInTheLog)
{
    const std::pair<std::string, std::string> cases[] = {
        {"# only\n#comments 1\n", ""},
        {"\xef\xbb\xbf\n \t\r\nCuts 1\r\r\n\n\x1a", "Set parameter Cuts to value 1\n"},
        {"#" + std::string(158, ' ') + "Presolve 1\n", ""}, // a comment of any length
        {"Presolve  5\n", "Failed to set parameter Presolve to value 5\n"},
        {"\tpre_solve\t 1.9 trailing words\r\n", "Set parameter pre_solve to value 1.9\n"},
        {"TimeLimit 2x", "Failed to set parameter TimeLimit to value 2x\n"},
        {"TimeLimit nan", "Failed to set parameter TimeLimit to value nan\n"},
        {"TimeLimit inf", "Set parameter TimeLimit to value inf\n"},
        {"EndPublic 1\n", "Failed to set parameter EndPublic to value 1\n"},
        {"NodefileDir nodes\nResultFile 12\n",
         "Set parameter NodefileDir to value nodes\nSet parameter ResultFile to value "
         "12\n"},
        {" # x\nNoSuch 1\nCuts 2\n", "Warning: unknown parameter # in t.prm\n"
                                     "Warning: unknown parameter NoSuch in t.prm\n"
                                     "Set parameter Cuts to value 2\n"
                                     "2 warnings while reading parameter file t.prm\n"},
        // 159 characters: the name and blanks; the next piece starts a new line
        {"Cuts" + std::string(155, ' ') + "Presolve 2\n",
         "Failed to set parameter Cuts to value \nSet parameter Presolve to value 2\n"}};
    for (const auto &[text, said] : cases) EXPECT_EQ(read(text), said);
    EXPECT_EQ(env->Presolve, 2);
    EXPECT_EQ(env->TimeLimit, 1e100);
    EXPECT_EQ(std::string(env->NodefileDir) + env->ResultFile, "nodes"); // 12 is no string
    const std::string said = read(std::string(1000, 'n') + " 1\n");
    EXPECT_NE(said.find("\n7 warnings while reading"), std::string::npos);
}

TEST_F(Parameters, FilesThatCannotBeUsedAreErrors)
{
    file_put("t.prm", std::string("Cuts 1\r\n\xff\xfe\nMIPFocus 1\0 2\n", 25));
    Output output;
    EXPECT_EQ(TVXreadparams(env, "t.prm"), 10012);
    EXPECT_EQ(message(),
              "Parameter file t.prm is no text file: control character in line 3");
    EXPECT_EQ(output.text(), "Set parameter Cuts to value 1\nWarning: unknown parameter "
                             "\xff\xfe in t.prm\n1 warnings while reading parameter file "
                             "t.prm\n");
    file_put("bad.prm.gz", "not compressed");
    EXPECT_EQ(TVXreadparams(env, "none.prm"), 10003);
    EXPECT_EQ(message(), "Unable to read parameter file none.prm");
    EXPECT_EQ(TVXreadparams(env, "."), 10003);
    EXPECT_EQ(TVXreadparams(env, "bad.prm.gz"), 10012);
    EXPECT_EQ(message(), "Unable to read parameter file bad.prm.gz");
    EXPECT_EQ(TVXwriteparams(env, "no/such/w.prm"), 10003);
    EXPECT_EQ(message(), "Unable to write to parameter file no/such/w.prm");
    ASSERT_EQ(TVXsetintparam(env, "Cuts", 1), 0);
    if (!std::filesystem::exists("/dev/full")) return;
    EXPECT_EQ(TVXwriteparams(env, "/dev/full"), 10013);
    EXPECT_EQ(message(), "Unable to write to parameter file /dev/full");
}

TEST(ParameterFile, TheStartReadsTarvexEnvOfTheCurrentDirectory)
{
    const Scratch scratch;
    file_put("tarvex.env", "Presolve 2\nNoSuch 1\nLogFile b.log\nOutputFlag 0\nCuts 9\n");
    Output output;
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, "a.log"), 0);
    const std::string said = "Set parameter Presolve to value 2\n"
                             "Warning: unknown parameter NoSuch in tarvex.env\n",
                      log = "Set parameter LogFile to value b.log\n"; // then silence
    EXPECT_EQ(output.text(), said + log);
    EXPECT_STREQ(TVXgeterrormsg(env), "");
    EXPECT_EQ(env->Presolve, 2);
    TVXfreeenv(env);
    EXPECT_NE(file_get("a.log").find(said), std::string::npos);
    EXPECT_NE(file_get("b.log").find(log), std::string::npos);
}
