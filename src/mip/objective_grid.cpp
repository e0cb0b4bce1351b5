// objective_grid.cpp -- the step between objectives of integer points
//
// Method   The first value is divided by the others: each ratio is developed as a continued fraction to a fraction p / q
//          with a small q, and the step is the first value divided by the least common multiple of the q, times the
//          greatest common divisor of the numerators. All values have to be multiples of the step to within rounding.
#include "mip/objective_grid.h"
#include "mip/implied_integers.h"
#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
constexpr double NO_COST = 1e-10;
constexpr double BOUND_ROUNDING = 1e-8;  // of a bound before it is rounded up
constexpr double PRUNE_ROUNDING = 1e-10; // relative, of objectives that count as equal
constexpr double PRUNE_MARGIN = 1e4;     // of these, above a value of the grid
constexpr double GRID_ROUNDING =
    1e-9; // steps: a cutoff this near a value of the grid counts as on it

// Denominators and multiples beyond these are not looked for: the values then have no common step by intention.
constexpr int64_t LARGEST_DENOMINATOR = 100000;
constexpr double LARGEST_MULTIPLE = 1e9;

constexpr double MULTIPLE_ROUNDING = 1e-12; // relative distance from a multiple

struct Fraction {
    int64_t p, q; // q 0: none
};

// value >= 0 as a fraction with a small denominator.
Fraction fraction_of(double value)
{
    int64_t p0 = 0, q0 = 1, p1 = 1, q1 = 0;
    double rest = value;
    for (;;) {
        const double whole = std::floor(rest);
        if (whole > LARGEST_MULTIPLE) return {0, 0};
        const int64_t w = static_cast<int64_t>(whole), p = w * p1 + p0, q = w * q1 + q0;
        if (q > LARGEST_DENOMINATOR || static_cast<double>(p) > LARGEST_MULTIPLE)
            return {0, 0};
        p0 = p1;
        q0 = q1;
        p1 = p;
        q1 = q;
        const double reached = static_cast<double>(p) / static_cast<double>(q);
        if (std::fabs(reached - value) <= MULTIPLE_ROUNDING * value) return {p, q};
        rest = 1 / (rest - whole);
    }
}

bool is_multiple(double value, double step)
{
    const double multiple = value / step;
    return multiple <= LARGEST_MULTIPLE &&
           std::fabs(multiple - std::round(multiple)) <= MULTIPLE_ROUNDING * multiple;
}
} // namespace

double common_step(const double *values, int count)
{
    if (count == 0) return 0;
    const double first = values[0];
    int64_t denominators = 1, numerators = 0;
    for (int k = 0; k < count; k++) { // values[k] = first p / q
        const Fraction f = fraction_of(values[k] / first);
        if (f.q == 0) return 0;
        const int64_t common = std::lcm(denominators, f.q);
        if (common > LARGEST_DENOMINATOR) return 0;
        numerators = std::gcd(numerators * (common / denominators), f.p * (common / f.q));
        denominators = common;
    }
    const double step =
        first * static_cast<double>(numerators) / static_cast<double>(denominators);
    for (int k = 0; k < count; k++)
        if (!is_multiple(values[k], step)) return 0;
    return step;
}

ObjectiveGrid objective_grid(const ModelBody *body, const char *implied)
{
    ObjectiveGrid grid;
    grid.Constant = body->objcon;
    Array<double>
        costs; // of each size once would do; a failed allocation costs only the grid
    int count = 0;
    for (int j = 0; j < body->numvars; j++) {
        if (std::fabs(body->obj.data[j]) <= NO_COST) continue;
        const char type = body->vtypes.size > 0 ? body->vtypes.data[j] : 'C';
        if (type != 'B' && type != 'I' && !implied[j]) return grid;
        if (implied[j] == IMPLIED_OPTIMAL) grid.Loose = true;
        count++;
    }
    if (count == 0) {
        grid.Step = CONSTANT_OBJECTIVE;
        return grid;
    }
    if (array_reserve(&costs, count)) return grid; // benign: no grid
    for (const double cost : body->obj)
        if (std::fabs(cost) > NO_COST) array_push(&costs, std::fabs(cost));
    grid.Step = common_step(costs.data, count);
    return grid;
}

namespace
{
// The largest value of the grid below `value`, by rule `steps`, with a margin; never `value` itself.
double prune_from(const ObjectiveGrid &grid, double value, double steps)
{
    const double rounding = (std::fabs(value) + 1) * PRUNE_ROUNDING;
    if (grid.Step <= 0) return value - rounding;
    return std::min(grid.Constant + PRUNE_MARGIN * rounding + steps * grid.Step,
                    value - rounding);
}
} // namespace

double prune_value_of_incumbent(const ObjectiveGrid &grid, double incumbent)
{
    if (grid.Loose)
        return prune_value_of_cutoff(grid, incumbent); // it may lie between them
    if (incumbent >= UNDEFINED_VALUE) return UNDEFINED_VALUE;
    return prune_from(
        grid, incumbent,
        std::floor((incumbent - grid.Constant - 0.5 * grid.Step) / grid.Step));
}

double prune_value_of_cutoff(const ObjectiveGrid &grid, double cutoff)
{
    if (cutoff >= UNDEFINED_VALUE) return UNDEFINED_VALUE;
    const double place = (cutoff - grid.Constant) / grid.Step;
    return prune_from(grid, cutoff, std::ceil(place - GRID_ROUNDING) - 1);
}

double rounded_bound(const ObjectiveGrid &grid, double bound)
{
    if (grid.Step <= 0 || std::fabs(bound) >= UNDEFINED_VALUE) return bound;
    const double slack = (std::fabs(bound) + 1) * BOUND_ROUNDING;
    const double up = std::ceil((bound - grid.Constant - slack) / grid.Step);
    return grid.Constant + up * grid.Step;
}
