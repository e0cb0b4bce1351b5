// lp_check.cpp -- the optimality conditions, one function each; see the header
#include "support/lp_check.h"
#include <algorithm>
#include <cmath>

static constexpr size_t MOST_FAULTS = 20; // are told

static void fault(std::vector<std::string> *faults, const std::string &text)
{
    if (faults->size() < MOST_FAULTS) faults->push_back(text);
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
        fault(faults,
              formatted("%s %zu is %.12g, but %.12Lg by its sum", name, k, said, found));
}

static void check_violation(const char *name, size_t k, const LpAmount &amount, double from,
                            double to, double tol, std::vector<std::string> *faults)
{
    double nearest = std::fabs(from); // an end that is violated is finite
    if (lp_is_infinite(from) || std::fabs(to) < nearest) nearest = std::fabs(to);
    if (amount.value > tol * std::max(1.0, nearest))
        fault(faults, formatted("%s %zu violated by %.12Lg", name, k, amount.value));
}

// A multiplier is 0, or its column or row stands where the multiplier drives it.
static void check_priced(const char *name, size_t k, const LpPriced &p,
                         const LpTolerances &tol, std::vector<std::string> *faults)
{
    if (std::fabs(p.force.value) > tol.dual &&
        p.distance.value > tol.primal * std::max(1.0L, p.end))
        fault(faults, formatted("%s %zu has multiplier %.12Lg, its end is %.12Lg away",
                                name, k, p.force.value, p.distance.value));
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
        fault(faults,
              formatted("duality gap: primal %.12Lg, dual %.12Lg", primal.value, dual));
}

// ---- The basis ----

static constexpr int MAX_FACTOR_ROWS = 400; // larger bases are not tested for regularity
static constexpr double SINGULAR = 1e-11;   // largest entry left, lines scaled to 1

Matrix basis_matrix(const LpModel *lp, const LpSolution *s)
{
    Matrix b(lp->rhs.size());
    const auto add = [&b](const std::vector<LpEntry> &column) {
        for (auto &row : b) row.push_back(0);
        for (const LpEntry &e : column) b[e.row].back() = e.value;
    };
    for (int j = 0; j < lp->num_vars(); j++)
        if (s->vbasis[j] == 0) add(lp->cols[j]);
    for (int i = 0; i < lp->num_rows(); i++)
        if (s->cbasis[i] == 0) add({{i, 1}});
    return b;
}

static bool is_regular(Matrix b)
{
    for (size_t c = 0; c < b.size(); c++) {
        long double largest = 0;
        for (const auto &row : b) largest = std::max(largest, std::fabs(row[c]));
        for (auto &row : b) row[c] /= largest;
    }
    for (auto &row : b) {
        long double largest = 0;
        for (const long double v : row) largest = std::max(largest, std::fabs(v));
        for (long double &v : row) v /= largest;
    }
    return b.empty() || !inverse(b, SINGULAR).empty();
}

// Nonbasic at `bound`, the sum or value being x.
static std::string wrong_place(double bound, long double x, double tol)
{
    if (lp_is_infinite(bound)) return " nonbasic at an infinite bound\n";
    const long double apart = std::fabs(x - bound);
    return apart > tol * std::max(1.0, std::fabs(bound)) ? " nonbasic, but not there\n"
                                                         : "";
}

static void check_basis(const LpModel *lp, const LpSolution *solution, double tol_primal,
                        std::vector<std::string> *faults)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    if (solution->vbasis.size() != n || solution->cbasis.size() != m) {
        faults->emplace_back("basis has the wrong size");
        return;
    }
    const std::vector<long double> activity = lp_activity(lp, solution->x);
    size_t basics = 0;
    const auto add = [&](char kind, size_t k, const std::string &wrong) {
        if (!wrong.empty()) faults->push_back(kind + std::to_string(k) + wrong);
    };
    for (size_t j = 0; j < n; j++) {
        const int status = solution->vbasis[j];
        const double lb = lp->lb[j], ub = lp->ub[j];
        basics += status == 0;
        if (status == -1 || status == -2)
            add('C', j, wrong_place(status == -1 ? lb : ub, solution->x[j], tol_primal));
        if (status == -3 && !(lp_is_infinite(lb) && lp_is_infinite(ub)))
            add('C', j, " superbasic though it has a bound");
        if (status < -3 || status > 0) add('C', j, " has a VBasis that does not exist");
    }
    for (size_t i = 0; i < m; i++) {
        const int status = solution->cbasis[i];
        basics += status == 0;
        if (status == -1) add('R', i, wrong_place(lp->rhs[i], activity[i], tol_primal));
        if (status < -1 || status > 0) add('R', i, " has a CBasis that does not exist");
    }
    if (basics != m)
        faults->push_back(formatted("%zu basics for %zu rows", basics, m));
    else if (m <= MAX_FACTOR_ROWS && !is_regular(basis_matrix(lp, solution)))
        faults->emplace_back("basis matrix is singular");
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
    if (s->has_basis) check_basis(lp, s, tol.primal, &faults);
    std::string all;
    for (const std::string &line : faults) all += line + "\n";
    return all;
}
