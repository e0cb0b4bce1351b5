// passes.h -- what presolve_lp and presolve_mip have in common: how reductions are called, and how presolve ends
#pragma once
#include "presolve/work.h"
#include <initializer_list>

static constexpr int STOP = -1; // the step limit is reached: build the reduced model now

using Reduction = int (*)(PresolveWork *);
struct PresolveStep {
    bool wanted;
    Reduction reduction;
};

// Runs one reduction, counts it, and tests the limits. STOP, a PresolveEnd or OUT_OF_MEMORY.
[[nodiscard]] int run_reduction(PresolveWork *w, Reduction reduction);
// The wanted ones in this order.
[[nodiscard]] int run_steps(PresolveWork *w, std::initializer_list<PresolveStep> steps);

// Rows whose right-hand side is infinite.
[[nodiscard]] int remove_free_rows(PresolveWork *w);
bool nothing_left(const PresolveWork *w); // no rows or no columns
// Removes empty rows and columns until none is left.
[[nodiscard]] int remove_empty_lines(PresolveWork *w);

// Loads the model, calls `reduce`, which returns STOP, a PresolveEnd or OUT_OF_MEMORY, and builds the reduced model. A
// PresolveEnd or OUT_OF_MEMORY; *out is null or the result, which the caller frees on failure.
[[nodiscard]] int load_and_reduce(PresolveWork *w, const ModelBody *body, TVXenv *env,
                                  Reduction reduce, PresolveResult **out);
// Logs of the result: rows and columns removed; bounds and coefficients; equations.
void log_removed(const PresolveWork *w);
void log_tightened(const PresolveWork *w);
void log_equations(const PresolveWork *w);

// Releases the record after load_and_reduce has ended with `end`: frees the result on failure and sets the status. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int presolve_end(PresolveWork *w, int end, PresolveResult **out,
                               PresolveStatus *status, double *effort);
