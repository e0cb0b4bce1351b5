// columns.h -- the parts of the column pass
#pragma once
#include "presolve/work.h"

// Column j has one entry. It goes through that row, takes the row's place as its slack, or stays; another slack of
// the row may go in its place. Flag[row] is set when this row need not be tried again. A PresolveStatus.
[[nodiscard]] int pre_column_singleton(PresolveWork *w, int j);
// Column j, at no cost and without a bound on that side, can be moved up (sign +1) or down (-1) until all its rows hold:
// it goes with them, unless that would be inaccurate. A PresolveStatus.
[[nodiscard]] int pre_dominated(PresolveWork *w, int j, int sign);

// What the pass remembers of long rows, so that no row is walked for each of its columns. Flag holds the notes.
static constexpr int LONG_ROW = 50;
enum RowNote {
    SINGLETON_REFUSED = 1, // one refusal per pass is enough
    LARGEST_KNOWN = 2      // ScratchB holds the largest entry, or what it was
};
void note_row(PresolveWork *w, int i, RowNote note);
