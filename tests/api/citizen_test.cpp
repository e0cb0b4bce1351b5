// citizen_test.cpp -- the library in its host: silent when asked, no threads, no files, no signals of its own
//
// What the command does is looked at in tests/cli/quiet_test.cpp, exported names in tests/install.
#include "support/lp_tarvex.h"
#include "support/scratch.h"
#include "support/structured_gen.h"
#include <csignal>
#include <gtest/gtest.h>

namespace
{

// What every signal leads to.
std::string handlers()
{
    std::string all;
    for (int number = 1; number < NSIG; number++) {
        struct sigaction now = {};
        sigaction(number, nullptr, &now);
        all += testing::PrintToString(now.sa_handler) + std::to_string(now.sa_flags) + " ";
    }
    return all;
}

long entries(const std::filesystem::path &folder)
{
    const auto all = std::filesystem::directory_iterator(folder);
    return std::distance(begin(all), end(all));
}

// What is seen from inside a solve, at each line of its log.
struct Inside {
    const std::string before = handlers();
    int lines = 0;
    long most_threads = 0;
    long most_entries = 0;
    int changed = 0;
};

int look(TVXmodel *, void *, int where, void *usrdata)
{
    Inside *inside = static_cast<Inside *>(usrdata);
    inside->lines += where == TVX_WHERE_MESSAGE;
    inside->most_threads = std::max(inside->most_threads, entries("/proc/self/task"));
    inside->most_entries = std::max(inside->most_entries, entries("."));
    inside->changed += handlers() != inside->before;
    return 0;
}

} // namespace

TEST(Citizen, without_output_flag_no_byte_is_printed_whatever_happens)
{
    const Scratch scratch;
    file_put("broken.mps", "ROWS\n what is this\n");
    file_put("broken.mps.gz", "not compressed at all");
    file_put("quiet.prm", "Cuts 1\nNoSuch 1\nPresolve 99\n");
    file_put("tarvex.env", "OutputFlag 0\nCuts 1\nNoSuch 2\n");
    Dice dice(1);
    const LpModel lp = gen_multi_period(&dice, 12).lp;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    TVXenv *env = nullptr;
    TVXmodel *none = nullptr;
    double d = 0;
    ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
    EXPECT_EQ(TVXreadparams(env, "quiet.prm"), 0);
    TVXmodel *model = lp_load(env, &lp);
    for (const int method : {0, 1, 2}) {
        EXPECT_EQ(TVXsetintparam(TVXgetenv(model), "LPMethod", method), 0);
        EXPECT_EQ(TVXoptimize(model), 0);
        for (const int code :
             {TVXsetintparam(env, "NoSuch", 1), TVXreadparams(env, "absent.prm"),
              TVXsetstrparam(env, "LogFile", "no/such/log"),
              TVXreadmodel(env, "absent.mps", &none),
              TVXreadmodel(env, "broken.mps", &none),
              TVXreadmodel(env, "broken.mps.gz", &none), TVXread(model, "absent.bas"),
              TVXwrite(model, "no/such/folder/x.mps"), TVXgetdblattr(model, "NoSuch", &d)})
            EXPECT_NE(code, 0);
        EXPECT_EQ(TVXsetdblattrelement(model, "LB", 0, method - 1), 0);
    }
    EXPECT_EQ(TVXsetdblattrelement(model, "UB", 0, -9), 0); // infeasible
    EXPECT_EQ(TVXsetstrparam(TVXgetenv(model), "ResultFile", "no/such/x.sol"), 0);
    EXPECT_EQ(TVXoptimize(model), 0);
    TVXmsg(env, "a line\n");
    TVXfreeenv(env);
    EXPECT_NE(TVXoptimize(model), 0);
    EXPECT_NE(TVXfreemodel(model), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Citizen, a_solve_starts_no_thread_makes_no_file_and_takes_no_signal)
{
    const Scratch scratch;
    setenv("TMPDIR", scratch.path.c_str(), 1);
    Dice dice(1);
    const LpModel lp = gen_multi_period(&dice, 12).lp;
    const TestEnv env;
    for (const int method : {0, 1}) {
        Inside inside;
        const long before = entries("/proc/self/task");
        const TestModel model(lp_load(env.env, &lp));
        ASSERT_EQ(TVXsetcallbackfunc(model, look, &inside), 0);
        TVXenv *own = TVXgetenv(model);
        ASSERT_EQ(TVXsetintparam(own, "Threads", 1), 0);
        ASSERT_EQ(TVXsetintparam(own, "LPMethod", method), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
        EXPECT_GE(inside.lines, 4);
        EXPECT_LE(inside.most_threads, before);
        EXPECT_EQ(inside.most_entries, 0);
        EXPECT_EQ(inside.changed, 0);
        EXPECT_EQ(handlers(), inside.before);
        EXPECT_EQ(entries("."), 0);
    }
    unsetenv("TMPDIR");
}
