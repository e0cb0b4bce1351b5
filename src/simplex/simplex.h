// simplex.h -- the face of the simplex subsystem
//
// The body is only read: scaling, sign flips of columns and the row copy live in the record `sopt`, which keeps the address
// of the body and belongs to the caller. Everything handed out is in the body's own units and signs.
#pragma once
#include "body/body.h"

struct sopt; // sopt.h

// METHOD_BY_START: the primal from a start basis that is primal feasible, the dual from one that is dual feasible, else
// as METHOD_AUTO.
enum SimplexMethod {
    METHOD_BY_START = -2,
    METHOD_AUTO = -1,
    METHOD_PRIMAL = 0,
    METHOD_DUAL = 1
};

// How a record is built and run where that is not the environment's choice. The default is the environment's.
struct SimplexTuning {
    enum Scaling { BY_PARAMETER, SCALED, UNSCALED } Scale = BY_PARAMETER;
    bool Extended = false;   // from the start in extended precision
    double Tolerance = 1e-6; // feasibility and optimality tolerances are at most this
    double Markowitz = 0;    // pivots in the factors are at least this strict
    double Widen = 0;        // rows and bounds are held wider by this, in the user's units
};

// What a run is asked for.
struct SimplexCall {
    int Method = METHOD_AUTO;
    const int *Statuses =
        nullptr; // [n + m] start basis; null: that of the record, or slacks
    const double *Norms = nullptr; // [n + m] dual pricing norms that belong to it, or null
    const double *X = nullptr;     // [n] start point that classifies nonbasics, or null
    const double *Slack = nullptr; // [m] likewise
    double Iterations = 0;         // that earlier stages of the same solve took
    bool Cutoff = true;            // the Cutoff of the environment is one for this body
};
// Solves the LP relaxation of the body. *record is null or the record of earlier runs on this body; it holds the result,
// simplex_status first. 0 (limits, infeasibility and numeric trouble too), or OUT_OF_MEMORY: the record is freed then.
[[nodiscard]] int SimplexOptimize(sopt **record, const ModelBody *body, TVXenv *env,
                                  const SimplexCall &call);
// The same in a new record, built and run otherwise than the environment says.
[[nodiscard]] int SimplexRepeat(sopt **record, const ModelBody *body, TVXenv *env,
                                const SimplexCall &call, const SimplexTuning &tuning);
void simplex_free(sopt *s); // null is ignored
// That of the last run is no longer there: later calls on the record use this one.
void simplex_set_env(sopt *s, TVXenv *env);

// What multipliers show that do not prove the model infeasible for values of any size.
struct LimitedProof {
    // No point up to 1e12 is feasible: doubles cannot hold those beyond within a usual tolerance.
    bool Exact = false;
    // No point up to 1e9 comes within the tolerance of feasibility.
    bool Widened = false;
};

// How well the status of the last run is founded, best first.
enum class Confidence {
    SURE,   // optimal within the tolerances in the user's units, proved, or a limit
    NARROW, // proved infeasible, but not if rows and bounds were held wider by the tolerance
    UNSURE, // optimal or unbounded, but the point violates tolerances in the user's units
    NONE    // no answer
};
struct SimplexAssessment {
    Confidence Level = Confidence::NONE;
    double Excess = 0; // UNSURE: largest violation over its tolerance
    // Optimal: what violations may stand for in the objective, over what users would see of it.
    double ObjectiveError = 0;
    double Moved =
        0; // optimal, of a widened run: share of the objective that the wider rows and bounds may have brought
    bool ByRay = false;   // unbounded along a ray, not by bounds at infinity
    LimitedProof Limited; // of the run
};
SimplexAssessment simplex_assess(const sopt *s);
// What proves an infeasible status: multipliers of the rows [m], an unbounded one: a ray [n] (body/certificate.h).
// False when there is no such proof.
[[nodiscard]] bool simplex_get_farkas(const sopt *s, double *farkas);
[[nodiscard]] bool simplex_get_ray(const sopt *s, double *ray);
bool simplex_is_tuned(const sopt *s); // built or run otherwise than the environment says
void simplex_count_on(sopt *s,
                      double iterations); // as if the last run had ended with that count
// What the looks after a run found instead of its status: infeasible after LimitedProof, or numeric trouble.
void simplex_declare(sopt *s, int status);

// Results of the last run; any out pointer may be null. None can fail.
void simplex_get_primal(const sopt *s, double *x); // [n]
void simplex_get_dual(const sopt *s, double *pi,
                      double *rc); // [m] and [n], for the body's minimisation
void simplex_get_basis(const sopt *s, int *statuses); // [n + m] as in WarmStart
double simplex_objective(const sopt *s); // minimisation form, constant included
double simplex_iterations(const sopt *s);
double simplex_work_units(const sopt *s); // in the life of the record
// Those since this was last called: so each is counted once, whether the record is freed or lives on.
double simplex_take_work(sopt *s);
int simplex_factorizations(const sopt *s);
// A run in progress: the figures of a line of its log, in the caller's sense. cost: a pass over the variables
struct SimplexProgress {
    double objective, primal_infeasibility, dual_infeasibility;
};
SimplexProgress simplex_progress(const sopt *s);
int simplex_perturbed(
    const sopt *s);                // 0 not at all, 1 single costs or bounds, 2 all of them
int simplex_status(const sopt *s); // status of its last run
double simplex_markowitz_tol(const sopt *s); // in force at the end of the last run
// Scale factors: scaled column j = col[j] * column, scaled row i = row[i] * row; null when unscaled.
void simplex_get_scaling(const sopt *s, const double **row, const double **col,
                         double *obj);
// Pricing norms held: 0 none, 1 dual, 2 primal kind; norms [n + m] may be null.
int simplex_get_norms(const sopt *s, double *norms);

// After an optimum: slacks of the equations i with rows[i] != 0 [m] leave the basis where that is possible. The basis
// stays optimal, the point stays where it is. 0 or a code.
[[nodiscard]] int simplex_release_slacks(sopt *s, const char *rows);

void simplex_log_final(const sopt *s); // the closing line of an optimal run

// Refactors a finished record so that later calls find a fresh factor. 0 or a code.
[[nodiscard]] int simplex_refactor(sopt *s);
// The same for an optimal record, and whether it is optimal with them too; if not, SimplexOptimize has to run again.
[[nodiscard]] int simplex_confirm(sopt *s, bool *optimal);

// ---- Ranging of an optimal basis (ranging.cpp) ----
// For a record with fresh factors; begin is called once after the solve, the others then for any element.
// Steps down and up that leave the basis as good as it is, in the body's units and signs; UNDEFINED_VALUE: any step.
struct RangeSteps {
    double Down, Up;
};
bool simplex_has_factor(const sopt *s); // of the basis at hand
bool simplex_has_fresh_factor(const sopt *s);
void simplex_range_begin(sopt *s);
RangeSteps simplex_range_cost(sopt *s,
                              int j); // of the cost of variable j: it stays optimal
// Of the value of nonbasic k (n + i: slack of row i), were it free to move: the basics stay within their bounds.
RangeSteps simplex_range_value(sopt *s, int k);
// Where variable k stands. A fixed nonbasic stands at the bound that its reduced cost pushes it to, if any.
enum class Place { BASIC, LOWER, UPPER, FREE, FIXED };
struct VariablePlace {
    Place At;
    double Value; // in the body's units
};
VariablePlace simplex_place(const sopt *s, int k);

// The condition of the scaled basis, estimated from below (condition.cpp); needs factors. 1 to UNDEFINED_VALUE, which
// stands for all beyond. 0 or OUT_OF_MEMORY.
enum class KappaNorm { ONE, TWO };
[[nodiscard]] int simplex_kappa(sopt *s, KappaNorm norm, double *kappa);

// ---- Strong branching on a live optimal record with fresh factors (strong_branch.cpp) ----
// open keeps the state; each probe tightens one bound, lets the dual run for a while, and brings the state back; close
// leaves the record as it was. Between open and close the record is used for nothing else. Probes allocate only when
// factors outgrow their room.
struct StrongBranch;
enum class BranchSide { DOWN, UP }; // variable <= bound, variable >= bound
struct BranchOutcome {
    int Status; // of the run: 2, 3 or 6 (no better than infeasible), or 7, 9, 11, 12: where it stopped
    // Objective as simplex_objective, always finite: exact with 2, else a lower bound. Of 3 and 6 it tells nothing.
    double Value;
    double Iterations;
};
// No solution there, or none worth having: no value means that, as an objective may be any number.
inline bool branch_is_closed(const BranchOutcome &outcome)
{
    return outcome.Status == TVX_INFEASIBLE || outcome.Status == TVX_CUTOFF;
}
[[nodiscard]] int strong_branch_open(sopt *s, StrongBranch **out); // 0 or OUT_OF_MEMORY
[[nodiscard]] int strong_branch_probe(StrongBranch *branch, int j, BranchSide side,
                                      double bound, double iteration_limit,
                                      BranchOutcome *outcome); // likewise
void strong_branch_close(StrongBranch *branch);                // null is ignored

// A bound of structural j changed in the body. Moves the live record along and returns true, or returns false
// when the record cannot follow (the variable becomes or stops being free): the caller then drops it.
[[nodiscard]] bool simplex_change_bound(sopt *s, int j, double lb, double ub);
