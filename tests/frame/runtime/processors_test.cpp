// processors_test.cpp -- processor counts from the environment, the affinity mask and control groups; threads and locks
#include "frame/runtime/clock.h"
#include "frame/runtime/memory.h"
#include "frame/runtime/processors.h"
#include "frame/runtime/thread.h"
#include "support/scratch.h"
#include <climits>
#include <csignal>
#include <sched.h>
#include <unistd.h>

TEST(Processors, TheVariableCountsFrom1To1023)
{
    EXPECT_EQ(processors_from_text("1"), 1);
    EXPECT_EQ(processors_from_text("1023"), 1023);
    for (const char *text :
         {"0", "1024", "-3", "", "four", "4x", "4 ", "99999999999999999999"})
        EXPECT_EQ(processors_from_text(text), NO_PROCESSOR_LIMIT) << text;
    EXPECT_EQ(processors_from_text(nullptr), NO_PROCESSOR_LIMIT);
}

TEST(Processors, TheVariableOnlyLowersTheCount)
{
    unsetenv("NUMBER_OF_PROCESSORS");
    const int all = ProcessorCount();
    EXPECT_GE(all, 1);
    EXPECT_GE(CoreCount(), 1);
    EXPECT_LE(CoreCount(), all);
    setenv("NUMBER_OF_PROCESSORS", "1", 1);
    EXPECT_EQ(ProcessorCount(), 1);
    EXPECT_EQ(CoreCount(), 1);
    setenv("NUMBER_OF_PROCESSORS", "1000", 1);
    EXPECT_EQ(ProcessorCount(), all);
    unsetenv("NUMBER_OF_PROCESSORS");
}

TEST(Processors, TheAffinityMaskCounts)
{
    cpu_set_t all;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    int first = 0;
    while (!CPU_ISSET(first, &all)) first++;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(ProcessorCount(), 1);
    sched_setaffinity(0, sizeof all, &all);
}

static void tree_put(const std::string &path, const std::string &text)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    file_put(path, text);
}

TEST(Processors, QuotaOfVersion2IsTheSmallestUpToTheRoot)
{
    const Scratch scratch;
    EXPECT_EQ(processors_from_quota("t"), INT_MAX); // no such files
    tree_put("t/proc/self/cgroup", "0::/a/b\n");
    EXPECT_EQ(processors_from_quota("t"), INT_MAX);
    tree_put("t/sys/fs/cgroup/a/b/cpu.max", "max 100000\n");
    EXPECT_EQ(processors_from_quota("t"), INT_MAX);
    tree_put("t/sys/fs/cgroup/a/cpu.max", "250000 100000\n");
    EXPECT_EQ(processors_from_quota("t"), 3); // rounded up
    tree_put("t/sys/fs/cgroup/a/b/cpu.max", "400000 100000\n");
    EXPECT_EQ(processors_from_quota("t"), 3);
    tree_put("t/sys/fs/cgroup/cpu.max",
             "1000 100000\n"); // as a container sees its own group
    EXPECT_EQ(processors_from_quota("t"), 1);
}

TEST(Processors, QuotaOfVersion1ComesFromTheCpuController)
{
    const Scratch scratch;
    tree_put("t/proc/self/cgroup", "9:memory:/m\n4:cpu,cpuacct:/x/y\n1:name=systemd:/\n");
    tree_put("t/sys/fs/cgroup/cpu,cpuacct/x/cpu.cfs_quota_us", "-1\n");
    tree_put("t/sys/fs/cgroup/cpu,cpuacct/x/cpu.cfs_period_us", "100000\n");
    EXPECT_EQ(processors_from_quota("t"), INT_MAX);
    tree_put("t/sys/fs/cgroup/cpu,cpuacct/x/cpu.cfs_quota_us", "400000\n");
    EXPECT_EQ(processors_from_quota("t"), 4);
}

TEST(Processors, GarbageInSystemFilesLimitsNothing)
{
    const Scratch scratch;
    tree_put("t/proc/self/cgroup", "0::/a\nnonsense\n::::\n" + std::string(10'000, '/'));
    for (const char *text : {"", "x", "5", "100000 0", "-7 100000", "0 0"}) {
        tree_put("t/sys/fs/cgroup/a/cpu.max", text);
        EXPECT_EQ(processors_from_quota("t"), INT_MAX) << text;
    }
}

// ---- Threads, locks, pauses ----

struct Counter {
    Lock *lock;
    long count = 0;
    int32_t started = 0;
    int32_t interruptible = 0;
};

static void count_up(void *argument)
{
    Counter *counter = static_cast<Counter *>(argument);
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    for (int k = 0; k < 20'000; k++) {
        LockEnter(counter->lock);
        counter->count++;
        counter->interruptible += !sigismember(&mask, SIGINT);
        LockLeave(counter->lock);
    }
    flag_store(&counter->started, 1);
}

TEST(Thread, ALockGuardsAndAFlagHandsOver)
{
    Counter counter{.lock = LockCreate()};
    ASSERT_NE(counter.lock, nullptr);
    const uintptr_t one = ThreadStart(count_up, &counter);
    const uintptr_t two = ThreadStart(count_up, &counter);
    ASSERT_TRUE(one && two);
    for (int round = 0; !flag_load(&counter.started); round++) ThreadPause(round);
    ThreadJoin(one);
    ThreadJoin(two);
    ThreadJoin(0);
    EXPECT_EQ(counter.count, 40'000);
    EXPECT_EQ(counter.interruptible,
              0); // the console interrupt stays with the caller's threads
    LockFree(counter.lock);
    LockFree(nullptr);
}

TEST(Thread, LongWaitsSleepAndTheClockMovesOn)
{
    const double before = WallClock();
    for (int round = 0; round < 400; round++) ThreadPause(round);
    ThreadPause(INT_MAX);
    EXPECT_GT(WallClock(), before + 0.1); // sleeps last at least as long as asked
}

#ifdef TVX_DEBUG
TEST(Thread, WithoutMemoryTheCallerGoesOnAlone)
{
    mem_fault_arm(1);
    EXPECT_EQ(ThreadStart(count_up, nullptr), 0u);
    EXPECT_EQ(LockCreate(), nullptr);
    mem_fault_arm(0);
}
#endif
