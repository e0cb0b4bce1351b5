// ranging.cpp -- sensitivity: range of one cost, bound or right-hand side for which an optimal basis stays optimal
//
// Problem     Cost: until a reduced cost changes its sign. Value of a nonbasic (its bound, or, for the slack of a row,
//             the right-hand side): until a basic variable reaches one of its bounds.
// Method      cost of a nonbasic     its own reduced cost d
//             cost of the basic at r row r of the tableau: d_j - t alpha_rj keeps its sign for every nonbasic j
//             value of nonbasic q    column q of the tableau: x_B - t alpha_q stays within the bounds
//             A nonbasic that cannot move (fixed) limits nothing; a free one, whose d is zero, allows no step at all.
// In          An optimal record with fresh factors, reduced costs, values and a partitioned row copy.
// Cost        Per element one BTRAN and a tableau row, or one FTRAN; O(1) for the cost of a nonbasic.
// Literature  V. Chvatal, "Linear programming", 1983, chapter 10.
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr double RANGE_ZERO = 1e-10; // smaller tableau entries count as rounding errors
constexpr RangeSteps FOR_EVER = {UNDEFINED_VALUE, UNDEFINED_VALUE};

RangeSteps swapped(const RangeSteps &steps)
{
    return {steps.Up, steps.Down};
}

// Limits *step to room / rate.
void limit_step(double *step, double room, double rate)
{
    *step = std::min(*step, std::max(0.0, room) / rate);
}

template<class R> RangeSteps basic_cost_steps(sopt *s, swork<R> *w, int r)
{
    svec_unit(&w->Rho, r, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
    compute_row(s, w);
    RangeSteps steps = FOR_EVER;
    for (int k = 0; k < w->RowCount; k++) {
        const int j = w->RowInd.data[k], status = s->VStat.data[j];
        double alpha = static_cast<double>(w->RowVal.data[k]);
        if (std::fabs(alpha) < RANGE_ZERO) continue;
        if (status == AT_FREE) return {0, 0};
        double d = static_cast<double>(w->Cbar.data[j]);
        if (status == AT_UPPER) {
            alpha = -alpha;
            d = -d;
        }
        limit_step(alpha > 0 ? &steps.Up : &steps.Down, d, std::fabs(alpha));
    }
    return steps;
}

template<class R> RangeSteps cost_steps(sopt *s, swork<R> *w, int j)
{
    const double d = static_cast<double>(w->Cbar.data[j]);
    switch (s->VStat.data[j]) {
    case AT_LOWER:
        return {std::max(d, 0.0), UNDEFINED_VALUE};
    case AT_UPPER:
        return {UNDEFINED_VALUE, std::max(-d, 0.0)};
    case AT_FREE:
        return {0, 0};
    case AT_FIXED:
        return FOR_EVER;
    default:
        return basic_cost_steps(s, w, s->VStat.data[j]);
    }
}

template<class R> RangeSteps value_steps(sopt *s, swork<R> *w, int q)
{
    load_column(s, q, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::NO);
    RangeSteps steps = FOR_EVER;
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k], j = s->BasisHead.data[i];
        const double alpha = static_cast<double>(w->Alpha.Value.data[i]),
                     x = static_cast<double>(w->Bbar.data[i]), rate = std::fabs(alpha);
        if (rate <= RANGE_ZERO) continue;
        double *falls = alpha > 0 ? &steps.Up : &steps.Down, // the basic falls along it
            *rises = alpha > 0 ? &steps.Down : &steps.Up;
        const double lower = s->Lower.data[j], upper = s->Upper.data[j];
        if (has_lower(s, lower)) limit_step(falls, x - lower, rate);
        if (has_upper(s, upper)) limit_step(rises, upper - x, rate);
    }
    return steps;
}

// The same steps in other units; a negative unit exchanges up and down.
RangeSteps in_units(const RangeSteps &steps, double unit)
{
    const auto convert = [unit](double step) {
        return step < UNDEFINED_VALUE ? step * std::fabs(unit) : step;
    };
    const RangeSteps result = {convert(steps.Down), convert(steps.Up)};
    return unit < 0 ? swapped(result) : result;
}

// Value of variable k in user units per scaled unit, with sign.
double unit_of(const sopt *s, int k)
{
    return k < s->NumCols ? s->ColScale.data[k] : 1 / s->RowScale.data[k - s->NumCols];
}

template<class R> VariablePlace place_of(const sopt *s, const swork<R> *w, int k)
{
    int status = s->VStat.data[k];
    const double x =
        status >= 0 ? static_cast<double>(w->Bbar.data[status]) : nonbasic_value(s, k);
    const double d = static_cast<double>(w->Cbar.data[k]);
    if (status == AT_FIXED && d > s->OptTol)
        status = AT_LOWER;
    else if (status == AT_FIXED && d < -s->OptTol)
        status = AT_UPPER;
    const double unit = unit_of(s, k);
    if (unit < 0 && (status == AT_LOWER || status == AT_UPPER))
        status = status == AT_LOWER ? AT_UPPER : AT_LOWER;
    const Place place = status >= 0          ? Place::BASIC
                        : status == AT_LOWER ? Place::LOWER
                        : status == AT_UPPER ? Place::UPPER
                        : status == AT_FREE  ? Place::FREE
                                             : Place::FIXED;
    return {place, x * unit};
}
} // namespace

void simplex_range_begin(sopt *s)
{
    row_copy_partition(s);
}

RangeSteps simplex_range_cost(sopt *s, int j)
{
    const RangeSteps steps =
        s->Quad ? cost_steps(s, s->Extended, j) : cost_steps(s, s->Double, j);
    return in_units(steps, 1 / (s->ColScale.data[j] * s->ObjScale));
}

RangeSteps simplex_range_value(sopt *s, int k)
{
    const RangeSteps steps =
        s->Quad ? value_steps(s, s->Extended, k) : value_steps(s, s->Double, k);
    return in_units(steps, unit_of(s, k));
}

VariablePlace simplex_place(const sopt *s, int k)
{
    return s->Quad ? place_of(s, s->Extended, k) : place_of(s, s->Double, k);
}
