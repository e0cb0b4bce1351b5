// index_set.h -- IndexSet, integers of a fixed range with constant-time insertion and removal
#pragma once
#include "frame/runtime/array.h"

static constexpr int INDEX_SET_NONE = -2000000000; // popped from an empty set

// Invariant: Where[Items[k] - First] == k for k < Count; Where is -1 for values outside the set.
struct IndexSet {
    int Count = 0;    // members
    int First = 0;    // smallest value allowed
    int Capacity = 0; // values allowed are First .. First + Capacity - 1
    Array<int> Items; // [Capacity] members, in no order
    Array<int> Where; // [Capacity] place in Items, or -1
};
[[nodiscard]] int index_set_alloc(IndexSet *set, int first,
                                  int capacity); // 0 or OUT_OF_MEMORY
void index_set_free(IndexSet *set);
void index_set_insert(IndexSet *set, int value); // a member already in stays
void index_set_remove(IndexSet *set, int value); // a value not in is ignored
int index_set_pop(IndexSet *set);                // the last member, or INDEX_SET_NONE
bool index_set_has(const IndexSet *set, int value);
void index_set_clear(IndexSet *set); // cost: members
