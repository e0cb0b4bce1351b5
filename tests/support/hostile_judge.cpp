// hostile_judge.cpp -- the rules of the header, one function each
#include "support/hostile_judge.h"
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstring>

static constexpr double NEARBY =
    1e-9; // a point that breaks nothing by more is never refused
static constexpr double GROSS_FACTOR = 1000;  // of the tolerances
static constexpr double LOOSE_VALUE = 1e-6;   // relative
static constexpr double SUM_ROUNDING = 1e-15; // of the terms of what tolerances explain
static constexpr double RC_ROUNDING =
    1e-14; // of the terms of c - pi A: what rounding pi and the sum may cost
static constexpr double VALUE_ROUNDING = 1e-12; // of the terms of the objective, for ObjVal
static constexpr double PLACE_RELATIVE =
    1e-9; // of the numbers behind a distance: the DualVio attribute's rule

const char *verdict_name(Verdict verdict)
{
    static constexpr const char *NAMES[] = {
        "right",     "loose",          "warned",          "gross",         "far",
        "refused",   "refused_either", "false_unbounded", "false_optimal", "silent",
        "objective", "numeric",        "runaway",         "slow",          "other"};
    static_assert(sizeof NAMES / sizeof *NAMES == static_cast<size_t>(Verdict::COUNT));
    return NAMES[static_cast<size_t>(verdict)];
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

// Of one column or row: its multiplier turned to a minimisation, how far it stands from the bound that the multiplier
// prices (negative: beyond), and how far off it still counts as there.
struct Stand {
    long double force = 0;
    bool priced = false; // the bound exists
    long double distance = 0;
    long double place = 0;
};

struct Point {
    const LpModel *lp = nullptr;
    const HostileOutcome *outcome = nullptr;
    std::vector<long double> activity, activity_size; // [m] a_i x, and sum |a_ij x_j|
    std::vector<long double> cost, cost_size; // [n] c_j - pi A_j, and the size of its terms
    long double value = 0, value_size = 0;    // c x, and the size of its terms
    long double residual = 0; // largest difference of RC from c - pi A that is not rounding
    long double primal = 0, dual = 0; // largest violations, less their rounding
};

} // namespace

__attribute__((format(printf, 2, 3))) static HostileJudgement say(Verdict verdict,
                                                                  const char *format, ...)
{
    char text[300];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return {verdict, text};
}

static void sum_up(Point *p)
{
    const LpModel *lp = p->lp;
    const LpSolution *s = &p->outcome->solution;
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    p->activity.assign(m, 0);
    p->activity_size.assign(m, 0);
    p->cost.assign(n, 0);
    p->cost_size.assign(n, 0);
    p->value = lp->objcon;
    p->value_size = std::fabs(lp->objcon);
    for (size_t j = 0; j < n; j++) {
        const long double x = s->x[j], c = lp->obj[j];
        p->value += c * x;
        p->value_size += std::fabs(c * x);
        p->cost[j] = c;
        p->cost_size[j] = std::fabs(c);
        for (const LpEntry &e : lp->cols[j]) {
            p->activity[e.row] += e.value * x;
            p->activity_size[e.row] += std::fabs(e.value * x);
            if (!p->outcome->has_duals) continue;
            const long double part = static_cast<long double>(s->pi[e.row]) * e.value;
            p->cost[j] -= part;
            p->cost_size[j] += std::fabs(part);
        }
    }
}

static void measure_primal(Point *p)
{
    const LpModel *lp = p->lp;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const long double x = p->outcome->solution.x[j];
        const long double rounding = p->outcome->rounding * std::fabs(x);
        if (!lp_is_infinite(lp->lb[j]))
            p->primal = std::max(p->primal, lp->lb[j] - x - rounding);
        if (!lp_is_infinite(lp->ub[j]))
            p->primal = std::max(p->primal, x - lp->ub[j] - rounding);
    }
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        if (lp_is_infinite(lp->rhs[i])) continue;
        const long double over = p->activity[i] - lp->rhs[i];
        const long double vio = lp->senses[i] == '<'   ? over
                                : lp->senses[i] == '>' ? -over
                                                       : std::fabs(over);
        p->primal = std::max(p->primal, vio - p->outcome->rounding * p->activity_size[i]);
    }
}

static Stand stand_of_row(const Point *p, size_t i)
{
    const LpModel *lp = p->lp;
    Stand s;
    s.force = static_cast<long double>(p->outcome->solution.pi[i]) * lp->sense;
    const char priced = s.force > 0 ? '>' : '<';
    s.priced =
        (lp->senses[i] == '=' || lp->senses[i] == priced) && !lp_is_infinite(lp->rhs[i]);
    s.distance = (p->activity[i] - lp->rhs[i]) * (s.force > 0 ? 1 : -1);
    if (lp->senses[i] == '=') s.distance = std::fabs(s.distance);
    s.place = p->outcome->feasibility +
              PLACE_RELATIVE * std::max(p->activity_size[i],
                                        static_cast<long double>(std::fabs(lp->rhs[i])));
    return s;
}

static Stand stand_of_column(const Point *p, size_t j)
{
    Stand s;
    s.force = p->cost[j] * p->lp->sense;
    const double bound = s.force > 0 ? p->lp->lb[j] : p->lp->ub[j];
    s.priced = !lp_is_infinite(bound);
    s.distance = (p->outcome->solution.x[j] - static_cast<long double>(bound)) *
                 (s.force > 0 ? 1 : -1);
    s.place = p->outcome->feasibility + PLACE_RELATIVE * std::fabs(bound);
    return s;
}

static void measure_dual(Point *p)
{
    for (size_t i = 0; i < p->lp->rhs.size(); i++) {
        if (p->lp->senses[i] == '=') continue;
        const Stand s = stand_of_row(p, i);
        if (!s.priced || s.distance > s.place)
            p->dual = std::max(p->dual, std::fabs(s.force));
    }
    for (size_t j = 0; j < p->lp->obj.size(); j++) {
        const Stand s = stand_of_column(p, j);
        const long double rounding = p->outcome->rounding * p->cost_size[j];
        if (!s.priced || s.distance > s.place)
            p->dual = std::max(p->dual, std::fabs(s.force) - rounding);
        const long double rc = p->outcome->solution.rc[j];
        const long double missed = std::fabs(p->cost[j] - rc);
        if (missed > RC_ROUNDING * p->cost_size[j])
            p->residual = std::max(p->residual, missed);
    }
}

// What the tolerances explain of c x - c x*, where x* is feasible in the model relaxed by `relax`.
static long double explained(const Point *p, const RationalResult &best, double relax)
{
    const LpModel *lp = p->lp;
    const double tol = p->outcome->feasibility, dual_tol = p->outcome->optimality;
    std::vector<long double> x, activity(lp->rhs.size(), 0);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        x.push_back(best.x[j].get_d());
        for (const LpEntry &e : lp->cols[j]) activity[e.row] += e.value * x[j];
    }
    const auto share = [&](const Stand &s, long double way) -> long double {
        const long double force = std::fabs(s.force);
        if (s.priced && s.distance <= tol)
            return force * (std::max(s.distance, 0.0L) + relax);
        return std::min<long double>(force, dual_tol) * std::fabs(way);
    };
    long double sum = SUM_ROUNDING * p->value_size;
    for (size_t i = 0; i < activity.size(); i++) {
        const Stand s = stand_of_row(p, i);
        sum += share(s, p->activity[i] - activity[i]) +
               SUM_ROUNDING * std::fabs(s.force) * p->activity_size[i];
    }
    for (size_t j = 0; j < x.size(); j++)
        sum += share(stand_of_column(p, j), p->outcome->solution.x[j] - x[j]);
    return sum;
}

static bool well_formed(const LpModel *lp, const HostileOutcome *outcome)
{
    const auto finite = [](const std::vector<double> &values, size_t size) {
        return values.size() == size &&
               std::all_of(values.begin(), values.end(),
                           [](double v) { return std::isfinite(v); });
    };
    const LpSolution *s = &outcome->solution;
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    return finite(s->x, n) && std::isfinite(s->objval) &&
           (!outcome->has_duals || (finite(s->rc, n) && finite(s->pi, m)));
}

static HostileJudgement judge_value(HostileTruth *truth, const Point *p)
{
    const double tol = p->outcome->feasibility, said = p->outcome->solution.objval;
    if (std::fabs(said - p->value) > VALUE_ROUNDING * p->value_size)
        return say(Verdict::OBJECTIVE, "ObjVal %.15g, but the point has %.15Lg", said,
                   p->value);
    double relax = 0;
    if (truth->relaxed(0).status == LpStatus::INFEASIBLE) relax = tol;
    const RationalResult &best = truth->relaxed(relax);
    if (best.status != LpStatus::OPTIMAL)
        return {}; // unbounded: the dual violation is within the tolerance
    const long double exact = best.value.get_d(), miss = (p->value - exact) * p->lp->sense;
    if (p->outcome->has_duals && miss > explained(p, best, relax))
        return say(Verdict::OBJECTIVE, "value %.15Lg, exact %.15Lg, explained is %.3Lg",
                   p->value, exact, explained(p, best, relax));
    if (relax == 0 && std::fabs(miss) > LOOSE_VALUE * std::max(1.0L, std::fabs(exact)))
        return say(Verdict::LOOSE, "value %.15Lg, exact %.15Lg", p->value, exact);
    return {};
}

static HostileJudgement judge_point(HostileTruth *truth, const Point *p)
{
    const HostileOutcome *o = p->outcome;
    const bool primal = p->primal > o->feasibility, dual = p->dual > o->optimality;
    if (primal && truth->relaxed(2 * o->feasibility).status == LpStatus::INFEASIBLE)
        return say(Verdict::FALSE_OPTIMAL, "optimal, violation %.3Lg; infeasible within %g",
                   p->primal, 2 * o->feasibility);
    if (p->residual > o->optimality)
        return say(Verdict::SILENT, "RC is %.3Lg from c - pi A", p->residual);
    if ((primal && !o->warned_primal) || (dual && !o->warned_dual))
        return say(Verdict::SILENT, "violation primal %.3Lg%s, dual %.3Lg%s", p->primal,
                   primal && !o->warned_primal ? " untold" : "", p->dual,
                   dual && !o->warned_dual ? " untold" : "");
    const bool gross =
        p->primal > GROSS_FACTOR * o->feasibility || p->dual > GROSS_FACTOR * o->optimality;
    if (primal || dual)
        return say(gross ? Verdict::GROSS : Verdict::WARNED,
                   "violation primal %.3Lg, dual %.3Lg", p->primal, p->dual);
    return judge_value(truth, p);
}

static HostileJudgement judge_solution(HostileTruth *truth, const HostileOutcome *outcome)
{
    Point p;
    p.lp = truth->lp;
    p.outcome = outcome;
    if (!well_formed(truth->lp, outcome))
        return say(Verdict::OTHER, "solution incomplete or not finite");
    sum_up(&p);
    measure_primal(&p);
    if (outcome->has_duals) measure_dual(&p);
    HostileJudgement j = judge_point(truth, &p);
    j.primal_vio = static_cast<double>(p.primal);
    j.dual_vio = static_cast<double>(p.dual);
    return j;
}

// By how much x, rounded to doubles, violates a row or bound at most.
static mpq_class rounded_violation(const LpModel *lp, const std::vector<mpq_class> &x)
{
    std::vector<mpq_class> activity(lp->rhs.size());
    mpq_class worst = 0;
    const auto at_least = [&worst](const mpq_class &v, double bound) {
        if (!lp_is_infinite(bound))
            worst = std::max<mpq_class>(worst, mpq_class(bound) - v);
    };
    const auto at_most = [&worst](const mpq_class &v, double bound) {
        if (!lp_is_infinite(bound))
            worst = std::max<mpq_class>(worst, v - mpq_class(bound));
    };
    for (int j = 0; j < lp->num_vars(); j++) {
        const mpq_class v(x[j].get_d());
        for (const LpEntry &e : lp->cols[j]) activity[e.row] += v * mpq_class(e.value);
        at_least(v, lp->lb[j]);
        at_most(v, lp->ub[j]);
    }
    for (int i = 0; i < lp->num_rows(); i++) {
        if (lp->senses[i] != '<') at_least(activity[i], lp->rhs[i]);
        if (lp->senses[i] != '>') at_most(activity[i], lp->rhs[i]);
    }
    return worst;
}

// By how much rows move at x, at most, when coefficients that are no short numbers, such as 1/3, are what their writer
// meant: something within their rounding.
static double coefficient_doubt(const LpModel *lp, const std::vector<mpq_class> &x)
{
    static constexpr double SHORT =
        0x1p20; // multiples of its inverse are meant as they stand
    std::vector<double> doubt(lp->rhs.size(), 0.0);
    for (int j = 0; j < lp->num_vars(); j++)
        for (const LpEntry &e : lp->cols[j])
            if (std::rint(e.value * SHORT) != e.value * SHORT)
                doubt[e.row] += 0x1p-53 * std::fabs(e.value * x[j].get_d());
    return doubt.empty() ? 0 : *std::max_element(doubt.begin(), doubt.end());
}

// Is there a ray but for the rounding of the coefficients? Columns whose ratios differ by the rounding of 0.3 / 0.9 have
// none in exact arithmetic, and nobody who wrote the model would say so.
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

// Wrong where doubles can hold the point of the model relaxed by `relax`, and it does not hang on their rounding.
static Verdict unless_far(HostileTruth *truth, double relax, double tol, Verdict wrong)
{
    const std::vector<mpq_class> &x = truth->relaxed(relax).x;
    const bool held =
        rounded_violation(truth->lp, x) <= mpq_class(relax) + mpq_class(tol) &&
        coefficient_doubt(truth->lp, x) <= tol;
    return held ? wrong : Verdict::FAR;
}

static HostileJudgement judge_infeasible(HostileTruth *truth, double tol)
{
    for (const double relax : {0.0, NEARBY})
        if (truth->relaxed(relax).status != LpStatus::INFEASIBLE)
            return say(unless_far(truth, relax, tol, Verdict::REFUSED),
                       "infeasible, but relaxed by %g it is %s", relax,
                       lp_status_name(truth->relaxed(relax).status));
    return {};
}

static HostileJudgement judge_either(HostileTruth *truth, double tol)
{
    for (const double relax : {0.0, NEARBY}) {
        const LpStatus status = truth->relaxed(relax).status;
        if (status == LpStatus::UNBOUNDED) return {};
        if (status == LpStatus::OPTIMAL)
            return say(has_rounded_ray(truth->lp)
                           ? Verdict::FAR
                           : unless_far(truth, relax, tol, Verdict::REFUSED_EITHER),
                       "infeasible or unbounded, but relaxed by %g it is optimal", relax);
    }
    return {};
}

// Rays are the same in all relaxed models; the first feasible one tells whether there is one.
static HostileJudgement judge_unbounded(HostileTruth *truth, double tol)
{
    for (const double relax : {0.0, NEARBY, tol}) {
        const LpStatus status = truth->relaxed(relax).status;
        if (status == LpStatus::UNBOUNDED) return {};
        if (status == LpStatus::OPTIMAL)
            return say(has_rounded_ray(truth->lp)
                           ? Verdict::FAR
                           : unless_far(truth, relax, tol, Verdict::FALSE_UNBOUNDED),
                       "unbounded, but relaxed by %g it is optimal with %.12g", relax,
                       truth->relaxed(relax).value.get_d());
    }
    return say(Verdict::FALSE_UNBOUNDED, "unbounded, but infeasible within %g", tol);
}

HostileJudgement hostile_judge(HostileTruth *truth, const HostileOutcome *outcome)
{
    if (outcome->error)
        return say(Verdict::OTHER, "error %d: %s", outcome->error,
                   outcome->message.c_str());
    const double most = HOSTILE_RUNAWAY * (truth->lp->num_rows() + truth->lp->num_vars());
    const LpSolution *s = &outcome->solution;
    if (outcome->seconds > HOSTILE_SECONDS || s->status == TVX_TIME_LIMIT)
        return say(Verdict::SLOW, "%.0f iterations in %.1f seconds", s->iterations,
                   outcome->seconds);
    if (s->status == TVX_ITERATION_LIMIT || s->iterations > most)
        return say(Verdict::RUNAWAY, "%.0f iterations", s->iterations);
    switch (s->status) {
    case TVX_OPTIMAL:
        return judge_solution(truth, outcome);
    case TVX_INFEASIBLE:
        return judge_infeasible(truth, outcome->feasibility);
    case TVX_INF_OR_UNBD:
        return judge_either(truth, outcome->feasibility);
    case TVX_UNBOUNDED:
        return judge_unbounded(truth, outcome->feasibility);
    case TVX_NUMERIC:
        return say(Verdict::NUMERIC, "numeric error, the model is %s",
                   lp_status_name(truth->relaxed(0).status));
    default:
        return say(Verdict::OTHER, "status %d", s->status);
    }
}
