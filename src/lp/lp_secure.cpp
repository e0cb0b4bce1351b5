// lp_secure.cpp -- solves a model with the simplex, and again in other ways while the answer is not sure
//
// Problem     A run may end in numeric trouble, at a point that violates the tolerances in user units, or infeasible or
//             unbounded without a proof.
// Method      An answer is sure if it is optimal within the tolerances in user units, proved, or a limit. Otherwise the
//             model is solved again in the ways of the table WAYS, in order, until an answer is sure: from the best
//             basis in extended precision, by the other method, with scaling turned on or off, with both; last with
//             rows and bounds widened within the tolerance, since rounding of the data may make a feasible model
//             infeasible. If no answer is sure, the best one is the result, and the closing lines report its
//             violations. Without any answer, multipliers that prove infeasibility for values up to a limited size
//             (LimitedProof) suffice.
// Invariant   A limit ends the attempts, and the best point is kept. If it is SURE, or ROUNDED within the tolerances,
//             its status is the result, else that of the limit, and the next solve continues from the point. If that
//             solve is stopped too without a better answer, the best one is the result, so repeated calls terminate.
// Cost        If the first answer is sure: the violations, which the closing lines need anyway.
#include "lp/lp_secure.h"
#include "lp/lp_claim.h"
#include "lp/lp_credible.h"
#include "lp/lp_run.h"
#include <algorithm>
#include <cmath>
#include <tuple>

namespace
{
enum Begin { BEST_BASIS, SLACKS };

struct Way {
    Begin begin;                 // BEST_BASIS: only if there is one
    bool other_method;           // than that of the first run
    bool turn_scaling;           // off if it is on by the parameter, and conversely
    bool extended;               // in extended precision
    bool widen;                  // rows and bounds are widened
    double tolerance, markowitz; // of SimplexTuning
};

constexpr double TIGHT = 1e-9; // tolerance: scaling may enlarge violations in user units
constexpr double USUAL = 1e-6; // tolerance, the default
constexpr double STRICT = 0.9; // Markowitz tolerance
// change of the objective by widening, at most: else it is another model
constexpr double MOVED_MOST = 0.1;
// of FeasibilityTol; the rest is the tolerance of the run
constexpr double WIDEN_SHARE = 0.5;

constexpr Way WAYS[] = {
    {BEST_BASIS, false, false, true, false, TIGHT, 0},
    {SLACKS, true, false, false, false, USUAL, 0},
    {SLACKS, false, true, false, false, USUAL, 0},
    {SLACKS, true, true, false, false, USUAL, 0},
    {SLACKS, true, true, true, false, TIGHT, STRICT},
    {SLACKS, false, false, true, false, TIGHT, STRICT},
    {SLACKS, false, false, true, true, TIGHT, STRICT},
};

constexpr int SMALL_MODEL = 5000; // entries
// Iterations of all further ways on larger models, relative to the first run.
constexpr double EFFORT_SHARE = 3, EFFORT_LEAST = 1000;
// violation over its tolerance from which lp_credible decides
constexpr double GROSS_EXCESS = 1000;

// Answers, best first.
enum class Grade {
    SURE,
    // As SURE, but as doubles the point violates tolerances in the user's units, or its violations may be a visible
    // part of the objective.
    ROUNDED,
    NARROW, // proved infeasible, but not if rows and bounds were relaxed by the tolerance
    UNSURE, // optimal at a point that violates tolerances, or a proved ray without a feasible point
    NONE
};

struct Answer {
    Grade grade = Grade::NONE;
    double excess = 0; // largest violation over its tolerance
    // possible change of the objective by violations (simplex.h)
    double objective_error = 0;
    bool is_better_than(const Answer &other) const
    {
        const double more = std::max(1.0, excess), less = std::max(1.0, other.excess);
        return std::tie(grade, more, objective_error) <
               std::tie(other.grade, less, other.objective_error);
    }
};

struct Best {
    Answer answer;
    sopt *record = nullptr; // of the best answer if it is not that of the last run; owned
    int status = TVX_NUMERIC;
    // The solve began where a limit had stopped the last one, and its first run made no iteration.
    bool repeated = false;
    LimitedProof limited; // of all runs
    ~Best() { simplex_free(record); }
};

Grade grade_of(Confidence level)
{
    switch (level) {
    case Confidence::SURE:
        return Grade::SURE;
    case Confidence::NARROW:
        return Grade::NARROW;
    case Confidence::UNSURE:
        return Grade::UNSURE;
    case Confidence::NONE:
        break;
    }
    return Grade::NONE;
}

// The violations of the point in the model as given.
int look_as_caller(LpSolve *lp, Answer *answer)
{
    const TVXenv *env = lp->env;
    lp->result->quality = Quality{};
    if (lp->status != TVX_OPTIMAL || env->TARV_PAR_UNSCALEDVIO == 0) return 0;
    TRY(lp_quality(lp));
    const Quality *q = &lp->result->quality;
    answer->excess = std::max({q->BoundVio.max / env->FeasibilityTol,
                               q->ConstrVio.max / env->FeasibilityTol,
                               q->DualVio.max / env->OptimalityTol});
    const bool within = answer->excess <= 1;
    if (answer->grade == Grade::UNSURE && within && simplex_is_tuned(lp->simplex))
        answer->grade = Grade::SURE; // the record itself may be stricter
    const bool visible = answer->objective_error > 1 && lp->body->numnz <= SMALL_MODEL;
    if (answer->grade == Grade::SURE && (!within || visible))
        answer->grade = Grade::ROUNDED;
    return 0;
}

// An optimal point with violations of the size of the numbers themselves is no answer.
int refuse_gross(LpSolve *lp, Answer *answer)
{
    bool credible = true;
    if (lp->status != TVX_OPTIMAL) return 0;
    const bool usual =
        answer->excess <= GROSS_EXCESS && std::isfinite(simplex_objective(lp->simplex));
    if (!usual || lp->env->TARV_PAR_UNSCALEDVIO == 0) TRY(lp_credible(lp, &credible));
    if (!credible) answer->grade = Grade::NONE;
    return 0;
}

// Unbounded: the ray, and the feasible point it starts from, are checked on the model as given.
int look_at_ray(LpSolve *lp, bool by_ray, Answer *answer)
{
    bool holds = true;
    if (lp->status != TVX_UNBOUNDED || !by_ray) return 0;
    TRY(lp_ray_holds(lp, &holds));
    if (!holds) answer->grade = Grade::NONE;
    if (answer->grade != Grade::SURE) return 0;
    TRY(lp_point_holds(lp, &holds));
    if (!holds) answer->grade = Grade::UNSURE;
    return 0;
}

// Grades the answer of the last run. If it is the best so far, the record of the former best is freed.
int note(LpSolve *lp, Best *best)
{
    if (is_limit(lp->status) && best->answer.grade != Grade::NONE) return 0;
    const SimplexAssessment a = simplex_assess(lp->simplex);
    Answer answer = {grade_of(a.Level), a.Excess, a.ObjectiveError};
    TRY(look_as_caller(lp, &answer));
    TRY(refuse_gross(lp, &answer));
    if (!(a.Moved <= MOVED_MOST)) answer.grade = Grade::NONE;
    TRY(look_at_ray(lp, a.ByRay, &answer));
    best->limited.Exact |= a.Limited.Exact;
    best->limited.Widened |= a.Limited.Widened;
    if (answer.grade == Grade::NONE || !answer.is_better_than(best->answer)) return 0;
    simplex_free(best->record);
    best->record = nullptr;
    best->answer = answer;
    best->status = lp->status;
    return 0;
}

bool applies(const TVXenv *env, const Way &way, const Best &best)
{
    if (way.extended && env->Quad == 0 && !way.widen) return false;
    const bool contradicts =
        best.answer.grade == Grade::NARROW || best.limited.Exact || best.limited.Widened;
    if (way.widen && contradicts) return false; // the model is infeasible as it stands
    return way.begin != BEST_BASIS || best.answer.grade == Grade::ROUNDED ||
           best.answer.grade == Grade::UNSURE;
}

SimplexTuning tuning_of(const TVXenv *env, const Way &way)
{
    SimplexTuning t;
    if (way.turn_scaling)
        t.Scale = env->ScaleFlag ? SimplexTuning::UNSCALED : SimplexTuning::SCALED;
    t.Extended = way.extended && env->Quad != 0;
    t.Tolerance = way.tolerance;
    t.Markowitz = way.markowitz;
    if (way.widen) t.Widen = WIDEN_SHARE * env->FeasibilityTol;
    return t;
}

// Before the next run: the record of the last one is kept if it has the best answer, else freed.
void set_aside(LpSolve *lp, Best *best)
{
    lp->result->itercount = simplex_iterations(lp->simplex);
    lp->work += simplex_take_work(lp->simplex);
    if (best->answer.grade != Grade::NONE && !best->record)
        best->record = lp->simplex;
    else
        simplex_free(lp->simplex);
    lp->simplex = nullptr;
}

// Replaces the status of the run by what was found out after it.
void declare(LpSolve *lp, int status)
{
    simplex_declare(lp->simplex, status);
    lp->status = status;
}

int try_way(LpSolve *lp, const Way &way, SimplexMethod method, Best *best)
{
    Array<int> basis;
    if (way.begin == BEST_BASIS) {
        TRY(array_resize(&basis, int64_t{lp->body->numvars} + lp->body->numconstrs));
        simplex_get_basis(best->record ? best->record : lp->simplex, basis.data);
        method = METHOD_BY_START;
    } else if (way.other_method) {
        method = method == METHOD_DUAL ? METHOD_PRIMAL : METHOD_DUAL;
    }
    set_aside(lp, best);
    lp->status = TVX_LOADED; // in a callback the solve is running
    const SimplexCall call = {.Method = method,
                              .Statuses = basis.size > 0 ? basis.data : nullptr,
                              .Iterations = lp->result->itercount,
                              .Total = &lp->result->itercount};
    TRY(SimplexRepeat(&lp->simplex, lp->body, lp->env, call, tuning_of(lp->env, way)));
    lp->status = simplex_status(lp->simplex);
    lp->version++;
    return note(lp, best);
}

// A ROUNDED answer cannot always be improved: more than one way is tried on small models only.
bool is_good_enough(const LpSolve *lp, const Best &best, int tried)
{
    const bool small = lp->body->numnz <= SMALL_MODEL;
    return best.answer.grade == Grade::SURE ||
           (best.answer.grade == Grade::ROUNDED && !small && tried > 0);
}

// On a large model with some answer the number of further iterations is limited.
bool is_spent(const LpSolve *lp, const Best &best, double first_iterations)
{
    if (best.answer.grade == Grade::NONE || lp->body->numnz <= SMALL_MODEL) return false;
    const double now = simplex_iterations(lp->simplex);
    return now - first_iterations > EFFORT_SHARE * first_iterations + EFFORT_LEAST;
}

// The result although a limit has stopped the attempts.
bool is_final(const Answer &answer)
{
    return answer.grade == Grade::SURE ||
           (answer.grade == Grade::ROUNDED && answer.excess <= 1);
}

bool limited_proof_suffices(const Best &best)
{
    if (best.answer.grade == Grade::NONE) return best.limited.Exact;
    return best.answer.grade == Grade::UNSURE && best.status == TVX_OPTIMAL &&
           best.limited.Widened;
}

// lp->simplex becomes the record of the best answer.
int settle(LpSolve *lp, Best *best)
{
    const int limit = is_limit(lp->status) ? lp->status : 0;
    const double iterations = simplex_iterations(lp->simplex);
    if (!limit && limited_proof_suffices(*best)) {
        declare(lp, TVX_INFEASIBLE);
        lp->result->quality = Quality{};
        return 0;
    }
    if (best->answer.grade == Grade::NONE && lp->status == TVX_OPTIMAL) {
        declare(lp, TVX_NUMERIC);
        lp->result->quality = Quality{};
    }
    const bool restored = best->record != nullptr;
    if (restored) {
        lp->work += simplex_take_work(lp->simplex);
        simplex_free(lp->simplex);
        lp->simplex = best->record;
        best->record = nullptr;
        simplex_count_on(lp->simplex, iterations);
        lp->status = best->status;
        lp->version++;
    }
    if (restored && limit && !best->repeated && !is_final(best->answer)) {
        declare(lp, limit);
        return look_as_caller(lp, &best->answer);
    }
    // The ray is verified, the feasible point is not.
    if (best->answer.grade == Grade::UNSURE && lp->status == TVX_UNBOUNDED)
        declare(lp, TVX_INF_OR_UNBD);
    return restored ? look_as_caller(lp, &best->answer) : 0;
}
} // namespace

int lp_secure(LpSolve *lp, const LpStart &start)
{
    const bool stopped = lp->simplex && is_limit(simplex_status(lp->simplex));
    TRY(lp_run(lp, lp_own_target(lp), start));
    lp->status = simplex_status(lp->simplex);
    lp->version++;
    const SimplexMethod first = start.resolved;
    const double first_iterations = simplex_iterations(lp->simplex);
    Best best;
    best.repeated = stopped && first_iterations == 0;
    TRY(note(lp, &best));
    if (!is_good_enough(lp, best, 0) && !is_limit(lp->status))
        TVXmsg(lp->env, "Warning: the answer is not sure, solving again in other ways\n");
    int tried = 0;
    for (const Way &way : WAYS) {
        if (is_good_enough(lp, best, tried) || is_limit(lp->status)) break;
        if (is_spent(lp, best, first_iterations)) break;
        if (!applies(lp->env, way, best)) continue;
        TRY(try_way(lp, way, first, &best));
        tried++;
    }
    return settle(lp, &best);
}
