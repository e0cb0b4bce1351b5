// record.h -- allocation of a record, and its release with all its arrays
#pragma once
#include "runtime/array.h"

// A record in its initial state, or null when out of memory.
template<class T> [[nodiscard]] T *record_create()
{
    // all zero: valid to assign to
    T *record = static_cast<T *>(MemAllocZero(1, sizeof(T)));
    if (record) *record = T{};
    return record;
}
template<class T> void record_free(T *record) // null is ignored
{
    if (!record) return;
    *record = T{}; // releases every array
    MemFree(record);
}
