// implication_log.h -- ImplicationLog, bounds of a column that follow from the value of a binary one
//
// An implication says: when literal Trigger is true, x_Col <= Value (Side UPPER) or x_Col >= Value (LOWER). With the
// bound u or l that holds without the trigger it is a variable bound, x <= u + (Value - u) z or x >= l + (Value - l) z for
// the value z of the literal. At most one implication of a trigger for a bound is kept, the tighter one, and at most
// MOST_PER_BOUND for a bound.
#pragma once
#include "domain/bounds.h"
#include "domain/int_lists.h"

static constexpr int MOST_PER_BOUND =
    200; // of the same column and side: the memory of probing, and the time of cuts

struct Implication {
    double Value;  // of the bound that follows
    double Global; // the bound without the trigger, under which it was derived
    int Trigger;   // literal
    int Col;
    BoundSide Side;
};

struct ImplicationLog {
    int NumCols = 0;
    Array<Implication> Entry;
    IntLists ByTrigger; // [2 NumCols] entries by the literal that implies
    IntLists ByBound;   // [2 NumCols] entries by 2 Col + Side
};

// A column in terms of another model's: x = Scale x_Col + Offset, Scale not 0; Col -1: it is gone.
struct ColumnMap {
    int Col;
    double Scale, Offset;
};

// An empty log. 0 or OUT_OF_MEMORY; *out is null then.
[[nodiscard]] int implication_log_create(ImplicationLog **out, int n_cols);
void implication_log_free(ImplicationLog *log); // null is ignored

// Adds an implication that is tighter than its Global bound, or tightens the one that is there. What has no place is left
// out. 0 or OUT_OF_MEMORY, with the log as it was.
[[nodiscard]] int implication_log_add(ImplicationLog *log, Implication entry);
// For other global bounds: entries that these bounds imply, whose trigger they fix, or that were derived under a bound
// tighter than now, go; the others are variable bounds with the bounds of now. 0 or OUT_OF_MEMORY, with the log as it was.
// Cost: O(entries)
[[nodiscard]] int implication_log_revalidate(ImplicationLog *log, const double *lower,
                                             const double *upper);
// A log for the columns of another model. `image` as for clique_table_remap: the literal that has the value of a
// binary column. Entries without trigger or column in it go. 0 or OUT_OF_MEMORY; *out is null then.
[[nodiscard]] int implication_log_remap(const ImplicationLog *log, const int *image,
                                        const ColumnMap *map, int n_cols,
                                        ImplicationLog **out);

#ifdef TVX_DEBUG
int implication_log_check(const ImplicationLog *log); // number of broken invariants
#endif
