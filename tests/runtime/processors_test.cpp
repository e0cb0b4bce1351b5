// processors_test.cpp -- processor counts from the environment, the affinity mask and control groups; threads and locks
#include "runtime/clock.h"
#include "runtime/memory.h"
#include "runtime/processors.h"
#include "runtime/thread.h"
#include "support/scratch.h"
#include <climits>
#include <csignal>
#include <sched.h>

TEST(Processors, TheVariableCountsFrom1To1023AndOnlyLowersTheCount)
{
    EXPECT_EQ(processors_from_text("1"), 1);
    EXPECT_EQ(processors_from_text("1023"), 1023);
    for (const char *text :
         {"0", "1024", "-3", "", "four", "4x", "4 ", "99999999999999999999"})
        EXPECT_EQ(processors_from_text(text), NO_PROCESSOR_LIMIT) << text;
    EXPECT_EQ(processors_from_text(nullptr), NO_PROCESSOR_LIMIT);
    unsetenv("NUMBER_OF_PROCESSORS");
    const int all = ProcessorCount();
    EXPECT_TRUE(CoreCount() >= 1 && CoreCount() <= all);
    for (const auto &[text, count] : {std::pair{"1", 1}, {"1000", all}}) {
        setenv("NUMBER_OF_PROCESSORS", text, 1);
        EXPECT_EQ(ProcessorCount(), count);
    }
    unsetenv("NUMBER_OF_PROCESSORS");
}

TEST(Processors, TheAffinityMaskCounts)
{
    cpu_set_t all, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    int first = 0;
    while (!CPU_ISSET(first, &all)) first++;
    CPU_ZERO(&one);
    CPU_SET(first, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(ProcessorCount(), 1);
    sched_setaffinity(0, sizeof all, &all);
}

TEST(Processors, TheQuotaIsTheSmallestUpToTheRootAndGarbageLimitsNothing)
{
    const Scratch scratch;
    // The count after a file of the system has been written.
    const auto with = [](const std::string &name, const std::string &text) {
        const std::string path = "t/" + name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        file_put(path, text);
        return processors_from_quota("t");
    };
    const std::string own = "proc/self/cgroup", two = "sys/fs/cgroup/",
                      one = two + "cpu,cpuacct/x/cpu.cfs_";
    EXPECT_EQ(processors_from_quota("t"), INT_MAX); // no such files
    EXPECT_EQ(with(own, "0::/a/b\n"), INT_MAX);     // version 2
    EXPECT_EQ(with(two + "a/b/cpu.max", "max 100000\n"), INT_MAX);
    EXPECT_EQ(with(two + "a/cpu.max", "250000 100000\n"), 3); // rounded up
    EXPECT_EQ(with(two + "a/b/cpu.max", "400000 100000\n"), 3);
    EXPECT_EQ(with(two + "cpu.max", "1000 100000\n"), 1); // as a container sees its own
    std::filesystem::remove_all("t");                     // version 1
    with(own, "9:memory:/m\n4:cpu,cpuacct:/x/y\n1:name=systemd:/\n");
    with(one + "quota_us", "-1\n");
    EXPECT_EQ(with(one + "period_us", "100000\n"), INT_MAX);
    EXPECT_EQ(with(one + "quota_us", "400000\n"), 4);
    std::filesystem::remove_all("t");
    with(own, "0::/a\nnonsense\n::::\n" + std::string(10'000, '/'));
    for (const char *text : {"", "x", "5", "100000 0", "-7 100000", "0 0"})
        EXPECT_EQ(with(two + "a/cpu.max", text), INT_MAX) << text;
}

// ---- Threads, pauses ----

// Sets *flag to 1, or to 2 where a signal could interrupt it.
static void look_at_mask(void *flag)
{
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    flag_store(static_cast<int32_t *>(flag), sigismember(&mask, SIGINT) ? 1 : 2);
}

TEST(Thread, AFlagHandsOverAndSignalsStayWithTheCaller)
{
    int32_t flag = 0;
    const uintptr_t one = ThreadStart(look_at_mask, &flag);
    ASSERT_TRUE(one);
    for (int round = 0; !flag_load(&flag); round++) ThreadPause(round);
    for (const uintptr_t thread : {one, uintptr_t{0}}) ThreadJoin(thread);
    EXPECT_EQ(flag, 1);
    const double before = WallClock();
    for (int round = 0; round < 400; round++) ThreadPause(round);
    ThreadPause(INT_MAX);
    EXPECT_GT(WallClock(), before + 0.1); // sleeps last at least as long as asked
#ifdef TVX_DEBUG
    mem_fault_arm(1); // without memory the caller goes on alone
    EXPECT_EQ(ThreadStart(look_at_mask, nullptr), 0u);
    mem_fault_arm(0);
#endif
}
