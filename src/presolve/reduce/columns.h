// columns.h -- the parts of the column pass
#pragma once
#include "presolve/work.h"

// Column j has one entry. It is substituted out with its row, becomes the slack of the row, or stays; another slack of
// the row may be removed instead. Sets Flag[row] if this row need not be tried again. A PresolveEnd.
[[nodiscard]] int pre_column_singleton(PresolveWork *w, int j);
// Column j has cost zero and no bound on that side, and can be moved up (sign +1) or down (-1) until all its rows are
// satisfied: removes it with these rows, unless that would be inaccurate. A PresolveEnd.
[[nodiscard]] int pre_dominated(PresolveWork *w, int j, int sign);

// Notes (in Flag) about long rows, so that a row is not read again for each of its columns.
static constexpr int LONG_ROW = 50;
enum RowNote {
    SINGLETON_REFUSED = 1, // one refusal per pass is enough
    LARGEST_KNOWN = 2      // ScratchB holds the largest entry, or what it was
};
void note_row(PresolveWork *w, int i, RowNote note);
