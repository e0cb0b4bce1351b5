// quality_check.cpp -- see the header
#include "support/quality_check.h"
#include <cmath>
#include <gmpxx.h>

namespace
{

constexpr int BITS = 256;
constexpr double RELATIVE = 1e-12;      // of an amount: conversions to double
constexpr double ROUNDING = 1e-17;      // of the terms of a sum: long double with 64 bits
constexpr double PLACE_RELATIVE = 1e-9; // of the numbers behind a distance: see the page

using Real = mpf_class;

struct Amount {
    double value = 0;
    double noise = 0; // by how much the library may differ
};

// A sum and the sum of its magnitudes.
struct Sum {
    Real value{0, BITS};
    double terms = 0;
    void add(double a, double b)
    {
        const Real product = Real(a, BITS) * Real(b, BITS);
        value += product;
        terms += std::fabs(a * b);
    }
};

struct Measures {
    std::vector<Amount> bound, constr, residual, dual, dual_residual, complementarity;
};

struct Computation {
    const LpModel *lp;
    const LpSolution *s;
    double tol = 0; // FeasibilityTol
    Measures found;
    std::vector<double> largest_term; // [m]
    std::vector<Sum> slack;           // [m] rhs - activity
};

} // namespace

static Amount positive(const Real &value, double terms)
{
    const double amount = value > 0 ? value.get_d() : 0;
    return {amount, RELATIVE * amount + ROUNDING * terms};
}

static void measure_point(Computation *c)
{
    const LpModel *lp = c->lp;
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    c->slack.resize(m);
    c->largest_term.assign(m, 0);
    for (size_t i = 0; i < m; i++) {
        c->slack[i].add(lp->rhs[i], 1);
        c->largest_term[i] = std::fabs(lp->rhs[i]);
    }
    for (size_t j = 0; j < n; j++) {
        const double x = c->s->x[j];
        const Real below = Real(lp->lb[j], BITS) - x, above = Real(x, BITS) - lp->ub[j];
        c->found.bound[j] = positive(below > above ? below : above, 0);
        for (const LpEntry &e : lp->cols[j]) {
            const size_t i = static_cast<size_t>(e.row);
            c->slack[i].add(-e.value, x);
            c->largest_term[i] = std::max(c->largest_term[i], std::fabs(e.value * x));
        }
    }
    for (size_t i = 0; i < m; i++) {
        const Real &slack = c->slack[i].value;
        const Real size = abs(slack);
        const Real outside = lp->senses[i] == '='   ? size
                             : lp->senses[i] == '>' ? slack
                                                    : Real(-slack);
        c->found.constr[i] = positive(outside, c->slack[i].terms);
        if (lp->senses[i] == '=' || c->s->cbasis[i] < 0)
            c->found.residual[i] = positive(size, c->slack[i].terms);
    }
}

// Optimality for a minimise model wants `force` to be 0 or its bound, which is `distance` away, to hold.
static void judge(Computation *c, size_t place, const Sum &force, double distance,
                  double distance_noise, double tolerance)
{
    const Amount amount = positive(abs(force.value), force.terms);
    if (distance > tolerance) c->found.dual[place] = amount;
    if (std::isinf(distance)) return;
    const double size = std::fabs(distance), value = amount.value * size;
    c->found.complementarity[place] = {
        value, amount.noise * size + amount.value * distance_noise + RELATIVE * value};
}

static void measure_row_duals(Computation *c)
{
    const LpModel *lp = c->lp;
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        if (lp->senses[i] == '=') continue;
        const int turn = lp->senses[i] == '>' ? -1 : 1; // the row as "at most"
        Sum pi;
        pi.add(c->s->pi[i], 1);
        const bool wrong_sign = c->s->pi[i] * lp->sense * turn > 0;
        const double slack = c->slack[i].value.get_d() * turn;
        judge(c, lp->obj.size() + i, pi, wrong_sign ? HUGE_VAL : slack,
              RELATIVE * std::fabs(slack) + ROUNDING * c->slack[i].terms,
              c->tol + PLACE_RELATIVE * c->largest_term[i]);
    }
}

static void measure_reduced_costs(Computation *c)
{
    const LpModel *lp = c->lp;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        Sum d;
        d.add(lp->obj[j], 1);
        for (const LpEntry &e : lp->cols[j]) d.add(-e.value, c->s->pi[e.row]);
        const Real missed = d.value - c->s->rc[j];
        c->found.dual_residual[j] = positive(abs(missed), d.terms);
        const bool at_lower = d.value * lp->sense > 0;
        const double bound = at_lower ? lp->lb[j] : lp->ub[j], x = c->s->x[j];
        const double distance = lp_is_infinite(bound) ? HUGE_VAL
                                : at_lower            ? x - bound
                                                      : bound - x;
        judge(c, j, d, distance, 0, c->tol + PLACE_RELATIVE * std::fabs(bound));
    }
}

static Measures compute(TVXmodel *model, const LpModel *lp, const LpSolution *s)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    Computation c{lp, s, 0, {}, {}, {}};
    TVXgetdblparam(TVXgetenv(model), "FeasibilityTol", &c.tol);
    for (std::vector<Amount> *group : {&c.found.bound, &c.found.dual_residual})
        group->resize(n);
    for (std::vector<Amount> *group : {&c.found.constr, &c.found.residual})
        group->resize(m);
    for (std::vector<Amount> *group : {&c.found.dual, &c.found.complementarity})
        group->resize(n + m);
    measure_point(&c);
    measure_row_duals(&c);
    measure_reduced_costs(&c);
    return c.found;
}

static std::string differs(const std::string &name, double said, double found)
{
    char text[200];
    snprintf(text, sizeof text, "%s is %.17g, found %.17g", name.c_str(), said, found);
    return text;
}

static void compare(TVXmodel *model, const std::string &name,
                    const std::vector<Amount> &amounts, std::vector<std::string> *faults)
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
    const Measures found = compute(model, lp, solution);
    std::vector<std::string> faults;
    compare(model, "BoundVio", found.bound, &faults);
    compare(model, "ConstrVio", found.constr, &faults);
    compare(model, "ConstrResidual", found.residual, &faults);
    compare(model, "DualVio", found.dual, &faults);
    compare(model, "DualResidual", found.dual_residual, &faults);
    compare(model, "ComplVio", found.complementarity, &faults);
    compare(model, "IntVio", {}, &faults);
    if (scaling == QualityScaling::SCALED) return faults;
    compare(model, "BoundSVio", found.bound, &faults);
    compare(model, "ConstrSVio", found.constr, &faults);
    compare(model, "ConstrSResidual", found.residual, &faults);
    compare(model, "DualSVio", found.dual, &faults);
    compare(model, "DualSResidual", found.dual_residual, &faults);
    return faults;
}
