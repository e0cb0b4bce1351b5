// lp_start.h -- what one LP solve starts from, by which method, and whether presolve runs first: decided once
#pragma once
#include "lp/lp.h"

// What a solve goes on from.
enum class LpFrom {
    SCRATCH,
    BASIS,  // LpStart::statuses
    RECORD, // the live simplex record
    MODEL, // the same, where a limit has stopped it: without presolve, which would begin anew each time
    FORM   // the form where a limit has stopped the last solve
};
struct LpStart {
    LpFrom from = LpFrom::SCRATCH;
    LpMethod chosen = LP_DUAL_SIMPLEX;    // by the caller: form and presolve suit it
    SimplexMethod resolved = METHOD_DUAL; // the simplex method that stands for it
    SimplexMethod method = METHOD_DUAL; // of the next run: METHOD_BY_START behind presolve
    bool presolve = false; // presolve runs first; not with FORM, where it has run
    bool root = false;     // LpGiven::root
    // [n + m], or empty. With FORM: for a run on the model, should the form fail
    Array<int> statuses;
    Array<double> norms; // [n + m] dual pricing norms of it, or empty
};
// Drops the simplex record unless the solve continues from it. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_start_choose(LpSolve *lp, const LpGiven &given, LpStart *start);
