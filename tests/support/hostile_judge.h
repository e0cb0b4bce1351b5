// hostile_judge.h -- is the outcome of a hostile LP right, by exact arithmetic?
//
// Problem     Right-hand sides are rounded and solvers work to tolerances: a model may be infeasible as written and
//             still have a point that breaks nothing by more than 1e-9. What may a solver say about it?
// Rules       The truth is exact (rational_solve), of the model as written and of the model whose rows and bounds give
//             way by 1e-9, by the run's FeasibilityTol, and by twice that.
//               infeasible            wrong when there is a point within 1e-9
//               infeasible/unbounded  wrong when the model has an optimum within 1e-9
//               unbounded             wrong without a ray, or without a point within FeasibilityTol
//               optimal               wrong when nothing is feasible within 2 FeasibilityTol; when X, or Pi and RC,
//                                     break a tolerance in the caller's units and no warning says so; when the
//                                     objective is off by more than the tolerances can explain (see below)
//             A point counts where doubles can hold it: rounded to doubles it violates FeasibilityTol nowhere, in exact
//             arithmetic, nor when coefficients such as 1/3 move within their own rounding. Columns that are parallel
//             but for rounding of 1/3 meet at 1e16, if anywhere; what is said of such a model is "far", not wrong. So
//             is "unbounded" where a ray violates rows by the rounding of their coefficients alone.
//             A numeric error, an endless run and a slow one are faults of their own. Not wrong, but counted: a
//             violation that a warning names, and a value further than 1e-6 from the exact one that is explained.
// Explained   With multipliers pi and reduced costs d = c - pi A, for any feasible x*:
//               c x - c x* = sum pi_i (a_i x - a_i x*) + sum d_j (x_j - x*_j)
//             A term whose activity or column stands at the bound it prices, within FeasibilityTol, adds at most its
//             multiplier times that distance; any other multiplier counts up to OptimalityTol only.
#pragma once
#include "support/lp_tarvex.h"
#include "support/rational_lp.h"
#include <map>
#include <string>

enum class Verdict {
    RIGHT,
    LOOSE, // right, value further than 1e-6 from the exact one, within what the tolerances explain
    WARNED,          // optimal with violations above the tolerance that a warning names
    GROSS,           // the same, with violations above 1000 times the tolerance
    FAR,             // refused or unbounded, where doubles cannot hold what says otherwise
    REFUSED,         // infeasible although a point is feasible within 1e-9
    REFUSED_EITHER,  // infeasible or unbounded although there is an optimum within 1e-9
    FALSE_UNBOUNDED, // unbounded without a ray
    FALSE_OPTIMAL,   // optimal although infeasible within 2 FeasibilityTol
    SILENT,          // optimal with violations above the tolerance that no warning names
    OBJECTIVE,       // optimal with a value that the tolerances do not explain
    NUMERIC,         // status 12
    RUNAWAY,         // more than 50 iterations per row and column
    SLOW,            // more than 10 seconds
    OTHER,           // an error code or a status that no solve without limits ends in
    COUNT
};
const char *verdict_name(Verdict verdict);
inline bool verdict_wrong(Verdict verdict)
{
    return verdict > Verdict::FAR;
}

inline constexpr double HOSTILE_RUNAWAY = 50; // iterations per row and column
inline constexpr double HOSTILE_SECONDS = 10;

// A model and its exact answers so far, by relaxation.
struct HostileTruth {
    const LpModel *lp;
    std::map<double, RationalResult> answers;
    explicit HostileTruth(const LpModel *model) : lp(model) {}
    const RationalResult &relaxed(double relax);
};

// What a solver said, ours or another.
struct HostileOutcome {
    int error = 0; // of a call, with its message
    std::string message;
    LpSolution solution; // status in our numbers; x and, with has_duals, pi and rc
    bool has_duals = true;
    double seconds = 0;
    double feasibility = 1e-6, optimality = 1e-6; // tolerances of the run
    double rounding = 1e-17; // of sums of numbers reported, relative to their terms
    bool warned_primal = false, warned_dual = false;
};

struct HostileJudgement {
    Verdict verdict = Verdict::RIGHT;
    std::string text;                    // one line on what is wrong
    double primal_vio = 0, dual_vio = 0; // under status 2, in the caller's units
};

HostileOutcome hostile_solve(TVXenv *env, const LpModel *lp, const Settings &settings);
HostileJudgement hostile_judge(HostileTruth *truth, const HostileOutcome *outcome);
