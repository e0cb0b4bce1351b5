// duplicates.h -- rows, or columns, that are multiples of each other
#pragma once
#include "presolve/axis.h"

// A row or a column on its way into classes of parallel ones: its entries, but for `skip`, are scale * (a vector that
// all members of its class share).
struct DupLine {
    double values; // key of its values over their scale
    // largest entry in size, with the sign of the entry with the smallest index
    double scale;
    int line;   // row or column
    int length; // entries
    int skip;   // node that does not count, or -1
};

// What is done with the members of one class, count >= 2. A PresolveStatus or OUT_OF_MEMORY.
using DupHandler = int (*)(PresolveWork *w, DupLine *members, int count);

// Gives each class among the lines list[0 .. count) to the handler, which may remove and change lines of its class only.
// skip[line], when there is such an array, is the node of a line that does not count, or below zero.
[[nodiscard]] int duplicate_classes(PresolveWork *w, Axis axis, const int *list, int count,
                                    const int *skip, DupHandler handle);

// Sorts members by `values`.
[[nodiscard]] int sort_members(PresolveWork *w, DupLine *members, int count);
