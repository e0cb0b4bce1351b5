// sort_keys.cpp -- radix sort of many keys
//
// Problem     A comparison sort of the rows of a large model takes up to a second without a test of the limits, and its
//             time grows faster than the model.
// Method      Counting sorts by parts of the key from the lowest to the highest, without the parts that are the same in
//             all keys; short lists by comparison.
// Cost        O(count) for each part of the key that varies.
// Literature  D. E. Knuth, The Art of Computer Programming 3, 1973, section 5.2.5.
#include "presolve/sort_keys.h"
#include <algorithm>

namespace
{
constexpr int PART_BITS = 11, PARTS = 6, PART_SIZE = 1 << PART_BITS;
constexpr int SHORT_LIST = 500; // comparison is faster

int part_of(uint64_t key, int part)
{
    return static_cast<int>(key >> (part * PART_BITS)) & (PART_SIZE - 1);
}

// One counting sort from `from` to `to`, unless all keys have the same part.
int sort_part(PresolveWork *w, SortKey **from, SortKey **to, int count, int part)
{
    int start[PART_SIZE + 1] = {0};
    const SortKey *keys = *from;
    for (int k = 0; k < count; k++) start[part_of(keys[k].key, part) + 1]++;
    TRY(check_limits(w, count));
    if (start[part_of(keys[0].key, part) + 1] == count) return 0;
    for (int v = 0; v < PART_SIZE; v++) start[v + 1] += start[v];
    for (int k = 0; k < count; k++) (*to)[start[part_of(keys[k].key, part)]++] = keys[k];
    std::swap(*from, *to);
    return check_limits(w, count);
}
} // namespace

uint64_t key_of_number(double value)
{
    uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    memcpy(&bits, &value, sizeof bits);
    const uint64_t sign = uint64_t{1} << 63;
    return bits & sign ? ~bits : bits | sign;
}

int sort_keys(PresolveWork *w, SortKey *keys, SortKey *other, int count)
{
    if (count <= SHORT_LIST) {
        std::sort(keys, keys + count, [](const SortKey &a, const SortKey &b) {
            return a.key < b.key || (a.key == b.key && a.at < b.at);
        });
        return 0;
    }
    SortKey *from = keys, *to = other;
    for (int part = 0; part < PARTS; part++) TRY(sort_part(w, &from, &to, count, part));
    if (from != keys) std::copy_n(from, count, keys);
    return check_limits(w, count);
}

int sort_by_rank(PresolveWork *w, int *list, int *other, int count, const int *rank)
{
    int start[HIGHEST_RANK + 2] = {0};
    for (int k = 0; k < count; k++) start[std::min(rank[list[k]], HIGHEST_RANK) + 1]++;
    for (int r = 0; r <= HIGHEST_RANK; r++) start[r + 1] += start[r];
    TRY(check_limits(w, count));
    for (int k = 0; k < count; k++)
        other[start[std::min(rank[list[k]], HIGHEST_RANK)]++] = list[k];
    std::copy_n(other, count, list);
    return check_limits(w, count);
}
