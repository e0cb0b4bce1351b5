// env_test.cpp -- environments: start and end, copies, the log, error texts, freed masters, lack of memory
#include "frame/env.h"
#include "frame/model.h"
#include "support/scratch.h"
#include <atomic>
#include <limits>
#include <string>
#include <thread>

static constexpr char dead_master[] =
    "Warning: invalid Tarvex environment. Was it freed too early?\n";

// An environment in a scratch directory.
class Env : public testing::Test
{
  protected:
    Scratch scratch;
    TVXenv *env = nullptr;
    void SetUp() override { ASSERT_EQ(TVXloadenv(&env, nullptr), 0); }
    void TearDown() override { TVXfreeenv(env); }
};

TEST(EnvStart, PrintsNothingWithoutParameterFileAndLog)
{
    const Scratch scratch;
    Output output;
    TVXenv *env = nullptr;
    EXPECT_EQ(TVXloadenv(&env, nullptr), 0);
    EXPECT_STREQ(TVXgeterrormsg(env), "");
    TVXfreeenv(env);
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(TVXloadenv(nullptr, nullptr), TVX_ERROR_NULL_ARGUMENT);
    TVXfreeenv(nullptr);
}

TEST(EnvStart, WritesTheOpeningLineAndAppends)
{
    const Scratch scratch;
    file_put("a.log", "old\n");
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, "a.log"), 0);
    TVXfreeenv(env);
    const std::string log = file_get("a.log");
    const std::string start =
        std::string("old\n\nTarvex 3.0.3 (") + TVXplatform() + ") logging started ";
    EXPECT_EQ(log.substr(0, start.size()), start);
    EXPECT_EQ(log.size(),
              start.size() + 24 + 2); // "Thu Jan  1 00:00:00 1970" and two line ends
    EXPECT_EQ(log.substr(log.size() - 2), "\n\n");
}

TEST(EnvStart, AnUnusableLogIsAWarningOnly)
{
    const Scratch scratch;
    Output output;
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, "no/such/dir.log"), 0);
    EXPECT_EQ(output.text(), "Warning: Failed to open log file 'no/such/dir.log'\n");
    EXPECT_STREQ(TVXgeterrormsg(env), "");
    FILE *stream = stderr;
    EXPECT_EQ(TVXgetlogfile(env, &stream), 0);
    EXPECT_EQ(stream, nullptr);
    TVXfreeenv(env);
}

TEST(Version, IsTold)
{
    int major = 0;
    int minor = 1;
    int technical = 0;
    TVXversion(&major, &minor, &technical);
    EXPECT_TRUE(major == 3 && minor == 0 && technical == 3);
    TVXversion(nullptr, nullptr, nullptr);
    EXPECT_STREQ(TVXsvnrevision(), "7014");
}

// ---- Log ----

TEST_F(Env, LinesGoToBothOutputsUnlessSilenced)
{
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "a.log"), 0);
    const size_t opening = file_get("a.log").size();
    Output output;
    const char *volatile nothing = nullptr;
    TVXmsg(env, "one %d %s\n", 1, nothing);
    EXPECT_EQ(file_get("a.log").substr(opening), "one 1 (null)\n"); // there at once
    ASSERT_EQ(TVXsetintparam(env, "OutputFlag", 0), 0);
    TVXmsg(env, "two\n");
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", "no/such/dir.log"), TVX_ERROR_FILE_WRITE);
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", "b.log"), 0);
    TVXmsg(nullptr, "three\n");
    TVXmsg(env, nullptr);
    EXPECT_EQ(output.text(), "one 1 (null)\n");
    EXPECT_EQ(file_get("a.log").substr(opening), "one 1 (null)\n");
    EXPECT_EQ(file_get("b.log"), "");
}

TEST_F(Env, ALogThatCannotBeOpenedLeavesThePreviousOne)
{
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "a.log"), 0);
    Output output;
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", "no/such/dir.log"), TVX_ERROR_FILE_WRITE);
    EXPECT_STREQ(TVXgeterrormsg(env), "Failed to open log file 'no/such/dir.log'");
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", std::string(513, 'x').c_str()),
              TVX_ERROR_FILE_WRITE);
    output.text();
    char name[TVX_PARAM_LENGTH + 1];
    TVXgetstrparam(env, "LogFile", name);
    EXPECT_STREQ(name, "a.log");
    if (FILE *full = fopen("/dev/full", "w")) {
        Output said;
        ASSERT_EQ(TVXsetlogfile(env, full), 0);
        TVXmsg(env, "lost\n");
        EXPECT_EQ(said.text(),
                  "Warning: the log file cannot be written to its end\nlost\n");
        ASSERT_EQ(TVXsetstrparam(env, "LogFile", "a.log"), 0);
    }
    TVXmsg(env, "still here\n");
    EXPECT_NE(file_get("a.log").find("still here\n"), std::string::npos);
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", ""), 0);
    FILE *stream = stderr;
    TVXgetlogfile(env, &stream);
    EXPECT_EQ(stream, nullptr);
}

TEST_F(Env, AStreamOfTheCallerBecomesTheLog)
{
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "a.log"), 0);
    FILE *stream = fopen("b.log", "w");
    EXPECT_EQ(TVXsetlogfile(env, stream), 0);
    EXPECT_EQ(TVXsetlogfile(env, stream), 0); // the same again: not closed in between
    FILE *attached = nullptr;
    EXPECT_EQ(TVXgetlogfile(env, &attached), 0);
    EXPECT_EQ(attached, stream);
    EXPECT_EQ(TVXgetlogfile(env, nullptr), TVX_ERROR_NULL_ARGUMENT);
    TVXmsg(env, "line\n");
    EXPECT_NE(file_get("b.log").find("line\n"), std::string::npos);
    EXPECT_EQ(TVXsetlogfile(env, stdout), 0); // closes b.log, and will not close stdout
    EXPECT_EQ(TVXsetlogfile(env, nullptr), 0);
    EXPECT_NE(fileno(stdout), -1);
    EXPECT_EQ(TVXsetlogfile(nullptr, stdout), TVX_ERROR_NULL_ARGUMENT);
}

// ---- Errors ----

TEST_F(Env, TheFirstTextStandsUnlessForcedOrOutOfMemory)
{
    EXPECT_EQ(fail(env, 0, Report::FORCE, "no failure"), 0);
    EXPECT_STREQ(env->errmsg, "");
    EXPECT_EQ(fail(env, 10005, Report::KEEP_FIRST, "inner %d", 1), 10005);
    EXPECT_EQ(fail(env, 10003, Report::KEEP_FIRST, "outer"), 10003);
    EXPECT_EQ(finish(env, 10003), 10003);
    EXPECT_STREQ(TVXgeterrormsg(env), "inner 1");
    fail(env, 10007, Report::FORCE, "again: %s", env->errmsg); // from its own old text
    EXPECT_STREQ(TVXgeterrormsg(env), "again: inner 1");
    finish(env, 10001);
    EXPECT_STREQ(TVXgeterrormsg(env), "Out of memory");
    finish(env, 0);
    EXPECT_STREQ(TVXgeterrormsg(env), "");
    fail(env, 10003, Report::FORCE, "%s", std::string(2000, 'x').c_str());
    EXPECT_EQ(TVXgeterrormsg(env), std::string(512, 'x'));
}

TEST_F(Env, CodesWithoutATextShowTheirNumber)
{
    for (const int code : {10009, 10010, 10015, 10018, 12345, -1}) {
        finish(env, 0);
        finish(env, code);
        EXPECT_EQ(TVXgeterrormsg(env), "Error number " + std::to_string(code));
    }
    finish(env, 0);
    finish(env, 10016);
    EXPECT_STREQ(TVXgeterrormsg(env), "Not available for MIP models");
}

TEST_F(Env, AHeldTextIsNotTouched)
{
    fail(env, 10014, Report::FORCE, "deep");
    env->err_hold = 1;
    fail(env, 10003, Report::FORCE, "epilogue");
    EXPECT_EQ(env_enter(env), 0);
    EXPECT_STREQ(env->errmsg, "deep");
    EXPECT_EQ(env->errcode, 10014);
    env->err_hold = 0;
    EXPECT_EQ(env_enter(env), 0);
    EXPECT_STREQ(env->errmsg, "");
}

TEST_F(Env, AnOldTextDoesNotStandForANewFailure)
{
    int value = 0;
    EXPECT_EQ(TVXsetintparam(env, "MIPFocus", 9), 10008);
    EXPECT_EQ(TVXgetintparam(env, "MIPFocus", nullptr), 10002);
    EXPECT_STREQ(TVXgeterrormsg(env), "NULL argument for required parameter");
    EXPECT_EQ(TVXgetintparam(env, "MIPFocus", &value), 0);
    EXPECT_STREQ(TVXgeterrormsg(env), "");
}

TEST_F(Env, NanAndInfinityInDataAreFound)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(check_value(env, 1e308), 0);
    EXPECT_EQ(check_value(env, 5e-324), 0);
    for (const double value : {infinity, -infinity, nan, -nan}) {
        finish(env, 0);
        EXPECT_EQ(check_value(env, value), 10003);
        EXPECT_STREQ(TVXgeterrormsg(env), "Double value is Nan or Inf.");
    }
    const double values[] = {1, -0.0, nan, infinity};
    EXPECT_EQ(check_values(env, 2, values), 0);
    EXPECT_EQ(check_values(env, 0, values), 0);
    EXPECT_EQ(check_values(env, -1, values), 0);
    EXPECT_EQ(check_values(env, 4, nullptr), 0);
    finish(env, 0);
    EXPECT_EQ(check_values(env, 4, values), 10003);
    EXPECT_STREQ(TVXgeterrormsg(env), "Element 2 of a double array is Nan or Inf.");
}

// ---- Copies and handles ----

TEST_F(Env, ACopyHasItsOwnValuesAndOpensTheLogAgain)
{
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "a.log"), 0);
    ASSERT_EQ(TVXsetintparam(env, "Cuts", 2), 0);
    TVXenv *copy = nullptr;
    ASSERT_EQ(env_copy(&copy, env, LogReopen::YES), 0);
    ASSERT_EQ(TVXsetintparam(copy, "Cuts", 3), 0);
    EXPECT_EQ(env->Cuts, 2);
    EXPECT_EQ(copy->Cuts, 3);
    EXPECT_NE(copy->log_file, env->log_file);
    TVXmsg(copy, "from the copy\n");
    EXPECT_NE(file_get("a.log").find("from the copy\n"), std::string::npos);
    fail(copy, 10003, Report::FORCE, "shared");
    EXPECT_STREQ(TVXgeterrormsg(env), "shared");
    TVXfreeenv(copy); // belongs to its model: ignored
    EXPECT_EQ(env_check(copy), 0);
    TVXenv *second = nullptr;
    ASSERT_EQ(env_copy(&second, copy, LogReopen::NO), 0);
    EXPECT_EQ(second->log_file, nullptr);
    env_free(copy);
    EXPECT_EQ(TVXsetintparam(second, "Cuts", 1),
              0); // holds the master, not the copy it came from
    env_free(second);
}

TEST_F(Env, ACopyWhoseLogHasGoneGoesOnWithout)
{
    std::filesystem::create_directory("d");
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "d/a.log"), 0);
    std::filesystem::remove_all("d");
    Output output;
    TVXenv *copy = nullptr;
    ASSERT_EQ(env_copy(&copy, env, LogReopen::YES), 0);
    EXPECT_EQ(output.text(), "Warning: Failed to open log file 'd/a.log'\n");
    EXPECT_EQ(copy->log_file, nullptr);
    EXPECT_STREQ(TVXgeterrormsg(copy), "");
    env_free(copy);
}

TEST_F(Env, AModelHandleIsChecked)
{
    TVXmodel model;
    int32_t *busy = &model.busy;
    EXPECT_EQ(TVXcheckmodel(nullptr), TVX_ERROR_NULL_ARGUMENT);
    EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(TVXgetenv(&model), nullptr);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "");
    TVXterminate(nullptr);
    TVXterminate(&model);
    model.magic = MODEL_MAGIC;
    EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_NULL_ARGUMENT); // no environment
    TVXterminate(&model);

    ASSERT_EQ(env_copy(&model.env, env, LogReopen::NO), 0);
    EXPECT_EQ(TVXgetenv(&model), model.env);
    fail_model(&model, 10003, Report::FORCE, "text");
    finish_model(&model, 10003);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "text"); // is not forgotten by asking
    EXPECT_STREQ(TVXgetmerrormsg(&model), "text");
    EXPECT_EQ(TVXcheckmodel(&model), 0);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "");

    *busy = 1;
    EXPECT_EQ(finish_model(&model, TVXcheckmodel(&model)),
              TVX_ERROR_OPTIMIZATION_IN_PROGRESS);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "");
    fail_model(&model, 10014, Report::KEEP_FIRST,
               "of the solve"); // not hidden by the refusal
    EXPECT_STREQ(TVXgeterrormsg(env), "of the solve");
    model.in_callback = 1;
    EXPECT_EQ(TVXcheckmodel(&model), 0);
    *busy = model.in_callback = 0;

    model.env->terminate_ptr = &model.env->terminate; // as a solve sets it
    EXPECT_FALSE(env_stop_requested(model.env));
    TVXterminate(&model);
    EXPECT_TRUE(env_stop_requested(model.env));
    env_free(model.env);
    model.env = nullptr;
}

TEST_F(Env, AfterTheMasterIsFreedItsModelsRefuseWithAWarning)
{
    TVXmodel model;
    model.magic = MODEL_MAGIC;
    ASSERT_EQ(env_copy(&model.env, env, LogReopen::NO), 0);
    TVXfreeenv(env);
    env = nullptr;
    {
        Output output;
        EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_INVALID_ARGUMENT);
        EXPECT_EQ(output.text(), dead_master);
    }
    Output output;
    EXPECT_EQ(TVXgetenv(&model), nullptr);
    EXPECT_EQ(TVXsetintparam(model.env, "Cuts", 1), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "");
    TVXterminate(&model);
    EXPECT_EQ(output.text(),
              std::string(dead_master) + dead_master + dead_master + dead_master);
    EXPECT_EQ(model.env->terminate, 0);
    model.env->OutputFlag = 0;
    Output silent;
    EXPECT_EQ(finish_model(&model, fail_model(&model, 10003, Report::FORCE, "lost")),
              10003);
    EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_INVALID_ARGUMENT);
    TVXmsg(model.env, "nothing\n");
    EXPECT_EQ(silent.text(), "");
    env_free(model.env);
    model.env = nullptr;
}

// ---- Threads ----

static void live_and_fail(int number)
{
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
    TVXsetintparam(env, "OutputFlag", 0);
    const std::string file = "p" + std::to_string(number) + ".prm";
    for (int k = 0; k < 50; k++) {
        ASSERT_EQ(TVXsetintparam(env, "PumpPasses", number + k), 0);
        ASSERT_EQ(TVXwriteparams(env, file.c_str()), 0);
        ASSERT_EQ(TVXresetparams(env), 0);
        TVXsetintparam(env, "OutputFlag", 0);
        ASSERT_EQ(TVXreadparams(env, file.c_str()), 0);
        int value = 0;
        ASSERT_EQ(TVXgetintparam(env, "PumpPasses", &value), 0);
        ASSERT_EQ(value, number + k);
        ASSERT_EQ(TVXsetintparam(env, "Cuts", 100 + number), TVX_ERROR_VALUE_OUT_OF_RANGE);
        ASSERT_EQ(TVXgeterrormsg(env), "Unable to set parameter Cuts to value " +
                                           std::to_string(100 + number) +
                                           " (maximum is 3)");
    }
    TVXfreeenv(env);
}

TEST(EnvThreads, TwoEnvironmentsKnowNothingOfEachOther)
{
    const Scratch scratch;
    std::thread other(live_and_fail, 1);
    live_and_fail(2);
    other.join();
}

TEST_F(Env, WorkersOnCopiesMayFailAndStopAtTheSameTime)
{
    const auto work = [this](int number) {
        for (int k = 0; k < 200; k++) {
            TVXenv *copy = nullptr;
            ASSERT_EQ(env_copy(&copy, env, LogReopen::NO), 0);
            fail(copy, 10014, k % 2 ? Report::FORCE : Report::KEEP_FIRST, "worker %d",
                 number);
            flag_store(copy->terminate_ptr, 1); // all point at the master's flag
            finish(copy, k % 3 ? 10014 : 0);
            env_free(copy);
        }
    };
    std::thread one(work, 1);
    std::thread two(work, 2);
    one.join();
    two.join();
    EXPECT_EQ(env->holders, 1);
}

// ---- Lack of memory ----

#ifdef TVX_DEBUG
TEST(EnvMemory, EveryRefusedRequestEndsTheStartCleanly)
{
    const Scratch scratch;
    file_put("tarvex.env", "Presolve 2\n");
    const int64_t before = mem_blocks_held();
    int error = 1;
    int fail_at = 0;
    while (error) {
        Output output;
        TVXenv *env = nullptr;
        mem_fault_arm(++fail_at);
        error = TVXloadenv(&env, "a.log");
        mem_fault_arm(0);
        const std::string text = output.text();
        if (error) {
            ASSERT_EQ(error, TVX_ERROR_OUT_OF_MEMORY);
            ASSERT_EQ(env, nullptr);
            ASSERT_EQ(text, fail_at == 1 ? "" : "\nERROR: Out of memory\n\n");
        }
        TVXfreeenv(env);
        ASSERT_EQ(mem_blocks_held(), before);
    }
    EXPECT_GT(fail_at, 5);
}

TEST_F(Env, ACopyWithoutMemoryLeavesTheSourceAlone)
{
    TVXenv *copy = env;
    mem_fault_arm(1);
    EXPECT_EQ(env_copy(&copy, env, LogReopen::YES), OUT_OF_MEMORY);
    mem_fault_arm(0);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(env->holders, 1);
    EXPECT_EQ(env->model_copies, 0);
}
#endif
