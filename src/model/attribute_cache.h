// attribute_cache.h -- AttributeTable, what a model keeps so that its attributes can be read
//
// The table of all attributes is constant (attribute_table.h). Per model only derived values
// are kept: statistics of the content, the last solution in the caller's signs, and texts of
// default names. Each group is computed lazily, when it is first asked for, and forgotten when
// what it was computed from changes.
//
// States   absent   model->attributes == nullptr: nothing was asked for yet
//          made     the groups with a bit in `have` are valid
// Whoever changes what attributes show says so: an update calls attributes_clear, the start
// and the end of a solve call attributes_clear_solution.
// All zero is a valid empty record.
#pragma once
#include "model/model.h"

// Bits of AttributeTable::have.
enum AttributeGroup {
    HAVE_STATISTICS = 1,
    HAVE_X = 2,
    HAVE_DUALS = 4,
    HAVE_SLACK = 8,
    HAVE_BASIS = 16,
    HAVE_NORMS = 32,
    HAVE_RANGING = 64, // the simplex is prepared for ranging; `ranges` hold what is known
    HAVE_KAPPA = 128,
    HAVE_N2KAPPA = 256
};

// Places in AttributeTable::statistics.
enum Statistic {
    MAX_COEFF,
    MIN_COEFF,
    MAX_BOUND,
    MIN_BOUND,
    MAX_OBJ_COEFF,
    MIN_OBJ_COEFF,
    MAX_RHS,
    MIN_RHS,
    STATISTIC_COUNT
};

// Places in AttributeTable::ranges.
enum RangeEnd {
    OBJ_LOW,
    OBJ_UP,
    LB_LOW,
    LB_UP,
    UB_LOW,
    UB_UP,
    RHS_LOW,
    RHS_UP,
    RANGE_ENDS
};

struct AttributeTable {
    int have = 0;       // AttributeGroup bits
    int lp_version = 0; // LpSolve::version of what solutions were made from
    double statistics[STATISTIC_COUNT] = {}; // by Statistic
    Array<double> x;                         // [numvars] the simplex's point
    Array<double> pi;                        // [numconstrs] duals, caller's signs
    Array<double> rc;                        // [numvars] reduced costs, caller's signs
    Array<double> slack;                     // [numconstrs] rhs - activity, caller's rows
    Array<int> basis;                        // [numvars + numconstrs] VBasis, then CBasis
    Array<double> norms;                     // [numvars + numconstrs] pricing norms
    Array<double> ranges[RANGE_ENDS]; // by RangeEnd: [numvars] or [numconstrs], NaN where
                                      // not asked for yet; empty when nothing was
    double kappa[2] = {};             // condition of the basis in the 1-norm, in the 2-norm
    Array<const char *> varnames;     // [numvars] default names made so far, or empty
    Array<const char *> constrnames;  // [numconstrs] likewise
    TextPool *names = nullptr;        // owns their texts
};

[[nodiscard]] int attributes_make(TVXmodel *model); // if absent; 0 or OUT_OF_MEMORY
void attributes_free(AttributeTable *table);        // null is ignored
// The content changed: forgets all groups and the texts of default names.
void attributes_clear(TVXmodel *model);
// The solution goes or changes: forgets what was made from it.
void attributes_clear_solution(TVXmodel *model);
