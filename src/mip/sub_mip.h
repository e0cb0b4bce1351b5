// sub_mip.h -- a recursive search: the MIP of a body with other bounds, under a node limit
#pragma once
#include "mip/mip_state.h"

struct SubMipOrder {
    const ModelBody *Body = nullptr;
    const double
        *Lower = nullptr,
        *Upper = nullptr; // [numvars], integral for integers; or null: those of the body
    const double *Costs = nullptr; // [numvars], or null: those of the body
    TVXenv *Env = nullptr;         // of the search that asks
    double NodeLimit = 0;
    double Cutoff = 1e100;    // minimisation form
    double WorkLimit = 1e100; // deterministic
    double Gap = 1e-4;        // relative gap at which the search may end
};
struct SubMipOutcome {
    bool Found = false;
    bool Complete = false; // it is known that there is nothing better, or nothing at all
    int Status = 0;        // with which the search has ended, 0: presolve has decided
    Array<double> X;       // [numvars] the best solution
    double Nodes = 0, Iterations = 0, Work = 0;
};
// Presolves and searches. What goes wrong in it is no solution. 0 or OUT_OF_MEMORY.
[[nodiscard]] int sub_mip_run(const SubMipOrder &order, SubMipOutcome *outcome);

// Fixes columns of the searched body by these bounds [columns], and offers what the recursive search finds.
// 0 or a code.
struct SubMipLimits {
    double Nodes, Work;
};
struct SubMipResult {
    double Objective = 1e100; // of the new incumbent, or 1e100
    double Work = 0;          // that the search inside has taken
};
[[nodiscard]] int RunSubMip(MIPState *state, const double *lower, const double *upper,
                            SubMipLimits limits, SubMipResult *result);
