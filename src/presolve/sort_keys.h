// sort_keys.h -- sort by keys of 64 bits, in linear time and with tests of the limits
#pragma once
#include "presolve/work.h"

struct SortKey {
    uint64_t key;
    int at; // index that the key belongs to
};
// A key with the order of the numbers (not NAN).
uint64_t key_of_number(double value);

// Sorts keys[0 .. count), in which `at` rises, by key; equal ones stay in that order. `other` has the same room. A
// PresolveEnd of the limits.
[[nodiscard]] int sort_keys(PresolveWork *w, SortKey *keys, SortKey *other, int count);
// Sorts list[0 .. count), which holds lines, by rank[line] >= 0; ranks above HIGHEST_RANK count as that, equal ones
// stay in their order. `other` has the same room.
static constexpr int HIGHEST_RANK = 4095;
[[nodiscard]] int sort_by_rank(PresolveWork *w, int *list, int *other, int count,
                               const int *rank);
