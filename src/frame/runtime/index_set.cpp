// index_set.cpp -- IndexSet: a stack of members and the place of each value in it
#include "frame/runtime/index_set.h"

int index_set_alloc(IndexSet *set, int first, int capacity)
{
    TRY(array_resize(&set->Items, capacity));
    TRY(array_assign(&set->Where, capacity, -1));
    set->Count = 0;
    set->First = first;
    set->Capacity = capacity;
    return 0;
}

void index_set_free(IndexSet *set)
{
    *set = IndexSet{};
}

void index_set_insert(IndexSet *set, int value)
{
    int &where = set->Where[static_cast<int64_t>(value) - set->First];
    if (where >= 0) return;
    where = set->Count;
    set->Items[set->Count++] = value;
}

void index_set_remove(IndexSet *set, int value)
{
    int &where = set->Where[static_cast<int64_t>(value) - set->First];
    if (where < 0) return;
    const int last = set->Items[--set->Count];
    set->Items[where] = last;
    set->Where[static_cast<int64_t>(last) - set->First] = where;
    where = -1; // after the move: value may be the last member itself
}

int index_set_pop(IndexSet *set)
{
    if (set->Count == 0) return INDEX_SET_NONE;
    const int value = set->Items[--set->Count];
    set->Where[static_cast<int64_t>(value) - set->First] = -1;
    return value;
}

bool index_set_has(const IndexSet *set, int value)
{
    return set->Where[static_cast<int64_t>(value) - set->First] >= 0;
}

void index_set_clear(IndexSet *set)
{
    for (int k = 0; k < set->Count; k++)
        set->Where[static_cast<int64_t>(set->Items[k]) - set->First] = -1;
    set->Count = 0;
}
