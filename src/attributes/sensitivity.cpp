// sensitivity.cpp -- ranges in the caller's form, from the steps that the simplex finds (simplex/ranging.cpp)
//
// Method      The simplex returns in the body's units the status of a variable and the range of a cost or a value. From
//             these the ranges of the two bounds of a variable, or of a right-hand side, are derived here.
// Cost        See sensitivity.h. SensitivityPrepare: at most one factorisation, usually none.
#include "attributes/sensitivity.h"
#include "body/row_kind.h"
#include "body/signs.h"
#include "model/attribute_cache.h"
#include "model/solution.h"
#include "runtime/clock.h"
#include "simplex/simplex.h"
#include <algorithm>

namespace
{
constexpr double NONE = UNDEFINED_VALUE; // no limit

double below(double value, double step)
{
    return step < NONE ? value - step : -NONE;
}

double above(double value, double step)
{
    return step < NONE ? value + step : NONE;
}

RangePair around(double value, const RangeSteps &steps)
{
    return {below(value, steps.Down), above(value, steps.Up)};
}

RangePair in_sense(int sign, const RangePair &range)
{
    if (sign > 0) return range;
    return {turned(sign, range.Up), turned(sign, range.Low)};
}

// Fresh factors; the results are updated if the basis has to change.
int make_fresh(TVXmodel *model)
{
    bool changed = false;
    const int code = lp_confirm(&model->lp, &changed);
    if (!model->lp.simplex || changed) attributes_clear_solution(model);
    TRY(code);
    if (changed) TVXmsg(model->env, "Warning: basis changed during sensitity analysis.\n");
    return model->lp.status == TVX_OPTIMAL ? 0 : TVX_ERROR_NUMERIC;
}
} // namespace

int SensitivityPrepare(TVXmodel *model)
{
    if (!solution_available(model) || model->lp.status != TVX_OPTIMAL || !model->lp.simplex)
        return TVX_ERROR_DATA_NOT_AVAILABLE;
    TRY(check_idle(model));
    TRY(attributes_make(model));
    if (model->attributes->have & HAVE_RANGING) return 0;
    if (!simplex_has_fresh_factor(model->lp.simplex)) TRY(make_fresh(model));
    simplex_range_begin(model->lp.simplex);
    for (Array<double> &ends : model->attributes->ranges) ends.size = 0;
    model->attributes->have |= HAVE_RANGING;
    return 0;
}

RangePair range_of_cost(TVXmodel *model, int j)
{
    const ModelBody *body = model->body;
    return in_sense(body->sense,
                    around(body->obj[j], simplex_range_cost(model->lp.simplex, j)));
}

BoundRanges ranges_of_bounds(TVXmodel *model, int j)
{
    const ModelBody *body = model->body;
    const double lb = body->lb[j], ub = body->ub[j];
    const auto [place, x] = simplex_place(model->lp.simplex, j);
    RangeSteps steps = {0, 0};
    if (place == Place::LOWER || place == Place::UPPER || place == Place::FREE)
        steps = simplex_range_value(model->lp.simplex, j);
    const double least = std::max(lb, below(x, steps.Down)),
                 most = std::min(ub, above(x, steps.Up));
    const auto end =
        [](double value) { // infinite values of the body are infinite for the caller
            return value >= INFINITE_BOUND    ? NONE
                   : value <= -INFINITE_BOUND ? -NONE
                                              : value;
        };
    switch (place) {
    case Place::LOWER:
        return {{end(below(lb, steps.Down)), end(most)}, {lb, NONE}};
    case Place::UPPER:
        return {{-NONE, ub}, {end(least), end(above(ub, steps.Up))}};
    case Place::FREE:
        return {{-NONE, end(most)}, {end(least), NONE}};
    case Place::FIXED:
        return {{-NONE, ub}, {lb, NONE}};
    case Place::BASIC:
        break;
    }
    const double kept = std::clamp(x, lb, std::max(lb, ub));
    return {{-NONE, kept}, {kept, NONE}};
}

namespace
{
// A free row becomes tight at its activity in the solution; the simplex omits free rows, so their slack there is
// unusable.
int range_of_free_rhs(TVXmodel *model, int i, RangePair *range)
{
    const double *x = nullptr;
    TRY(solution_x(model, &x));
    TRY(body_build_rows(model->body));
    const ModelBody *body = model->body;
    long double activity = 0;
    for (int p = body->row_beg[i]; p < body->row_beg[i + 1]; p++)
        activity += static_cast<long double>(body->row_val[p]) * x[body->row_ind[p]];
    *range = {static_cast<double>(activity), NONE};
    return 0;
}

RangePair range_of_bound_rhs(const TVXmodel *model, int i)
{
    const ModelBody *body = model->body;
    const double b = body->rhs[i];
    const int slack = body->numvars + i;
    const auto [place, value] = simplex_place(model->lp.simplex, slack);
    // the slack of an equation is basic: no other right-hand side is feasible
    RangePair range = {b, b};
    if (place != Place::BASIC && place != Place::FREE) {
        const RangeSteps steps = simplex_range_value(model->lp.simplex, slack);
        // the slack decreases as the right-hand side increases
        range = around(b, {steps.Up, steps.Down});
    } else if (!is_equation(body, i)) {
        range = {b - std::max(0.0, value), NONE};
    }
    return range;
}
} // namespace

int range_of_rhs(TVXmodel *model, int i, RangePair *range)
{
    if (row_kind(model->body, i) == RowKind::FREE)
        TRY(range_of_free_rhs(model, i, range));
    else
        *range = range_of_bound_rhs(model, i);
    *range = in_sense(row_sign(model->body, i), *range);
    return 0;
}
