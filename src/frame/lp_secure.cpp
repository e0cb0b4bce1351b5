// lp_secure.cpp -- a sure answer from the simplex, by other ways where the first one fails
//
// Problem     A run may end in numeric trouble, at a point that violates the tolerances in the user's units, or with a
//             claim that it cannot prove.
// Method      The answer is sure when it is optimal within the tolerances in the user's units, proved, or a limit. Otherwise the model is
//             solved again, each time in another way (table `ways`), until an answer is sure: from the best basis so far
//             in extended precision, by the other method, with scaling the other way round, with both. When none is,
//             the best optimum stands, and the closing lines tell what it violates. Without any, multipliers that prove
//             the model infeasible as it stands, though a tiny change could make it feasible, are proof enough.
// Invariant   A limit ends the attempts; the best answer so far stands, the limit if there is none.
// Cost        Nothing where the first answer is sure.
#include "frame/lp_secure.h"
#include "frame/attributes.h"
#include "frame/lp_run.h"
#include "frame/optimize.h"
#include "frame/solution.h"
#include "simplex/simplex.h"
#include <algorithm>

namespace
{
enum Begin { BEST_BASIS, SLACKS };

struct Way {
    const char *text;
    Begin begin;       // ways from the best basis need one
    bool other_method; // than that of the first run
    bool turn_scaling; // off when it was on
    bool extended;
    double tolerance, markowitz; // of SimplexTuning
};
constexpr double TIGHT =
    1e-9; // feasibility and optimality tolerance that leave room for scaling
constexpr double USUAL = 1e-6;
constexpr double STRICT = 0.9;    // pivots in the factors
constexpr int SMALL_MODEL = 5000; // entries

constexpr Way WAYS[] = {
    {"in extended precision", BEST_BASIS, false, false, true, TIGHT, 0},
    {"with the other method", SLACKS, true, false, false, USUAL, 0},
    {"with other scaling", SLACKS, false, true, false, USUAL, 0},
    {"with the other method and other scaling", SLACKS, true, true, false, USUAL, 0},
    {"with other scaling in extended precision", SLACKS, true, true, true, TIGHT, STRICT},
    {"in extended precision", SLACKS, false, false, true, TIGHT, STRICT},
};

// Answers, best first.
enum class Grade {
    SURE,
    ROUNDED, // as SURE, but as doubles the point violates tolerances in the user's units
    NARROW,  // the others as in Footing
    UNSURE,
    NONE
};

// The best answer so far.
struct Best {
    Grade grade = Grade::NONE;
    double excess = 0; // ROUNDED, UNSURE: largest violation over its tolerance
    Array<int> basis;  // [n + m] of a point that is not SURE, else empty
    SimplexTuning tuning;
    bool is_last = false;     // the live record holds it
    bool weak_farkas = false; // of some run
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
int look_as_caller(TVXmodel *model, Best *now)
{
    const TVXenv *env = model->env;
    attributes_clear_solution(model);
    model->lp_result->quality = Quality{};
    if (model->status != TVX_OPTIMAL || env->TARV_PAR_UNSCALEDVIO == 0) return 0;
    TRY(solution_quality(model));
    const Quality *q = &model->lp_result->quality;
    now->excess = std::max({q->BoundVio.max / env->FeasibilityTol,
                            q->ConstrVio.max / env->FeasibilityTol,
                            q->DualVio.max / env->OptimalityTol});
    if (now->grade == Grade::SURE && now->excess > 1) now->grade = Grade::ROUNDED;
    return 0;
}

int note(TVXmodel *model, const SimplexTuning &tuning, Best *best)
{
    const SimplexAssessment a = simplex_assess(model->simplex);
    Best now;
    now.grade = grade_of(a.Foot);
    now.excess = a.Excess;
    TRY(look_as_caller(model, &now));
    best->weak_farkas |= a.WeakFarkas;
    best->is_last =
        now.grade < best->grade || (now.grade == best->grade && now.excess < best->excess);
    if (!best->is_last) return 0;
    best->grade = now.grade;
    best->excess = now.excess;
    best->tuning = tuning;
    best->basis.size = 0;
    if (now.grade != Grade::ROUNDED && now.grade != Grade::UNSURE) return 0;
    TRY(array_resize(&best->basis,
                     int64_t{model->body->numvars} + model->body->numconstrs));
    simplex_get_basis(model->simplex, best->basis.data);
    return 0;
}

// Rounding cannot always be helped: it is tried where that costs next to nothing.
bool is_good_enough(const TVXmodel *model, const Best &best)
{
    return best.grade == Grade::SURE ||
           (best.grade == Grade::ROUNDED && model->body->numnz > SMALL_MODEL);
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
    if (way.extended && env->Quad == 0) return false;
    return way.begin != BEST_BASIS || best.basis.size > 0;
}

SimplexTuning tuning_of(const TVXenv *env, const Way &way)
{
    SimplexTuning t;
    if (way.turn_scaling)
        t.Scale = env->ScaleFlag ? SimplexTuning::UNSCALED : SimplexTuning::SCALED;
    t.Extended = way.extended;
    t.Tolerance = way.tolerance;
    t.Markowitz = way.markowitz;
    return t;
}

int repeat(TVXmodel *model, int method, const int *statuses, const SimplexTuning &tuning)
{
    if (model->simplex) model->lp_result->itercount = simplex_iterations(model->simplex);
    return outcome(model, SimplexRepeat(model, method, statuses, tuning));
}

int try_way(TVXmodel *model, const Way &way, int method, Best *best)
{
    const SimplexTuning tuning = tuning_of(model->env, way);
    const bool from_best = way.begin == BEST_BASIS;
    if (way.other_method) method = method == METHOD_DUAL ? METHOD_PRIMAL : METHOD_DUAL;
    TVXmsg(model->env, "Warning: answer not sure, solving again %s\n", way.text);
    TRY(repeat(model, from_best ? METHOD_BY_START : method,
               from_best ? best->basis.data : nullptr, tuning));
    if (!model->simplex) return 0;
    return note(model, tuning, best);
}

// The live record gets the best answer.
int settle(TVXmodel *model, const Best &best)
{
    if (best.is_last || best.grade == Grade::SURE) return 0;
    if (best.basis.size > 0) {
        TRY(repeat(model, METHOD_BY_START, best.basis.data, best.tuning));
        Best same;
        return look_as_caller(model, &same);
    }
    const bool infeasible = best.grade == Grade::NARROW || best.weak_farkas;
    if (infeasible && model->simplex && !is_limit(model->status))
        simplex_declare_infeasible(model);
    return 0;
}
} // namespace

int lp_secure(TVXmodel *model, int method, const Array<int> *statuses)
{
    TRY(outcome(model, lp_run(model, model, method, statuses)));
    if (!model->simplex) return 0;
    const int first = model->env->LPMethod == METHOD_PRIMAL ? METHOD_PRIMAL : METHOD_DUAL;
    Best best;
    TRY(note(model, SimplexTuning{}, &best));
    for (const Way &way : WAYS) {
        if (is_good_enough(model, best) || is_limit(model->status)) break;
        if (applies(model->env, way, best)) TRY(try_way(model, way, first, &best));
    }
    return settle(model, best);
}
