// duplicates.cpp -- find rows, or columns, that are multiples of each other
//
// Method      A first key from the places of the entries sorts the lines; among lines of one first key a second one from
//             their values, over the largest, does. Lines with close keys are then compared entry by entry with the first
//             of them, which gives classes.
// Invariant   Members of a class agree with its first member within SAME_VALUE of the largest entry and within
//             SAME_SHARE of each entry.
// Cost        O(entries + lines log lines), as long as close keys mean parallel lines; MAX_CLASSES bounds the rest.
// Literature  J. A. Tomlin and J. S. Welch, "Finding duplicate rows in a linear programming model", OR Letters 5, 1986.
#include "presolve/duplicates.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SAME_KEY = 1e-10, SAME_VALUE = 1e-11, SAME_SHARE = 1e-10;
constexpr int MAX_CLASSES = 16; // looked for among lines whose keys are all close

// A mixing function of 64 bits (splitmix64).
uint64_t mixed(uint64_t k)
{
    k += 0x9e3779b97f4a7c15U;
    k = (k ^ (k >> 30)) * 0xbf58476d1ce4e5b9U;
    k = (k ^ (k >> 27)) * 0x94d049bb133111ebU;
    return k ^ (k >> 31);
}

void set_pattern(const PresolveWork *w, Axis axis, DupLine *l)
{
    uint64_t key = 0; // a sum, so that the order of the list does not matter
    l->length = 0;
    for (int p = first_of(w, axis, l->line); p >= 0; p = next_of(w, axis, p)) {
        if (p == l->skip) continue;
        key += mixed(static_cast<uint64_t>(place_of(w, axis, p)));
        l->length++;
    }
    l->pattern = key;
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

bool equal(double a, double b)
{
    const double size = std::max(std::fabs(a), std::fabs(b));
    return std::fabs(a - b) <= std::min(SAME_VALUE, SAME_SHARE * size);
}

// Entries of a line over its scale, or zeros, to Scratch.
void scatter(PresolveWork *w, Axis axis, const DupLine *l, bool clear)
{
    for (int p = first_of(w, axis, l->line); p >= 0; p = next_of(w, axis, p))
        w->Scratch.data[place_of(w, axis, p)] =
            clear || p == l->skip ? 0 : w->Nodes.data[p].value / l->scale;
}

// Whether the line is a multiple of the one in Scratch, which has as many entries.
bool parallel(const PresolveWork *w, Axis axis, const DupLine *l)
{
    for (int p = first_of(w, axis, l->line); p >= 0; p = next_of(w, axis, p)) {
        if (p == l->skip) continue;
        const double v = w->Scratch.data[place_of(w, axis, p)];
        if (!equal(v, w->Nodes.data[p].value / l->scale)) return false;
    }
    return true;
}

// Lines with close keys: moves the class of the first one to the front and returns its size.
int split_class(PresolveWork *w, Axis axis, DupLine *lines, int count)
{
    scatter(w, axis, &lines[0], false);
    int size = 1;
    for (int k = 1; k < count; k++)
        if (lines[k].length == lines[0].length && parallel(w, axis, &lines[k]))
            std::swap(lines[k], lines[size++]);
    scatter(w, axis, &lines[0], true);
    w->Work += 3.0 * lines[0].length * count;
    return size;
}

int classes_of_run(PresolveWork *w, Axis axis, DupLine *lines, int count, DupHandler handle)
{
    for (int k = 0; k < MAX_CLASSES && count > 1; k++) {
        const int size = split_class(w, axis, lines, count);
        if (size > 1) TRY(handle(w, lines, size));
        lines += size;
        count -= size;
    }
    return 0;
}

int classes_of_pattern(PresolveWork *w, Axis axis, DupLine *lines, int count,
                       DupHandler handle)
{
    for (int k = 0; k < count; k++) set_values(w, axis, &lines[k]);
    std::sort(lines, lines + count, [](const DupLine &a, const DupLine &b) {
        return a.values < b.values || (a.values == b.values && a.line < b.line);
    });
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
} // namespace

int duplicate_classes(PresolveWork *w, Axis axis, DupLine *lines, int count,
                      DupHandler handle)
{
    for (int k = 0; k < count; k++) {
        set_pattern(w, axis, &lines[k]);
        w->Work += 5.0 * lines[k].length;
        if (check_is_due(k)) TRY(presolve_check(w));
    }
    std::sort(lines, lines + count, [](const DupLine &a, const DupLine &b) {
        return a.pattern < b.pattern || (a.pattern == b.pattern && a.line < b.line);
    });
    for (int begin = 0, end = 0; begin < count; begin = end) {
        for (end = begin + 1; end < count; end++)
            if (lines[end].pattern != lines[begin].pattern) break;
        if (end > begin + 1 && lines[begin].length > 0)
            TRY(classes_of_pattern(w, axis, lines + begin, end - begin, handle));
    }
    return 0;
}
