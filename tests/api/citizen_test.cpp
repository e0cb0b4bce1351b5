// citizen_test.cpp -- the library in its host: silent when asked, no threads, no files, no signals of its own
//
// What the command does is looked at in tests/cli/quiet_test.cpp, exported names in tests/install.
#include "frame/callback.h"
#include "support/lp_tarvex.h"
#include "support/scratch.h"
#include <array>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>
#include <sched.h>

namespace
{

// A model that takes both methods some iterations.
LpModel plan()
{
    LpModel lp;
    lp.sense = -1;
    for (int j = 0; j < 30; j++) lp_add_var(&lp, 1 + j % 7, 0, j % 3 ? 10 : LP_INFINITY);
    for (int i = 0; i < 20; i++)
        lp_add_row_entries(&lp, {{i, 1 + i % 4}, {i + 5, 2}, {i + 10, 1}}, '<', 20 + i);
    for (int j = 0; j < 30; j++) lp_add_row_entries(&lp, {{j, 1}}, '<', 50);
    return lp;
}

long threads()
{
    const auto tasks = std::filesystem::directory_iterator("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

std::array<struct sigaction, NSIG> handlers()
{
    std::array<struct sigaction, NSIG> all{};
    for (int number = 1; number < NSIG; number++)
        sigaction(number, nullptr, &all[static_cast<size_t>(number)]);
    return all;
}

int changed_handlers(const std::array<struct sigaction, NSIG> &before)
{
    const std::array<struct sigaction, NSIG> now = handlers();
    int changed = 0;
    for (size_t k = 1; k < NSIG; k++)
        changed += before[k].sa_handler != now[k].sa_handler ||
                   before[k].sa_flags != now[k].sa_flags;
    return changed;
}

long entries(const std::filesystem::path &folder)
{
    const auto all = std::filesystem::directory_iterator(folder);
    return std::distance(begin(all), end(all));
}

// What is seen from inside a solve, at each line of its log.
struct Inside {
    std::array<struct sigaction, NSIG> before = handlers();
    int lines = 0;
    long most_threads = 0;
    long most_entries = 0;
    int changed = 0;
};

int look(TVXmodel *, CallbackRecord *, int, void *usrdata)
{
    Inside *inside = static_cast<Inside *>(usrdata);
    inside->lines++;
    inside->most_threads = std::max(inside->most_threads, threads());
    inside->most_entries = std::max(inside->most_entries, entries("."));
    inside->changed += changed_handlers(inside->before);
    return 0;
}

void watch(TVXmodel *model, Inside *inside)
{
    TVXenv *own = TVXgetenv(model);
    own->cb_record = static_cast<CallbackRecord *>(MemAllocZero(1, sizeof(CallbackRecord)));
    own->cb_record->magic = CALLBACK_MAGIC;
    own->cb_record->model = model;
    own->cb_record->usrdata = inside;
    own->cb_active = look;
}

// Calls of every kind that fail.
void fail_in_many_ways(TVXenv *env, TVXmodel *model)
{
    int i = 0;
    double d = 0;
    TVXmodel *none = nullptr;
    const double nan = NAN;
    EXPECT_NE(TVXsetintparam(env, "NoSuch", 1), 0);
    EXPECT_NE(TVXsetintparam(env, "Threads", -5), 0);
    EXPECT_NE(TVXsetstrparam(env, "LogFile", "no/such/folder/log"), 0);
    EXPECT_NE(TVXreadparams(env, "absent.prm"), 0);
    EXPECT_NE(TVXreadmodel(env, "absent.mps", &none), 0);
    EXPECT_NE(TVXreadmodel(env, "broken.mps", &none), 0);
    EXPECT_NE(TVXreadmodel(env, "broken.mps.gz", &none), 0);
    EXPECT_NE(TVXread(model, "absent.bas"), 0);
    EXPECT_NE(TVXwrite(model, "no/such/folder/x.mps"), 0);
    EXPECT_NE(TVXwrite(model, "x.unknown"), 0);
    EXPECT_NE(TVXgetintattr(model, "NoSuch", &i), 0);
    EXPECT_NE(TVXgetdblattr(model, "ObjBound", &d), 0);
    EXPECT_NE(TVXsetdblattrarray(model, "LB", 0, 1, &nan), 0);
    EXPECT_NE(TVXgetdblattr(nullptr, "ObjVal", &d), 0);
    EXPECT_EQ(TVXsetcharattrelement(model, "VType", 0, 'I'), 0);
    EXPECT_NE(TVXoptimize(model), 0); // no search yet
    EXPECT_EQ(TVXsetcharattrelement(model, "VType", 0, 'C'), 0);
}

} // namespace

TEST(Citizen, without_output_flag_no_byte_is_printed_whatever_happens)
{
    const Scratch scratch;
    file_put("broken.mps", "ROWS\n what is this\n");
    file_put("broken.mps.gz", "not compressed at all");
    file_put("quiet.prm", "Cuts 1\nNoSuch 1\nPresolve 99\n");
    file_put("tarvex.env", "OutputFlag 0\nCuts 1\nNoSuch 2\n");
    const LpModel lp = plan();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
    EXPECT_EQ(TVXreadparams(env, "quiet.prm"), 0);
    TVXmodel *model = lp_load(env, &lp);
    for (const int method : {0, 1, 2}) {
        EXPECT_EQ(TVXsetintparam(TVXgetenv(model), "LPMethod", method), 0);
        EXPECT_EQ(TVXoptimize(model), 0);
        fail_in_many_ways(env, model);
        EXPECT_EQ(TVXsetdblattrelement(model, "LB", 0, method - 1), 0);
    }
    EXPECT_EQ(TVXsetdblattrelement(model, "LB", 0, 1e6), 0); // infeasible
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
    const LpModel lp = plan();
    const TestEnv env;
    for (const int method : {0, 1}) {
        Inside inside;
        const long before = threads();
        const TestModel model(lp_load(env.env, &lp));
        watch(model, &inside);
        TVXenv *own = TVXgetenv(model);
        ASSERT_EQ(TVXsetintparam(own, "Threads", 1), 0);
        ASSERT_EQ(TVXsetintparam(own, "LPMethod", method), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
        EXPECT_GE(inside.lines, 4);
        EXPECT_LE(inside.most_threads, before);
        EXPECT_EQ(inside.most_entries, 0);
        EXPECT_EQ(inside.changed + changed_handlers(inside.before), 0);
        EXPECT_EQ(entries("."), 0);
    }
    unsetenv("TMPDIR");
}

TEST(Citizen, threads_default_to_the_processors_it_may_run_on)
{
    cpu_set_t all, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    int first = 0;
    while (!CPU_ISSET(first, &all)) first++;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    int count = 0;
    const TestEnv env;
    EXPECT_EQ(TVXgetintparam(env.env, "Threads", &count), 0);
    EXPECT_EQ(count, 1);
    sched_setaffinity(0, sizeof all, &all);
}
