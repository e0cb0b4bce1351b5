// mip_presolve_try.h -- presolve of a tiny model with integers, sets or semi-continuous columns, judged exactly
//
// Problem     Is the reduced model as good as the model? Can each of its points be mapped back?
// Method      The exact judge (mip_oracle.h) solves the model and the reduced model. Points of the reduced model, optimal
//             for its own and for random objectives, are mapped back: integers exactly integral, nothing violated, same
//             objective. The optimum of the model is mapped to the reduced model, where that is possible.
// Rounding    Rows of the reduced model hold rounded numbers, so that no point may satisfy its equations exactly: then each
//             side gives way a little.
#pragma once
#include "presolve/work.h"
#include "support/mip_check.h"
#include "support/mip_oracle.h"
#include <functional>
#include <initializer_list>

using Reduction = int (*)(PresolveWork *);

struct MipTry {
    PresolveStatus status = PRESOLVE_OK;
    bool empty = false; // nothing is left
    LpModel reduced;    // minimised, with its constant
    std::vector<SemiColumn> semi;
    int effect =
        0; // rows, columns, coefficients, bounds and senses changed, by chosen reductions
    std::string faults;        // empty: none
    bool judged = false;       // the exact judge knew both answers
    bool crushed = false;      // the optimum was mapped to the reduced model
    int pairs = 0, bounds = 0; // facts for the search found to be true (facts_judge.h)
};

struct MipQuestion {
    const LpModel *lp;   // as presolve gets it
    MipTruth truth;      // of it, or of a model that it is a multiple of
    double of_costs = 1; // its objective is this multiple of the truth
    Settings settings;
    uint64_t seed = 0; // of random objectives
};
MipQuestion mip_question(const LpModel *lp, const Settings &settings = {});

// The whole presolve.
MipTry mip_presolved(const MipQuestion &question);
// A model on which a plausible reduction is wrong.
struct PresolveTrap {
    const char *name;
    std::string types; // of the columns in front; the others are continuous
    LpModel lp;
    double optimum; // NAN: infeasible
};
// What is wrong with the whole presolve under any of these settings, or with the optimum as it is listed; or "".
std::string mip_trap_faults(const PresolveTrap &trap, const std::vector<Settings> &ways);
// These reductions alone, each once on all rows and columns.
MipTry mip_reduced_by(const MipQuestion &question,
                      std::initializer_list<Reduction> reductions);
