// int_lists.h -- IntLists, many growing lists of integers in one pool
//
// A list that is full moves to the end of the pool with twice the room; what it leaves behind stays unused, at most as
// much as is in use. Entries of a list are consecutive.
#pragma once
#include "runtime/array.h"

struct IntLists {
    Array<int64_t> Beg; // [lists] start in Pool
    Array<int> Size;    // [lists] entries
    Array<int> Room;    // [lists] entries that fit
    Array<int> Pool;
};

// `count` empty lists. 0 or OUT_OF_MEMORY.
[[nodiscard]] inline int lists_create(IntLists *lists, int64_t count)
{
    lists->Pool.size = 0;
    TRY(array_assign<int64_t>(&lists->Beg, count, 0));
    TRY(array_assign(&lists->Size, count, 0));
    return array_assign(&lists->Room, count, 0);
}

// Room for one more entry in list k. 0 or OUT_OF_MEMORY; the lists are unchanged then.
[[nodiscard]] inline int lists_reserve(IntLists *lists, int64_t k)
{
    constexpr int FIRST_ROOM = 4; // most columns are in few cliques
    const int size = lists->Size[k];
    if (size < lists->Room[k]) return 0;
    const int room = size ? 2 * size : FIRST_ROOM;
    const int64_t to = lists->Pool.size;
    TRY(array_grow(&lists->Pool, to + room));
    lists->Pool.size += room;
    for (int p = 0; p < size; p++)
        lists->Pool.data[to + p] = lists->Pool.data[lists->Beg[k] + p];
    lists->Beg[k] = to;
    lists->Room[k] = room;
    return 0;
}

inline void lists_push(IntLists *lists, int64_t k, int value) // there is room
{
    assert(lists->Size[k] < lists->Room[k]);
    lists->Pool.data[lists->Beg[k] + lists->Size[k]++] = value;
}

inline const int *lists_at(const IntLists *lists, int64_t k)
{
    return lists->Pool.data + lists->Beg.data[k];
}
