// resolve.h -- the simplex as the engine of a search: re-solves of a live record after small changes
//
// A search solves thousands of LPs that differ in a few bounds or rows. A live record keeps basis, factors with their
// updates, values, reduced costs, weights and merits between two solves; a change is applied to them directly.
//
// LiveState    what it means
//   LIVE_NO     the record belongs to SimplexOptimize.
//   LIVE_STALE  Basis and bounds stand; values, reduced costs, merits and perhaps factors are to be computed by the
//               next solve. Set by simplex_go_live, simplex_clean, simplex_change_cost, a loaded basis that differs in
//               many variables, rows deleted or appended or the end of strong branching without factors, and a solve
//               that needed another method or whose last update failed.
//   LIVE_FRESH  All belong together, with true bounds; after CUTOFF and limits costs may be shifted. Set by
//               simplex_resolve.
// All functions below but simplex_go_live need a live record. Nothing is written into its environment; of its limits
// TimeLimit and the stop flag count, the others and the cutoff are arguments.
#pragma once
#include "simplex/simplex.h"

// Makes the record of a solved LP live. It keeps its environment, which should be a quiet one of the search
// (env_inner).
// 0 or a code.
[[nodiscard]] int simplex_go_live(sopt *s);

// New bounds of structural variable Var, in the body's units.
struct BoundChange {
    int Var;
    double Lower, Upper;
};
struct NodeBasis;
struct ResolveCall {
    const BoundChange *Changes = nullptr; // applied before the solve, in order
    int NumChanges = 0;
    // Start basis, with its weights; null: the live one. If the live basis differs in a few variables only, it is
    // reached by pivots. Extended precision that numeric trouble asked for ends with it.
    const NodeBasis *Basis = nullptr;
    double Iterations = 1e100; // limit of this solve
    // As simplex_objective: no objective above this is of interest.
    double Cutoff = 1e100;
};
struct ResolveOutcome {
    // SIMPLEX_OPTIMAL, INFEASIBLE, CUTOFF, ITERATION_LIMIT, TIME_LIMIT, INTERRUPTED, NUMERIC; UNBOUNDED where rows were
    // deleted that bounded the LP, or where reduced costs within the tolerance hid it
    int Status;
    // As simplex_objective: of OPTIMAL the optimum (above the cutoff it is CUTOFF if a bound proves it); of the others
    // a lower bound that holds in spite of shifted costs, or -UNDEFINED_VALUE. Without meaning for INFEASIBLE. Columns
    // without a bound on the side that a reduced cost within OptTol asks for count as bounded by a large value
    // (dual_bound.cpp).
    double Value;
    // A lower bound: Value, of OPTIMAL less what reduced costs of the wrong sign within the smallest tolerance may add.
    double Bound;
    double Iterations;
};
// Changes bounds and solves again by the dual simplex. 0 or a code: the record may only be freed then.
[[nodiscard]] int simplex_resolve(sopt *s, const ResolveCall &call,
                                  ResolveOutcome *outcome);
enum class CleanOutcome {
    OPTIMAL,
    // The basis was singular and has been repaired, or values violate tolerances, which are then smaller for this
    // record where violations in units of the body ask for it.
    SOLVE_AGAIN,
    VIOLATED // as before, and solving again several times has not helped
};
// After OPTIMAL: values and reduced costs are computed afresh, with one step of refinement, on fresh factors, for a
// point that is going to be accepted. 0 or a code.
[[nodiscard]] int simplex_clean(sopt *s, CleanOutcome *outcome);

// New cost of column j, for the body's minimisation. The next solve computes the reduced costs anew.
void simplex_change_cost(sopt *s, int j, double cost);

// ---- Nodes (node_basis.cpp) ----
// A basis as a node keeps it. Rows appended since it was saved count as basic when a solve starts from it. Of rows
// deleted since, the caller takes out the status and, as their slacks were basic, the weight.
struct NodeBasis {
    int NumCols = 0, NumRows = 0;
    Array<char> Statuses; // [NumCols + NumRows] 0 basic, else minus a BasisStatus
    // [NumRows] dual weights of the basic variables, in the order of the variables
    Array<float> Weights;
};
[[nodiscard]] int simplex_save_basis(const sopt *s, NodeBasis *basis);

// ---- Rows (live_rows.cpp) ----
// sum Val x  <= Rhs  or  = Rhs, in the body's units. Indices differ from each other.
struct LiveRow {
    int Count;
    const int *Ind;
    const double *Val;
    char Sense; // '<' or '='
    double Rhs;
};
// Appends rows; their slacks become basic. Factors are extended, nothing else changes. 0 or a code: the record may only
// be freed then.
[[nodiscard]] int simplex_append_rows(sopt *s, const LiveRow *rows, int count);
// Deletes the rows i with drop[i] != 0 [m], all of which must have a basic slack. The others keep their order. The
// factors stay if each of these slacks is basic in its own row, as after a factorisation. 0 or a code, likewise.
[[nodiscard]] int simplex_delete_rows(sopt *s, const char *drop);

// ---- Reading without copies (live_query.cpp) ----
// Values, reduced costs and multipliers are those of the last solve that ended OPTIMAL, until the next call that
// changes the record.
int simplex_num_rows(const sopt *s);
int simplex_basic(const sopt *s,
                  int r); // the basic variable at position r < simplex_num_rows
bool simplex_is_basic(const sopt *s, int k);
// Of variable k (n + i: slack i), in the body's units; of column j < n and row i, for the body's minimisation.
double simplex_value(const sopt *s, int k);
double simplex_reduced_cost(const sopt *s, int j);
double simplex_pi(const sopt *s, int i);
// Entry k of a sparse vector in the body's units: Ind[k], Val[k] * Scale[Ind[k]] * Factor.
struct LiveVector {
    int Count;
    const int *Ind;
    const double *Val; // [dimension] by index
    const double *Scale;
    double Factor;
};
// The multipliers y of the rows for which y (A I) has a 1 at the basic variable k and 0 at the other basic ones. Valid
// until the next call on the record.
LiveVector simplex_inverse_row(sopt *s, int k);
// Entries of the tableau in the body's units: Val[p] of variable Var[p], p < Count. Valid until the next call on the
// record.
struct LiveEntries {
    int Count;
    const int *Var;
    const double *Val;
};
// Row of basic variable k: x_k + sum of Val times Var is constant, over the nonbasic variables that are not fixed.
LiveEntries simplex_tableau_row(sopt *s, int k);
// By how much the objective rises at least when basic variable k is moved by `step_down` down, or by `step_up` up, in the
// body's units: by the first step of the dual simplex. UNDEFINED_VALUE: no point is there.
struct StepGains {
    double Down, Up;
};
StepGains simplex_step_gains(sopt *s, int k, double step_down, double step_up);
// Column of nonbasic variable j: by how much each basic variable falls per unit of j.
LiveEntries simplex_tableau_column(sopt *s, int j);
// After INFEASIBLE: row multipliers y for which no point within the bounds satisfies y (A I) x = y b. Count 0 if there
// are none.
LiveVector simplex_farkas_row(sopt *s);
