// body.h -- ModelBody, the model as solvers read it, and the rules that hold for every body
//
// Infinite bounds, integral bounds, type letters, names and negated rows are normalised here, so that a body is the
// same however it was built (build.h) or changed.
#pragma once
#include "env/env.h"
#include "runtime/array.h"
#include "runtime/record.h"
#include "runtime/text_pool.h"

// Most rows plus columns of a model, so that twice as many (two bounds each) still count in an
// int; and most matrix entries.
static constexpr int64_t MODEL_SIZE_LIMIT = 1000000000;
static constexpr int64_t MODEL_ENTRY_LIMIT = 2000000000;

// The model in the form that solvers read. Rows with sense '>' are stored negated (coefficients and rhs), so that every
// inequality is <=; a maximise objective is stored negated.
struct ModelBody {
    int sense = 1;        // ModelSense: +1 minimise, -1 maximise
    int numconstrs = 0;   // rows, m
    int numvars = 0;      // columns, n
    int numnz = 0;        // matrix entries
    int numsos = 0;       // SOS constraints
    int numintvars = 0;   // variables whose type is not 'C'
    int numbinvars = 0;   // variables of type 'B'
    int solve_tag = -1;   // -1 after any change; nothing sets or reads another value yet
    int row_flipped = -1; // +1 if at least one row has sense '>', else -1

    double objcon = 0;  // objective constant, negated for a maximise model
    Array<double> obj;  // [numvars] objective for minimisation
    Array<double> lb;   // [numvars] -1e30 when infinite
    Array<double> ub;   // [numvars] 1e30 when infinite
    Array<char> vtypes; // [numvars] 'C' 'B' 'I' 'S' 'N', or empty: all 'C'
    // Of the size of vtypes: the bounds as given, before rounding for the type. A change of type rounds from these.
    Array<double> given_lb, given_ub;
    Array<char> bound_kind; // [numvars] 1 when lb is infinite, plus 2 when ub is
    // magnitude from which bounds are infinite in bound_kind: infinite_bound
    double kind_infinity = 0;

    Array<int> vbeg;    // [numvars + 1] column starts; columns contiguous and in order
    Array<int> vlen;    // [numvars] column lengths, vbeg[j + 1] - vbeg[j]
    Array<int> vind;    // [numnz] row indices, in the caller's order inside a column
    Array<double> vval; // [numnz]

    // [numconstrs + 1] row-wise copy, built when needed; otherwise empty
    Array<int> row_beg;
    Array<int> row_ind;    // [numnz] column indices
    Array<double> row_val; // [numnz]

    Array<double> rhs;  // [numconstrs] negated for '>' rows
    Array<char> senses; // [numconstrs] '<' '>' '=', or what the caller gave (row_kind.h)

    int sos_sorted = 0;  // members stand in weight order
    Array<int> sostype;  // [numsos] 1 or 2
    Array<int> sosbeg;   // [numsos + 1]
    Array<int> sosind;   // [members]
    Array<double> soswt; // [members]

    const char *modelname = nullptr; // in name_pool, or null
    // [numconstrs], or empty: all default; entries may be null
    Array<const char *> constrnames;
    Array<const char *> varnames; // [numvars], likewise
    int next_constr_name = 0;     // next number for a default name
    int next_var_name = 0;
    TextPool *name_pool = nullptr; // owns all name texts; made on first use
    int64_t name_bytes = 0; // size of all texts of name_pool, with those no longer in use
    int64_t name_limit = 0; // name_bytes from which an update removes unused texts
};

// ---- Letters and bounds ----
char normal_sense(char sense); // L, G, E in either case become <, >, =; others stay
char normal_vtype(char vtype); // upper case, or 0 for what is no variable type
// 0, or TVX_ERROR_INVALID_ARGUMENT with a message that names variable j.
int check_vtype(TVXenv *env, char vtype, int j);
inline double stored_bound(double bound)
{
    if (bound <= -INFINITE_VALUE) return -INFINITE_BOUND;
    return bound >= INFINITE_VALUE ? INFINITE_BOUND : bound;
}
// A variable that must be integral gets integral bounds, a binary one within 0 and 1.
void round_bounds(char vtype, double *lb, double *ub);
inline char bound_kind_of(double lb, double ub, double infinite)
{
    return static_cast<char>((lb <= -infinite ? 1 : 0) + (ub >= infinite ? 2 : 0));
}
static constexpr char KIND_FREE = 3; // bound_kind without either bound

// ---- Names (names.cpp) ----
// A copy of text in the body's pool. 0 or OUT_OF_MEMORY.
[[nodiscard]] int body_store_name(ModelBody *body, const char *text, const char **stored);
// Two texts joined, likewise.
[[nodiscard]] int body_join_name(ModelBody *body, const char *head, const char *tail,
                                 const char **stored);
enum class NameKind : char { VAR = 'C', CONSTR = 'R' };
// The default name with that number, likewise.
[[nodiscard]] int body_number_name(ModelBody *body, NameKind kind, int number,
                                   const char **stored);
// Removes unused texts if they take more than half of the pool. Moves all names, or does nothing without enough memory.
void body_compact_names(ModelBody *body);

// ---- Bodies ----
void body_free(ModelBody *body); // null is ignored
// Coefficients of the rows with marked[i] != 0 change sign. Cost: one pass over the matrix.
void body_negate_rows(ModelBody *body, const char *marked);
void body_count_types(ModelBody *body);  // numintvars, numbinvars
void body_find_flipped(ModelBody *body); // row_flipped
void body_drop_rows(ModelBody *body);    // the row-wise copy
// True if products of coefficients or costs may leave the range of a double. Cost: O(n + nonzeros)
bool body_is_extreme(const ModelBody *body);
bool body_is_mip(const ModelBody *body); // integers, semi-continuous variables or SOS
// True if the bounds of the variables alone bound the objective (bounded.cpp): then a model that is infeasible or
// unbounded is infeasible.
bool objective_is_bounded(const TVXenv *env, const ModelBody *body);
// bound_kind of all variables, for another magnitude of infinite bounds.
void body_find_kinds(ModelBody *body, double infinite);
// Members of each SOS in weight order (sos.cpp). 0 or OUT_OF_MEMORY.
[[nodiscard]] int sos_sort_members(int n_sos, const int *beg, int *ind, double *weight);
[[nodiscard]] int
body_build_rows(ModelBody *body); // row-wise copy if not there; 0 or OUT_OF_MEMORY
// Names as a caller sees them; a default name is written into buffer.
static constexpr int DEFAULT_NAME_LENGTH = 16;
const char *var_name(const ModelBody *body, int j, char *buffer);
const char *constr_name(const ModelBody *body, int i, char *buffer);

#ifdef TVX_DEBUG
// Counts broken invariants of a body (check.cpp); 0 for a sound one. The first one is described
// in where, which has BODY_CHECK_LENGTH characters.
static constexpr int BODY_CHECK_LENGTH = 100;
int body_check(const ModelBody *body, char *where);
#endif
