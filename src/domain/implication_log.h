// implication_log.h -- ImplicationLog, bounds of a column that follow from the value of a binary one
//
// An implication says: when literal Trigger is true, x_Col <= Value (Side UPPER) or x_Col >= Value (LOWER).
#pragma once
#include "domain/bounds.h"
#include "domain/int_lists.h"

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
    IntLists ByBound;   // [2 NumCols] entries by 2 column + side
};
