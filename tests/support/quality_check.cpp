// quality_check.cpp -- see the header
#include "support/quality_check.h"
#include <cmath>

namespace
{

constexpr double RELATIVE = 1e-12; // of an amount: conversions to double
constexpr double ROUNDING = 2e-17; // of the terms of two sums in long double with 64 bits
constexpr double PLACE_RELATIVE = 1e-9; // of the numbers behind a distance: see the page

struct Amount {
    double value = 0;
    double noise = 0; // by how much the library may differ
};
using Amounts = std::vector<Amount>;

struct Measures {
    Amounts bound, constr, residual, dual, dual_residual, complementarity;
};

struct Computation {
    const LpModel *lp;
    const LpSolution *s;
    LpSums sums;
    double tol = 0; // FeasibilityTol
    Measures found;
};

} // namespace

static Amount positive(long double value, long double terms)
{
    const double amount = static_cast<double>(std::max(value, 0.0L));
    return {amount, RELATIVE * amount + ROUNDING * static_cast<double>(terms)};
}

static void measure_point(Computation *c)
{
    const LpModel *lp = c->lp;
    for (size_t j = 0; j < lp->obj.size(); j++)
        c->found.bound.push_back(positive(lp_bound_violation(lp, j, c->s->x[j]), 0));
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const TermSum &sum = c->sums.rows[i];
        const long double terms = sum.size + std::fabs(lp->rhs[i]);
        const bool tight = lp->senses[i] == '=' || c->s->cbasis[i] < 0;
        c->found.constr.push_back(positive(lp_row_violation(lp, i, sum.value), terms));
        c->found.residual.push_back(
            tight ? positive(std::fabs(lp->rhs[i] - sum.value), terms) : Amount{});
    }
}

// Optimality for a minimise model wants `force` to be 0 or its bound, which is `distance` away, to hold.
static void judge(Computation *c, const Amount &force, double distance,
                  double distance_noise, double tolerance)
{
    c->found.dual.push_back(distance > tolerance ? force : Amount{});
    const double size = std::isinf(distance) ? 0 : std::fabs(distance),
                 value = force.value * size;
    c->found.complementarity.push_back(
        {value, force.noise * size + force.value * distance_noise + RELATIVE * value});
}

static void measure_reduced_costs(Computation *c)
{
    const LpModel *lp = c->lp;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const TermSum &d = c->sums.costs[j];
        c->found.dual_residual.push_back(
            positive(std::fabs(d.value - c->s->rc[j]), d.size));
        const bool at_lower = d.value * lp->sense > 0;
        const double bound = at_lower ? lp->lb[j] : lp->ub[j], x = c->s->x[j];
        const double distance = lp_is_infinite(bound) ? HUGE_VAL
                                : at_lower            ? x - bound
                                                      : bound - x;
        judge(c, positive(std::fabs(d.value), d.size), distance, 0,
              c->tol + PLACE_RELATIVE * std::fabs(bound));
    }
}

static void measure_row_duals(Computation *c)
{
    const LpModel *lp = c->lp;
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const TermSum &sum = c->sums.rows[i];
        const double pi = c->s->pi[i], rhs = lp->rhs[i];
        const int turn = lp->senses[i] == '>' ? -1 : 1; // the row as "at most"
        const bool equation = lp->senses[i] == '=', wrong_sign = pi * lp->sense * turn > 0;
        const double slack = static_cast<double>((rhs - sum.value) * turn),
                     terms = static_cast<double>(sum.size) + std::fabs(rhs),
                     largest = std::max(static_cast<double>(sum.largest), std::fabs(rhs));
        judge(c, equation ? Amount{} : positive(std::fabs(pi), std::fabs(pi)),
              wrong_sign ? HUGE_VAL : slack, RELATIVE * std::fabs(slack) + ROUNDING * terms,
              c->tol + PLACE_RELATIVE * largest);
    }
}

static std::string differs(const std::string &name, double said, double found)
{
    char text[200];
    snprintf(text, sizeof text, "%s is %.17g, found %.17g", name.c_str(), said, found);
    return text;
}

static void compare(TVXmodel *model, const std::string &name, const Amounts &amounts,
                    std::vector<std::string> *faults)
{
    double max = 0, sum = 0, max_noise = 0, sum_noise = 0;
    for (const Amount &a : amounts) {
        max = std::max(max, a.value);
        max_noise = std::max(max_noise, a.noise);
        sum += a.value;
        sum_noise += a.noise + RELATIVE * a.value;
    }
    double said_max = -1, said_sum = -1;
    int place = -2;
    if (TVXgetdblattr(model, name.c_str(), &said_max) ||
        TVXgetdblattr(model, (name + "Sum").c_str(), &said_sum) ||
        TVXgetintattr(model, (name + "Index").c_str(), &place)) {
        faults->push_back(name + " cannot be read");
        return;
    }
    if (std::fabs(said_max - max) > max_noise)
        faults->push_back(differs(name, said_max, max));
    if (std::fabs(said_sum - sum) > sum_noise)
        faults->push_back(differs(name + "Sum", said_sum, sum));
    const bool none = place == -1;
    if (none ? max > max_noise : place < 0 || place >= static_cast<int>(amounts.size()))
        faults->push_back(differs(name + "Index", place, max));
    else if (!none && amounts[place].value < max - 2 * max_noise)
        faults->push_back(differs(name + " at its place", max, amounts[place].value));
}

std::vector<std::string> check_quality(TVXmodel *model, const LpModel *lp,
                                       const LpSolution *solution, QualityScaling scaling)
{
    Computation c = {lp, solution, lp_sums(lp, solution->x, solution->pi), 0, {}};
    TVXgetdblparam(TVXgetenv(model), "FeasibilityTol", &c.tol);
    measure_point(&c);
    measure_reduced_costs(&c);
    measure_row_duals(&c);
    const Amounts none;
    const struct {
        const char *kind, *measure;
        const Amounts &amounts;
        bool scaled; // there is one on the scaled model
    } rows[] = {{"Bound", "Vio", c.found.bound, true},
                {"Constr", "Vio", c.found.constr, true},
                {"Constr", "Residual", c.found.residual, true},
                {"Dual", "Vio", c.found.dual, true},
                {"Dual", "Residual", c.found.dual_residual, true},
                {"Compl", "Vio", c.found.complementarity, false},
                {"Int", "Vio", none, false}};
    std::vector<std::string> faults;
    for (const auto &row : rows) {
        compare(model, std::string(row.kind) + row.measure, row.amounts, &faults);
        if (row.scaled && scaling == QualityScaling::UNSCALED)
            compare(model, std::string(row.kind) + "S" + row.measure, row.amounts, &faults);
    }
    return faults;
}
