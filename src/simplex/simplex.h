// simplex.h -- the interface of the simplex folder
//
// The body is only read: scaling, sign changes of columns and the row copy are in the record `sopt`, which keeps the
// address of the body and is owned by the caller. All results are in the units and signs of the body ("user units").
#pragma once
#include "body/body.h"

struct sopt; // sopt.h

// METHOD_BY_START: primal simplex if the start basis is primal feasible, dual simplex if it is dual feasible, otherwise
// as METHOD_AUTO.
enum SimplexMethod {
    METHOD_BY_START = -2,
    METHOD_AUTO = -1,
    METHOD_PRIMAL = 0,
    METHOD_DUAL = 1
};

// Settings of a record that override the environment's parameters. The defaults override nothing.
struct SimplexTuning {
    enum Scaling { BY_PARAMETER, SCALED, UNSCALED } Scale = BY_PARAMETER;
    bool Extended = false;   // extended precision from the start
    double Tolerance = 1e-6; // upper limit of the feasibility and optimality tolerances
    double Markowitz = 0;    // lower limit of the Markowitz tolerance
    double Widen = 0;        // rows and bounds are widened by this, in user units
};

// Arguments of a run.
struct SimplexCall {
    SimplexMethod Method = METHOD_AUTO;
    // [n + m] start basis; null: that of the record, or slacks
    const int *Statuses = nullptr;
    const double *Norms = nullptr; // [n + m] dual steepest edge weights for it, or null
    const double *X = nullptr;     // [n] start point that places nonbasics, or null
    const double *Slack = nullptr; // [m] the slacks of this point
    double Iterations = 0;         // iterations of earlier stages of the same solve
    double Limit = 1e100;          // of the iterations, as IterationLimit, which counts too
    bool Inner = false;            // no callbacks, and IterationLimit does not count
    bool Cutoff = true;            // the environment's Cutoff applies to this body
    bool Root = false; // the root relaxation of a search: its log has a banner of its own
    double *Total = nullptr; // or gets the count at the end, also after OUT_OF_MEMORY
};
// Solves the LP relaxation of the body. *record is null or the record of earlier runs on this body; it then holds the
// status (simplex_status) and the result. 0, also for limits, infeasibility and numeric trouble; or OUT_OF_MEMORY: the
// record is freed then.
[[nodiscard]] int SimplexOptimize(sopt **record, const ModelBody *body, TVXenv *env,
                                  const SimplexCall &call);
// The same in a new record with these settings; the old record is freed.
[[nodiscard]] int SimplexRepeat(sopt **record, const ModelBody *body, TVXenv *env,
                                const SimplexCall &call, const SimplexTuning &tuning);
void simplex_free(sopt *s); // null is ignored
// Later calls on the record use this environment, because that of the last run no longer exists.
void simplex_set_env(sopt *s, TVXenv *env);

// Infeasibility proved only for values up to a limited size. Set when multipliers leave a small coefficient at a
// variable without a bound, so that some point far away might be feasible.
struct LimitedProof {
    // No point with values up to 1e12 is feasible. Beyond that doubles have an error above 1e-4 (2^-53 * 1e12), more
    // than the usual tolerances.
    bool Exact = false;
    // No point with values up to 1e9 is feasible with rows and bounds widened by FeasibilityTol.
    bool Widened = false;
};

// How reliable the status of the last run is, best first.
enum class Confidence {
    SURE,   // optimal within the tolerances in user units, proved, or a limit
    NARROW, // proved infeasible, but not with rows and bounds widened by FeasibilityTol
    UNSURE, // optimal or unbounded, but the point violates tolerances in user units
    NONE    // no answer
};
struct SimplexAssessment {
    Confidence Level = Confidence::NONE;
    double Excess = 0; // optimal or unbounded: largest violation divided by its tolerance
    // Optimal: estimated change of the objective by violations, divided by the change that users would see
    // (OBJECTIVE_ERROR_VISIBLE).
    double ObjectiveError = 0;
    // Optimal, SimplexTuning::Widen > 0: estimated change of the objective by widening, as a share of 1 + |objective|.
    double Moved = 0;
    bool ByRay = false;   // unbounded along a ray, not because of bounds at infinity
    LimitedProof Limited; // of all multipliers tried in the run
};
SimplexAssessment simplex_assess(const sopt *s);
// The proof of an infeasible status: row multipliers [m]; of an unbounded status: a ray [n] (body/certificate.h). False
// if there is no such proof.
[[nodiscard]] bool simplex_get_farkas(const sopt *s, double *farkas);
[[nodiscard]] bool simplex_get_ray(const sopt *s, double *ray);
bool simplex_is_tuned(const sopt *s); // some SimplexTuning differs from its default
// Sets the iteration count of the record, to include iterations of other records.
void simplex_count_on(sopt *s, double iterations);
// Replaces the status after a run, for a caller that has found out more: infeasible after a LimitedProof, numeric
// trouble, or a limit.
void simplex_declare(sopt *s, int status);

// Results of the last run; any out pointer may be null. None can fail.
void simplex_get_primal(const sopt *s, double *x); // [n]
void simplex_get_dual(const sopt *s, double *pi,
                      double *rc); // [m] and [n], for the body's minimisation
void simplex_get_basis(const sopt *s, int *statuses); // [n + m] as in WarmStart
double simplex_objective(const sopt *s); // minimisation form, constant included
double simplex_iterations(const sopt *s);
double simplex_work_units(const sopt *s); // since the record was created
// Work units since the last call of this function, so that a sum over calls counts each unit once.
double simplex_take_work(sopt *s);
int simplex_factorizations(const sopt *s);
int simplex_status(const sopt *s); // status of its last run
// Scale factors: scaled column j = col[j] * column, scaled row i = row[i] * row; null when unscaled.
void simplex_get_scaling(const sopt *s, const double **row, const double **col,
                         double *obj);
// Pricing norms held: 0 none, 1 dual, 2 primal kind; norms [n + m] may be null.
int simplex_get_norms(const sopt *s, double *norms);

// After an optimum: slacks of the equations i with rows[i] != 0 [m] leave the basis where that is possible. The basis
// stays optimal and the point does not change. 0 or a code.
[[nodiscard]] int simplex_release_slacks(sopt *s, const char *rows);

void simplex_log_final(const sopt *s); // the closing line of an optimal run

// Refactorisation after a run, so that the factors are fresh. 0 or a code.
[[nodiscard]] int simplex_refactor(sopt *s);
// The same for an optimal record. *optimal: the basis is optimal with fresh factors too; if not, SimplexOptimize has to
// run again.
[[nodiscard]] int simplex_confirm(sopt *s, bool *optimal);

// ---- Ranging of an optimal basis (ranging.cpp) ----
// For a record with fresh factors; simplex_range_begin is called once after the solve, the others then for any element.
// Longest steps down and up that keep the basis optimal (cost) or feasible (value), in user units; UNDEFINED_VALUE: no
// limit.
struct RangeSteps {
    double Down, Up;
};
bool simplex_has_factor(const sopt *s); // of the current basis
bool simplex_has_fresh_factor(const sopt *s);
void simplex_range_begin(sopt *s);
// Steps of the cost of variable j for which the basis stays optimal.
RangeSteps simplex_range_cost(sopt *s, int j);
// Steps of the value of nonbasic k (n + i: slack of row i) for which the basic variables stay within their bounds.
RangeSteps simplex_range_value(sopt *s, int k);
// Status of variable k. A fixed nonbasic counts as being at the bound that its reduced cost asks for, if any.
enum class Place { BASIC, LOWER, UPPER, FREE, FIXED };
struct VariablePlace {
    Place At;
    double Value; // in the body's units
};
VariablePlace simplex_place(const sopt *s, int k);

// Estimate (a lower bound) of the condition number of the scaled basis (condition.cpp); needs factors. In 1 to
// UNDEFINED_VALUE; larger values become UNDEFINED_VALUE. 0 or OUT_OF_MEMORY.
enum class KappaNorm { ONE, TWO };
[[nodiscard]] int simplex_kappa(sopt *s, KappaNorm norm, double *kappa);

// ---- Strong branching on an optimal record with factors (strong_branch.cpp) ----
// open saves the state; each probe tightens one bound, runs the dual simplex up to a limit, and restores the state;
// close leaves the record as open has left it. Between open and close the record is used for nothing else. Probes
// allocate until the records of their pivots have room, and if factors grow beyond their pools.
struct StrongBranch;
enum class BranchSide { DOWN, UP }; // variable <= bound, variable >= bound
struct BranchOutcome {
    int Status; // SIMPLEX_OPTIMAL, INFEASIBLE, CUTOFF, a limit, or NUMERIC
    // Objective as simplex_objective, always finite: of SIMPLEX_OPTIMAL the optimum, less what reduced costs of the
    // wrong sign within the smallest tolerance may add; of limits and NUMERIC a lower bound; without meaning for
    // INFEASIBLE and CUTOFF.
    double Value;
    double Iterations; // of the probe
};
// The branch has no solution, or none better than the cutoff. Told by the status, since any number may be an objective.
inline bool branch_is_closed(const BranchOutcome &outcome)
{
    return outcome.Status == TVX_INFEASIBLE || outcome.Status == TVX_CUTOFF;
}
// 0 or a code: the record may only be freed then. A live record that is not optimal with its rows, or stale, is solved
// first; *out is null if it is not optimal then. The cutoff is that of the last solve.
[[nodiscard]] int strong_branch_open(sopt *s, StrongBranch **out);
[[nodiscard]] int strong_branch_probe(StrongBranch *branch, int j, BranchSide side,
                                      double bound, double iteration_limit,
                                      BranchOutcome *outcome); // likewise
void strong_branch_close(StrongBranch *branch);                // null is ignored

// For a record between two runs of SimplexOptimize; a live one gets its bounds with simplex_resolve (resolve.h).
// The bounds of structural variable j changed in the body. True: the record was changed likewise. False: it could not
// be (the variable becomes or stops being free, or keeps only an upper bound); the caller then has to free the record.
[[nodiscard]] bool simplex_change_bound(sopt *s, int j, double lb, double ub);
