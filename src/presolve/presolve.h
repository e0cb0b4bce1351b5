// presolve.h -- the interface of the presolve folder: reduce a model, and map solutions of the reduced model back
//
// presolve_lp -> PresolveResult with a reduced body -> any solver -> postsolve_lp
// presolve_mip -> the same with integers -> search -> postsolve_primal
// Signs: rows are a x <= b or a x = b as in the model body, minimise. Dual values y are those of the Lagrangean
// c x + y (b - a x), so that a row a x <= b has y <= 0, and reduced costs are d = c - A^T y.
#pragma once
#include "body/body.h"

// How presolve ends: with a reduced model (OK), or with what is known instead. A limit also ends postsolve.
enum class PresolveStatus {
    PRESOLVE_OK,
    PRESOLVE_INFEASIBLE,
    PRESOLVE_INF_OR_UNBD,
    PRESOLVE_UNBOUNDED,
    PRESOLVE_TIME_LIMIT,
    PRESOLVE_INTERRUPTED,
    // numbers of the reduced model overflow, or right-hand sides count as infinite
    PRESOLVE_OVERGROWN,
};
using enum PresolveStatus;
// The status for what limits_reached (env/limits.h) returns, or for a PresolveEnd of this folder; 0 gives PRESOLVE_OK.
PresolveStatus presolve_status_of(int end);

// Proof that the model is infeasible or unbounded, in terms of the original model; to be verified by
// body/certificate.h. Both are empty if a reduction on the way cannot map the proof.
struct LpClaim {
    // [numconstrs] multipliers of an infeasible model, for inequalities >= 0
    Array<double> farkas;
    // [numvars] ray of an unbounded model
    Array<double> ray;
};

// A semi-continuous column of the model in the reduced model: it is 0 or within [lower, upper], which does not contain 0.
// The reduced model has a binary indicator column with rows that say so as far as rows of a relaxation can.
enum class SemiKind : char {
    ON_AT_ONE, // two rows: lower z <= x <= upper z
    ON_AT_ZERO // upper or lower is infinite: a row that holds x beyond the finite one at z = 0, and an SOS1 of x and z
};
struct SemiColumn {
    int col, indicator; // of the reduced model
    double lower, upper;
    SemiKind kind;
    bool is_integer;
};

struct CliqueTable;    // domain/clique_table.h
struct ImplicationLog; // domain/implication_log.h

// The reduced model and the data for postsolve. It keeps the address of the body that was reduced.
struct PresolveResult;

// Reduces a continuous model for a solve by this method. On PRESOLVE_OK *out is the result, else null; `claim`, unless
// it is null, then gets the proof of what is said. The effort is added to *work. 0 or OUT_OF_MEMORY; *status has a
// meaning after 0 only.
[[nodiscard]] int presolve_lp(const ModelBody *body, TVXenv *env, LpMethod method,
                              PresolveResult **out, PresolveStatus *status, double *work,
                              LpClaim *claim = nullptr);
// How presolve_mip gets a small part of the model solved that shares no row with the rest.
struct ComponentSolver {
    // x [numvars of body] gets an optimal point, if *solved. 0 or OUT_OF_MEMORY.
    int (*Solve)(void *context, const ModelBody *body, double *x, bool *solved);
    void *Context;
};
// The same for a model with integers, SOS or semi-continuous columns. The reduced body holds the types C, B and I and
// SOS only; with parameter Presolve 0 it is the model in this form. probe_level: as parameter TARV_PAR_PREPROBE. Without
// `components` all parts of the model stay in it.
[[nodiscard]] int presolve_mip(const ModelBody *body, TVXenv *env, int probe_level,
                               PresolveResult **out, PresolveStatus *status, double *work,
                               const ComponentSolver *components = nullptr);
void presolve_free(PresolveResult *result);                 // null is ignored
void presolve_set_env(PresolveResult *result, TVXenv *env); // whose limits postsolve obeys
// Of the result, or null when nothing is left to solve.
const ModelBody *presolve_reduced(const PresolveResult *result);
ModelBody *presolve_take_reduced(PresolveResult *result); // it changes hands

// Cliques and implications over the columns of the reduced model of presolve_mip, valid in all its points; or null. They
// change hands.
CliqueTable *presolve_take_cliques(PresolveResult *result);
// The cliques among them that propagation over the rows does not find: for a Domain, where the others cost time only.
CliqueTable *presolve_take_found_cliques(PresolveResult *result);
ImplicationLog *presolve_take_implications(PresolveResult *result);

// A basic solution: variables first, then rows. Statuses are those of warm starts (>= 0 basic, -1 lower, -2 upper,
// -3 free or superbasic); the slack of row i is b_i - a_i x.
struct LpPoint {
    Array<double> x;    // [n + m] values and slacks
    Array<double> dual; // [n + m] reduced costs and duals
    Array<int> status;  // [n + m], or empty
};
// Room for a model of this size, zeros. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_point_alloc(LpPoint *point, const ModelBody *body, bool with_basis);

// Marks the equations of the reduced model whose slacks have to be nonbasic for postsolve: rows [its numconstrs], zero
// before. Returns their number.
int postsolve_equations(const PresolveResult *result, char *rows);

// Postsolve: maps a solution of the reduced model (null if the reduced model is empty) to the model. `stopped` gets
// PRESOLVE_OK, or the limit that has stopped it: *full is no solution then. Without `stopped` limits are ignored. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int postsolve_lp(const PresolveResult *result, const LpPoint *reduced,
                               LpPoint *full, PresolveStatus *stopped = nullptr);

// Maps a point of the reduced model of presolve_mip (null if that is empty) to the model: x_full [numvars]. Integer columns
// get integral values, those of the reduced model by rounding. Allocates nothing.
void postsolve_primal(const PresolveResult *result, const double *x_reduced,
                      double *x_full);
// Maps a feasible point of the model to a feasible point of its reduced model, not worse. *mapped is false when that
// fails: the reductions have removed the point, or the map is not known. 0 or OUT_OF_MEMORY.
[[nodiscard]] int presolve_crush_point(const PresolveResult *result, const double *x_full,
                                       double *x_reduced, bool *mapped);
// Maps the row  row x <= *rhs  (or =) over the model's columns, [its numvars], to `reduced` over those of the reduced model;
// `row` is used up. *mapped is false when there is no such row: columns in it were merged or removed together with what
// they satisfied. 0 or OUT_OF_MEMORY.
[[nodiscard]] int presolve_crush_row(const PresolveResult *result, double *row, double *rhs,
                                     double *reduced, bool *mapped);
// The semi-continuous columns of the reduced model, [*count].
const SemiColumn *presolved_semi(const PresolveResult *result, int *count);

// postsolve_lp for proofs of infeasibility (row multipliers) and of unboundedness (a ray) of the reduced model. The result
// has to be verified: reductions that keep an optimum, but not all feasible points, may not keep a proof of
// infeasibility. 0 or OUT_OF_MEMORY.
[[nodiscard]] int postsolve_farkas(const PresolveResult *result, const double *reduced,
                                   double *full);
[[nodiscard]] int postsolve_ray(const PresolveResult *result, const double *reduced,
                                double *full);
// Sets entries to zero that can only be rounding errors: multipliers of the wrong sign or of absent rows, steps against
// a bound.
void farkas_clean(const ModelBody *body, double infinite, double *farkas);
void ray_clean(const ModelBody *body, double infinite, double *ray);

// Maps a basis of the model to the reduced model: statuses [n + m] of each.
void presolve_crush_basis(const PresolveResult *result, const int *full, int *reduced);
// Repairs statuses [n + m] with fewer or more than m basic entries.
void presolve_mend_basis(int n, int m, int *statuses);

// Index of a variable or constraint in the reduced model, or below zero if it was removed.
int presolved_var(const PresolveResult *result, int j);
int presolved_constr(const PresolveResult *result, int i);
double presolved_constant(
    const PresolveResult *result); // of the reduced objective, in the caller's sense
