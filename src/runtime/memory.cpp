// memory.cpp -- the allocation services
//
// Problem     All allocations of the library go through one set of functions, so that tests can count blocks and make
//             requests fail.
// Method      Calls of the C allocator. With TVX_DEBUG each request is counted first.
// Invariant   (TVX_DEBUG) held = successful allocations - frees of non-null blocks.
// Cost        That of malloc; an atomic addition or two more with TVX_DEBUG.
#include "runtime/memory.h"
#include <cstdlib>
#ifdef TVX_DEBUG
#include <atomic>

namespace
{
// Test builds only, and of the process: what is counted is the process's heap.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<int64_t> fault_countdown{
    0}; // requests until the first refusal, plus one; 0: disarmed
std::atomic<int64_t> fault_hits{0}; // requests refused since arming
std::atomic<int64_t> held{0};       // blocks allocated and not freed
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

// Counts a request; true if it has to fail. After the first failure the countdown stays at 1.
bool request_refused()
{
    int64_t left = fault_countdown.load(std::memory_order_relaxed);
    while (left > 1 && !fault_countdown.compare_exchange_weak(left, left - 1)) {
    }
    if (left != 1) return false;
    fault_hits.fetch_add(1, std::memory_order_relaxed);
    return true;
}

void count_block(int change)
{
    held.fetch_add(change, std::memory_order_relaxed);
}
} // namespace

void mem_fault_arm(int64_t fail_at)
{
    fault_hits = 0;
    fault_countdown = fail_at > 0 ? fail_at : 0;
}

int64_t mem_fault_hits()
{
    return fault_hits;
}

int64_t mem_blocks_held()
{
    return held;
}

#else

namespace
{
bool request_refused()
{
    return false;
}

void count_block(int) {}
} // namespace

#endif

void *MemAlloc(size_t bytes)
{
    if (bytes == 0 || request_refused()) return nullptr;
    void *block = malloc(bytes);
    if (block) count_block(1);
    return block;
}

void *MemAllocZero(size_t count, size_t size)
{
    if (count == 0 || size == 0 || count > SIZE_MAX / size || request_refused())
        return nullptr;
    void *block = calloc(count, size);
    if (block) count_block(1);
    return block;
}

void *MemRealloc(void *block, size_t bytes)
{
    if (bytes == 0 || request_refused()) return nullptr;
    void *moved = realloc(block, bytes);
    if (moved && !block) count_block(1);
    return moved;
}

void MemFree(void *block)
{
    if (!block) return;
    count_block(-1);
    free(block);
}

// Nothing to do on the supported platforms; settings of the C library's heap would affect the caller's process.
void HeapTuning() {}
