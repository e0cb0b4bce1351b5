// solution_pool.h -- SolutionPool, the solutions of one search, and the value from which a node is cut off
#pragma once
#include "runtime/array.h"

// Where a solution comes from.
enum class SolutionSource : char {
    NODE_LP,   // the LP solution of a node
    HEURISTIC, // a heuristic, or the caller's callback
    START,     // the caller's start
    BEFORE,    // the search before a restart
    SUB_MIP,
    IMPROVED // made of the one before it
};

struct SolutionEntry {
    double Found;     // nodes explored
    double Objective; // minimisation form
    SolutionSource Source;
    // Owned. [columns of the searched model], or null: the point cannot be mapped to it, as reductions that keep only an
    // optimum may exclude it
    double *X;
    double *Full; // owned; [columns of the caller's model], exact where integer
};

struct SolutionPool {
    Array<SolutionEntry> Entries; // best first
    int64_t Maximum = 2000000000; // kept
    int Count = 0;                // found
    double Incumbent = 1e100;     // objective of the best one
    double PruneValue = 1e100;    // a node with such a bound is cut off
    int Sequence = 0;             // counts improvements
    bool Changed = false;         // since the last result was written
};
void pool_free(SolutionPool *pool);
// Takes over both arrays, also on failure. The entry gets its place by objective; beyond Maximum the worst is dropped.
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int pool_insert(SolutionPool *pool, const SolutionEntry &entry);
// Keeps the entries for which keep(entry) holds.
void pool_free_entry(const SolutionEntry &entry);
template<class Keep> void pool_filter(SolutionPool *pool, Keep keep)
{
    int64_t kept = 0;
    for (const SolutionEntry &entry : pool->Entries)
        if (keep(entry))
            pool->Entries.data[kept++] = entry;
        else
            pool_free_entry(entry);
    pool->Entries.size = kept;
    pool->Incumbent = kept > 0 ? pool->Entries.data[0].Objective : 1e100;
    pool->Changed = true;
}
inline const SolutionEntry *pool_best(const SolutionPool *pool)
{
    return pool->Entries.size > 0 ? &pool->Entries.data[0] : nullptr;
}
