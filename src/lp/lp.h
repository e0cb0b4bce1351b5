// lp.h -- the face of this room: LpSolve, the solve of one linear program, and what may be asked of it
//
// States of LpSolve::status
//   TVX_LOADED    nothing solved: fresh, after lp_drop, or out of memory                        lp_drop, lp_solve
//   2 3 4 5       a final answer; `simplex` holds it, unless presolve has found a 3 or 4        lp_solve
//   6 12 13       the cutoff, numeric trouble: final as well                                    lp_solve
//   7 9 11        a limit: the next lp_solve goes on, from `form` if there is one, else from `simplex`
// The caller may change bounds of the body between two calls together with simplex_change_bound; any other change needs
// lp_drop_results, and the record `simplex` must go.
#pragma once
#include "body/body.h"
#include "body/quality.h"
#include "simplex/simplex.h"

struct LpForm; // form.h

struct LpResult {
    double runtime = 0;           // seconds
    Array<double> x;              // [numvars] point of a solver that leaves no simplex record, or empty
    Array<double> pi;             // [numconstrs] its duals, in the body's signs, or empty
    double objval = 0;            // in the caller's sense
    double itercount = 0;         // simplex iterations
    double reduced_itercount = 0; // of these, on a reduced model
    int bar_itercount = 0;
    Quality quality; // filled on first query
};

struct LpSolve {
    const ModelBody *body = nullptr; // not owned; set by each call of lp_solve
    TVXenv *env = nullptr;           // likewise
    int status = 0;
    double work = 0;            // deterministic effort of the last solve
    sopt *simplex = nullptr;    // owned; on the body itself
    LpResult *result = nullptr; // owned; of the last solve
    LpForm *form = nullptr;     // owned; where a limit has stopped a solve with presolve
};
void lp_drop_results(LpSolve *lp); // result and form; the simplex record stays
void lp_drop_form(LpSolve *lp);
void lp_drop_simplex(LpSolve *lp);
void lp_drop(LpSolve *lp); // all; status TVX_LOADED

// A start basis of the caller's.
struct LpGiven {
    const int *statuses = nullptr; // [n + m], or null: none
    const double *norms = nullptr; // [n + m] dual pricing norms, or null
    bool newer = false;            // than the last solve, so that it counts more than what that has left
};
// Solves lp->body with lp->env from where the last solve ended, the given basis, or scratch. Log lines of the result are
// the caller's (lp_log.h). 0 or OUT_OF_MEMORY: everything is dropped then. When a callback asks for a stop by a code of its
// own this returns 0 with status TVX_INTERRUPTED, and callback_code tells.
[[nodiscard]] int lp_solve(LpSolve *lp, const LpGiven &given);

// A limit or an interruption: the solve can go on.
inline bool is_limit(int status)
{
    return status == TVX_ITERATION_LIMIT || status == TVX_TIME_LIMIT ||
           status == TVX_INTERRUPTED;
}
// A point stands in the record or in the result.
bool lp_has_point(const LpSolve *lp);
// Fills result->quality if that has not been done since the solve. 0, TVX_ERROR_DATA_NOT_AVAILABLE or OUT_OF_MEMORY.
[[nodiscard]] int lp_quality(LpSolve *lp);
// The optimal basis gets fresh factors; where it is not optimal with them the dual runs on, and *changed is set. 0, a code,
// or OUT_OF_MEMORY: everything is dropped then.
[[nodiscard]] int lp_confirm(LpSolve *lp, bool *changed);

// "Solved in ..." or "Stopped in ...", with the seconds since `start`, and what the status means; under TVX_OPTIMAL with
// warnings when the unscaled solution violates the tolerances. 0 or OUT_OF_MEMORY of the measuring (lp_log.cpp).
[[nodiscard]] int lp_log_result(LpSolve *lp, double start);
