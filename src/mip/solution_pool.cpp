// solution_pool.cpp -- the solutions of one search
#include "mip/solution_pool.h"

void pool_free_entry(const SolutionEntry &entry)
{
    MemFree(entry.X);
    MemFree(entry.Full);
}

void pool_free(SolutionPool *pool)
{
    for (const SolutionEntry &entry : pool->Entries) pool_free_entry(entry);
    *pool = SolutionPool{};
}

int pool_insert(SolutionPool *pool, const SolutionEntry &entry)
{
    Array<SolutionEntry> *entries = &pool->Entries;
    if (const int code = array_grow(entries, entries->size + 1)) {
        pool_free_entry(entry);
        return code;
    }
    int64_t at = entries->size++;
    for (; at > 0 && entries->data[at - 1].Objective >= entry.Objective; at--)
        entries->data[at] = entries->data[at - 1];
    entries->data[at] = entry;
    if (entries->size > pool->Maximum) pool_free_entry(entries->data[--entries->size]);
    return 0;
}
