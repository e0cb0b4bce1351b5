// memory.h -- memory allocation
//
// All memory of the library is allocated here. Builds with TVX_DEBUG count blocks and can make the n-th
// request fail, so that tests can run every out-of-memory path.
#pragma once
#include <cstddef>
#include <cstdint>

// All return null when memory is exhausted. A request of 0 bytes returns null and is not a failure: callers
// test for an empty request first.
[[nodiscard]] void *MemAlloc(size_t bytes);
[[nodiscard]] void *MemAllocZero(size_t count,
                                 size_t size); // null too when count * size overflows
[[nodiscard]] void *MemRealloc(void *block, size_t bytes); // on failure the old block stays
void MemFree(void *block);                                 // null is ignored
void HeapTuning(); // asks the platform for its best heap mode; may do nothing

#ifdef TVX_DEBUG
// Test hooks, process wide. fail_at = k > 0: the k-th request from now, and all after it, return null;
// 0: no injection. mem_fault_hits: requests refused since the last arming.
void mem_fault_arm(int64_t fail_at);
int64_t mem_fault_hits();
int64_t mem_blocks_held(); // blocks allocated and not freed
#endif
