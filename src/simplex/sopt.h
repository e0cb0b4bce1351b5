// sopt.h -- sopt, the working LP of the simplex, with the records of both methods; its states are in sopt_states.h
//
// Computational form    min Cost x,  A x + s = Rhs,  Lower <= (x, s) <= Upper
// over NumVars = NumCols + NumRows variables: columns first, then the slack n + i of row i, in [0, inf) for an
// inequality and [0, 0] for an equation. Matrix, costs and bounds are scaled copies of the model body; a column that
// has only an upper bound is negated (ColScale < 0), so every variable has a finite lower bound or is free.
// With r = RowScale, c = ColScale, o = ObjScale:
//   A_ij = r_i c_j a_ij,  Rhs_i = r_i b_i,  x_j = (user x_j) / c_j,  s_i = r_i (user s_i),  Cost_j = o c_j (user cost)
//   user pi_i = r_i pi_i / o,  user reduced cost_j = d_j / (o c_j)
//
// "Units of the model" or "user units" are those of the body, "units of the working LP" the scaled ones.
//
// The record belongs to one model and one thread. Vectors that depend on the number type R are in swork<R>; exactly one
// of the two is allocated.
#pragma once
#include "lu/lufact.h"
#include "runtime/random.h"
#include "simplex/resolve.h"
#include "simplex/sopt_states.h"

template<class R> struct dopt;
template<class R> struct popt;

// The vectors of one number type.
template<class R> struct swork {
    lufact<R> Lu;
    int FactorAge = -1;        // BasisAge of the basis that Lu was made for
    Array<R> Cbar;             // [NumVars] reduced costs
    Array<R> Bbar;             // [m] values of the basic variables by position
    SVec<R> Rho;               // [m] row r of the inverse
    SVec<R> Alpha;             // [m] entering column of the tableau
    SVec<R> Tau;               // [m] B^-1 rho, for steepest edge
    SVec<R> Work;              // [m] flips, residuals, cost changes
    Array<R> RowAcc;           // [n] accumulator of the pivot row; SVEC_TINY between uses
    Array<int> RowInd;         // [NumVars] packed pivot row: variables
    Array<R> RowVal;           // [NumVars] and their entries
    int RowCount = 0;          // entries of the packed pivot row
    dopt<R> *Dual = nullptr;   // owned, or null before the first dual run
    popt<R> *Primal = nullptr; // owned, or null before the first primal run
};

// Counters and adapted tolerances of a run. Strong branching saves and restores them by one assignment.
struct SimplexCounters {
    double IterBase = 0; // iterations that earlier stages of the same solve took
    double NPvt = 0;     // iterations of this run
    double Pivots = 0;   // pivots since the record was created
    double Work = 0;     // NPvt plus bound flips
    int NumFactor = 0;   // factorisations
    SimplexMethod Method = METHOD_DUAL; // method of the last run
    double Obj = 0; // objective in user units, minimisation, without ObjOffset
    // Dual simplex with a cutoff, or live: objective for the costs in force, in units of the working LP; value of it
    // from which the next test against the cutoff is worth it.
    double DualObj = 0, CutoffFrom = HUGE_VAL;
    double DualObjSum = 0; // magnitudes that were added to DualObj since it was computed
    // Rounding errors of large steps in Bbar and Cbar since they were computed. Wrong signs that entries too small for
    // the ratio test have caused count as such (dual_ratio.cpp).
    double ValueNoise = 0, DualNoise = 0;
    double ValueSize = 0; // no basic value has been larger than this
    // Live records: reduced costs with a wrong sign within OptTol put DualObj above the optimum by at most SignError
    // plus ValueSize times SignOpen, the part of variables whose range is larger (dual_count_sign).
    double SignError = 0, SignOpen = 0;
    double CutoffBound = 0; // SIMPLEX_CUTOFF: the lower bound that exceeded it, as Obj
    int RefacReason = REFAC_NONE; // RefacReason (sopt_states.h)
    StallGuard Stall;
    int SwitchCount = 0;    // changes of method in this run
    int NumericCount = 0;   // rejected pivots, singular bases, large residuals in this run
    int SingularCount = 0;  // repairs of singular bases
    int PerturbAllowed = 1; // costs or bounds may be perturbed
    double PerturbCur = 0;  // size of the next cost perturbation of the dual simplex
    double DegenCount = 0;  // degenerate iterations
    // DegenCount and NPvt when the dual simplex last tested for a stall.
    double LastDegenCount = 0, LastPerturbIter = 0;
    // The primal simplex could not prove an infeasibility and has reduced OptTol (end_phase1).
    int TightProof = 0;
    // Tolerances in force, in units of the working LP: primal and dual feasibility, ...
    double FeasTol = 1e-6, OptTol = 1e-6;
    double MarkowitzTol = 0.0078125; // ... threshold pivoting in the factors (0..1),
    double PivotTol = 3e-8;          // ... smallest pivot that is taken without a check,
    double BigTol = 3e-6;            // ... difference of the pivots from row and column,
    double ZeroTol = 1e-13;          // ... entries up to this size count as zero
    double RhsSize = 0; // largest entry of Rhs - N x_N in the last compute_primal
    // Largest residual of the last basic values: as solved, after refinement.
    double PrimalError = 0, PrimalResidual = 0;
    double DualResidual = 0;               // of the last reduced costs, after refinement
    int FeasTolCount = 0, OptTolCount = 0; // residuals beyond the tolerances in this run
    // Refactorisation after MaxUpdates updates; below MinUpdates the fill is not tested.
    int MaxUpdates = 20, MinUpdates = 0;
};

constexpr int MOST_SHIFTS = 64; // beyond that reduced costs are better computed anew

// A pivot of a probe, for its undoing: variable `Entered` replaced `Left`.
struct PivotRecord {
    int Entered, Left;
};

struct sopt : SimplexCounters {
    const ModelBody *Body = nullptr; // the body that is solved; not owned
    SimplexTuning Tuning;  // settings that differ from the environment's parameters
    TVXenv *Env = nullptr; // not owned
    int Running = 0;       // the callback function is called during this run
    int HasCutoff = 1;     // the environment's Cutoff applies to this body
    double IterLimit = 0;  // IterationLimit, or that of simplex_resolve
    int EndFactor = 1; // results need fresh factors: TARV_PAR_SIMPLEXENDFAC; 0 when live

    // Time, limits, log
    double StartTime = 0;    // clock at the start of this run
    double TickLength = 5;   // seconds between log lines
    double TickIndex = -1;   // number of the tick in which the last line was written
    double LastLogIter = -1; // iteration of the last line
    double NextLogIter = 0;  // value of Work from which the next line may be written
    double WorkUnits = 0;    // work (entries touched) outside of the live factors
    double WorkTaken = 0;    // the part of the work that simplex_take_work has returned
    double FactorWork = 0;   // work of factors that a change of precision has freed
    int HeaderDone = 0;      // the column header of the log has been written
    int RootLog = 0;         // SimplexCall::Root of this run

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
    double ObjScale = 1;                       // o of the formulas above
    Array<double> RowScale, ColScale;          // [m], [n] r and c of the formulas above
    int Scaled = 0;                            // some factor differs from +-1
    // Value that stands for an infinite bound. Values of variables may exceed TARV_PAR_INFBOUND.
    double Infinity = INFINITE_BOUND;

    // Row copy, partitioned: the first RowFill[i] entries of row i belong to nonbasic columns that may enter.
    Array<int> RowBeg;      // [m + 1]
    Array<int> RowFill;     // [m]
    Array<int> RowInd;      // [nz] columns
    Array<double> RowVal;   // [nz] coefficients
    Array<int> SlotOfEntry; // [nz] position in the row copy of an entry of the column copy
    Array<int> EntryOfSlot; // [nz] the inverse permutation
    Array<char> InRowCopy;  // [n] the entries of the column are in the front parts

    // Basis
    Array<int> VStat;       // [NumVars] BasisStatus or basis position
    Array<int> BasisHead;   // [m] variable by position
    Array<double> SuperVal; // [NumVars] value of a nonbasic at AT_FREE; 0 unless superbasic
    Array<double> WorkCost; // [NumVars] Cost plus perturbation and shifts
    // [NumVars] bounds in force: true bounds, those of the box problem, or perturbed bounds.
    Array<double> WorkLower, WorkUpper;
    // [m] WorkLower and WorkUpper of the basic variables, by position.
    Array<double> BasicLower, BasicUpper;
    // [NumVars] dual steepest edge weights of the basic variables, given with the start basis; or empty.
    Array<double> StartNorms;
    int Superbasics = 0; // number of superbasic variables
    int HasBasis = 0;    // VStat and BasisHead hold a basis
    // Number of replacements of the whole basis. Factors and weights keep the number that they belong to.
    int BasisAge = 0;

    // Run
    int Status = 0; // SimplexStatus (sopt_states.h)
    // The first method is the one for which the start basis is feasible.
    int MethodByStart = 0;
    int BadVar = -1;                // variable whose bounds alone gave the status, or -1
    int Quad = 0;                   // 1: extended precision is live
    int InfeasCheckNeeded = 1;      // bounds changed since the last test for crossed bounds
    int Perturbed = PERTURBED_NONE; // Perturbation
    // How often in succession simplex_clean has not returned OPTIMAL while the LP did not change.
    int Unclean = 0;
    // With PERTURBED_SINGLE: the variables whose costs are shifted, some twice; more than MOST_SHIFTS are not listed.
    int ShiftCount = 0, Shifted[MOST_SHIFTS] = {};
    int BoxPhase = 0; // the dual simplex solves the box problem of phase 1: Rhs counts as 0
    // The run began from a given basis with few infeasibilities: costs are perturbed only after a stall.
    int NearOptimal = 0;
    // A limit stopped the last run. The next run continues with the same method and the same perturbation: otherwise it
    // could undo the pivots of the last one, and a sequence of short runs might never reach the optimum.
    int Stopped = 0;
    // of the stopped run: the method that the caller asked for, the one that was running at its end
    SimplexMethod AskedMethod = METHOD_PRIMAL, StoppedMethod = METHOD_PRIMAL;
    int StoppedPerturb = 0; // PerturbAllowed of the stopped run
    // Empty, or what was added to the costs [NumVars] (dual), or to lower and then upper bounds [2 NumVars] (primal).
    Array<double> StoppedShift;
    // Empty, or [NumVars] nonbasics at their upper bound of the box problem.
    Array<char> StoppedUpper;
    double UsualOptTol = 1e-6; // OptTol before TightProof reduced it
    // In user units, minimisation, without ObjOffset (as Obj); HUGE_VAL: none.
    double Cutoff = 1e100;
    // What multipliers that give no full proof of infeasibility have shown in this run.
    LimitedProof LimitedFarkas;
    // The proof PROOF_FARKAS also holds with rows and bounds widened by FeasibilityTol.
    int WidenedProof = 0;
    ProofKind Proof = PROOF_NONE; // what proved the status of this run
    // [NumVars] PROOF_FARKAS: row multipliers in the first m entries, then 0; PROOF_RAY: the ray; both scaled.
    Array<double> ProofVector;
    Random Rng; // for perturbations

    // Search (resolve.h)
    LiveState Live = LIVE_NO;
    int Crossed = 0;  // columns whose bounds cross
    int Probing = 0;  // strong branching: pivots are recorded
    int BaseLost = 0; // a probe has replaced the factors of the basis that it started from
    Array<PivotRecord> Path; // pivots of a probe

    // Scratch
    Array<double> RowWork; // [m]
    // [NumVars] live: the entries that simplex_tableau_row and _column return
    Array<int> QueryVar;
    Array<double> QueryVal;
    Array<int> BadRows, BadCols; // [m] rows and positions without pivot, from FactorBasis
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
// |value of variable j in units of the model| = user_unit * |scaled value|; a scaled reduced cost is divided by
// user_unit and ObjScale to get that of the model.
inline double user_unit(const sopt *s, int j)
{
    return j < s->NumCols ? std::fabs(s->ColScale.data[j])
                          : 1 / s->RowScale.data[j - s->NumCols];
}
// How far a nonbasic variable with a reduced cost of the wrong sign may move: across its range, if that is no larger
// than `value`, the largest basic value, or RANGE_COUNTED in user units; else by `value` as an estimate.
constexpr double RANGE_COUNTED = 1e6;
inline bool counts_range(const sopt *s, int j, double range, double value)
{
    return range <= value || range * user_unit(s, j) <= RANGE_COUNTED;
}
// Smallest feasibility and optimality tolerance that the precision supports.
inline double tolerance_floor(const sopt *s)
{
    return s->Quad ? 1e-13 : 1e-9;
}
// Bounds without a value between them: crossed by more than FeasibilityTol, or infinite on the wrong side.
inline bool bounds_exclude(const sopt *s, int j, double lower, double upper)
{
    return (lower - upper) * user_unit(s, j) > s->Env->FeasibilityTol ||
           lower >= s->Infinity || -upper >= s->Infinity;
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
// A nonbasic variable away from its bounds: the primal simplex moves it to a bound or into the basis.
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

// Minus the multiplier of row i: the slack may have a shifted cost.
template<class R> inline R minus_multiplier(const sopt *s, const swork<R> *w, int i)
{
    return w->Cbar.data[s->NumCols + i] - R(s->WorkCost.data[s->NumCols + i]);
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

inline bool has_cutoff(const sopt *s)
{
    return s->Cutoff < UNDEFINED_VALUE;
}
// The dual simplex keeps DualObj.
inline bool tracks_objective(const sopt *s)
{
    return s->Live != LIVE_NO || has_cutoff(s);
}

// The factors (with their updates) belong to the current basis.
template<class R> inline bool has_factor(const sopt *s, const swork<R> *w)
{
    return w->Lu.NeedBasis == 0 && w->FactorAge == s->BasisAge;
}
// Factor on the thresholds below which numbers count as zero or pivots as too small: extended precision has 64 bits
// against 53 of double, of which 1e-3 uses about 10.
template<class R> inline constexpr double ROUNDING_SHARE = 1;
template<> inline constexpr double ROUNDING_SHARE<long double> = 1e-3;

// Smallest entry of a row or column that the first ratio test takes as pivot: after few, more, many updates.
template<class R> inline R pivot_floor(const swork<R> *w)
{
    const int updates = w->Lu.NumUpdates;
    return R(ROUNDING_SHARE<R> * (updates < 10 ? 1e-9 : updates < 20 ? 1e-8 : 1e-7));
}
// Entries below this share of the largest one of their row or column count as rounding errors.
template<class R> inline R noise_share(const swork<R> *w)
{
    return R(ROUNDING_SHARE<R> * (w->Lu.NumUpdates == 0 ? 1e-12 : 1e-11));
}

// SimplexOptimize on an existing record, which is not freed on an error (simplex.cpp).
[[nodiscard]] int simplex_run(sopt *s, const SimplexCall &call);
// Answers to the queries of a callback function during a run (simplex_query.cpp).
int simplex_answer(const void *record, int what, void *result);

// ---- sopt.cpp: the record ----
[[nodiscard]] int sopt_create(const ModelBody *body, TVXenv *env,
                              const SimplexTuning &tuning,
                              sopt **out); // scaled working LP, row copy; no basis yet
void sopt_refresh(sopt *s,
                  const SimplexCall &call); // tolerances, limits, counters for a new run
// The part of it that numeric trouble or a stall changes: counters, Markowitz tolerance, size of perturbations.
void sopt_forget_trouble(sopt *s);
// At the end of a run: sets Stopped and the fields after it. 0 or OUT_OF_MEMORY.
[[nodiscard]] int sopt_keep_stop(sopt *s);
// Called by the first method of a run: true if it continues a stopped run, whose perturbation is then restored.
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
row_copy_build(sopt *s); // allocates and links the row copy; all columns in the front parts
void row_copy_partition(sopt *s);     // fronts hold the nonbasics that may enter, by VStat
void row_copy_insert(sopt *s, int j); // column j may enter from now on
void row_copy_remove(sopt *s, int j); // column j became basic or fixed

// ---- start_basis.cpp ----
void start_slack_basis(sopt *s);
bool is_slack_basis(const sopt *s);
[[nodiscard]] int crash_equations(sopt *s); // improves a slack basis for the dual simplex
// Takes statuses [NumVars] (>= 0 basic). False and unchanged if the number of basic variables is not m.
bool start_from_statuses(sopt *s, const int *statuses);
void settle_nonbasics(sopt *s); // every nonbasic gets the status that its true bounds allow
// Nonbasics take their place from a point in user units: at a bound, or superbasic.
void start_from_point(sopt *s, const double *x, const double *slack);

// ---- primal_start.cpp ----
[[nodiscard]] int primal_start(sopt *s); // improves a slack basis for the primal simplex

// ---- basis.cpp: factor, solve for values ----
// Factors the basis; a singular basis is repaired with slacks. 0 or a code; may set Status.
template<class R> [[nodiscard]] int Refactor(sopt *s, swork<R> *w);
template<class R> void compute_row(sopt *s, swork<R> *w); // packed pivot row from Rho
template<class R> void load_column(const sopt *s, int j, SVec<R> *x); // x := column j
void set_basic_bounds(sopt *s); // BasicLower, BasicUpper
// Exchanges basic position r with nonbasic q; the leaving variable takes `status`.
void swap_basis(sopt *s, int r, int q, int status);
template<class R> bool wants_refactor(const sopt *s, const swork<R> *w);
bool wants_confirmation(const sopt *s); // a result needs fresh factors
// A pivot from updated factors was wrong: asks for a refactorisation with stricter pivots.
void distrust_factors(sopt *s);

// ---- values.cpp ----
template<class R>
void compute_primal(sopt *s, swork<R> *w); // Bbar from the nonbasics and the working bounds
template<class R> void refine_primal(sopt *s, swork<R> *w); // one refinement step for Bbar
template<class R> void refine_dual(sopt *s, swork<R> *w);   // one refinement step for Cbar
template<class R> void compute_dual(sopt *s, swork<R> *w);  // Cbar from WorkCost
template<class R> void compute_dual_for(sopt *s, swork<R> *w, const double *cost, R *cbar);
// Acts on the residuals of the last compute_primal and compute_dual: stricter pivots in the factors, or extended
// precision; may set Status.
template<class R> void judge_residuals(sopt *s, const swork<R> *w);
// Objective of the basis for the costs and bounds in force, in units of the working LP.
template<class R> double working_objective(const sopt *s, const swork<R> *w);

// ---- farkas.cpp ----
// True if the multipliers in Rho prove that no point within the true bounds satisfies the equations. They are refined
// with the factors, which should be fresh; Tau and Work are used.
template<class R> bool proves_infeasible(sopt *s, swork<R> *w);
// The same for a live record, by the row of the tableau in plain double arithmetic, where the gap is far above rounding
// errors. Otherwise false, which tells nothing. The multipliers stay in Rho.
template<class R> bool proves_simply(sopt *s, swork<R> *w);

// ---- ray.cpp ----
// True if the objective is proved to decrease without limit along the edge on which nonbasic q moves in `direction`.
// The factors have to be fresh; Alpha becomes column q of the tableau, Tau and Work are used.
template<class R> bool proves_unbounded(sopt *s, swork<R> *w, int q, int direction);

// ---- stall.cpp ----
void stall_reset(
    sopt *s); // the values of the phases are no longer comparable with earlier ones
// Counts a pass of the loop; too many of them without a refresh ask for one.
inline void stall_count_pass(sopt *s)
{
    const bool many = ++s->Stall.Passes > PASSES_PER_UPDATE * s->MaxUpdates + PASSES_LEAST;
    if (many && s->RefacReason == REFAC_NONE) s->RefacReason = REFAC_PASSES;
    if (s->RefacReason != REFAC_NONE) s->Stall.Passes = 0;
}
// Called with fresh factors and values: the remedy to take against a stall. The method applies STALL_COSTS and
// STALL_PERTURB, for the other remedies Status is set.
template<class R> StallRemedy stall_look(sopt *s, swork<R> *w);

// ---- finish.cpp ----
// True costs and bounds in force again, values and reduced costs computed for them.
template<class R> void finish_values(sopt *s, swork<R> *w);
// How far a basis is from being optimal, in user units. ObjectiveError estimates by how much the violations may change
// the objective, as a share of 1 + |objective|: the sum of the primal violations times the largest reduced cost, and
// the sum over the dual violations of each times the largest basic value, or the range of the variable if that is
// smaller.
struct UserViolation {
    double Largest = 0, ObjectiveError = 0;
    double Working = 0; // the violation of Largest in units of the working LP
};
struct UserViolations {
    UserViolation Primal, Dual;
};
template<class R> UserViolations measure_violations(const sopt *s, const swork<R> *w);

// ---- simplex.cpp ----
// Reduces FeasTol and OptTol so that violations above the parameters' tolerances, or that move the objective visibly,
// would have counted. False if there are none, or at the smallest tolerances. *primal: FeasTol was reduced.
bool tighten_tolerances(sopt *s, const UserViolations &v, bool *primal);

// ---- self_check.cpp ----
// With TARV_PAR_ITEST: recomputes what is updated from iteration to iteration and logs differences. The number of
// warnings.
enum class CheckPoint {
    FACTORED, // fresh factors, values and reduced costs
    COLUMN,   // Alpha is column q of the tableau, before the step
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
    double DualSum = 0;
    int PrimalCount = 0, DualCount = 0;
};
template<class R> Infeasibility measure_infeasibility(const sopt *s, const swork<R> *w);
// The value of the basis with true costs and bounds; in the box problem of phase 1 with its bounds, as a variable may
// stand at an upper bound there that it does not have.
template<class R> double true_objective(const sopt *s, const swork<R> *w);
