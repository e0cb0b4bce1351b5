// lp_start.h -- what one LP solve starts from, and by which method: decided once
#pragma once
#include "lp/lp.h"

// By falling age of what it goes on from.
enum class LpFrom {
    SCRATCH,
    BASIS,  // LpStart::statuses
    RECORD, // the live simplex record
    MODEL,  // the same, where a limit has stopped it: without presolve, which would begin anew each time
    FORM    // the form where a limit has stopped the last solve
};
struct LpStart {
    LpFrom from = LpFrom::SCRATCH;
    int method = METHOD_DUAL;
    Array<int> statuses; // [n + m], or empty
    Array<double> norms; // [n + m] dual pricing norms of it, or empty
};
// Drops the simplex record where it is not gone on from. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_start_choose(LpSolve *lp, const LpGiven &given, LpStart *start);
