// hostile_residue.cpp -- what cancels in rational numbers and does not in doubles
//
// Problem     Equations  p t = q x + r  with p = 3, 7, 11, ...: whoever substitutes t divides by p and rounds. Costs,
//             rows and equations that hold a large multiple N of such an equation then cancel exactly, but leave
//             about N times 1e-16 in floating point, 1e-12 to 1e-5: neither a cost, nor a coefficient, nor a
//             contradiction.
// Method      Small integers throughout, so that the rational truth is that of the model without the multiples. A
//             quarter of the models has all data in tenths, where the cancellation is that of decimals.
#include "support/hostile_gen.h"

namespace
{
// The equation sum of terms = rhs.
struct Equation {
    HostileTerms terms;
    double rhs = 0;
};

struct Plan {
    LpModel lp;
    std::vector<double> x; // [n] keeps all rows, up to rounding
    int base = 0;          // columns that no equation defines
    std::vector<Equation> equations;
};
} // namespace

static double large_multiple(Dice *dice)
{
    const double n = std::round(log_uniform(dice, 2, 9));
    return dice->chance(50) ? n : -n;
}

static double activity_of(const Plan *plan, const HostileTerms &terms)
{
    long double sum = 0;
    for (const auto &[col, value] : terms)
        sum += static_cast<long double>(value) * plan->x[col];
    return double(sum);
}

// Columns that are not defined by an equation.
static void add_base(Dice *dice, Plan *plan)
{
    for (int j = dice->range(2, 8); j > 0; j--) {
        const double x = dice->chance(40) ? 0 : dice->range(1, 9);
        const double room = dice->chance(20) ? 0 : dice->range(1, 20);
        lp_add_var(&plan->lp, dice->chance(30) ? 0 : dice->nonzero(9),
                   dice->chance(80) ? 0 : x - dice->range(0, 9),
                   dice->chance(60) ? x + room : LP_INFINITY);
        plan->x.push_back(x);
    }
    plan->base = plan->lp.num_vars();
}

// A new column by an equation over the columns before it.
static void add_definition(Dice *dice, Plan *plan)
{
    static const std::vector<int> DIVISORS = {3, 3, 7, 11, 13, 17, 49, 97};
    Equation e;
    const int before = plan->lp.num_vars();
    for (int k = dice->range(1, 3); k > 0; k--)
        e.terms.push_back({dice->range(0, before - 1), dice->nonzero(9)});
    const double divisor = dice->pick(DIVISORS) * dice->nonzero(1);
    e.rhs = dice->chance(50) ? 0 : dice->range(-20, 20);
    const double value = (e.rhs - activity_of(plan, e.terms)) / divisor;
    const bool low = dice->chance(30), high = dice->chance(30);
    const int t = lp_add_var(&plan->lp, 0,
                             low ? std::floor(value) - dice->range(0, 100) : -LP_INFINITY,
                             high ? std::ceil(value) + dice->range(0, 100) : LP_INFINITY);
    plan->x.push_back(value);
    e.terms.push_back({t, divisor});
    lp_add_row_entries(&plan->lp, e.terms, '=', e.rhs);
    plan->equations.push_back(e);
}

static void add_to_costs(Dice *dice, Plan *plan)
{
    const double multiple = large_multiple(dice);
    for (const auto &[col, value] : dice->pick(plan->equations).terms)
        plan->lp.obj[col] += multiple * value;
}

// An inequality that the planned point keeps, on some columns plus a sum that is `right` by the equations.
static void add_kept_row(Dice *dice, Plan *plan, HostileTerms sum, double right,
                         const HostileTerms &terms)
{
    const double room = dice->chance(40) ? 0 : dice->range(1, 20),
                 here = activity_of(plan, terms);
    sum.insert(sum.end(), terms.begin(), terms.end());
    const bool most = dice->chance(50);
    lp_add_row_entries(&plan->lp, sum, most ? '<' : '>',
                       right + (most ? std::ceil(here) + room : std::floor(here) - room));
}

// A combination of equations with large multiples, as an equation of its own or hidden in a row on base columns.
static void add_combination(Dice *dice, Plan *plan)
{
    HostileTerms sum, own;
    double right = 0;
    for (int k = dice->range(1, 3); k > 0; k--) {
        const Equation &e = dice->pick(plan->equations);
        const double multiple = large_multiple(dice);
        for (const auto &[col, value] : e.terms) sum.push_back({col, multiple * value});
        right += multiple * e.rhs;
    }
    if (dice->chance(40)) {
        lp_add_row_entries(&plan->lp, sum, '=', right);
        return;
    }
    for (int k = dice->range(1, 2); k > 0; k--)
        own.push_back({dice->range(0, plan->base - 1), dice->nonzero(5)});
    add_kept_row(dice, plan, sum, right, own);
}

static void add_plain_row(Dice *dice, Plan *plan)
{
    HostileTerms terms;
    for (int j = 0; j < plan->lp.num_vars(); j++)
        if (dice->chance(40)) terms.push_back({j, dice->nonzero(6)});
    add_kept_row(dice, plan, {}, 0, terms);
}

static void divide_by_ten(LpModel *lp)
{
    for (std::vector<LpEntry> &col : lp->cols)
        for (LpEntry &e : col) e.value /= 10;
    for (double &b : lp->rhs) b /= 10;
    for (double &c : lp->obj) c /= 10;
}

LpModel hostile_residue(Dice *dice)
{
    Plan plan;
    add_base(dice, &plan);
    for (int k = dice->range(1, 8); k > 0; k--) add_definition(dice, &plan);
    for (int k = dice->range(0, 4); k > 0; k--) add_to_costs(dice, &plan);
    for (int k = dice->range(0, 4); k > 0; k--) add_combination(dice, &plan);
    for (int k = dice->range(1, 6); k > 0; k--) add_plain_row(dice, &plan);
    if (dice->chance(25)) divide_by_ten(&plan.lp);
    return plan.lp;
}
