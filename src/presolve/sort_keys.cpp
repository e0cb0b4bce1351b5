// sort_keys.cpp -- sorts for millions of keys
//
// Problem     A comparison sort of a large model's rows takes a second, in which no limit is seen, and grows faster than
//             the model.
// Method      Counting sorts: by parts of the key from the lowest to the highest, those left out that are the same in all
//             keys; short lists by comparison.
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

// One counting sort from `from` to `to`; false when all keys have the same part.
bool sort_part(const SortKey *from, SortKey *to, int count, int part)
{
    int start[PART_SIZE + 1] = {0};
    for (int k = 0; k < count; k++) start[part_of(from[k].key, part) + 1]++;
    if (start[part_of(from[0].key, part) + 1] == count) return false;
    for (int v = 0; v < PART_SIZE; v++) start[v + 1] += start[v];
    for (int k = 0; k < count; k++) to[start[part_of(from[k].key, part)]++] = from[k];
    return true;
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
    for (int part = 0; part < PARTS; part++) {
        if (sort_part(from, to, count, part)) std::swap(from, to);
        TRY(check_limits(w, count));
    }
    if (from != keys) std::copy_n(from, count, keys);
    return 0;
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
