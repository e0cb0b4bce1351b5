// lp_secure.cpp -- a sure answer from the simplex, by other ways where the first one fails
//
// Problem     A run may end in numeric trouble, at a point that violates the tolerances in the user's units, or with a
//             claim that it cannot prove.
// Method      The answer is sure when it is optimal within the tolerances in the user's units, proved, or a limit.
//             Otherwise the model is solved again, each time in another way (table WAYS), until an answer is sure: from the
//             best basis so far in extended precision, by the other method, with scaling the other way round, with
//             both; at last with rows and bounds held wider within the tolerance, as the data of a model that is meant to
//             be feasible may contradict each other by rounding. When none is sure the best one stands, and the closing
//             lines tell what it violates. Without any, multipliers that prove the model infeasible for values of usual
//             size are proof enough.
// Invariant   A limit ends the attempts; the best answer so far stands, the limit if there is none.
// Cost        Where the first answer is sure, the measures that the closing lines need anyway.
#include "frame/lp_secure.h"
#include "frame/attributes.h"
#include "frame/lp_run.h"
#include "frame/optimize.h"
#include "frame/solution.h"
#include "simplex/simplex.h"
#include <algorithm>
#include <cmath>

namespace
{
enum Begin { BEST_BASIS, SLACKS };

struct Way {
    Begin begin;                 // ways from the best basis need one
    bool other_method;           // than that of the first run
    bool turn_scaling;           // off when it was on
    bool extended;               // precision
    bool widen;                  // rows and bounds
    double tolerance, markowitz; // of SimplexTuning
};
constexpr double TIGHT = 1e-9; // tolerances that leave room for scaling
constexpr double USUAL = 1e-6;
constexpr double STRICT = 0.9;      // pivots in the factors
constexpr double WIDEN_SHARE = 0.5; // of FeasibilityTol: the rest is for the run

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
constexpr double GROSS_EXCESS =
    1000; // violation over its tolerance that needs a look at its numbers

// Answers, best first.
enum class Grade {
    SURE,
    ROUNDED, // as SURE, but as doubles the point violates tolerances in the user's units
    NARROW, // proved infeasible, but not if rows and bounds were held wider by the tolerance
    UNSURE, // optimal or unbounded at a point that violates tolerances
    NONE
};

struct Best {
    Grade grade = Grade::NONE;
    double excess = 0;      // ROUNDED, UNSURE: largest violation over its tolerance
    sopt *record = nullptr; // that holds it, while it is not the live one; owned
    int status = TVX_NUMERIC;
    FarkasReach near; // of all runs
    ~Best() { simplex_free(record); }
};

Grade grade_of(Footing foot)
{
    switch (foot) {
    case Footing::SURE:
        return Grade::SURE;
    case Footing::NARROW:
        return Grade::NARROW;
    case Footing::UNSURE:
        return Grade::UNSURE;
    case Footing::NONE:
        break;
    }
    return Grade::NONE;
}

// What the caller will find when he puts the point into his model.
int look_as_caller(TVXmodel *model, Grade *grade, double *excess)
{
    const TVXenv *env = model->env;
    attributes_clear_solution(model);
    model->lp_result->quality = Quality{};
    if (model->status != TVX_OPTIMAL || env->TARV_PAR_UNSCALEDVIO == 0) return 0;
    TRY(solution_quality(model));
    const Quality *q = &model->lp_result->quality;
    *excess = std::max({q->BoundVio.max / env->FeasibilityTol,
                        q->ConstrVio.max / env->FeasibilityTol,
                        q->DualVio.max / env->OptimalityTol});
    if (*grade == Grade::SURE && *excess > 1) *grade = Grade::ROUNDED;
    if (*excess <= 1 && *grade == Grade::UNSURE && simplex_is_tuned(model->simplex))
        *grade = Grade::SURE; // the record itself may be stricter
    return 0;
}

// An optimum that misses the model by as much as its own numbers is none.
int refuse_gross(TVXmodel *model, Grade *grade, double excess)
{
    bool credible = true;
    if (model->status != TVX_OPTIMAL) return 0;
    const bool usual =
        excess <= GROSS_EXCESS && std::isfinite(simplex_objective(model->simplex));
    if (!usual || model->env->TARV_PAR_UNSCALEDVIO == 0) TRY(lp_credible(model, &credible));
    if (!credible) *grade = Grade::NONE;
    return 0;
}

// Grades the live record, and keeps it as the best if it is.
int note(TVXmodel *model, Best *best)
{
    if (is_limit(model->status) && best->grade != Grade::NONE) return 0;
    const SimplexAssessment a = simplex_assess(model->simplex);
    Grade grade = grade_of(a.Foot);
    double excess = a.Excess;
    TRY(look_as_caller(model, &grade, &excess));
    TRY(refuse_gross(model, &grade, excess));
    best->near.Exact |= a.Near.Exact;
    best->near.Wide |= a.Near.Wide;
    const bool better =
        grade < best->grade || (grade == best->grade && excess < best->excess);
    if (!better || grade == Grade::NONE) return 0;
    simplex_free(best->record);
    best->record = nullptr;
    best->grade = grade;
    best->excess = excess;
    best->status = model->status;
    return 0;
}

// What a run of the simplex leaves: numeric trouble is an outcome, not an error.
int outcome(TVXmodel *model, int code)
{
    if (code != TVX_ERROR_NUMERIC) return code;
    model->status = TVX_NUMERIC;
    return 0;
}

bool applies(const TVXenv *env, const Way &way, const Best &best)
{
    if (way.extended && env->Quad == 0 && !way.widen) return false;
    const bool contradicts =
        best.grade == Grade::NARROW || best.near.Exact || best.near.Wide;
    if (way.widen && contradicts) return false; // the model is infeasible as it stands
    return way.begin != BEST_BASIS || best.grade == Grade::ROUNDED ||
           best.grade == Grade::UNSURE;
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

// The live record makes room for the next one: it is kept when it holds the best answer.
void set_aside(TVXmodel *model, Best *best)
{
    if (!model->simplex) return;
    model->lp_result->itercount = simplex_iterations(model->simplex);
    if (best->grade != Grade::NONE && !best->record)
        best->record = model->simplex;
    else
        simplex_free(model->simplex);
    model->simplex = nullptr;
}

int try_way(TVXmodel *model, const Way &way, int method, Best *best)
{
    Array<int> basis;
    if (way.begin == BEST_BASIS) {
        TRY(array_resize(&basis, int64_t{model->body->numvars} + model->body->numconstrs));
        simplex_get_basis(best->record ? best->record : model->simplex, basis.data);
        method = METHOD_BY_START;
    } else if (way.other_method) {
        method = method == METHOD_DUAL ? METHOD_PRIMAL : METHOD_DUAL;
    }
    set_aside(model, best);
    model->status = TVX_LOADED; // a callback finds a solve that runs, not the answer before
    TRY(outcome(model,
                SimplexRepeat(model, method, basis.data, tuning_of(model->env, way))));
    return model->simplex ? note(model, best) : 0;
}

// Rounding cannot always be helped: it is tried where that costs next to nothing.
bool is_good_enough(const TVXmodel *model, const Best &best)
{
    return best.grade == Grade::SURE ||
           (best.grade == Grade::ROUNDED && model->body->numnz > SMALL_MODEL);
}

// The live record gets the best answer.
int settle(TVXmodel *model, Best *best)
{
    const bool stopped = is_limit(model->status);
    const double iterations =
        model->simplex ? simplex_iterations(model->simplex) : model->lp_result->itercount;
    const bool beats_point =
        best->grade == Grade::UNSURE && best->status == TVX_OPTIMAL && best->near.Wide;
    const bool beats_none = best->grade == Grade::NONE && best->near.Exact;
    if (model->simplex && !stopped && (beats_point || beats_none)) {
        simplex_declare_infeasible(model);
        return 0;
    }
    if (best->grade == Grade::NONE && model->status == TVX_OPTIMAL)
        model->status = TVX_NUMERIC;
    if (!best->record) return 0;
    simplex_free(model->simplex);
    model->simplex = best->record;
    best->record = nullptr;
    simplex_count_on(model->simplex, iterations);
    model->status = best->status;
    Grade grade = best->grade;
    double excess = 0;
    return look_as_caller(model, &grade, &excess);
}
} // namespace

int lp_secure(TVXmodel *model, int method, const Array<int> *statuses)
{
    TRY(outcome(model, lp_run(model, model, method, statuses)));
    if (!model->simplex) return 0;
    const int first = model->env->LPMethod == METHOD_PRIMAL ? METHOD_PRIMAL : METHOD_DUAL;
    Best best;
    TRY(note(model, &best));
    if (!is_good_enough(model, best) && !is_limit(model->status))
        TVXmsg(model->env,
               "Warning: the answer is not sure, solving again in other ways\n");
    for (const Way &way : WAYS) {
        if (is_good_enough(model, best) || is_limit(model->status)) break;
        if (applies(model->env, way, best)) TRY(try_way(model, way, first, &best));
    }
    return settle(model, &best);
}
