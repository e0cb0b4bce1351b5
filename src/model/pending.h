// pending.h -- PendingChanges, what callers asked for and the next update makes real
//
// Every add, delete and set of a caller is queued here; the body is not changed before
// TVXupdatemodel. A routine costs no more than its own entries (arrays grow geometrically,
// per-element arrays are made on first use), and leaves the record as it was when it fails.
//
// States   absent   model->pending == nullptr: nothing was ever asked for
//          empty    !model_has_pending(): kept from an earlier update for its memory
//          filled   something waits; pending_clear (end of update) or pending_free end it
// Invariant   a per-element array is empty or has at least one entry per element of the body;
//             between calls `flags` is non-zero exactly for the elements in `touched`.
#pragma once
#include "model/model.h"

// The elements that one call addresses: ind[0..len-1], or with a null ind the len elements
// from start on.
struct ElementRange {
    int start = 0;
    int len = 0;
    const int *ind = nullptr;
};
inline int element_at(const ElementRange &range, int k)
{
    return range.ind ? range.ind[k] : range.start + k;
}

// Bits of ElementChanges::flags.
enum PendingFlag {
    PENDING_DELETED = 1,
    PENDING_TYPE = 2,  // variable type, or row sense
    PENDING_VALUE = 4, // objective coefficient, or right-hand side
    PENDING_NAME = 8
};

// Changes of existing variables (or of existing constraints), one slot per element, valid
// where its flag says so.
struct ElementChanges {
    Array<int> flags;         // [elements] PendingFlag bits
    Array<int> touched;       // elements with a flag, each once, in order of first touch
    Array<double> value;      // [elements] new Obj (or RHS) in the caller's sign
    Array<char> type;         // [elements] new VType (or Sense)
    Array<const char *> name; // [elements] new name, owned by the body's pool
    Array<int> mark;   // [elements] met in the vector number `stamp` of a duplicate test
    int stamp = 0;     // last number used; 0 in `mark` means never met
    int n_deleted = 0; // elements with each flag
    int n_type = 0;
    int n_value = 0;
    int n_name = 0;
};

// Vectors to be added, as compressed columns (or rows). Indices refer to elements of the body.
struct PendingVectors {
    int count = 0;
    int old_next_name = 0;     // the body's next default number before the first was queued
    Array<int> beg;            // [count + 1] starts, or empty when count is 0
    Array<int> ind;            // [members]
    Array<double> val;         // [members] in the caller's sign
    Array<const char *> names; // [count] never null, owned by the body's pool
};

struct PendingVars {
    PendingVectors columns;
    Array<char> vtype; // [count]
    Array<double> lb;  // [count] -1e30 when infinite; not yet rounded for integers
    Array<double> ub;
    Array<double> obj; // [count] in the caller's sign
};

struct PendingConstrs {
    PendingVectors rows;
    int n_ranges = 0;    // rows among them with a range
    Array<char> sense;   // [count]
    Array<double> rhs;   // [count] in the caller's sign
    Array<double> lower; // [count] lower side of a range row, or NO_RANGE
};

// Coefficient changes in call order; a later one to the same place wins.
struct PendingCoefs {
    Array<int> var, row;
    Array<double> val;
};

// At most one lower and one upper entry per variable: a later change of the same bound
// overwrites in place.
struct PendingBounds {
    Array<int> lower_pos, upper_pos; // [numvars] position of the entry in who, or -1
    Array<int> who;    // variable j for an upper bound, -j - 1 for a lower bound
    Array<double> val; // +-1e30 when infinite
};

struct PendingSos {
    Array<int> type;  // [added]
    Array<int> beg;   // [added + 1], or empty
    Array<int> ind;   // [members]
    Array<double> wt; // [members]
    Array<char> del;  // [numsos] 1: delete, or empty
    int n_deleted = 0;
};

static constexpr double NO_RANGE = -1e100; // `lower` of a row without range

struct PendingChanges {
    int new_sense = 0;                   // 0: no change, else +1 or -1
    int has_objcon = 0;                  // new_objcon is asked for
    double new_objcon = 0;               // in the caller's sign
    const char *new_modelname = nullptr; // in the body's pool, or null
    ElementChanges vars;
    ElementChanges constrs;
    PendingVars added_vars;
    PendingConstrs added_constrs;
    PendingCoefs coef_changes;
    PendingBounds bound_changes;
    PendingSos sos_changes;
};

// Makes model->pending if absent. 0 or OUT_OF_MEMORY.
[[nodiscard]] int pending_get(TVXmodel *model);
// Empty again, memory kept. Cost: what was queued.
void pending_clear(PendingChanges *pending);
void pending_free(PendingChanges *pending); // null is ignored

// ---- Queueing (the setters of attributes) ----
// Indices are in range and values are not NaN or infinite (the caller has checked); `values`
// has range.len entries; a later entry for the same element wins. Null names and "" ask for
// the default name of the index. Bounds of magnitude 1e20 and more become infinite, sense
// letters (L, G, E) and lower-case types are normalised. Reads show it after the next update.
// 0, OUT_OF_MEMORY, or for types TVX_ERROR_INVALID_ARGUMENT with its message; nothing is
// queued on failure.
enum class BoundSide { LOWER, UPPER };
[[nodiscard]] int pending_set_bounds(TVXmodel *model, BoundSide side, ElementRange range,
                                     const double *values);
[[nodiscard]] int pending_set_obj(TVXmodel *model, ElementRange range,
                                  const double *values);
[[nodiscard]] int pending_set_vtype(TVXmodel *model, ElementRange range,
                                    const char *values);
[[nodiscard]] int pending_set_varnames(TVXmodel *model, ElementRange range,
                                       const char *const *values);
[[nodiscard]] int pending_set_rhs(TVXmodel *model, ElementRange range,
                                  const double *values);
[[nodiscard]] int pending_set_senses(TVXmodel *model, ElementRange range,
                                     const char *values);
[[nodiscard]] int pending_set_constrnames(TVXmodel *model, ElementRange range,
                                          const char *const *values);
[[nodiscard]] int pending_set_model_sense(TVXmodel *model,
                                          int sense); // below 1: -1, else +1
[[nodiscard]] int pending_set_objcon(TVXmodel *model, double value);
[[nodiscard]] int pending_set_modelname(TVXmodel *model, const char *name); // null: ""
