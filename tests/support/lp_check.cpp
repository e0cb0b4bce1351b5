// lp_check.cpp -- the optimality conditions, one function each; see the header
#include "support/lp_check.h"
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace
{

// Everything the conditions look at.
struct Check {
    const LpModel *lp = nullptr;
    const LpSolution *s = nullptr;
    const LpTolerances *tol = nullptr;
    LpReport *report = nullptr;
    LpSums sums;
};

} // namespace

__attribute__((format(printf, 2, 3))) static void fault(std::vector<std::string> *faults,
                                                        const char *format, ...)
{
    char text[300];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    if (faults->size() < 20) faults->emplace_back(text);
}

static bool all_finite(const std::vector<double> &values)
{
    return std::all_of(values.begin(), values.end(),
                       [](double v) { return std::isfinite(v); });
}

static bool check_shape(Check *c)
{
    const size_t n = c->lp->obj.size(), m = c->lp->rhs.size();
    std::vector<std::string> *faults = &c->report->faults;
    if (c->s->x.size() != n || c->s->rc.size() != n || c->s->pi.size() != m ||
        c->s->slack.size() != m) {
        fault(faults, "solution has the wrong size");
        return false;
    }
    if (!all_finite(c->s->x) || !all_finite(c->s->rc) || !all_finite(c->s->pi) ||
        !all_finite(c->s->slack) || !std::isfinite(c->s->objval)) {
        fault(faults, "solution holds NaN or infinity");
        return false;
    }
    return true;
}

static void check_bounds(Check *c)
{
    for (size_t j = 0; j < c->lp->obj.size(); j++) {
        const double x = c->s->x[j], lb = c->lp->lb[j], ub = c->lp->ub[j];
        const long double vio = lp_bound_violation(c->lp, j, x);
        c->report->bound_vio = std::max(c->report->bound_vio, vio);
        const long double relative = std::max(1.0, std::fabs(x > ub ? ub : lb));
        if (vio > c->tol->primal * relative)
            fault(&c->report->faults, "C%zu = %.12g beyond its bounds %.12g, %.12g", j, x,
                  lb, ub);
    }
}

static void check_rows(Check *c)
{
    for (size_t i = 0; i < c->lp->rhs.size(); i++) {
        const TermSum &sum = c->sums.rows[i];
        const long double rhs = c->lp->rhs[i], slack = rhs - sum.value;
        const long double vio = lp_row_violation(c->lp, i, sum.value);
        c->report->row_vio = std::max(c->report->row_vio, vio);
        const long double relative = std::max(1.0L, std::fabs(rhs));
        if (vio > c->tol->primal * relative)
            fault(&c->report->faults, "R%zu: activity %.12Lg breaks %c %.12Lg", i,
                  sum.value, c->lp->senses[i], rhs);
        const long double size = std::max({1.0L, sum.largest, std::fabs(rhs)});
        if (std::fabs(slack - c->s->slack[i]) > c->tol->report * size)
            fault(&c->report->faults, "R%zu: Slack %.12g, but rhs - activity is %.12Lg", i,
                  c->s->slack[i], slack);
    }
}

static void check_row_duals(Check *c)
{
    for (size_t i = 0; i < c->lp->rhs.size(); i++) {
        const double pi = c->s->pi[i], y = pi * c->lp->sense;
        c->report->dual_value += static_cast<long double>(pi) * c->lp->rhs[i];
        if (c->lp->senses[i] == '=') continue;
        const long double vio = c->lp->senses[i] == '<' ? y : -y;
        c->report->dual_vio = std::max(c->report->dual_vio, vio);
        if (vio > c->tol->dual)
            fault(&c->report->faults, "R%zu: Pi %.12g has the wrong sign", i, pi);
    }
}

static void check_reduced_costs(Check *c)
{
    for (size_t j = 0; j < c->lp->obj.size(); j++) {
        const long double rc = c->sums.costs[j].value;
        const long double size = std::max(1.0L, c->sums.costs[j].largest);
        if (std::fabs(rc - c->s->rc[j]) > c->tol->report * size)
            fault(&c->report->faults, "C%zu: RC %.12g, but obj - Pi A is %.12Lg", j,
                  c->s->rc[j], rc);
        const long double d = rc * c->lp->sense;
        const double bound = d > 0 ? c->lp->lb[j] : c->lp->ub[j];
        if (lp_is_infinite(bound)) {
            c->report->dual_vio = std::max(c->report->dual_vio, std::fabs(d));
            // What the infinite bound would add to the dual value is left out: d counts as 0.
            if (std::fabs(d) > c->tol->dual)
                fault(&c->report->faults, "C%zu: RC %.12Lg improves without limit", j, rc);
            continue;
        }
        // Rounding noise counts as 0: a far bound must not blow it up into a gap.
        if (std::fabs(rc) > c->tol->report * size) c->report->dual_value += rc * bound;
        const long double distance =
            std::fabs(c->s->x[j] - static_cast<long double>(bound));
        const double near = c->tol->primal * std::max(1.0, std::fabs(bound));
        if (distance > near && std::fabs(d) > c->tol->dual) {
            c->report->dual_vio = std::max(c->report->dual_vio, std::fabs(d));
            fault(&c->report->faults,
                  "C%zu = %.12g with RC %.12Lg is not at its bound %.12g", j, c->s->x[j],
                  rc, bound);
        }
    }
}

static void check_values(Check *c)
{
    const long double size =
        std::max(1 + std::fabs(c->report->primal_value), c->sums.objective.largest);
    if (std::fabs(c->report->primal_value - c->s->objval) > c->tol->report * size)
        fault(&c->report->faults, "ObjVal %.12g, but the point has %.12Lg", c->s->objval,
              c->report->primal_value);
    const long double gap = c->report->primal_value - c->report->dual_value;
    if (std::fabs(gap) > c->tol->gap * size)
        fault(&c->report->faults, "duality gap: primal %.12Lg, dual %.12Lg",
              c->report->primal_value, c->report->dual_value);
    for (size_t i = 0; i < c->lp->rhs.size(); i++) {
        const long double slack = c->lp->rhs[i] - c->sums.rows[i].value;
        if (std::fabs(slack * c->s->pi[i]) > c->tol->gap * size)
            fault(&c->report->faults, "R%zu: Pi %.12g on a row with slack %.12Lg", i,
                  c->s->pi[i], slack);
    }
}

LpReport lp_check_optimal(const LpModel *lp, const LpSolution *solution,
                          const LpTolerances &tolerances)
{
    LpReport report;
    Check c;
    c.lp = lp;
    c.s = solution;
    c.tol = &tolerances;
    c.report = &report;
    if (!check_shape(&c)) return report;
    c.sums = lp_sums(lp, solution->x, solution->pi);
    report.primal_value = c.sums.objective.value;
    report.dual_value = lp->objcon;
    check_bounds(&c);
    check_rows(&c);
    check_row_duals(&c);
    check_reduced_costs(&c);
    check_values(&c);
    if (solution->has_basis)
        lp_check_basis(lp, solution, tolerances.primal, &report.faults);
    return report;
}

std::string LpReport::text() const
{
    std::string all;
    for (const std::string &line : faults) all += line + "\n";
    return all;
}
