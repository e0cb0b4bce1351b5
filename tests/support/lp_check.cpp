// lp_check.cpp -- the optimality conditions, one function each; see the header
#include "support/lp_check.h"
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace
{

constexpr double SCALE_SLACK =
    4; // factors of powers of two, in two passes, lose at most this

// Everything the conditions look at.
struct Check {
    const LpModel *lp = nullptr;
    const LpSolution *s = nullptr;
    const LpTolerances *tol = nullptr;
    LpReport *report = nullptr;
    std::vector<long double> activity;   // [m]
    std::vector<long double> row_weight; // [m] 1 / largest entry of the row
    std::vector<long double> col_weight; // [n] 1 / largest weighted entry of the column
    std::vector<long double> covered,
        cover_size;             // [n] Pi A, and the largest term of its sum
    long double obj_weight = 1; // 1 / the typical cost
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

static void weigh(Check *c)
{
    const size_t n = c->lp->obj.size(), m = c->lp->rhs.size();
    c->row_weight.assign(m, 0);
    c->col_weight.assign(n, 0);
    for (const std::vector<LpEntry> &col : c->lp->cols)
        for (const LpEntry &e : col) {
            long double *w = &c->row_weight[e.row];
            *w = std::max(*w, std::fabs(static_cast<long double>(e.value)));
        }
    for (long double &w : c->row_weight) w = w > 0 ? 1 / w : 1;
    long double largest = 0, smallest = 0;
    for (size_t j = 0; j < n; j++) {
        long double *w = &c->col_weight[j];
        for (const LpEntry &e : c->lp->cols[j])
            *w = std::max(*w, std::fabs(e.value * c->row_weight[e.row]));
        *w = *w > 0 ? 1 / *w : 1;
        const long double cost = std::fabs(c->lp->obj[j] * *w);
        if (cost == 0) continue;
        largest = std::max(largest, cost);
        smallest = smallest > 0 ? std::min(smallest, cost) : cost;
    }
    // Only large costs are forgiven: a solver that scales small costs up is the stricter for it.
    const long double typical = std::max(std::sqrt(largest * smallest), largest / 10000);
    if (typical > 1) c->obj_weight = 1 / typical;
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
        for (const bool upper : {false, true}) {
            const double bound = upper ? c->lp->ub[j] : c->lp->lb[j];
            if (lp_is_infinite(bound)) continue;
            const long double gap = static_cast<long double>(c->s->x[j]) - bound;
            const long double vio = upper ? gap : -gap;
            c->report->bound_vio = std::max(c->report->bound_vio, vio);
            const long double relative = std::max(1.0, std::fabs(bound));
            if (vio > c->tol->primal * std::max(relative, SCALE_SLACK * c->col_weight[j]))
                fault(&c->report->faults, "C%zu = %.12g beyond its bound %.12g", j,
                      c->s->x[j], bound);
        }
    }
}

static long double row_violation(char sense, long double activity, double rhs)
{
    const long double over = activity - rhs;
    if (sense == '<') return over;
    return sense == '>' ? -over : std::fabs(over);
}

static void check_rows(Check *c)
{
    std::vector<long double> size(c->lp->rhs.size(), 1); // largest term of the row's sum
    for (size_t j = 0; j < c->lp->cols.size(); j++)
        for (const LpEntry &e : c->lp->cols[j]) {
            long double *s = &size[e.row];
            *s = std::max(*s, std::fabs(static_cast<long double>(e.value) * c->s->x[j]));
        }
    for (size_t i = 0; i < c->lp->rhs.size(); i++) {
        const double rhs = c->lp->rhs[i];
        const long double vio = row_violation(c->lp->senses[i], c->activity[i], rhs);
        c->report->row_vio = std::max(c->report->row_vio, vio);
        const long double relative = std::max(1.0, std::fabs(rhs));
        const long double scaled = SCALE_SLACK / c->row_weight[i];
        if (vio > c->tol->primal * std::max(relative, scaled))
            fault(&c->report->faults, "R%zu: activity %.12Lg breaks %c %.12g", i,
                  c->activity[i], c->lp->senses[i], rhs);
        const long double slack = rhs - c->activity[i];
        if (std::fabs(slack - c->s->slack[i]) >
            c->tol->report * std::max(size[i], static_cast<long double>(std::fabs(rhs))))
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
        const long double scale = SCALE_SLACK * c->row_weight[i] / c->obj_weight;
        if (vio > c->tol->dual * std::max(1.0L, scale))
            fault(&c->report->faults, "R%zu: Pi %.12g has the wrong sign", i, pi);
    }
}

static void check_reduced_costs(Check *c)
{
    for (size_t j = 0; j < c->lp->obj.size(); j++) {
        const long double obj = c->lp->obj[j], rc = obj - c->covered[j];
        const long double size = std::max({1.0L, std::fabs(obj), c->cover_size[j]});
        if (std::fabs(rc - c->s->rc[j]) > c->tol->report * size)
            fault(&c->report->faults, "C%zu: RC %.12g, but obj - Pi A is %.12Lg", j,
                  c->s->rc[j], rc);
        const long double d = rc * c->lp->sense;
        const long double tol =
            c->tol->dual * std::max(1.0L, SCALE_SLACK / (c->col_weight[j] * c->obj_weight));
        const double bound = d > 0 ? c->lp->lb[j] : c->lp->ub[j];
        if (lp_is_infinite(bound)) {
            c->report->dual_vio = std::max(c->report->dual_vio, std::fabs(d));
            // What the infinite bound would add to the dual value is left out: d counts as 0.
            if (std::fabs(d) > tol)
                fault(&c->report->faults, "C%zu: RC %.12Lg improves without limit", j, rc);
            continue;
        }
        // Rounding noise counts as 0: a far bound must not blow it up into a gap.
        if (std::fabs(rc) > c->tol->report * size) c->report->dual_value += rc * bound;
        const long double distance =
            std::fabs(c->s->x[j] - static_cast<long double>(bound));
        const long double near =
            c->tol->primal * std::max({1.0L, std::fabs(static_cast<long double>(bound)),
                                       SCALE_SLACK * c->col_weight[j]});
        if (distance > near && std::fabs(d) > tol) {
            c->report->dual_vio = std::max(c->report->dual_vio, std::fabs(d));
            fault(&c->report->faults,
                  "C%zu = %.12g with RC %.12Lg is not at its bound %.12g", j, c->s->x[j],
                  rc, bound);
        }
    }
}

static void check_values(Check *c)
{
    long double size = 1 + std::fabs(c->report->primal_value);
    for (size_t j = 0; j < c->lp->obj.size(); j++)
        size =
            std::max(size, std::fabs(static_cast<long double>(c->lp->obj[j]) * c->s->x[j]));
    if (std::fabs(c->report->primal_value - c->s->objval) > c->tol->report * size)
        fault(&c->report->faults, "ObjVal %.12g, but the point has %.12Lg", c->s->objval,
              c->report->primal_value);
    const long double gap = c->report->primal_value - c->report->dual_value;
    if (std::fabs(gap) > c->tol->gap * size)
        fault(&c->report->faults, "duality gap: primal %.12Lg, dual %.12Lg",
              c->report->primal_value, c->report->dual_value);
    for (size_t i = 0; i < c->lp->rhs.size(); i++) {
        const long double product = (c->lp->rhs[i] - c->activity[i]) * c->s->pi[i];
        if (std::fabs(product) > c->tol->gap * size)
            fault(&c->report->faults, "R%zu: Pi %.12g on a row with slack %.12Lg", i,
                  c->s->pi[i], c->lp->rhs[i] - c->activity[i]);
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
    weigh(&c);
    c.activity = lp_activity(lp, solution->x);
    c.covered.assign(lp->obj.size(), 0);
    c.cover_size.assign(lp->obj.size(), 0);
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j]) {
            const long double term =
                static_cast<long double>(e.value) * solution->pi[e.row];
            c.covered[j] += term;
            c.cover_size[j] = std::max(c.cover_size[j], std::fabs(term));
        }
    report.primal_value = lp_objective(lp, solution->x);
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
