// duplicates.h -- classes of parallel rows or columns
#pragma once
#include "presolve/axis.h"

// A row or a column of a class: its entries, except `skip`, are scale * (a vector common to the class).
struct DupLine {
    double values; // key computed from its values divided by scale
    // largest entry in size, with the sign of the entry with the smallest index
    double scale;
    int line;   // row or column
    int length; // entries
    int skip;   // node that does not count, or -1
};

// What is done with the members of one class, count >= 2. A PresolveEnd or OUT_OF_MEMORY.
using DupHandler = int (*)(PresolveWork *w, DupLine *members, int count);

// Calls the handler for each class among the lines list[0 .. count); it may change and remove only lines of that class.
// skip[line], if not null, is the entry (node) of a line to ignore, or below zero.
[[nodiscard]] int duplicate_classes(PresolveWork *w, Axis axis, const int *list, int count,
                                    const int *skip, DupHandler handle);

// Sorts members by `values`.
[[nodiscard]] int sort_members(PresolveWork *w, DupLine *members, int count);
