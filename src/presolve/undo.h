// undo.h -- the undo stack: the data that each reduction stores for postsolve
//
// Records are pushed by reductions and undone in reverse order. They are stored in an arena that grows by blocks and is
// freed as a whole.
#pragma once
#include "runtime/array.h"

enum UndoKind {
    UNDO_FIX = 1,           // column fixed
    UNDO_SUBSTITUTE = 2,    // column substituted out through an equation
    UNDO_DOMINATED = 3,     // column without cost that can satisfy all its rows
    UNDO_MERGE_COLS = 4,    // duplicate columns merged
    UNDO_PARALLEL_ROWS = 5, // two inequalities became one equation
    // bounds of a column moved to the other one of its doubleton row
    UNDO_BOUND_TRANSFER = 6,
    UNDO_SINGLETON_ROW = 7, // row became a bound
    UNDO_FORCING_ROW = 8,   // row fixed all its columns
    UNDO_COLUMN_SHIFT = 9,  // x = offset + factor * column that took its place
    // free column substituted out through an inequality, whose slack replaced it
    UNDO_FREE_TO_SLACK = 10,
    // column was the slack of an equation, which became an inequality
    UNDO_SLACK_COLUMN = 11,
    UNDO_ROW_COMBINATION = 12, // a multiple of an equation was added to a row
};

struct UndoEntry {
    int index;
    double value;
};

// One record, followed by its entries. The meaning of the fields is documented at the undo_ routine of each kind.
struct UndoRecord {
    UndoRecord *next; // pushed before
    int kind;
    int col, row; // -1 if the kind has none
    int other;    // second column or row
    int mode;     // flags or status
    int count;    // entries
    int split;    // entries from here on are the second list
    double value, cost, factor;
    double bound[4];
    UndoEntry entry[1]; // [count]
};

struct ArenaBlock {
    ArenaBlock *next;
};
struct UndoStack {
    UndoRecord *head = nullptr;
    ArenaBlock *blocks = nullptr;
    char *at = nullptr, *end = nullptr; // free part of the newest block
    int64_t block_size = 0;
};
// A zeroed record with room for `count` entries, on top of the stack, or null when memory is short.
[[nodiscard]] UndoRecord *undo_push(UndoStack *stack, int kind, int count);
void undo_free(UndoStack *stack);
