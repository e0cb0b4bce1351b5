// hostile_judge.cpp -- the rules of the header, one function each
#include "support/hostile_judge.h"
#include <algorithm>
#include <cmath>
#include <cstring>

static constexpr double NEARBY = 1e-9;          // no point that breaks less is ever refused
static constexpr double GROSS_FACTOR = 1000;    // of the tolerances
static constexpr double LOOSE_VALUE = 1e-6;     // relative
static constexpr double SUM_ROUNDING = 1e-15;   // of the terms of what tolerances explain
static constexpr double RC_ROUNDING = 1e-14;    // of the terms of c - pi A, pi rounded
static constexpr double VALUE_ROUNDING = 1e-12; // of the terms of the objective, for ObjVal
static constexpr double PLACE_RELATIVE = 1e-9;  // of numbers behind a distance: DualVio's

const char *verdict_name(Verdict verdict)
{
    static constexpr const char *NAMES[] = {
        "right",     "loose",          "warned",          "gross",         "far",
        "refused",   "refused_either", "false_unbounded", "false_optimal", "silent",
        "objective", "numeric",        "runaway",         "slow",          "other"};
    static_assert(sizeof NAMES / sizeof *NAMES == size_t(Verdict::COUNT));
    return NAMES[size_t(verdict)];
}

const RationalResult &HostileTruth::relaxed(double relax)
{
    const auto found = answers.find(relax);
    if (found != answers.end()) return found->second;
    return answers[relax] = rational_solve(lp, relax);
}

// ---- The run ----

// Which warnings are logged.
static int watch(TVXmodel *, void *cbdata, int where, void *usrdata)
{
    HostileOutcome *outcome = static_cast<HostileOutcome *>(usrdata);
    const char *line = nullptr;
    if (where != TVX_WHERE_MESSAGE || TVXcbget(cbdata, where, TVX_CB_MESSAGE_TEXT, &line))
        return 0;
    if (strstr(line, "unscaled primal violation")) outcome->warned_primal = true;
    if (strstr(line, "unscaled dual violation")) outcome->warned_dual = true;
    return 0;
}

static int run(TVXmodel *model, const LpModel *lp, const Settings &settings,
               HostileOutcome *outcome)
{
    TVXenv *env = TVXgetenv(model);
    int error = settings_apply(env, settings);
    if (!error)
        error = TVXsetdblparam(env, "IterationLimit",
                               HOSTILE_RUNAWAY * (lp->num_rows() + lp->num_vars()));
    if (!error) error = TVXsetdblparam(env, "TimeLimit", HOSTILE_SECONDS);
    if (!error) error = TVXgetdblparam(env, "FeasibilityTol", &outcome->feasibility);
    if (!error) error = TVXgetdblparam(env, "OptimalityTol", &outcome->optimality);
    if (!error) error = TVXsetcallbackfunc(model, watch, outcome);
    if (!error) error = lp_solve(model, &outcome->solution);
    if (!error) error = TVXgetdblattr(model, "Runtime", &outcome->seconds);
    return error;
}

HostileOutcome hostile_solve(TVXenv *env, const LpModel *lp, const Settings &settings)
{
    HostileOutcome outcome;
    const TestModel model(lp_load(env, lp));
    outcome.error = model ? run(model, lp, settings, &outcome) : TVX_ERROR_OUT_OF_MEMORY;
    if (outcome.error)
        outcome.message = model ? TVXgetmerrormsg(model) : TVXgeterrormsg(env);
    return outcome;
}

// ---- The judgement ----

namespace
{
struct Point {
    const LpModel *lp = nullptr;
    const HostileOutcome *outcome = nullptr;
    LpMeasures measures;
    long double residual = 0; // largest difference of RC from c - pi A that is not rounding
    long double primal = 0, dual = 0; // largest violations, less their rounding
};
} // namespace

static void measure(Point *p)
{
    const HostileOutcome *o = p->outcome;
    const auto raise = [o](long double *most, const LpAmount &a) {
        *most = std::max(*most, std::fabs(a.value) - o->rounding * a.terms);
    };
    for (const std::vector<LpAmount> *list : {&p->measures.bound, &p->measures.constr})
        for (const LpAmount &a : *list)
            if (a.value > 0) raise(&p->primal, a);
    const auto judge = [&](const LpPriced &one) {
        if (one.distance.value > o->feasibility + PLACE_RELATIVE * one.end)
            raise(&p->dual, one.force);
    };
    for (const LpPriced &one : p->measures.cols) judge(one);
    for (size_t i = 0; i < p->measures.rows.size(); i++)
        if (p->lp->senses[i] != '=') judge(p->measures.rows[i]);
    for (size_t j = 0; j < p->measures.cols.size(); j++) {
        const TermSum &cost = p->measures.sums.costs[j];
        const long double missed = std::fabs(cost.value - o->solution.rc[j]);
        if (missed > RC_ROUNDING * cost.size) p->residual = std::max(p->residual, missed);
    }
}

// What the tolerances explain of c x - c x*, where x* is feasible in the model relaxed by `relax`.
static long double explained(const Point *p, const RationalResult &best, double relax)
{
    const double tol = p->outcome->feasibility, dual_tol = p->outcome->optimality;
    std::vector<double> x;
    for (const mpq_class &v : best.x) x.push_back(v.get_d());
    const std::vector<long double> activity = lp_activity(p->lp, x);
    const auto share = [&](const LpPriced &one, long double way) -> long double {
        const long double force = std::fabs(one.force.value);
        if (one.distance.value <= tol)
            return force * (std::max(one.distance.value, 0.0L) + relax);
        return std::min<long double>(force, dual_tol) * std::fabs(way);
    };
    const LpMeasures &m = p->measures;
    long double sum = SUM_ROUNDING * m.sums.objective.size;
    for (size_t i = 0; i < activity.size(); i++)
        sum += share(m.rows[i], m.sums.rows[i].value - activity[i]) +
               SUM_ROUNDING * std::fabs(m.rows[i].force.value) * m.sums.rows[i].size;
    for (size_t j = 0; j < x.size(); j++)
        sum += share(m.cols[j], p->outcome->solution.x[j] - static_cast<long double>(x[j]));
    return sum;
}

static bool well_formed(const LpModel *lp, const HostileOutcome *outcome)
{
    const auto finite = [](const std::vector<double> &values, size_t size) {
        return values.size() == size && all_finite(values);
    };
    const LpSolution *s = &outcome->solution;
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    return finite(s->x, n) && std::isfinite(s->objval) &&
           (!outcome->has_duals || (finite(s->rc, n) && finite(s->pi, m)));
}

static HostileJudgement judge_value(HostileTruth *truth, const Point *p)
{
    const double tol = p->outcome->feasibility, said = p->outcome->solution.objval;
    const long double value = p->measures.sums.objective.value;
    if (std::fabs(said - value) > VALUE_ROUNDING * p->measures.sums.objective.size)
        return {Verdict::OBJECTIVE,
                formatted("ObjVal %.15g, but the point has %.15Lg", said, value)};
    double relax = 0;
    if (truth->relaxed(0).status == LpStatus::INFEASIBLE) relax = tol;
    const RationalResult &best = truth->relaxed(relax);
    if (best.status != LpStatus::OPTIMAL) return {}; // unbounded within OptimalityTol
    const long double exact = best.value.get_d(), miss = (value - exact) * p->lp->sense;
    if (p->outcome->has_duals && miss > explained(p, best, relax))
        return {Verdict::OBJECTIVE,
                formatted("value %.15Lg, exact %.15Lg, explained is %.3Lg", value, exact,
                          explained(p, best, relax))};
    if (relax == 0 && std::fabs(miss) > LOOSE_VALUE * std::max(1.0L, std::fabs(exact)))
        return {Verdict::LOOSE, formatted("value %.15Lg, exact %.15Lg", value, exact)};
    return {};
}

static HostileJudgement judge_point(HostileTruth *truth, const Point *p)
{
    const HostileOutcome *o = p->outcome;
    const bool primal = p->primal > o->feasibility, dual = p->dual > o->optimality;
    if (primal && truth->relaxed(2 * o->feasibility).status == LpStatus::INFEASIBLE)
        return {Verdict::FALSE_OPTIMAL,
                formatted("optimal, violation %.3Lg; infeasible within %g", p->primal,
                          2 * o->feasibility)};
    if (p->residual > o->optimality)
        return {Verdict::SILENT, formatted("RC is %.3Lg from c - pi A", p->residual)};
    if ((primal && !o->warned_primal) || (dual && !o->warned_dual))
        return {Verdict::SILENT,
                formatted("violation primal %.3Lg%s, dual %.3Lg%s", p->primal,
                          primal && !o->warned_primal ? " untold" : "", p->dual,
                          dual && !o->warned_dual ? " untold" : "")};
    const bool gross =
        p->primal > GROSS_FACTOR * o->feasibility || p->dual > GROSS_FACTOR * o->optimality;
    if (primal || dual)
        return {gross ? Verdict::GROSS : Verdict::WARNED,
                formatted("violation primal %.3Lg, dual %.3Lg", p->primal, p->dual)};
    return judge_value(truth, p);
}

static HostileJudgement judge_solution(HostileTruth *truth, const HostileOutcome *outcome)
{
    if (!well_formed(truth->lp, outcome))
        return {Verdict::OTHER, "solution incomplete or not finite"};
    const LpSolution *s = &outcome->solution;
    Point p = {truth->lp, outcome, {}, 0, 0, 0};
    p.measures =
        lp_measure(truth->lp, s->x, outcome->has_duals ? s->pi : std::vector<double>{});
    measure(&p);
    HostileJudgement j = judge_point(truth, &p);
    j.primal_vio = double(p.primal);
    j.dual_vio = double(p.dual);
    return j;
}

// By how much rows move at x, at most, when coefficients that are no short numbers, such as 1/3, are what their writer
// meant: something within their rounding.
static double coefficient_doubt(const LpModel *lp, const std::vector<mpq_class> &x)
{
    static constexpr double SHORT = 0x1p20; // multiples of its inverse are meant as such
    std::vector<double> doubt(lp->rhs.size(), 0.0);
    for (int j = 0; j < lp->num_vars(); j++)
        for (const LpEntry &e : lp->cols[j])
            if (std::rint(e.value * SHORT) != e.value * SHORT)
                doubt[e.row] += 0x1p-53 * std::fabs(e.value * x[j].get_d());
    return doubt.empty() ? 0 : *std::max_element(doubt.begin(), doubt.end());
}

// Is there a ray but for the rounding of the coefficients? Columns whose ratios differ by the rounding of 0.3 / 0.9
// have none in exact arithmetic, and nobody who wrote the model would say so.
static bool has_rounded_ray(const LpModel *lp)
{
    static constexpr double ROUNDING =
        0x1p-50;                          // of an entry, against the largest of its row
    static constexpr double CLEAR = 1e-8; // fall of the objective, against its largest cost
    LpModel cone = *lp;
    std::vector<double> size(lp->rhs.size(), 0.0);
    double cost = 0;
    for (int j = 0; j < lp->num_vars(); j++) {
        cone.lb[j] = lp_is_infinite(lp->lb[j]) ? -1 : 0;
        cone.ub[j] = lp_is_infinite(lp->ub[j]) ? 1 : 0;
        cost = std::max(cost, std::fabs(lp->obj[j]));
        for (const LpEntry &e : lp->cols[j])
            size[e.row] = std::max(size[e.row], std::fabs(e.value));
    }
    for (std::vector<LpEntry> &column : cone.cols)
        for (LpEntry &e : column) e.value = std::ldexp(e.value, -std::ilogb(size[e.row]));
    std::fill(cone.rhs.begin(), cone.rhs.end(), 0.0);
    cone.objcon = 0;
    return rational_solve(&cone, ROUNDING).value * lp->sense < -CLEAR * cost;
}

// The point of the model relaxed by `relax` counts: doubles can hold it, and it does not hang on their rounding.
static bool is_near(HostileTruth *truth, double relax, double tol)
{
    std::vector<mpq_class> rounded;
    for (const mpq_class &v : truth->relaxed(relax).x) rounded.emplace_back(v.get_d());
    return rational_verify_point(truth->lp, rounded, relax + tol).empty() &&
           coefficient_doubt(truth->lp, rounded) <= tol;
}

// The first relaxed model that is feasible tells. Rays are the same in all of them.
static HostileJudgement judge_refusal(HostileTruth *truth, int said, double tol,
                                      Verdict wrong)
{
    std::vector<double> relaxations = {0, NEARBY};
    if (said == TVX_UNBOUNDED) relaxations.push_back(tol);
    for (const double relax : relaxations) {
        const LpStatus status = truth->relaxed(relax).status;
        if (status == LpStatus::INFEASIBLE) continue;
        const bool ray_claimed = said != TVX_INFEASIBLE;
        if (ray_claimed && status == LpStatus::UNBOUNDED) return {};
        const bool far =
            (ray_claimed && has_rounded_ray(truth->lp)) || !is_near(truth, relax, tol);
        return {far ? Verdict::FAR : wrong,
                formatted("status %d, but relaxed by %g it is %s with %.12g", said, relax,
                          lp_status_name(status), truth->relaxed(relax).value.get_d())};
    }
    if (said != TVX_UNBOUNDED) return {};
    return {wrong, formatted("unbounded, but infeasible within %g", tol)};
}

HostileJudgement hostile_judge(HostileTruth *truth, const HostileOutcome *outcome)
{
    if (outcome->error)
        return {Verdict::OTHER,
                formatted("error %d: %s", outcome->error, outcome->message.c_str())};
    const double most = HOSTILE_RUNAWAY * (truth->lp->num_rows() + truth->lp->num_vars());
    const LpSolution *s = &outcome->solution;
    if (outcome->seconds > HOSTILE_SECONDS || s->status == TVX_TIME_LIMIT)
        return {Verdict::SLOW, formatted("%.0f iterations in %.1f seconds", s->iterations,
                                         outcome->seconds)};
    if (s->status == TVX_ITERATION_LIMIT || s->iterations > most)
        return {Verdict::RUNAWAY, formatted("%.0f iterations", s->iterations)};
    switch (s->status) {
    case TVX_OPTIMAL:
        return judge_solution(truth, outcome);
    case TVX_INFEASIBLE:
        return judge_refusal(truth, s->status, outcome->feasibility, Verdict::REFUSED);
    case TVX_INF_OR_UNBD:
        return judge_refusal(truth, s->status, outcome->feasibility,
                             Verdict::REFUSED_EITHER);
    case TVX_UNBOUNDED:
        return judge_refusal(truth, s->status, outcome->feasibility,
                             Verdict::FALSE_UNBOUNDED);
    case TVX_NUMERIC:
        return {Verdict::NUMERIC, formatted("numeric error, the model is %s",
                                            lp_status_name(truth->relaxed(0).status))};
    default:
        return {Verdict::OTHER, formatted("status %d", s->status)};
    }
}
