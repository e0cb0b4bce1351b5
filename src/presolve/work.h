// work.h -- PresolveWork, the model while it is being reduced, and the steps that all reductions share
//
// Matrix      Entries are nodes of one pool, each in a list of its row and a list of its column. A deleted entry has
//             col == -1 and stays in both lists until they are swept; loops over a list have to skip it.
// Rows        a x <= b ('<') or a x = b ('=').
// Integers    A live integer column has integral bounds wherever they are finite. A column with ColFlags is never
//             removed: fixed, it stays with equal bounds and without entries.
// States of a row      RowCnt >= 0 live with that many entries; else removed: a RowState
//           a column   ColCnt >= 0 live; COL_EMPTY, COL_FIXED, or -3 - r: substituted out through row r
// Contract of a reduction   takes the record, returns a PresolveEnd or OUT_OF_MEMORY; pushes an undo record before it
//             removes anything that postsolve needs; keeps activities and counts up to date; marks the rows and columns
//             that it changes; adds to the five counters, and its effort to Work.
// Errors      Results of cancellation may be rounding errors. errors.h estimates them; a reduction that ends the model,
//             fixes a column or removes a row because of a sign or a size has to allow for them.
// Invariant   presolve_verify (self_check.cpp) lists what holds between reductions.
#pragma once
#include "env/limits.h"
#include "presolve/presolve.h"
#include "presolve/undo.h"
#include <cmath>

// activities of longer rows are recomputed later, by sum_stale
static constexpr int LONG_STALE_ROW = 1000;

// How a step ends, returned as int: 0 to go on, what limits_reached returns (TVX_TIME_LIMIT, TVX_INTERRUPTED), or one
// of these. Outside of this folder it is a PresolveStatus (presolve_status_of).
enum PresolveEnd {
    END_INFEASIBLE = TVX_INFEASIBLE,
    END_INF_OR_UNBD = TVX_INF_OR_UNBD,
    END_UNBOUNDED = TVX_UNBOUNDED,
    END_OVERGROWN = TVX_NUMERIC // as PRESOLVE_OVERGROWN
};

struct PresolveNode {
    double value;
    int row, col;                 // col -1: deleted
    int next_in_row, next_in_col; // -1 at the end
};

enum ColFlag {
    COL_IN_SOS = 1, // member of a set that is not dissolved
    COL_IS_SEMI = 2 // semi-continuous or semi-integer: 0, or between SemiLb and SemiUb
};

enum RowState { ROW_EMPTY = -1, ROW_REDUNDANT = -2, ROW_PIVOT = -3 };
enum ColState { COL_EMPTY = -1, COL_FIXED = -2 };
inline int col_substituted(int row)
{
    return -3 - row;
}

// Marks of rows and columns for the two worklists. ACTIVE: in the list that reductions process now; TOUCHED: changed
// since the last rotation, so active after the next one.
enum WorkMark {
    A_ACTIVE = 1,
    A_TOUCHED = 2,
    B_ACTIVE = 4,
    B_TOUCHED = 8,
    NEEDS_SWEEP = 16,
    IS_STALE = 32 // row whose activity has to be recomputed
};
struct WorkList {
    int ActiveCnt = 0,
        PendingCnt = 0; // List[0 .. ActiveCnt) active; up to PendingCnt touched since
    Array<int> List;    // room for all
};

struct MipFacts; // integer/facts.h
struct PresolveWork {
    const ModelBody *Body = nullptr; // the body that is reduced
    TVXenv *Env = nullptr;
    LpMethod Method = LP_DUAL_SIMPLEX; // that will solve the reduced model
    int MatrixClass = 0;               // MATRIX_GENERAL, ...
    int NumCols = 0, NumRows = 0;
    int OrigRows = 0;  // rows of the body; the rows of dissolved SOS follow
    int64_t NumNz = 0; // entries at the start
    // Integers keep their meaning: for the presolve of a mixed-integer program. Not set by presolve_lp, which sees a
    // continuous model or relaxation.
    int IsMip = 0;
    int ProbeLevel = 0; // of presolve_mip: 0 no probing, 1 short, 2 or 3 full
    double StartTime = 0, LastLogTime = 0;
    double INF = 1e30; // TARV_PAR_INFBOUND: bounds of this size are absent
    double FeasTol = 1e-6, OptTol = 1e-6, ZeroTol = 1e-13, IntTol = 1e-5;

    double ObjCon = 0;
    Array<double> Obj, Lb, Ub; // [NumCols]
    Array<double> Rhs;         // [NumRows]
    Array<char> Sense;         // [NumRows] '<' or '='
    Array<char> VType;         // [NumCols] 'C', 'B' or 'I'; or empty: all continuous
    Array<int>
        ColFlags; // [NumCols] bits ColFlag: most reductions leave such a column alone

    // Special ordered sets, in weight order. A member that can only be zero is left out unless it separates others.
    int NumSos = 0;
    Array<int> SosType;        // [NumSos] 1 or 2; 0: dissolved
    Array<int> SosBeg, SosEnd; // [NumSos] members SosInd[SosBeg .. SosEnd)
    Array<int> SosInd;         // [members] columns
    Array<double> SosWeight;   // [members]
    Array<int> SosCount;       // [NumCols] sets of the column; or empty
    // Semi-continuous columns: their working bounds include 0.
    int NumSemi = 0;
    Array<int> SemiCols;          // [NumSemi] column; -1: no longer one
    Array<double> SemiLb, SemiUb; // [NumSemi] range of values other than 0

    // violation of the original rows that counts as a rounding error
    double DataErr = 0;
    Array<double> RhsErr;   // [NumRows] of Rhs
    Array<double> ObjErr;   // [NumCols] of Obj
    Array<double> BoundErr; // [NumCols] of Lb and Ub, 0 for bounds as given

    Array<PresolveNode> Nodes;
    // [Nodes.size] largest term of the sums that gave the entry, 0 if it is not much larger than the entry. May be
    // infinite.
    Array<double> EntrySize;
    bool HasSizes = false;       // some EntrySize may be set
    Array<int> RowHead, ColHead; // first node, -1 when none
    Array<int> RowCnt, ColCnt;   // live entries, or a state below zero
    int FreeCount = 0;           // nodes on FreeList
    int FreeList = -1;           // linked by next_in_row
    int64_t DeadCount = 0;       // deleted since the last full compression

    // The activity of row i is in [Rhs + RMin, Rhs + RMax] as far as the bounds of its columns are finite; Rmincnt and
    // Rmaxcnt count the infinite terms. Terms are rounded outwards as they are added.
    Array<double> RMax, RMin; // [NumRows]
    Array<int> Rmaxcnt, Rmincnt;
    // Long rows whose activity lost digits by cancellation; until it is recomputed both counts say infinite.
    Array<int> Stale;

    int Phase = 0; // 0 everything is a candidate, 1 worklist A, 2 worklist B
    Array<int> RowMark, ColMark;
    WorkList RowsA, RowsB, ColsA, ColsB;

    int BoundsChanged = 0, CoefsChanged = 0, IneqToEq = 0, RowsRemoved = 0, ColsRemoved = 0;
    double Work = 0;          // effort in entries processed
    double AggregateWork = 0; // effort of pre_aggregate so far
    LimitWatch Watch = {nullptr};
    int64_t StepLimit = 0, Steps = 0; // number of reductions allowed to run, that ran
    int KeepCrush = 0;
    int InfeasCol = -1, InfeasRow = -1; // witness
    bool WantsProof = false;
    // [NumCols + NumRows] ray (PostPoint) that proves infeasibility or unboundedness, or empty
    Array<double> Proof;

    UndoStack Undo;
    Array<double> Scratch, ScratchB, ScratchC; // [max(NumRows, NumCols)] zero between uses
    Array<int> IndexA, IndexB, IndexC;         // [max(NumRows, NumCols)] uninitialised
    Array<char> Flag;                          // [max(NumRows, NumCols)] zero between uses
    // [NumCols] bits 1 << Side: bounds that pre_free_bounds has given, or empty
    Array<char> GivenBounds;
    int NumNoted = 0;                            // rows with notes of pre_columns in Flag
    const ComponentSolver *Components = nullptr; // for pre_components, or null; not owned
    MipFacts *Facts = nullptr; // cliques and implications of presolve_mip, or null
};

enum MatrixClass { MATRIX_GENERAL = 0, MATRIX_UNIT_EQUATIONS = 1, MATRIX_NETWORK = 2 };

// Data for postsolve.
struct PresolveResult {
    const ModelBody *Full = nullptr; // the body that was reduced; not owned
    ModelBody *Reduced = nullptr;    // null if all columns and rows were removed
    TVXenv *Env = nullptr;           // for limits
    int NumCols = 0, NumRows = 0;    // of the original model
    UndoStack Undo;
    Array<int> RowMap, ColMap; // index in the reduced model, or the state below zero
    // [NumCols] bits 1 << Side: bounds of the reduced model by pre_free_bounds; or empty
    Array<char> GivenBounds;
    double ObjCon = 0; // constant of the reduced objective, in the caller's sense
    double INF = 1e30;
    Array<SemiColumn> Semi; // semi-continuous columns of the reduced model
    // of the columns of the reduced model, or null; owned
    CliqueTable *Cliques = nullptr;
    CliqueTable *Found = nullptr; // those that no row says
    ImplicationLog *Implications = nullptr;
};

inline bool has_lb(const PresolveWork *w, int j)
{
    return w->Lb.data[j] > -w->INF;
}
inline bool has_ub(const PresolveWork *w, int j)
{
    return w->Ub.data[j] < w->INF;
}
inline bool is_live_row(const PresolveWork *w, int i)
{
    return w->RowCnt.data[i] >= 0;
}
inline bool is_live_col(const PresolveWork *w, int j)
{
    return w->ColCnt.data[j] >= 0;
}
inline bool is_integer(const PresolveWork *w, int j)
{
    return w->VType.size > 0 && w->VType.data[j] != 'C';
}

static constexpr double INTEGRAL =
    1e-10; // a coefficient this close to an integer counts as one
inline bool is_integral(double v)
{
    return std::fabs(v - std::round(v)) <= INTEGRAL;
}

// Entries of a row or a column without the deleted ones:
//   for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
inline int live_from_row(const PresolveWork *w, int p)
{
    while (p >= 0 && w->Nodes.data[p].col < 0) p = w->Nodes.data[p].next_in_row;
    return p;
}
inline int live_from_col(const PresolveWork *w, int p)
{
    while (p >= 0 && w->Nodes.data[p].col < 0) p = w->Nodes.data[p].next_in_col;
    return p;
}
inline int first_in_row(const PresolveWork *w, int i)
{
    return live_from_row(w, w->RowHead.data[i]);
}
inline int next_in_row(const PresolveWork *w, int p)
{
    return live_from_row(w, w->Nodes.data[p].next_in_row);
}
inline int first_in_col(const PresolveWork *w, int j)
{
    return live_from_col(w, w->ColHead.data[j]);
}
inline int next_in_col(const PresolveWork *w, int p)
{
    return live_from_col(w, w->Nodes.data[p].next_in_col);
}

// ---- load.cpp ----
// With IsMip also types, SOS and semi-continuous columns. A PresolveEnd or OUT_OF_MEMORY.
[[nodiscard]] int work_load(PresolveWork *w, const ModelBody *body, TVXenv *env);
void work_free(PresolveWork *w);

// ---- load_mip.cpp ----
// Types and SOS; an SOS1 of binary columns is dissolved into a row, which NumRows counts. Before everything else.
[[nodiscard]] int load_types(PresolveWork *w);
// Right-hand sides and entries of these rows. *used: nodes in use.
void load_sos_rows(PresolveWork *w, int *used);
// Flags, and the working bounds of semi-continuous columns.
[[nodiscard]] int load_flags(PresolveWork *w);

// ---- lists.cpp: worklists and candidates ----
void mark_row(PresolveWork *w, int i);
void mark_col(PresolveWork *w, int j);
void mark_rows_of_col(PresolveWork *w, int j);
void mark_cols_of_row(PresolveWork *w, int i);
// All rows and columns active in both worklists. A PresolveEnd of the limits.
[[nodiscard]] int mark_everything(PresolveWork *w);
void rotate(PresolveWork *w); // of the worklist of the phase: touched members become active
// The lists themselves: active members, then those touched since, which become more as reductions run.
inline const WorkList *rows_of_phase(const PresolveWork *w)
{
    return w->Phase == 1 ? &w->RowsA : &w->RowsB;
}
inline const WorkList *cols_of_phase(const PresolveWork *w)
{
    return w->Phase == 1 ? &w->ColsA : &w->ColsB;
}
// Fill list and return its length: candidates by the worklist of the phase, rows with at least one entry (two for
// `candidate_rows`), live columns.
int active_rows(const PresolveWork *w, int *list);
int candidate_rows(PresolveWork *w, int *list);
int candidate_cols(PresolveWork *w, int *list);
// Also the columns of active rows whose sense is in `senses` (SENSE_LESS | SENSE_EQUAL).
enum { SENSE_LESS = 1, SENSE_EQUAL = 2 };
int candidate_cols_by_sense(PresolveWork *w, int senses, int *list);

// ---- entries.cpp: the matrix ----
void delete_entry(PresolveWork *w,
                  int p); // counts of its row and column fall; activities are the caller's
// Removes a row with its remaining entries: its state becomes `state`, its columns are marked.
void remove_row(PresolveWork *w, int i, int state);
// Unlinks deleted entries from the row's list; returns the number of entries before.
int sweep_row(PresolveWork *w, int i);
int sweep_col(PresolveWork *w, int j);
[[nodiscard]] int sweep_marked(PresolveWork *w); // all that need it; a PresolveEnd
// Sweeps all lists; deleted nodes become free. A PresolveEnd of the limits; the lists are unusable then.
[[nodiscard]] int compress(PresolveWork *w);
// A new entry at the heads of both lists; a free node must be there. Counts rise; activities are the caller's.
void insert_entry(PresolveWork *w, int i, int j, double value);

// ---- activity.cpp ----
// All live rows from scratch. A PresolveEnd of the limits.
[[nodiscard]] int pre_activity(PresolveWork *w);
void row_activity(PresolveWork *w, int i); // one
// The activity of row i lost digits by cancellation: recomputes it, immediately or, for a long row, by sum_stale, which
// the driver calls after each reduction; until then the row implies nothing.
void digits_lost(PresolveWork *w, int i);
[[nodiscard]] int sum_stale(PresolveWork *w); // a PresolveEnd of the limits
// Sets the bounds of column j and updates activities.
void change_bounds(PresolveWork *w, int j, double lb, double ub);
// The coefficient of column j in row i will be changed to `after` (0: no entry): updates the activity. True if it has
// to be recomputed after the change.
[[nodiscard]] bool change_coefficient(PresolveWork *w, int i, int j, double before,
                                      double after);

// Adds a step to both sums of row i. True if the activity has to be recomputed.
[[nodiscard]] bool move_activity(PresolveWork *w, int i, double step);

// The term of entry p becomes the constant value * v: updates right-hand side and activity, but does not delete the
// entry. True if the activity has to be recomputed after its deletion.
[[nodiscard]] bool settle_term(PresolveWork *w, int p, double v);

// ---- fix.cpp ----
// Fixes live column j at v: updates right-hand sides, activities, objective, deletes its entries. A column with
// ColFlags stays, with both bounds at v. 0 or OUT_OF_MEMORY.
// status: nonbasic status after postsolve (-1, -2), STATUS_BY_SIGN to let the sign of the reduced cost decide, or -3.
static constexpr int STATUS_BY_SIGN = -4;
[[nodiscard]] int fix_column(PresolveWork *w, int j, double v, int status);
// Removes a column whose bounds are equal up to rounding, unless its range still matters. A PresolveEnd.
[[nodiscard]] int fix_by_range(PresolveWork *w, int j);
[[nodiscard]] int fix_at_lower(PresolveWork *w, int j);
[[nodiscard]] int fix_at_upper(PresolveWork *w, int j);
[[nodiscard]] int fix_column_if_empty(PresolveWork *w, int j); // fix_empty.cpp

// ---- substitute.cpp ----
// Pushes the undo record of substituting the column of live entry p through its row: row, right-hand side, cost and all
// other entries of both. Changes nothing else. 0 or OUT_OF_MEMORY.
[[nodiscard]] int push_substitution(PresolveWork *w, int p);
// True if the row of entry p, as an equation, gives an integer column integer values, or the column is continuous.
bool keeps_integers(const PresolveWork *w, int p);

// ---- implied.cpp ----
// Bounds of column j implied by the rows, from the activities; +-INF if none.
struct ImpliedBounds {
    double lb, ub;
};
ImpliedBounds implied_bounds(const PresolveWork *w, int j);

// ---- progress.cpp ----
void presolve_log(PresolveWork *w); // a progress line when one is due
// Callback function, interruption and time limit: a PresolveEnd.
[[nodiscard]] int presolve_check(const PresolveWork *w);
// The same within a scan, now and then (limits_watch).
[[nodiscard]] inline int check_limits(PresolveWork *w, double entries)
{
    w->Watch.entries += entries;
    if (w->Watch.entries < CHECK_ENTRIES) return 0;
    w->Watch.entries = 0;
    return presolve_check(w);
}

// ---- build.cpp ----
// The result with the reduced body; null on failure. OUT_OF_MEMORY, or a PresolveEnd: 0, END_OVERGROWN or a limit.
[[nodiscard]] int build_reduced(PresolveWork *w, PresolveResult **out);

// ---- free_bounds.cpp ----
// Rays of dual values of the reduced model, y [rows] and d [columns]: multipliers of bounds given by pre_free_bounds
// are replaced by multipliers of other bounds and rows. If a limit stops that they stay as they are. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int replace_given_bounds(const PresolveResult *result, double *y, double *d);

// ---- self_check.cpp ----
#ifdef TVX_DEBUG
// Counts broken invariants (counts, links, activities) and reports the first on standard error.
int presolve_verify(const PresolveWork *w);
#endif

// ---- the reductions, one file each ----
[[nodiscard]] int pre_singleton_rows(PresolveWork *w);
[[nodiscard]] int pre_forcing_rows(PresolveWork *w);
[[nodiscard]] int pre_redundant_rows(PresolveWork *w);
[[nodiscard]] int pre_columns(PresolveWork *w);
[[nodiscard]] int pre_fix_empty(PresolveWork *w);
[[nodiscard]] int pre_implied_bounds(PresolveWork *w);
[[nodiscard]] int pre_free_bounds(PresolveWork *w);
[[nodiscard]] int pre_dual_bounds(PresolveWork *w);
[[nodiscard]] int pre_singleton_knapsack(PresolveWork *w);
[[nodiscard]] int pre_ineq_to_eq(PresolveWork *w);
[[nodiscard]] int pre_aggregate(PresolveWork *w);
[[nodiscard]] int pre_duplicate_cols(PresolveWork *w);
[[nodiscard]] int pre_duplicate_rows(PresolveWork *w);
[[nodiscard]] int pre_two_rows(PresolveWork *w);
[[nodiscard]] int pre_dependent_rows(PresolveWork *w);
[[nodiscard]] int pre_dependent_cols(PresolveWork *w); // free ones

// ---- those of presolve_mip only ----
[[nodiscard]] int pre_round_int_bounds(PresolveWork *w); // before activities are summed
[[nodiscard]] int pre_relabel_binaries(PresolveWork *w);
[[nodiscard]] int pre_sos_fixings(PresolveWork *w);
[[nodiscard]] int pre_semi_fixings(PresolveWork *w);
[[nodiscard]] int pre_row_bounds(PresolveWork *w);
[[nodiscard]] int pre_binary_coefficients(PresolveWork *w);
[[nodiscard]] int pre_coef_rows(PresolveWork *w);
[[nodiscard]] int pre_subset_coefs(PresolveWork *w);
[[nodiscard]] int pre_subset_rows(PresolveWork *w);
[[nodiscard]] int pre_binary_equation(PresolveWork *w);
[[nodiscard]] int pre_scale_int_columns(PresolveWork *w);
[[nodiscard]] int pre_row_integrality(PresolveWork *w);
[[nodiscard]] int pre_dual_slack(PresolveWork *w);
[[nodiscard]] int pre_dominated_columns(PresolveWork *w);
[[nodiscard]] int pre_bound_dual(PresolveWork *w);
[[nodiscard]] int pre_tiny_coefficients(PresolveWork *w);
[[nodiscard]] int pre_components(PresolveWork *w);
[[nodiscard]] int pre_probe_simple(PresolveWork *w);
[[nodiscard]] int pre_probe(PresolveWork *w);       // by ProbeLevel
[[nodiscard]] int pre_probe_quick(PresolveWork *w); // as with level 1
[[nodiscard]] int pre_cliques(PresolveWork *w);
[[nodiscard]] int pre_clique_merge(PresolveWork *w);
[[nodiscard]] int pre_clique_rows(PresolveWork *w);
