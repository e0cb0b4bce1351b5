// integer_row.h -- a row of integer columns with integer coefficients
#pragma once
#include "presolve/work.h"

struct IntegerRow {
    Array<int64_t> coef; // [entries of the row, in the order of its list]
    int count = 0;
    double scale = 1; // coef = scale * entry, up to `drift`
    int64_t side = 0; // integer activities are equal to it, or at most
    double play =
        0; // by which an accepted point may exceed scale * rhs; less than MOST_PLAY
    double rest = 0; // scale * rhs - side
};

// Finds the scale. False if there is none, or the row is not accurate enough. 0 or OUT_OF_MEMORY.
[[nodiscard]] int integer_row(const PresolveWork *w, int i, IntegerRow *row, bool *found);
int64_t greatest_divisor(int64_t a,
                         int64_t b); // of absolute values; 0 counts as a multiple of all
// Replaces the row by its coefficients and side, divided by their greatest divisor. False if that changes nothing.
bool set_integer_row(PresolveWork *w, int i, const IntegerRow *row, int64_t divisor);

// row_integrality.cpp: does that for row i if it is one of integer columns. A PresolveEnd or OUT_OF_MEMORY.
[[nodiscard]] int make_row_integral(PresolveWork *w, int i, IntegerRow *row);
