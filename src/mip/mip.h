// mip.h -- the interface of this folder: the solve of one mixed-integer program
#pragma once
#include "body/body.h"
#include "body/quality.h"

struct MipResult {
    int status = 0;
    int has_solution = 0;
    Array<double> x;        // [numvars] the best solution
    Array<double> slack;    // [numconstrs] of it
    Array<double> others;   // [other_count][numvars] further solutions, the best first
    int other_count = 0;    // solution number k > 0 is others[k - 1]
    double objval = 0;      // of the best solution, in the caller's sense
    double objbound = 0;    // likewise: no solution is better
    double node_count = 0;  // nodes explored
    double run_time = 0;    // seconds
    double iter_count = 0;  // simplex iterations
    int bar_iter_count = 0; // barrier iterations
    int sol_count = 0;      // solutions found
    int thread_count = 0;   // threads used
    Quality quality;        // of the best solution, filled on first query
};

struct MIPState; // mip_state.h

// Parameters on which the tree of a search depends: with other values it is not continued.
struct SearchBasis {
    double Cutoff = 0, FeasibilityTol = 0, IntFeasTol = 0, OptimalityTol = 0;
    int Presolve = 0, DualReduction = 0, Focus = 0;
    bool operator==(const SearchBasis &) const = default;
};

// What a model keeps between MIP solves.
struct MipSolve {
    const ModelBody *body = nullptr; // of the last mip_solve; not owned
    TVXenv *env = nullptr;           // likewise
    // owned; null before the first solve, and after one that left nothing
    MipResult *result = nullptr;
    MIPState *search = nullptr; // owned; goes on with the next mip_solve
    SearchBasis basis;          // of `search`
    // Gets the reduced model before the search when TARV_PAR_WRITEPREMODEL asks for it; or null. May not change anything.
    void (*write_reduced)(const ModelBody *reduced, TVXenv *env) = nullptr;
};
void mip_drop(MipSolve *mip);

// Presets of MIPFocus in an environment of its own for one solve (mip_focus.cpp). A preset changes a parameter only
// where it still has its default, so that what a caller has chosen stands.
void mip_focus_apply(TVXenv *env);
// Solves a body with integers, semi-continuous variables or SOS constraints, or continues where a limit has stopped the
// last solve. `start` [numvars], or null: values to begin with, not given from 1e100 on. 0 or a code, with its text
// recorded.
[[nodiscard]] int mip_solve(MipSolve *mip, const ModelBody *body, TVXenv *env,
                            const double *start);
// The closing lines; `error` is the code with which the solve ended. 0 or OUT_OF_MEMORY (mip_log.cpp).
[[nodiscard]] int mip_log_result(MipSolve *mip, int error);
