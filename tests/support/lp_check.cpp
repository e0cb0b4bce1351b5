// lp_check.cpp -- the optimality conditions, one function each; see the header
#include "support/lp_check.h"
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

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

static bool check_shape(const LpModel *lp, const LpSolution *s,
                        std::vector<std::string> *faults)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    if (s->x.size() != n || s->rc.size() != n || s->pi.size() != m || s->slack.size() != m)
        fault(faults, "solution has the wrong size");
    else if (!all_finite(s->x) || !all_finite(s->rc) || !all_finite(s->pi) ||
             !all_finite(s->slack) || !std::isfinite(s->objval))
        fault(faults, "solution holds NaN or infinity");
    return faults->empty();
}

// A number that the solver reports, against the sum that it stands for.
static void check_report(const char *name, size_t k, double said, long double found,
                         long double largest, double tol, std::vector<std::string> *faults)
{
    if (std::fabs(found - said) > tol * std::max(1.0L, largest))
        fault(faults, "%s %zu is %.12g, but %.12Lg by its sum", name, k, said, found);
}

static void check_violation(const char *name, size_t k, const LpAmount &amount, double from,
                            double to, double tol, std::vector<std::string> *faults)
{
    double nearest = std::fabs(from); // an end that is violated is finite
    if (lp_is_infinite(from) || std::fabs(to) < nearest) nearest = std::fabs(to);
    if (amount.value > tol * std::max(1.0, nearest))
        fault(faults, "%s %zu violated by %.12Lg", name, k, amount.value);
}

// A multiplier is 0, or its column or row stands where the multiplier drives it.
static void check_priced(const char *name, size_t k, const LpPriced &p,
                         const LpTolerances &tol, std::vector<std::string> *faults)
{
    if (std::fabs(p.force.value) > tol.dual &&
        p.distance.value > tol.primal * std::max(1.0L, p.end))
        fault(faults, "%s %zu has multiplier %.12Lg, its end is %.12Lg away", name, k,
              p.force.value, p.distance.value);
}

static void check_value(const LpModel *lp, const LpSolution *s, const LpMeasures &m,
                        const LpTolerances &tol, std::vector<std::string> *faults)
{
    const TermSum &primal = m.sums.objective;
    const long double size = std::max(1 + std::fabs(primal.value), primal.largest);
    check_report("ObjVal", 0, s->objval, primal.value, size, tol.report, faults);
    long double dual = lp->objcon;
    for (size_t i = 0; i < lp->rhs.size(); i++)
        dual += static_cast<long double>(s->pi[i]) * lp->rhs[i];
    for (size_t j = 0; j < lp->obj.size(); j++) {
        // Rounding noise counts as 0, so that a far bound does not blow it up into a gap; so does what has no bound.
        const TermSum &rc = m.sums.costs[j];
        const bool open = std::isinf(m.cols[j].distance.value);
        if (open || std::fabs(rc.value) <= tol.report * std::max(1.0L, rc.largest))
            continue;
        dual += rc.value * (rc.value * lp->sense > 0 ? lp->lb[j] : lp->ub[j]);
    }
    if (std::fabs(primal.value - dual) > tol.gap * size)
        fault(faults, "duality gap: primal %.12Lg, dual %.12Lg", primal.value, dual);
}

std::string lp_check_optimal(const LpModel *lp, const LpSolution *s,
                             const LpTolerances &tol)
{
    std::vector<std::string> faults;
    if (!check_shape(lp, s, &faults)) return faults[0];
    const LpMeasures m = lp_measure(lp, s->x, s->pi);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const TermSum &rc = m.sums.costs[j];
        check_violation("column", j, m.bound[j], lp->lb[j], lp->ub[j], tol.primal, &faults);
        check_report("RC", j, s->rc[j], rc.value, rc.largest, tol.report, &faults);
        check_priced("column", j, m.cols[j], tol, &faults);
    }
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const TermSum &sum = m.sums.rows[i];
        const long double rhs = lp->rhs[i];
        check_violation("row", i, m.constr[i], lp->rhs[i], lp->rhs[i], tol.primal, &faults);
        check_report("Slack", i, s->slack[i], rhs - sum.value,
                     std::max(sum.largest, std::fabs(rhs)), tol.report, &faults);
        check_priced("row", i, m.rows[i], tol, &faults);
    }
    check_value(lp, s, m, tol, &faults);
    if (s->has_basis) lp_check_basis(lp, s, tol.primal, &faults);
    std::string all;
    for (const std::string &line : faults) all += line + "\n";
    return all;
}
