// presolve_try.h -- chosen reductions on a model, the reduced model solved, and postsolve judged
//
// The point is judged as it comes from postsolve, before any simplex has seen it: values, duals, reduced costs and
// basis must be optimal for the model itself.
#pragma once
#include "presolve/work.h"
#include "support/lp_tarvex.h"
#include <initializer_list>
#include <string>

using Reduction = int (*)(PresolveWork *);

struct PresolveTry {
    int status = 0;      // PresolveEnd of the reductions: the first that is not 0
    bool proved = false; // that end, on the model itself
    int infeas_col = -1;
    int rows = 0, cols = 0, nonzeros = 0; // of the reduced model, 0 when nothing is left
    int effect = 0;         // rows, columns, coefficients, bounds and senses changed in all
    int coefs_changed = 0;  // of these
    LpModel reduced;        // as the reductions left it, rows '<' and '=' only, to look at
    int reduced_status = 0; // Status of the reduced model, 0 when nothing is left
    LpSolution solution;    // after postsolve, when there is an optimum
    std::string faults;     // of that solution, or what else went wrong; empty: none
};

// Runs the reductions in this order, each once, on all rows and columns, with activities summed and lists compressed
// between them; then solves, postsolves and judges.
PresolveTry reduced_by(const LpModel &lp, std::initializer_list<Reduction> reductions,
                       const Settings &settings = {});
// What is left is judged, and counted: -1 stands for any number.
PresolveTry expect_left(const LpModel &lp, std::initializer_list<Reduction> reductions,
                        int rows, int cols = -1, const Settings &settings = {});
// Is there a proof in the claim, and does it hold for the model?
bool claim_proved(const ModelBody *body, const LpClaim *claim);
// The reductions end with this PresolveEnd.
PresolveTry expect_end(const LpModel &lp, std::initializer_list<Reduction> reductions,
                       int status);
