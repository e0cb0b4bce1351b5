// thread.cpp -- threads, pauses and locks on POSIX threads
//
// Problem     Start worker threads, wait for shared words without using a processor, locks for the few shared records.
// Method      A started thread takes its function and argument from a small block that it frees itself. Signals are
//             left to the caller's threads: workers block them all, except faults and the profiler's timer. A wait
//             first yields the processor, since most waits are short, and then sleeps for increasing times.
#include "runtime/thread.h"
#include "runtime/memory.h"
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sched.h>

namespace
{
struct ThreadEntry {
    ThreadFunction Function;
    void *Argument;
};

void *thread_main(void *block)
{
    const ThreadEntry entry = *static_cast<ThreadEntry *>(block);
    MemFree(block);
    entry.Function(entry.Argument);
    return nullptr;
}

// Starts with the caller's asynchronous signals blocked, so that the new thread inherits that mask.
int thread_create_masked(pthread_t *thread, ThreadEntry *entry)
{
    sigset_t blocked;
    sigset_t previous;
    sigfillset(&blocked);
    for (const int kept :
         {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGPROF})
        sigdelset(&blocked, kept);
    pthread_sigmask(SIG_BLOCK, &blocked, &previous);
    const int error = pthread_create(thread, nullptr, thread_main, entry);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return error;
}
} // namespace

uintptr_t ThreadStart(ThreadFunction function, void *argument)
{
    ThreadEntry *entry = static_cast<ThreadEntry *>(MemAlloc(sizeof(ThreadEntry)));
    if (!entry) return 0;
    *entry = {function, argument};
    pthread_t thread{};
    if (thread_create_masked(&thread, entry)) {
        MemFree(entry);
        return 0;
    }
    static_assert(sizeof(pthread_t) <= sizeof(uintptr_t));
    return static_cast<uintptr_t>(thread);
}

uintptr_t ThreadSelf()
{
    return static_cast<uintptr_t>(pthread_self());
}

void ThreadJoin(uintptr_t handle)
{
    if (handle) pthread_join(static_cast<pthread_t>(handle), nullptr);
}

namespace
{
constexpr int YIELD_ROUNDS = 100; // some tens of microseconds when nothing else runs

constexpr long FIRST_SLEEP = 20'000; // nanoseconds

// Nanoseconds: a waiting thread wakes up at most a thousand times per second.
constexpr long LONGEST_SLEEP = 1'000'000;
} // namespace

void ThreadPause(int round)
{
    if (round < YIELD_ROUNDS) {
        sched_yield();
        return;
    }
    const long steps = round - YIELD_ROUNDS + 1;
    const timespec sleep{0, steps < LONGEST_SLEEP / FIRST_SLEEP ? steps * FIRST_SLEEP
                                                                : LONGEST_SLEEP};
    nanosleep(&sleep, nullptr);
}
