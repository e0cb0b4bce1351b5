// mip_check.cpp -- what each statement of a MIP answer must meet; see the header
#include "support/mip_check.h"
#include <algorithm>
#include <cmath>

static constexpr double FORGIVEN =
    1e-5; // fraction that rounding a bound of an integer column forgives
static constexpr double SUM_ROUNDING =
    1e-13;                              // of a sum in a judge's eyes, relative to its terms
static constexpr int MOST_OTHERS = 100; // further solutions that are looked at

double setting_value(const Settings &settings, const char *wanted, double otherwise)
{
    for (const auto &[name, value] : settings)
        if (name == wanted) otherwise = value;
    return otherwise;
}

MipTolerances mip_tolerances(const Settings &settings)
{
    MipTolerances t;
    t.rows = setting_value(settings, "FeasibilityTol", t.rows);
    t.integer = setting_value(settings, "IntFeasTol", t.integer);
    t.gap = setting_value(settings, "MIPGap", t.gap);
    t.gap_abs = setting_value(settings, "MIPGapAbs", t.gap_abs);
    return t;
}

LpModel mip_rounded(const LpModel *lp)
{
    LpModel rounded = *lp;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        double *lb = &rounded.lb[j], *ub = &rounded.ub[j];
        const char type = lp->type(j);
        if (type == 'C' || type == 'S') continue;
        if (!lp_is_infinite(*lb)) *lb = std::ceil(*lb - FORGIVEN);
        if (!lp_is_infinite(*ub)) *ub = std::floor(*ub + FORGIVEN);
        if (type != 'B') continue;
        *lb = std::max(*lb, 0.0);
        *ub = std::min(*ub, 1.0);
    }
    return rounded;
}

// ---- What the library says ----

static int read_values(TVXmodel *model, const char *name, int count,
                       std::vector<double> *to)
{
    to->assign(static_cast<size_t>(count) + 1, NAN); // one more, so that there is an array
    const int code = TVXgetdblattrarray(model, name, 0, count, to->data());
    to->resize(count);
    return code;
}

// Solutions 1, 2, ... up to the first that is not there.
static void read_others(TVXmodel *model, int n, MipAnswer *answer)
{
    TVXenv *env = TVXgetenv(model);
    int before = 0;
    if (TVXgetintparam(env, "SolutionNumber", &before)) answer->code = -1;
    std::vector<double> values;
    for (int k = 1; k <= MOST_OTHERS; k++) {
        if (TVXsetintparam(env, "SolutionNumber", k) ||
            read_values(model, "Xn", n, &values))
            break;
        answer->others.push_back(values);
    }
    TVXsetintparam(env, "SolutionNumber", before);
}

MipAnswer mip_read(TVXmodel *model)
{
    MipAnswer a;
    int n = 0, m = 0;
    for (const auto &[name, value] : {std::pair{"NumVars", &n},
                                      {"NumConstrs", &m},
                                      {"Status", &a.status},
                                      {"SolCount", &a.sol_count}})
        if (const int code = TVXgetintattr(model, name, value)) a.code = code;
    (void)TVXgetdblattr(model, "NodeCount", &a.nodes);
    a.has_value = !TVXgetdblattr(model, "ObjVal", &a.objval) &&
                  !TVXgetdblattr(model, "ObjBound", &a.objbound);
    a.has_point =
        !read_values(model, "X", n, &a.x) && !read_values(model, "Slack", m, &a.slack);
    if (a.has_point && n > 0) read_others(model, n, &a);
    return a;
}

MipAnswer mip_optimize(TVXmodel *model)
{
    const int code = TVXoptimize(model);
    MipAnswer answer = mip_read(model);
    if (code) answer.code = code;
    return answer;
}

// ---- A point ----

namespace
{
struct PointCheck {
    const LpModel *lp; // with the bounds that count
    const std::vector<double> &x;
    MipTolerances tol;
    std::string faults;

    void expect(bool good, const char *what, size_t k, double by)
    {
        if (!good) faults += formatted("%s %zu by %.9g\n", what, k, by);
    }
    void rows();
    void column(size_t j);
    void set(size_t k);
};
} // namespace

void PointCheck::rows()
{
    const LpMeasures m = lp_measure(lp, x, {});
    for (size_t i = 0; i < m.constr.size(); i++) {
        const double by = static_cast<double>(m.constr[i].value),
                     noise = SUM_ROUNDING * static_cast<double>(m.constr[i].terms);
        expect(by <= tol.rows + noise, "breaks row", i, by);
    }
}

void PointCheck::column(size_t j)
{
    const char type = lp->type(j);
    const double v = x[j], by = std::max(lp_is_infinite(lp->lb[j]) ? 0 : lp->lb[j] - v,
                                         lp_is_infinite(lp->ub[j]) ? 0 : v - lp->ub[j]);
    const bool semi = type == 'S' || type == 'N', off = semi && std::fabs(v) <= tol.rows;
    const double noise = SUM_ROUNDING * std::fabs(v);
    expect(off || by <= tol.rows + noise, "breaks the bounds of column", j, by);
    if (type == 'C' || type == 'S') return;
    const double fraction = std::fabs(v - std::nearbyint(v));
    expect(fraction <= tol.integer + noise, "has a fraction in column", j, fraction);
}

// The window of one or two neighbours that leaves the least outside it.
void PointCheck::set(size_t k)
{
    const LpSet &s = lp->sets[k];
    double least = HUGE_VAL;
    for (size_t first = 0; first < s.members.size(); first++) {
        double outside = 0;
        for (size_t p = 0; p < s.members.size(); p++)
            if (p < first || p >= first + static_cast<size_t>(s.type))
                outside = std::max(outside, std::fabs(x[s.members[p]]));
        least = std::min(least, outside);
    }
    expect(s.members.empty() || least <= tol.rows, "breaks set", k, least);
}

std::string mip_check_point(const LpModel *lp, const std::vector<double> &x,
                            const MipTolerances &tolerances)
{
    if (x.size() != lp->obj.size() || !all_finite(x))
        return "the point is not finite, or of another size\n";
    const LpModel rounded = mip_rounded(lp);
    PointCheck check = {&rounded, x, tolerances, ""};
    check.rows();
    for (size_t j = 0; j < x.size(); j++) check.column(j);
    for (size_t k = 0; k < lp->sets.size(); k++) check.set(k);
    return check.faults;
}

// ---- The whole answer ----

static std::string check_reports(const LpModel *lp, const MipAnswer *a,
                                 const MipTolerances &tol)
{
    std::string faults;
    const LpSums sums = lp_sums(lp, a->x, {});
    const auto differs = [&](double said, long double found, long double largest) {
        return !(std::fabs(found - said) <= tol.report * std::max(1.0L, largest));
    };
    if (differs(a->objval, sums.objective.value, sums.objective.largest))
        faults += formatted("ObjVal is %.12g, but %.12Lg by X\n", a->objval,
                            sums.objective.value);
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (!lp_is_infinite(lp->rhs[i]) &&
            differs(a->slack[i], lp->rhs[i] - sums.rows[i].value,
                    std::max(sums.rows[i].largest, std::fabs((long double)lp->rhs[i]))))
            faults += formatted("Slack %zu is %.12g\n", i, a->slack[i]);
    return faults;
}

// The solution is the best of all; the others are points of the model, the better ones first.
static std::string check_others(const LpModel *lp, const MipAnswer *a,
                                const MipTolerances &tol)
{
    std::string faults;
    double better = a->objval;
    for (const std::vector<double> &x : a->others) {
        faults += mip_check_point(lp, x, tol);
        if (!faults.empty()) return "a further solution " + faults;
        const double value = static_cast<double>(lp_objective(lp, x));
        if (lp->sense * (better - value) > tol.rows * (1 + std::fabs(value)))
            return formatted("solution of value %g behind one of %g\n", value, better);
        better = value;
    }
    if (a->sol_count <= static_cast<int>(a->others.size()))
        return formatted("%zu further solutions, SolCount %d\n", a->others.size(),
                         a->sol_count);
    return "";
}

static std::string check_bound(const LpModel *lp, const MipAnswer *a,
                               const MipTolerances &tol)
{
    const double beyond = lp->sense * (a->objbound - a->objval),
                 noise = tol.rows * (1 + std::fabs(a->objval)),
                 gap = std::max(tol.gap * std::fabs(a->objval), tol.gap_abs) + noise;
    if (std::isnan(a->objbound) || beyond > noise)
        return formatted("ObjBound %.9g is beyond ObjVal %.9g\n", a->objbound, a->objval);
    if (a->status == TVX_OPTIMAL && -beyond > gap)
        return formatted("optimal with ObjBound %.9g, ObjVal %.9g\n", a->objbound,
                         a->objval);
    return "";
}

std::string mip_check(const LpModel *lp, const MipAnswer *a, const MipTolerances &tol)
{
    if (a->code) return formatted("code %d\n", a->code);
    if (a->status < TVX_OPTIMAL || a->status > TVX_INTERRUPTED)
        return formatted("status %d\n", a->status);
    const bool none = a->status >= TVX_INFEASIBLE && a->status <= TVX_CUTOFF,
               some = a->sol_count > 0;
    if (a->sol_count < 0 ||
        (none && some && a->status != TVX_INF_OR_UNBD && a->status != TVX_UNBOUNDED))
        return formatted("status %d with %d solutions\n", a->status, a->sol_count);
    if (a->has_value != (a->status == TVX_OPTIMAL || a->status >= TVX_CUTOFF))
        return formatted("status %d: is there an ObjVal? %d\n", a->status, a->has_value);
    if (a->has_point != some || (a->status == TVX_OPTIMAL && !some))
        return formatted("status %d with %d solutions: is there an X? %d\n", a->status,
                         a->sol_count, a->has_point);
    if (!some) return "";
    std::string faults = mip_check_point(lp, a->x, tol);
    if (a->has_value) faults += check_reports(lp, a, tol) + check_bound(lp, a, tol);
    return faults + (faults.empty() && a->has_value ? check_others(lp, a, tol) : "");
}
