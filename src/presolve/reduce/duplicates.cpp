// duplicates.cpp -- find parallel rows or columns
//
// Method      Lines (rows or columns) are sorted by a first key computed from the indices of their entries; lines with
//             equal first keys by a second key computed from their values divided by the largest. Lines with close keys
//             are then compared entry by entry with the first of them, which gives classes.
// Invariant   Members of a class agree with its first member within SAME_VALUE of the largest entry and within
//             SAME_SHARE of each entry; with integers, only rounding is allowed.
// Cost        O(entries + lines) as long as close keys mean parallel lines; MAX_CLASSES limits the rest.
// Literature  J. A. Tomlin and J. S. Welch, "Finding duplicate rows in a linear programming model", OR Letters 5, 1986.
#include "presolve/reduce/duplicates.h"
#include "presolve/sort_keys.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SAME_KEY = 1e-10, SAME_VALUE = 1e-11, SAME_SHARE = 1e-10;
// With integers, solutions are not repaired after postsolve: equal up to rounding.
constexpr double SAME_VALUE_MIP = 4e-16, SAME_SHARE_MIP = 4e-16;

constexpr int MAX_CLASSES = 16; // classes that are searched among lines with close keys

constexpr int SHORT_CLASS = 500;

// From this share of all lines, entries are processed in the order of memory.
constexpr double SHARE_SCANNED = 0.1;

// A mixing function of 64 bits (splitmix64).
uint64_t mixed(uint64_t k)
{
    k += 0x9e3779b97f4a7c15U;
    k = (k ^ (k >> 30)) * 0xbf58476d1ce4e5b9U;
    k = (k ^ (k >> 27)) * 0x94d049bb133111ebU;
    return k ^ (k >> 31);
}

void set_values(const PresolveWork *w, Axis axis, DupLine *l)
{
    double sum = 0, largest = 0, sign = 1;
    int first = INT32_MAX;
    for (int p = first_of(w, axis, l->line); p >= 0; p = next_of(w, axis, p)) {
        if (p == l->skip) continue;
        const int k = place_of(w, axis, p);
        const double a = w->Nodes.data[p].value;
        const double weight =
            static_cast<double>(mixed(static_cast<uint64_t>(k)) >> 40) * 0x1p-24 + 1;
        sum += a * weight;
        largest = std::max(largest, std::fabs(a));
        if (k >= first) continue;
        first = k;
        sign = a > 0 ? 1 : -1;
    }
    l->scale = sign * largest;
    l->values = sum / l->scale;
}

bool equal(const PresolveWork *w, double a, double b)
{
    const double size = std::max(std::fabs(a), std::fabs(b));
    const double value = w->IsMip ? SAME_VALUE_MIP : SAME_VALUE,
                 share = w->IsMip ? SAME_SHARE_MIP : SAME_SHARE;
    return std::fabs(a - b) <= std::min(value, share * size);
}

// Writes the entries of a line divided by its scale, or zeros, to Scratch.
void scatter(PresolveWork *w, Axis axis, const DupLine *l, bool clear)
{
    for (int p = first_of(w, axis, l->line); p >= 0; p = next_of(w, axis, p))
        w->Scratch.data[place_of(w, axis, p)] =
            clear || p == l->skip ? 0 : w->Nodes.data[p].value / l->scale;
}

// True if the line is a multiple of the one in Scratch, which has the same number of entries.
bool parallel(const PresolveWork *w, Axis axis, const DupLine *l)
{
    for (int p = first_of(w, axis, l->line); p >= 0; p = next_of(w, axis, p)) {
        if (p == l->skip) continue;
        const double v = w->Scratch.data[place_of(w, axis, p)];
        if (!equal(w, v, w->Nodes.data[p].value / l->scale)) return false;
    }
    return true;
}

// Among lines with close keys, moves the class of the first one to the front; *size: its size.
int split_class(PresolveWork *w, Axis axis, DupLine *lines, int count, int *size)
{
    scatter(w, axis, &lines[0], false);
    *size = 1;
    for (int k = 1; k < count; k++) {
        TRY(check_limits(w, lines[k].length));
        if (lines[k].length == lines[0].length && parallel(w, axis, &lines[k]))
            std::swap(lines[k], lines[(*size)++]);
    }
    scatter(w, axis, &lines[0], true);
    w->Work += 3.0 * lines[0].length * count;
    return 0;
}

int classes_of_run(PresolveWork *w, Axis axis, DupLine *lines, int count, DupHandler handle)
{
    for (int k = 0; k < MAX_CLASSES && count > 1; k++) {
        int size = 0;
        TRY(split_class(w, axis, lines, count, &size));
        if (size > 1) TRY(handle(w, lines, size));
        lines += size;
        count -= size;
    }
    return 0;
}

int classes_of_pattern(PresolveWork *w, Axis axis, DupLine *lines, int count,
                       DupHandler handle)
{
    for (int k = 0; k < count; k++) {
        TRY(check_limits(w, lines[k].length));
        set_values(w, axis, &lines[k]);
    }
    TRY(sort_members(w, lines, count));
    for (int begin = 0, end = 0; begin < count; begin = end) {
        for (end = begin + 1; end < count; end++) {
            const double gap = lines[end].values - lines[end - 1].values;
            if (gap > SAME_KEY * (1 + std::fabs(lines[end].values))) break;
        }
        if (end > begin + 1)
            TRY(classes_of_run(w, axis, lines + begin, end - begin, handle));
    }
    return 0;
}

// Unlinks entries deleted by earlier reductions, since the loops below rely on the counts of entries.
int sweep_listed(PresolveWork *w, Axis axis, const int *list, int count)
{
    const int *mark = axis == Axis::ROWS ? w->RowMark.data : w->ColMark.data;
    for (int k = 0; k < count; k++)
        if (mark[list[k]] & NEEDS_SWEEP)
            TRY(check_limits(w, 1 + (axis == Axis::ROWS ? sweep_row(w, list[k])
                                                        : sweep_col(w, list[k]))));
    return 0;
}

// Keys of the patterns: sums of the mixed indices of the entries of these lines, or of all lines in the order of
// memory.
int add_patterns(PresolveWork *w, Axis axis, const int *list, int count,
                 Array<uint64_t> *sum)
{
    const int lines = axis == Axis::ROWS ? w->NumRows : w->NumCols;
    TRY(array_assign(sum, lines, uint64_t{0}));
    if (count < SHARE_SCANNED * lines) {
        for (int k = 0; k < count; k++) {
            TRY(check_limits(w, 1 + length_of(w, axis, list[k])));
            for (int p = first_of(w, axis, list[k]); p >= 0; p = next_of(w, axis, p))
                sum->data[list[k]] += mixed(static_cast<uint64_t>(place_of(w, axis, p)));
        }
        return 0;
    }
    for (int p = 0; p < w->Nodes.size; p++) {
        TRY(check_limits(w, 1));
        if (w->Nodes.data[p].col >= 0)
            sum->data[line_of(w, axis, p)] +=
                mixed(static_cast<uint64_t>(place_of(w, axis, p)));
    }
    return 0;
}

// Keys of the lines' patterns, sorted; `at` is the line.
int sort_patterns(PresolveWork *w, Axis axis, const int *list, int count, const int *skip,
                  Array<SortKey> *keys)
{
    Array<uint64_t> sum;
    Array<SortKey> other;
    TRY(sweep_listed(w, axis, list, count));
    TRY(add_patterns(w, axis, list, count, &sum));
    TRY(array_resize(keys, count));
    TRY(array_resize(&other, count));
    for (int k = 0; k < count; k++) {
        const int line = list[k], p = skip ? skip[line] : -1;
        keys->data[k] = {sum.data[line], line};
        if (p >= 0) keys->data[k].key -= mixed(static_cast<uint64_t>(place_of(w, axis, p)));
        w->Work += 5.0 * length_of(w, axis, line);
        TRY(check_limits(w, 1));
    }
    return sort_keys(w, keys->data, other.data, count);
}
} // namespace

int sort_members(PresolveWork *w, DupLine *members, int count)
{
    if (count <= SHORT_CLASS) {
        std::sort(members, members + count, [](const DupLine &a, const DupLine &b) {
            return a.values < b.values || (a.values == b.values && a.line < b.line);
        });
        return 0;
    }
    Array<SortKey> keys, other;
    Array<DupLine> sorted;
    TRY(array_resize(&keys, count));
    TRY(array_resize(&other, count));
    TRY(array_resize(&sorted, count));
    for (int k = 0; k < count; k++) keys.data[k] = {key_of_number(members[k].values), k};
    TRY(check_limits(w, count));
    TRY(sort_keys(w, keys.data, other.data, count));
    for (int k = 0; k < count; k++) sorted.data[k] = members[keys.data[k].at];
    TRY(check_limits(w, count));
    std::copy_n(sorted.data, count, members);
    return check_limits(w, 2.0 * count);
}

namespace
{
// The lines of keys[0 .. count), which have the same pattern.
int lines_of_pattern(PresolveWork *w, Axis axis, const SortKey *keys, int count,
                     const int *skip, Array<DupLine> *lines)
{
    TRY(array_resize(lines, count));
    for (int k = 0; k < count; k++) {
        const int line = keys[k].at, p = skip ? skip[line] : -1;
        lines->data[k] = {0, 0, line, length_of(w, axis, line) - (p >= 0), p};
        TRY(check_limits(w, 1));
    }
    return 0;
}
} // namespace

int duplicate_classes(PresolveWork *w, Axis axis, const int *list, int count,
                      const int *skip, DupHandler handle)
{
    Array<SortKey> keys;
    Array<DupLine> lines;
    TRY(sort_patterns(w, axis, list, count, skip, &keys));
    for (int begin = 0, end = 0; begin < count; begin = end) {
        for (end = begin + 1; end < count; end++)
            if (keys.data[end].key != keys.data[begin].key) break;
        TRY(check_limits(w, end - begin));
        if (end == begin + 1) continue;
        TRY(lines_of_pattern(w, axis, keys.data + begin, end - begin, skip, &lines));
        if (lines.data[0].length > 0)
            TRY(classes_of_pattern(w, axis, lines.data, end - begin, handle));
    }
    return 0;
}
