// lp.h -- the interface of this folder: LpSolve, the solve of one linear program, and what may be asked of it
//
// LpSolve::status     what it means                                         set by
//   TVX_LOADED        nothing is solved                                     lp_set_loaded, lp_drop, lp_bound_changed
//   0                 likewise; an update of the model has failed           lp_set_broken
//   2 5 6 12 13       final; `simplex` holds the answer                     lp_solve, lp_confirm
//   3 4               final; `simplex` holds the proof, or there is no      lp_solve
//                     record: presolve or an impossible row has told
//   7 9 11            a limit; the next lp_solve goes on from `form`, else  lp_solve, lp_confirm
//                     from `simplex`, unless a newer basis is given
// A change of the body between two calls needs lp_bound_changed, or lp_drop.
#pragma once
#include "body/body.h"
#include "body/quality.h"
#include "simplex/simplex.h"

struct LpForm;  // lp_form.h
struct LpClaim; // presolve/presolve.h

struct LpResult {
    int has_point = 0;    // x holds the point of a solver that leaves no simplex record
    int has_duals = 0;    // and pi its duals
    Array<double> x;      // [numvars]
    Array<double> pi;     // [numconstrs] in the body's signs
    double objval = 0;    // in the caller's sense
    double itercount = 0; // simplex iterations
    double reduced_itercount = 0; // of these, on a reduced model
    int bar_itercount = 0;        // barrier iterations
    Quality quality;              // filled on first query
};

struct LpSolve {
    const ModelBody *body = nullptr; // of the last lp_solve; not owned
    TVXenv *env = nullptr;           // likewise
    int status = 0;
    double work = 0; // deterministic effort of the last solve
    // iterations of the last solve if it ran out of memory, for its closing line
    double lost_iterations = 0;
    sopt *simplex = nullptr;    // owned; on the body itself
    LpResult *result = nullptr; // owned; of the last solve
    LpForm *form = nullptr;     // owned; where a limit has stopped a solve with presolve
    int version = 0;            // counts up whenever the point may have become another one
    // Gets each reduced model before its solve when TARV_PAR_WRITEPREMODEL asks for it; or null. May not change
    // anything.
    void (*write_reduced)(const ModelBody *reduced, TVXenv *env) = nullptr;
};
void lp_set_loaded(LpSolve *lp); // the model is new, or another one than was solved
void lp_set_broken(LpSolve *lp);
void lp_drop_results(LpSolve *lp); // result and form; the simplex record stays
void lp_drop_form(LpSolve *lp);
void lp_drop_simplex(LpSolve *lp);
void lp_drop(LpSolve *lp); // all; status TVX_LOADED

// A start basis of the caller's.
struct LpGiven {
    const int *statuses = nullptr; // [n + m], or null: none
    const double *norms = nullptr; // [n + m] dual pricing norms, or null
    // it was set after the last solve, and so counts more than what that has left
    bool newer = false;
    bool root =
        false; // the LP is the root relaxation of a search: its log has a banner of its own
};
// Solves the body from where the last solve ended, the given basis, or scratch. lp_log_result writes the lines of the
// result. 0 or OUT_OF_MEMORY: everything is dropped then. When a callback asks for a stop by a code of its
// own this returns 0 with status TVX_INTERRUPTED, and callback_code tells.
[[nodiscard]] int lp_solve(LpSolve *lp, const ModelBody *body, TVXenv *env,
                           const LpGiven &given);
// A bound of variable j has changed in the body: the next solve goes on from the live record. False when the record
// cannot follow (the variable becomes or stops being free); it is left as it was then, for its basis, and has to be
// dropped.
[[nodiscard]] bool lp_bound_changed(LpSolve *lp, int j);

// A limit or an interruption: the solve can go on.
inline bool is_limit(int status)
{
    return status == TVX_ITERATION_LIMIT || status == TVX_TIME_LIMIT ||
           status == TVX_INTERRUPTED;
}
// A point stands in the record or in the result; and so do duals.
bool lp_has_point(const LpSolve *lp);
bool lp_has_duals(const LpSolve *lp);
void lp_get_x(const LpSolve *lp, double *x); // [n]
void lp_get_duals(const LpSolve *lp, double *pi,
                  double *rc); // [m], [n], in the body's signs
// Fills result->quality if that has not been done since the solve. 0, TVX_ERROR_DATA_NOT_AVAILABLE or OUT_OF_MEMORY.
[[nodiscard]] int lp_quality(LpSolve *lp);
// The optimal basis gets fresh factors; where it is not optimal with them the dual runs on, and *changed is set. 0, a
// code, or OUT_OF_MEMORY: everything is dropped then.
[[nodiscard]] int lp_confirm(LpSolve *lp, bool *changed);

// Does the claim of a presolve of this body prove that the model has no optimum? Infeasibility counts when it is there
// with all rows and bounds relaxed by FeasibilityTol. 0 or OUT_OF_MEMORY (lp_claim.cpp).
[[nodiscard]] int lp_presolve_claim_holds(const ModelBody *body, const TVXenv *env,
                                          const LpClaim *claim, bool *holds);

// "Solved in ..." or "Stopped in ...", with the seconds since `start`, and what the status means; under TVX_OPTIMAL
// with warnings when the unscaled solution violates the tolerances. 0 or OUT_OF_MEMORY of the measuring (lp_log.cpp).
[[nodiscard]] int lp_log_result(LpSolve *lp, double start);
