// duplicates.h -- rows, or columns, that are multiples of each other
#pragma once
#include "presolve/axis.h"

// A row or a column on its way into classes of parallel ones: its entries, but for `skip`, are scale * (a vector that
// all members of its class share).
struct DupLine {
    uint64_t pattern; // key of the places of its entries
    double values;    // key of its values over their scale
    double
        scale;  // largest entry in size, with the sign of the entry with the smallest index
    int line;   // row or column
    int length; // entries
    int skip;   // node that does not count, or -1
};

// What is done with the members of one class, count >= 2. A PresolveStatus or OUT_OF_MEMORY.
using DupHandler = int (*)(PresolveWork *w, DupLine *members, int count);

// Gives each class among lines[0 .. count), of which line and skip are set, to the handler. The handler may remove and
// change lines of its class only.
[[nodiscard]] int duplicate_classes(PresolveWork *w, Axis axis, DupLine *lines, int count,
                                    DupHandler handle);
