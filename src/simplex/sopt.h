// sopt.h -- sopt, the working LP of the simplex, with the records of both methods
//
// Computational form    min Cost x,  A x + s = Rhs,  Lower <= (x, s) <= Upper
// over NumVars = NumCols + NumRows variables: columns first, then the slack n + i of row i, in [0, inf) for an
// inequality and [0, 0] for an equation. Matrix, costs and bounds are scaled copies of the model body; a column that
// has only an upper bound is negated (ColScale < 0), so every variable has a finite lower bound or is free.
// With r = RowScale, c = ColScale, o = ObjScale:
//   A_ij = r_i c_j a_ij,  Rhs_i = r_i b_i,  x_j = (user x_j) / c_j,  s_i = r_i (user s_i),  Cost_j = o c_j (user cost)
//   user pi_i = r_i pi_i / o,  user reduced cost_j = d_j / (o c_j)
//
// States of Status     1      running
//                      2 3 5  optimal, infeasible, unbounded
//                      6 7 9 11  cutoff, iteration limit, time limit, interrupted
//                      12     numeric trouble
//                      101    this method is done, the other one has to finish
//                      -1002  residuals too large: go on in extended precision
//                      -1003  no progress: begin again with slacks and strict pivots
// The record belongs to one model and one thread. Everything that is worked on inside the simplex has the number type R
// and stands in swork<R>; exactly one of the two is allocated.
#pragma once
#include "lu/lufact.h"
#include "runtime/random.h"
#include "simplex/simplex.h"

enum SimplexStatus {
    SIMPLEX_RUNNING = 1,
    SIMPLEX_OPTIMAL = 2,
    SIMPLEX_INFEASIBLE = 3,
    SIMPLEX_UNBOUNDED = 5,
    SIMPLEX_CUTOFF = 6,
    SIMPLEX_ITERATION_LIMIT = 7,
    SIMPLEX_TIME_LIMIT = 9,
    SIMPLEX_INTERRUPTED = 11,
    SIMPLEX_NUMERIC = 12,
    SIMPLEX_SWITCH = 101,
    SIMPLEX_NEED_QUAD = -1002,
    SIMPLEX_RESTART = -1003,
};

// Entries of VStat below zero; at or above zero a variable is basic.
enum BasisStatus {
    BASIC = 0,
    AT_LOWER = -1,
    AT_UPPER = -2,
    AT_FREE = -3,  // free at zero, or superbasic at a value of its own
    AT_FIXED = -4, // lower = upper, or kept out of the basis for the rest of a run
};

// The stall guard (stall.cpp). Remedies in the order in which they are taken.
static constexpr int PASSES_PER_UPDATE = 2, PASSES_LEAST = 100;
enum StallPhase { STALL_BOX, STALL_DUAL, STALL_PRIMAL_1, STALL_PRIMAL_2, STALL_PHASES };
enum StallRemedy {
    STALL_NONE,
    STALL_COSTS,    // out of phase 1 of the primal
    STALL_PERTURB,  // costs or bounds
    STALL_SWITCH,   // to the other method
    STALL_EXTENDED, // precision
    STALL_STRICT,   // pivots in the factors, from a start of slacks
    STALL_END,      // numeric trouble
};
struct StallGuard {
    double Best[STALL_PHASES]; // least value of each phase since the last remedy
    int Looks = 0;             // of this run; each refresh of factors and values is one
    int IdleLooks = 0;         // looks without a better one
    double Iter = 0;           // NPvt when they began
    double Begin = 0;          // NPvt at the last remedy
    int Passes = 0;            // of the loop since the last factorisation: flips need none
    StallRemedy Taken = STALL_NONE; // last one of this run
};

// What stands behind an infeasible or unbounded status.
enum ProofKind { PROOF_NONE, PROOF_FARKAS, PROOF_RAY };

// Why the basis is to be factored again.
enum RefacReason {
    REFAC_NONE = 0,
    REFAC_START = 1,   // start of a method
    REFAC_UPDATES = 2, // update limit
    // Perturbation changed, or a result is to be confirmed on fresh factors.
    REFAC_CLEAN = 4,
    REFAC_CONFIRM = 5, // infeasible or unbounded by old factors
    REFAC_PIVOT = 6,   // pivots from row and column differ, or the update failed
    REFAC_FILL = 10,   // factors have filled up
    REFAC_ROOM = 11,   // update ran out of room
};

template<class R> struct dopt;
template<class R> struct popt;

// The vectors of one number type.
template<class R> struct swork {
    lufact<R> Lu;
    int FactorAge = -1; // BasisAge for which Lu was made
    Array<R> Cbar;      // [NumVars] reduced costs
    Array<R> Bbar;      // [m] values of the basic variables by position
    SVec<R> Rho;        // [m] row r of the inverse
    SVec<R> Alpha;      // [m] entering column
    SVec<R> Tau;        // [m] B^-1 rho, for steepest edge
    SVec<R> Work;       // [m] flips, residuals, cost changes
    Array<R> RowAcc;    // [n] accumulator of the pivot row; SVEC_TINY between uses
    Array<int> RowInd;  // [NumVars] packed pivot row: variables
    Array<R> RowVal;    // [NumVars] and their entries
    int RowCount = 0;
    dopt<R> *Dual = nullptr;
    popt<R> *Primal = nullptr;
};

// What a run counts and adapts: kept and brought back by one assignment around strong branching.
struct SimplexCounters {
    double IterBase = 0;      // iterations that earlier stages of the same solve took
    double NPvt = 0;          // iterations of this run
    double Pivots = 0;        // exchanges of basics and nonbasics in the life of the record
    double Work = 0;          // NPvt plus bound flips
    int NumFactor = 0;        // factorisations
    int Method = METHOD_DUAL; // method of the last run
    double Obj = 0;           // objective in user units, minimisation, without ObjOffset
    int RefacReason = REFAC_NONE;
    StallGuard Stall;
    int SwitchCount = 0;    // changes of method in this run
    int NumericCount = 0;   // numeric events in this run
    int SingularCount = 0;  // repairs of singular bases
    int PerturbAllowed = 1; // cleared when a clean run is wanted
    double PerturbCur = 0;  // working size of perturbations
    double DegenCount = 0;  // degenerate iterations
    // DegenCount and NPvt at the last test for a stall.
    double LastDegenCount = 0, LastPerturbIter = 0;
    // An infeasibility could not be proved: smaller reduced costs count as well.
    int TightProof = 0;
    double FeasTol = 1e-6, OptTol = 1e-6, MarkowitzTol = 0.0078125, PivotTol = 3e-8,
           BigTol = 3e-6, ZeroTol = 1e-13;
    double RhsSize = 0; // largest entry of the right-hand side after the nonbasics
    // Of the last values: as solved, after refinement.
    double PrimalError = 0, PrimalResidual = 0;
    double DualResidual = 0;               // of the last reduced costs, after refinement
    int FeasTolCount = 0, OptTolCount = 0; // residuals found beyond the tolerances
    int MaxUpdates = 20, MinUpdates = 0;   // limits between factorisations
};

struct sopt : SimplexCounters {
    const ModelBody *Body = nullptr; // that is solved; not owned
    SimplexTuning Tuning;            // what differs from the environment's parameters
    TVXenv *Env = nullptr;           // not owned
    int Running = 0;                 // a solve, whose callback function is called
    int HasCutoff = 1;               // the Cutoff of the environment is one for this body

    // Time, limits, log
    double StartTime = 0;    // clock at the start of this run
    double TickLength = 5;   // seconds between log lines
    double TickIndex = -1;   // tick of the last line
    double LastLogIter = -1; // iteration of the last line
    double NextLogIter = 0;  // threshold of the periodic line
    double WorkUnits = 0;    // deterministic effort besides that of the live factors
    double WorkTaken = 0;    // of all effort, what simplex_take_work has handed out
    double FactorWork = 0;   // of the factors that a change of precision has freed
    int HeaderDone = 0;      // the column header of the log stands

    // Working LP
    int NumRows = 0, NumCols = 0, NumVars = 0; // m, n, n + m
    int Sense = 1;                             // of the model, for printing only
    Array<int> ColBeg;                         // [n + 1]
    Array<int> ColInd;                         // [nz]
    Array<double> ColVal;                      // [nz]
    Array<double> Cost;                        // [NumVars] true scaled costs
    Array<double> Lower, Upper;                // [NumVars] +-Infinity where none
    Array<double> Rhs;                         // [m]
    double ObjOffset = 0;                      // constant, in user units
    double ObjScale = 1;
    Array<double> RowScale, ColScale; // [m], [n]
    int Scaled = 0;                   // some factor differs from +-1
    // A bound that is none; values may go beyond TARV_PAR_INFBOUND.
    double Infinity = INFINITE_BOUND;

    // Row copy, partitioned: the first RowFill[i] entries of row i belong to nonbasic columns that may enter.
    Array<int> RowBeg;      // [m + 1]
    Array<int> RowFill;     // [m]
    Array<int> RowInd;      // [nz]
    Array<double> RowVal;   // [nz]
    Array<int> SlotOfEntry; // [nz] place in the row copy of a matrix entry
    Array<int> EntryOfSlot; // [nz]
    Array<char> InRowCopy;  // [n] column stands in the front parts

    // Basis
    Array<int> VStat;       // [NumVars] BasisStatus or position
    Array<int> BasisHead;   // [m] variable by position
    Array<double> SuperVal; // [NumVars] value of a nonbasic at AT_FREE; 0 unless superbasic
    Array<double> WorkCost; // [NumVars] Cost plus perturbation and shifts
    // [NumVars] bounds in force: true, box of phase 1, or perturbed.
    Array<double> WorkLower, WorkUpper;
    // [m] WorkLower and WorkUpper of the basic variables, by position.
    Array<double> BasicLower, BasicUpper;
    // [NumVars] squared norms of the basics that came with the basis, or empty.
    Array<double> StartNorms;
    int Superbasics = 0; // nonbasics that stand at a value of their own
    int HasBasis = 0;    // VStat and BasisHead hold a basis
    // Counts replacements of the basis as a whole; factors and weights remember theirs.
    int BasisAge = 0;

    // Run
    int Status = 0;
    // The first method is the one for which the start basis is feasible.
    int MethodByStart = 0;
    int BadVar = -1;           // variable whose bounds proved infeasibility
    int Quad = 0;              // 1: extended precision is live
    int InfeasCheckNeeded = 1; // bounds changed since the last test for crossed bounds
    int Perturbed = 0; // 0 none, 1 mild shifts, 2 shifts, 3 costs or bounds as a whole
    int BoxPhase = 0;  // the dual solves the box problem of phase 1: right-hand side 0
    // Began from a given basis with few infeasibilities: costs move only when it stalls.
    int NearOptimal = 0;
    // The last run was stopped by a limit, and this one is to go on from there: by the method that ran, with its
    // perturbation. Another one could undo the pivots of the last run, and short runs would never arrive.
    int Stopped = 0;
    int AskedMethod = 0, StoppedMethod = 0; // the caller's wish then; the method that ran
    int StoppedPerturb = 0;                 // PerturbAllowed
    // Empty, or what was added to the costs [NumVars] (dual), to lower and then upper bounds [2 NumVars] (primal).
    Array<double> StoppedShift;
    // [NumVars] or empty: nonbasics at the upper side of their box in phase 1 of the dual.
    Array<char> StoppedUpper;
    double UsualOptTol = 1e-6; // OptTol before TightProof
    // In user units, minimisation, without offset: as Obj; HUGE_VAL: none.
    double Cutoff = 1e100;
    LimitedProof
        LimitedFarkas; // what multipliers without a full proof have shown in this run
    // PROOF_FARKAS holds with rows and bounds held wider by FeasibilityTol.
    int WidenedProof = 0;
    ProofKind Proof = PROOF_NONE; // what proved the status of this run
    // [NumVars] PROOF_FARKAS: row multipliers, then 0; PROOF_RAY: the ray; both scaled.
    Array<double> ProofVector;
    Random Rng;

    // Scratch
    Array<double> RowWork;       // [m]
    Array<int> BadRows, BadCols; // [m] from FactorBasis
    Array<int> Mark;             // [NumVars] zero between uses

    swork<double> *Double = nullptr;        // live when Quad == 0
    swork<long double> *Extended = nullptr; // live when Quad == 1
};

// Value of a nonbasic variable under the bounds in force.
inline double nonbasic_value(const sopt *s, int j)
{
    switch (s->VStat.data[j]) {
    case AT_UPPER:
        return s->WorkUpper.data[j];
    case AT_FREE:
        return s->SuperVal.data[j];
    default:
        return s->WorkLower.data[j];
    }
}
inline bool is_basic(const sopt *s, int j)
{
    return s->VStat.data[j] >= 0;
}
// The caller's value of variable j over the scaled one, without the sign. Reduced costs: over this and ObjScale.
inline double user_unit(const sopt *s, int j)
{
    return j < s->NumCols ? std::fabs(s->ColScale.data[j])
                          : 1 / s->RowScale.data[j - s->NumCols];
}
// A bound of the model as the working LP holds it.
inline double working_bound(const sopt *s, double bound)
{
    const double infinite = infinite_bound(s->Env);
    return bound <= -infinite ? -s->Infinity : bound >= infinite ? s->Infinity : bound;
}
inline bool has_lower(const sopt *s, double bound)
{
    return bound > -s->Infinity;
}
inline bool has_upper(const sopt *s, double bound)
{
    return bound < s->Infinity;
}
// A nonbasic at a value of its own that is no bound: the primal pushes it to one or into the basis.
inline bool is_superbasic(const sopt *s, int j)
{
    return s->VStat.data[j] == AT_FREE &&
           (s->SuperVal.data[j] != 0 || has_lower(s, s->Lower.data[j]) ||
            has_upper(s, s->Upper.data[j]));
}
// v . column j of (A I)
template<class R> inline R column_dot(const sopt *s, int j, const R *v)
{
    if (j >= s->NumCols) return v[j - s->NumCols];
    R sum = 0;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        sum += R(s->ColVal.data[p]) * v[s->ColInd.data[p]];
    return sum;
}

template<class R> swork<R> *live_work(sopt *s);
template<> inline swork<double> *live_work<double>(sopt *s)
{
    return s->Double;
}
template<> inline swork<long double> *live_work<long double>(sopt *s)
{
    return s->Extended;
}

inline double iterations(const sopt *s)
{
    return s->IterBase + s->NPvt;
}

// The factors belong to the basis at hand.
template<class R> inline bool has_factor(const sopt *s, const swork<R> *w)
{
    return w->Lu.NeedBasis == 0 && w->FactorAge == s->BasisAge;
}
// Rounding of the number type against that of double: what counts as zero or as too small a pivot goes with it.
template<class R> inline constexpr double ROUNDING_SHARE = 1;
template<> inline constexpr double ROUNDING_SHARE<long double> = 1e-3;

// Entries of a row or column below this one are not taken as pivots at first: with fresh factors, some, many updates.
template<class R> inline R pivot_floor(const swork<R> *w)
{
    const int updates = w->Lu.NumUpdates;
    return R(ROUNDING_SHARE<R> * (updates < 10 ? 1e-9 : updates < 20 ? 1e-8 : 1e-7));
}
// Entries below this share of the largest one of their row or column are rounding.
template<class R> inline R noise_share(const swork<R> *w)
{
    return R(ROUNDING_SHARE<R> * (w->Lu.NumUpdates == 0 ? 1e-12 : 1e-11));
}

// What a callback function may ask of a run (simplex_query.cpp).
int simplex_answer(const void *record, int what, void *result);

// ---- sopt.cpp: the record ----
[[nodiscard]] int sopt_create(const ModelBody *body, TVXenv *env,
                              const SimplexTuning &tuning,
                              sopt **out); // scaled working LP, row copy; no basis yet
void sopt_refresh(sopt *s,
                  const SimplexCall &call); // tolerances, limits, counters for a new run
// Stopped and what follows it, at the end of a run. 0 or OUT_OF_MEMORY.
[[nodiscard]] int sopt_keep_stop(sopt *s);
// The first method of a run goes on from there; false: it begins anew.
bool sopt_take_up_stop(sopt *s);
void sopt_take_cutoff(sopt *s); // Cutoff from the parameter
int update_limit(const sopt *s,
                 double power);  // updates between factorisations: m^power, at least 20
void sopt_check_bounds(sopt *s); // sets Status 3 or 5 and BadVar on crossed bounds
template<class R> [[nodiscard]] int swork_create(sopt *s, swork<R> **out);
template<class R> void swork_free(swork<R> **work);

// ---- scaling.cpp ----
[[nodiscard]] int scale_working_lp(sopt *s);

// ---- row_copy.cpp ----
[[nodiscard]] int
row_copy_build(sopt *s); // allocates and links the row copy; all columns stand in front
void row_copy_partition(sopt *s);     // fronts hold the nonbasics that may enter, by VStat
void row_copy_insert(sopt *s, int j); // column j may enter from now on
void row_copy_remove(sopt *s, int j); // column j became basic or fixed

// ---- start_basis.cpp ----
void start_slack_basis(sopt *s);
bool is_slack_basis(const sopt *s);
[[nodiscard]] int crash_equations(sopt *s); // improves a slack basis for the dual
// Takes statuses [NumVars] (>= 0 basic); false when they are no basis (more or fewer than m basics): unchanged then.
bool start_from_statuses(sopt *s, const int *statuses);
void settle_nonbasics(sopt *s); // every nonbasic gets the status that its true bounds allow
// Nonbasics take the place that a point in user units gives them: a bound, or a value of their own (superbasic).
void start_from_point(sopt *s, const double *x, const double *slack);

// ---- primal_start.cpp ----
[[nodiscard]] int primal_start(sopt *s); // improves a slack basis for the primal

// ---- basis.cpp: factor, solve for values ----
// Factors the basis, mending it with slacks when it is singular. 0 or a code; may set Status.
template<class R> [[nodiscard]] int Refactor(sopt *s, swork<R> *w);
template<class R> void compute_row(sopt *s, swork<R> *w); // packed pivot row from Rho
template<class R> void load_column(const sopt *s, int j, SVec<R> *x); // x := column j
void set_basic_bounds(sopt *s); // BasicLower, BasicUpper
// Exchanges basic position r with nonbasic q; the leaving variable takes `status`.
void swap_basis(sopt *s, int r, int q, int status);
template<class R> bool wants_refactor(const sopt *s, const swork<R> *w);
bool wants_confirmation(const sopt *s); // a result needs fresh factors
void distrust_factors(
    sopt *s); // a pivot of old factors was wrong: new ones, with stricter pivots

// ---- values.cpp ----
template<class R>
void compute_primal(sopt *s, swork<R> *w); // Bbar from the nonbasics and the working bounds
template<class R> void refine_primal(sopt *s, swork<R> *w); // Bbar once more
template<class R> void refine_dual(sopt *s, swork<R> *w);   // Cbar once more
template<class R> void compute_dual(sopt *s, swork<R> *w);  // Cbar from WorkCost
template<class R> void compute_dual_for(sopt *s, swork<R> *w, const double *cost, R *cbar);
// Draws conclusions from the residuals of the last two; may set Status.
template<class R> void judge_residuals(sopt *s, const swork<R> *w);

// ---- farkas.cpp ----
// Do the multipliers in Rho prove that no point within the true bounds satisfies the equations? They are refined on
// the factors, which have to be fresh; Tau and Work are used.
template<class R> bool proves_infeasible(sopt *s, swork<R> *w);

// ---- ray.cpp ----
// Does the LP fall without end along the edge on which nonbasic q moves by `direction`? The factors have to be fresh;
// Alpha becomes its column, Tau and Work are used.
template<class R> bool proves_unbounded(sopt *s, swork<R> *w, int q, int direction);

// ---- stall.cpp ----
void stall_reset(sopt *s); // values of the phases are not comparable with those before
// A pass of the loop is done; too many of them without a factorisation ask for one.
inline void stall_count_pass(sopt *s)
{
    const bool many = ++s->Stall.Passes > PASSES_PER_UPDATE * s->MaxUpdates + PASSES_LEAST;
    if (many && s->RefacReason == REFAC_NONE) s->RefacReason = REFAC_UPDATES;
    if (s->RefacReason != REFAC_NONE) s->Stall.Passes = 0;
}
// On fresh factors and values: what to do against a stall. STALL_COSTS and STALL_PERTURB are the method's, for the others
// Status is set.
template<class R> StallRemedy stall_look(sopt *s, swork<R> *w);

// ---- finish.cpp ----
template<class R>
void finish_values(sopt *s,
                   swork<R> *w); // true costs and bounds, values and reduced costs for them
// How far a basis is from being optimal, in user units. ObjectiveError estimates by how much the violations may change
// the objective, as a share of 1 + |objective|: the sum of the primal violations times the largest reduced cost, and the
// sum over the dual violations of each times the largest basic value, or the range of the variable if that is smaller.
struct UserViolation {
    double Largest = 0, ObjectiveError = 0;
    double Working = 0; // the largest one in the units of the working LP
};
struct UserViolations {
    UserViolation Primal, Dual;
};
template<class R> UserViolations measure_violations(const sopt *s, const swork<R> *w);

// ---- self_check.cpp ----
// Computes anew what updates carry along, when TARV_PAR_ITEST asks for it, and warns on the log; how often it warned.
enum class CheckPoint {
    FACTORED, // fresh factors, values and reduced costs
    COLUMN,   // Alpha is the column of q, before the step
    UPDATED,  // after a pivot
    FINISHED  // end of a run
};
#ifdef TVX_DEBUG
template<class R> int simplex_self_check(sopt *s, swork<R> *w, CheckPoint point, int q);
#else
template<class R> int simplex_self_check(sopt *, swork<R> *, CheckPoint, int)
{
    return 0;
}
#endif

// ---- precision.cpp ----
[[nodiscard]] int switch_precision(sopt *s,
                                   int quad); // makes the vectors of that number type live

// ---- simplex_log.cpp ----
void log_iteration(sopt *s, double objective, double primal_inf, double dual_inf);
bool log_is_due(sopt *s);
void log_free(sopt *s); // a line while free columns enter the basis
bool limit_reached(
    sopt *s); // tests interrupt, iterations and time in this order; sets Status

// ---- dual.cpp, primal.cpp: the methods ----
// Run until Status is no longer SIMPLEX_RUNNING. 0 or a code.
template<class R> [[nodiscard]] int DualRun(sopt *s, swork<R> *w);
template<class R> [[nodiscard]] int PrimalRun(sopt *s, swork<R> *w);
template<class R> void dopt_free(dopt<R> **d);
template<class R> void popt_free(popt<R> **p);

// Sums of infeasibilities against the true bounds and costs, and the true objective (user units, without offset).
struct Infeasibility {
    double PrimalSum = 0, PrimalMax = 0;
    double DualSum = 0, DualMax = 0;
    int PrimalCount = 0, DualCount = 0;
};
template<class R> Infeasibility measure_infeasibility(const sopt *s, const swork<R> *w);
// The value of the basis with true costs and bounds; in the box problem of phase 1 with its bounds, as a variable may
// stand at an upper bound there that it does not have.
template<class R> double true_objective(const sopt *s, const swork<R> *w);
