// thread.h -- threads, the words threads share, and processor counts
#pragma once
#include <atomic>
#include <cstdint>
#include <type_traits>

using ThreadFunction = void (*)(void *argument);

// Starts function(argument) on a new thread. Non-zero handle, or 0 if it cannot be started; the caller then has to
// continue without it.
[[nodiscard]] uintptr_t ThreadStart(ThreadFunction function, void *argument);
// Releases a handle. The thread has signalled its end through a flag before, so the wait is short.
void ThreadJoin(uintptr_t handle);
// Yields the processor. `round` counts the polls of one wait: later rounds sleep longer, up to about 1 ms, so that a
// waiting thread uses almost no processor time.
void ThreadPause(int round);
// The calling thread; never 0.
uintptr_t ThreadSelf();

// Processors for this process: the smallest of NUMBER_OF_PROCESSORS (1 to 1023, else ignored), the system's
// count, the affinity mask and the cgroup CPU quota (rounded up); at least 1.
int ProcessorCount();
// The same, also bounded by the number of physical cores.
int CoreCount();

// Access to a word that one thread stores and another polls. The field itself is a plain word, so that records that
// contain it can be copied as bytes.
// NOLINTBEGIN(readability-non-const-parameter): atomic_ref takes no reference to const
template<class Word> Word flag_load(Word *word)
{
    return std::atomic_ref<Word>(*word).load(std::memory_order_acquire);
}
template<class Word> void flag_store(Word *word, std::type_identity_t<Word> value)
{
    std::atomic_ref<Word>(*word).store(value, std::memory_order_release);
}
// NOLINTEND(readability-non-const-parameter)
