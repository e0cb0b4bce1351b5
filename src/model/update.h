// update.h -- how an update is made: one plan that may fail, then steps that cannot
//
// TVXupdatemodel first works out in an UpdatePlan all that needs memory (maps, rooms of the
// body's arrays, resolved coefficient changes, names, the basis to carry over). Only then does it
// touch the model, so that running out of memory leaves it as it was.
//
//   plan    update_plan        shape, maps, coefficient changes, rooms     update_plan.cpp
//           update_plan_basis  what survives of the basis                  update_basis.cpp
//   apply   update_values      right-hand sides, senses, objective,        update_values.cpp
//                              types, bounds of existing elements
//           update_delete      coefficients replaced or gone, rows and     update_delete.cpp
//                              columns out, one pass over the matrix
//           update_add         new columns behind, new entries merged      update_add.cpp
//           update_sos         sets out, members renumbered, sets added    update_add.cpp
//           update_basis       the basis in its new shape                  update_basis.cpp
#pragma once
#include "model/model_store.h"

// A coefficient change after later ones to the same place have replaced earlier ones.
struct CoefEdit {
    int var = 0;
    int row = 0;
    int order = 0;  // position among the queued changes
    int place = -1; // of the entry in vind, -1 when the coefficient is not stored
    double value = 0;
};

enum class BasisMode {
    DROP,  // no basis survives
    CARRY, // statuses go into a warm-start record, the simplex record goes
    LIVE   // the simplex record stays and follows the bound changes
};

struct UpdatePlan {
    // Sizes: after deletions, and of what is added.
    int kept_vars = 0, kept_constrs = 0;
    int added_vars = 0, added_constrs = 0;
    int n_ranges = 0;      // range rows, each with an extra variable behind added_vars
    Array<int> var_map;    // [numvars now] index after deletions or -1; empty: all stay
    Array<int> constr_map; // [numconstrs now] likewise

    Array<CoefEdit> edits;   // stored coefficients that change, by variable and row
    Array<CoefEdit> inserts; // new coefficients in call order
    int n_remove = 0;        // edits that take the entry out
    Array<int> extra;        // [variables at the end] zeros; entries to merge per column
    Array<char> negate;      // [numconstrs now] 1: becomes or ceases to be '>'; or empty

    bool has_vtypes = false;         // body->vtypes must be there at the end
    bool has_varnames = false;       // body->varnames likewise
    bool has_constrnames = false;    // body->constrnames likewise
    Array<const char *> range_names; // [n_ranges] in the pool

    BasisMode mode = BasisMode::DROP;
    // CARRY: the record in its new shape, or null to keep the old
    WarmStart *carried = nullptr;

    int numvars() const { return kept_vars + added_vars + n_ranges; }
    int numconstrs() const { return kept_constrs + added_constrs; }
};
inline int mapped(const Array<int> &map, int k)
{
    return map.size ? map[k] : k;
}

[[nodiscard]] int update_plan(TVXmodel *model, UpdatePlan *plan); // 0 or OUT_OF_MEMORY
[[nodiscard]] int update_plan_basis(TVXmodel *model,
                                    UpdatePlan *plan); // 0 or OUT_OF_MEMORY
void update_plan_free(UpdatePlan *plan);

// None of the steps can fail.
void update_names(TVXmodel *model); // may stand alone, once the name arrays are there
void update_values(TVXmodel *model, const UpdatePlan *plan);
void update_delete(TVXmodel *model, const UpdatePlan *plan);
void update_add(TVXmodel *model, UpdatePlan *plan);
void update_sos(TVXmodel *model, const UpdatePlan *plan);
// Between plan and apply: lets go of a simplex record that does not survive.
void update_release_basis(TVXmodel *model, const UpdatePlan *plan);
void update_basis(TVXmodel *model, UpdatePlan *plan);
