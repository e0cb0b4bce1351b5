// env_test.cpp -- environments: start and end, copies, the log, error texts, freed masters, lack of memory
#include "env/env_fixture.h"
#include "model/model.h"
#include <cstring>
#include <thread>

TEST(EnvStart, PrintsNothingWithoutParameterFileAndAppendsItsLineToALog)
{
    const Scratch scratch;
    file_put("a.log", "old\n");
    for (const char *name : {"", "a.log", "no/such/dir.log"}) {
        Output output;
        TVXenv *env = nullptr;
        EXPECT_EQ(TVXloadenv(&env, *name ? name : nullptr), 0);
        EXPECT_STREQ(TVXgeterrormsg(env), "");
        TVXfreeenv(env);
        EXPECT_EQ(output.text(), *name == 'n' ? "Warning: Failed to open log file "
                                                "'no/such/dir.log'\n"
                                              : "");
    }
    int version[3] = {};
    TVXversion(version, version + 1, version + 2);
    TVXversion(nullptr, nullptr, nullptr);
    char start[100]; // before "Thu Jan  1 00:00:00 1970" and ends
    snprintf(start, sizeof start, "old\n\nTarvex %d.%d.%d (%s) logging started ",
             version[0], version[1], version[2], TVXplatform());
    const std::string log = file_get("a.log");
    EXPECT_TRUE(log.starts_with(start) && log.ends_with("\n\n")) << log;
    EXPECT_EQ(log.size(), strlen(start) + 24 + 2);
    EXPECT_EQ(TVXloadenv(nullptr, nullptr), TVX_ERROR_NULL_ARGUMENT);
    TVXfreeenv(nullptr);
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
    for (const std::string &name :
         {std::string("no/such/dir.log"), std::string(513, 'x')}) {
        EXPECT_EQ(TVXsetstrparam(env, "LogFile", name.c_str()), TVX_ERROR_FILE_WRITE);
        EXPECT_TRUE(
            message().starts_with("Failed to open log file '" + name.substr(0, 400)));
    }
    EXPECT_STREQ(env->LogFile, "a.log") << "a log that cannot be opened leaves the last";
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", "b.log"), 0);
    TVXmsg(nullptr, "three\n");
    TVXmsg(env, nullptr);
    EXPECT_EQ(output.text(), "one 1 (null)\n");
    EXPECT_EQ(file_get("a.log").substr(opening) + file_get("b.log"), "one 1 (null)\n");
    EXPECT_EQ(TVXsetstrparam(env, "LogFile", ""), 0);
    FILE *attached = stderr;
    EXPECT_EQ(TVXgetlogfile(env, &attached), 0);
    EXPECT_EQ(attached, nullptr);
}

TEST_F(Env, AStreamOfTheCallerBecomesTheLog)
{
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "a.log"), 0);
    FILE *file = fopen("b.log", "w"), *attached = nullptr;
    EXPECT_EQ(TVXsetlogfile(env, file), 0);
    EXPECT_EQ(TVXsetlogfile(env, file), 0); // the same again: not closed in between
    EXPECT_TRUE(TVXgetlogfile(env, &attached) == 0 && attached == file);
    EXPECT_EQ(TVXgetlogfile(env, nullptr), TVX_ERROR_NULL_ARGUMENT);
    TVXmsg(env, "line\n");
    EXPECT_NE(file_get("b.log").find("line\n"), std::string::npos);
    EXPECT_EQ(TVXsetlogfile(env, stdout), 0); // closes b.log, and will not close stdout
    EXPECT_EQ(TVXsetlogfile(env, nullptr), 0);
    EXPECT_NE(fileno(stdout), -1);
    if (FILE *full = fopen("/dev/full", "w")) {
        Output said;
        ASSERT_EQ(TVXsetlogfile(env, full), 0);
        TVXmsg(env, "lost\n");
        EXPECT_EQ(said.text(),
                  "Warning: the log file cannot be written to its end\nlost\n");
    }
    EXPECT_EQ(TVXsetlogfile(nullptr, stdout), TVX_ERROR_NULL_ARGUMENT);
}

// ---- Errors ----

TEST_F(Env, TheFirstTextStandsUnlessForcedOrOutOfMemory)
{
    EXPECT_EQ(fail(env, 0, Report::FORCE, "no failure"), 0);
    EXPECT_EQ(message(), "");
    EXPECT_EQ(fail(env, 10005, Report::KEEP_FIRST, "inner %d", 1), 10005);
    EXPECT_EQ(fail(env, 10003, Report::KEEP_FIRST, "outer"), 10003);
    EXPECT_EQ(finish(env, 10003), 10003);
    EXPECT_EQ(message(), "inner 1");
    fail(env, 10007, Report::FORCE, "again: %s", env->errmsg); // from its own old text
    EXPECT_EQ(message(), "again: inner 1");
    finish(env, 10001);
    EXPECT_EQ(message(), "Out of memory");
    for (const auto &[code, text] : {std::pair{0, ""},
                                     {10009, "Error number 10009"},
                                     {-1, "Error number -1"},
                                     {10016, "Not available for MIP models"}}) {
        finish(env, 0);
        finish(env, code);
        EXPECT_EQ(message(), text);
    }
    fail(env, 10003, Report::FORCE, "%s", std::string(2000, 'x').c_str());
    EXPECT_EQ(message(), std::string(512, 'x'));
    EXPECT_EQ(TVXgetintparam(env, "MIPFocus", nullptr), 10002); // a new call, a new text
    EXPECT_EQ(message(), "NULL argument for required parameter");

    fail(env, 10014, Report::FORCE, "deep");
    env->err_hold = 1; // a held text is not touched
    fail(env, 10003, Report::FORCE, "epilogue");
    EXPECT_EQ(env_enter(env), 0);
    EXPECT_EQ(message(), "deep");
    EXPECT_EQ(env->errcode, 10014);
    env->err_hold = 0;
    EXPECT_EQ(env_enter(env), 0);
    EXPECT_EQ(message(), "");
}

// ---- Copies and handles ----

TEST_F(Env, ACopyHasItsOwnValuesAndOpensTheLogAgain)
{
    std::filesystem::create_directory("d");
    ASSERT_EQ(TVXsetstrparam(env, "LogFile", "d/a.log"), 0);
    TVXenv *copy = nullptr, *second = nullptr, *third = nullptr;
    ASSERT_EQ(env_copy(&copy, env, EnvFiles::AS_SOURCE), 0);
    ASSERT_EQ(TVXsetintparam(copy, "Cuts", 3), 0);
    EXPECT_EQ(env->Cuts, -1);
    EXPECT_NE(copy->log_file, env->log_file);
    TVXmsg(copy, "from the copy\n");
    EXPECT_NE(file_get("d/a.log").find("from the copy\n"), std::string::npos);
    fail(copy, 10003, Report::FORCE, "shared");
    EXPECT_EQ(message(), "shared");
    TVXfreeenv(copy); // belongs to its model: ignored
    EXPECT_EQ(env_check(copy), 0);
    ASSERT_EQ(env_copy(&second, copy, EnvFiles::NONE), 0);
    EXPECT_EQ(second->log_file, nullptr);
    env_free(copy);
    EXPECT_EQ(TVXsetintparam(second, "Cuts", 1), 0); // holds the master, not the copy
    env_free(second);

    std::filesystem::remove_all("d"); // a log that has gone is done without
    Output output;
    ASSERT_EQ(env_copy(&third, env, EnvFiles::AS_SOURCE), 0);
    EXPECT_EQ(output.text(), "Warning: Failed to open log file 'd/a.log'\n");
    EXPECT_EQ(third->log_file, nullptr);
    EXPECT_STREQ(TVXgeterrormsg(third), "");
    env_free(third);
}

TEST_F(Env, AModelHandleIsChecked)
{
    TVXmodel model;
    EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(TVXgetenv(&model), nullptr);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "");
    TVXterminate(nullptr);
    TVXterminate(&model);
    model.magic = MODEL_MAGIC;
    EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_NULL_ARGUMENT); // no environment
    ASSERT_EQ(env_copy(&model.env, env, EnvFiles::NONE), 0);
    finish_model(&model, fail_model(&model, 10003, Report::FORCE, "text"));
    for (int k = 0; k < 2; k++) EXPECT_STREQ(TVXgetmerrormsg(&model), "text");
    EXPECT_EQ(TVXcheckmodel(&model), 0);
    EXPECT_STREQ(TVXgetmerrormsg(&model), "");
    model.busy = 1; // the refusal of another call does not hide what the solve says
    EXPECT_EQ(finish_model(&model, TVXcheckmodel(&model)),
              TVX_ERROR_OPTIMIZATION_IN_PROGRESS);
    fail_model(&model, 10014, Report::KEEP_FIRST, "of the solve");
    EXPECT_EQ(message(), "of the solve");
    env_free(model.env);
    model.env = nullptr;
}

TEST_F(Env, AfterTheMasterIsFreedItsModelsRefuseWithAWarning)
{
    TVXmodel model;
    model.magic = MODEL_MAGIC;
    ASSERT_EQ(env_copy(&model.env, env, EnvFiles::NONE), 0);
    TVXfreeenv(env);
    env = nullptr;
    for (const bool loud : {true, false}) {
        model.env->OutputFlag = loud;
        Output output;
        EXPECT_EQ(TVXcheckmodel(&model), TVX_ERROR_INVALID_ARGUMENT);
        EXPECT_EQ(TVXgetenv(&model), nullptr);
        EXPECT_EQ(TVXsetintparam(model.env, "Cuts", 1), TVX_ERROR_INVALID_ARGUMENT);
        EXPECT_STREQ(TVXgetmerrormsg(&model), "");
        TVXterminate(&model);
        EXPECT_EQ(model.env->terminate, 0);
        std::string warnings;
        for (int k = 0; loud && k < 5; k++)
            warnings += "Warning: invalid Tarvex environment. Was it freed too early?\n";
        EXPECT_EQ(output.text(), warnings);
    }
    EXPECT_EQ(finish_model(&model, fail_model(&model, 10003, Report::FORCE, "lost")),
              10003);
    TVXmsg(model.env, "nothing\n");
    env_free(model.env);
    model.env = nullptr;
}

// Workers on copies may fail and stop at the same time.
TEST_F(Env, CopiesServeSeveralThreads)
{
    const auto work = [this](int number) {
        for (int k = 0; k < 200; k++) {
            TVXenv *copy = nullptr;
            ASSERT_EQ(env_copy(&copy, env, EnvFiles::NONE), 0);
            fail(copy, 10014, k % 2 ? Report::FORCE : Report::KEEP_FIRST, "%d", number);
            flag_store(copy->terminate_ptr, 1); // all point at the master's flag
            finish(copy, k % 3 ? 10014 : 0);
            env_free(copy);
        }
    };
    std::thread one(work, 1), two(work, 2);
    one.join();
    two.join();
    EXPECT_EQ(env->holders, 1);
}

#ifdef TVX_DEBUG
TEST(EnvMemory, EveryRefusedRequestEndsTheStartCleanlyAndACopyLeavesItsSourceAlone)
{
    const Scratch scratch;
    file_put("tarvex.env", "Presolve 2\n");
    const int64_t before = mem_blocks_held();
    TVXenv *env = nullptr;
    for (int fail_at = 1; !env; fail_at++) {
        Output output;
        mem_fault_arm(fail_at);
        const int error = TVXloadenv(&env, "a.log");
        mem_fault_arm(0);
        if (!error) break;
        ASSERT_TRUE(error == TVX_ERROR_OUT_OF_MEMORY && !env);
        ASSERT_EQ(output.text(), fail_at == 1 ? "" : "\nERROR: Out of memory\n\n");
        ASSERT_EQ(mem_blocks_held(), before);
    }
    TVXenv *copy = env;
    mem_fault_arm(1);
    EXPECT_EQ(env_copy(&copy, env, EnvFiles::AS_SOURCE), OUT_OF_MEMORY);
    mem_fault_arm(0);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(env->holders + env->model_copies, 1);
    TVXfreeenv(env);
    EXPECT_EQ(mem_blocks_held(), before);
}

#endif
